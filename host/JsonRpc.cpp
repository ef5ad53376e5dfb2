#include "host/JsonRpc.h"

#include "host/BoundedJson.h"
#include "host/PluginReply.h"

#include <algorithm>
#include <utility>

namespace Host {

namespace {

JsonValue parseJson(const std::string& text)
{
    try {
        return parseBoundedJson(text, "the message");
    } catch (const JsonError& error) {
        throw RpcError(RpcCode::ParseError, error.what());
    }
}

/// The id as it will be answered; empty when there is none.
std::string idOf(const JsonValue& message)
{
    const auto id = message.find("id");
    if (id == message.end())
        return {};
    if (!id->is_string() && !id->is_number() && !id->is_null())
        throw RpcError(RpcCode::InvalidRequest, "\"id\" is to be text, a number or null");
    return id->dump();
}

std::string methodOf(const JsonValue& message, const std::string& id)
{
    const std::string answerTo = id.empty() ? "null" : id;
    const auto version = message.find("jsonrpc");
    if (version == message.end() || *version != "2.0")
        throw RpcError(RpcCode::InvalidRequest, "\"jsonrpc\" is to be \"2.0\"", answerTo);
    const auto method = message.find("method");
    if (method == message.end() || !method->is_string())
        throw RpcError(RpcCode::InvalidRequest, "\"method\" is to be text", answerTo);
    return method->get<std::string>();
}

std::string paramsOf(const JsonValue& message, const std::string& id)
{
    const auto params = message.find("params");
    if (params == message.end())
        return "{}";
    if (!params->is_object())
        throw RpcError(RpcCode::InvalidParams, "\"params\" is to be an object", id);
    return params->dump();
}

std::string onOneLine(std::string json)
{
    std::replace(json.begin(), json.end(), '\n', ' ');
    std::replace(json.begin(), json.end(), '\r', ' ');
    return json;
}

} // namespace

RpcError::RpcError(RpcCode code, const std::string& message, std::string id)
    : std::runtime_error(message), code_(code), id_(std::move(id))
{}

RpcRequest parseRequest(const std::string& text)
{
    const JsonValue message = parseJson(text);
    if (message.is_array())
        throw RpcError(RpcCode::InvalidRequest, "batches are not supported; send one message a line");
    if (!message.is_object())
        throw RpcError(RpcCode::InvalidRequest, "the message is to be an object");
    RpcRequest request;
    request.id = idOf(message);
    request.method = methodOf(message, request.id);
    request.params = paramsOf(message, request.id);
    return request;
}

std::string resultAnswer(const std::string& id, const std::string& result)
{
    return R"({"jsonrpc":"2.0","result":)" + onOneLine(result) + R"(,"id":)" + id + "}";
}

std::string errorAnswer(const std::string& id, RpcCode code, const std::string& message, const std::string& data)
{
    const std::string text = JsonValue(message).dump(-1, ' ', false, JsonValue::error_handler_t::replace);
    return R"({"jsonrpc":"2.0","error":{"code":)" + std::to_string(static_cast<int>(code)) + R"(,"message":)" + text +
           (data.empty() ? "" : R"(,"data":)" + onOneLine(data)) + R"(},"id":)" + id + "}";
}

} // namespace Host
