/// JSON-RPC 2.0 messages as texts.
#pragma once

#include <stdexcept>
#include <string>

namespace Host {

/// What the program reports of itself; -32000 is the range that the protocol leaves to servers.
enum class RpcCode : int {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
    CallFailed = -32000, ///< the plug-in's operation failed
    TooManyCalls = -32001,
};

/// A message that cannot be carried out. The text never repeats parameters, which may hold passwords.
class RpcError : public std::runtime_error {
public:
    RpcError(RpcCode code, const std::string& message, std::string id = "null");

    RpcCode code() const { return code_; }

    /// The request's id as JSON text; "null" when it could not be told; empty for a notification.
    const std::string& id() const { return id_; }

private:
    RpcCode code_;
    std::string id_;
};

struct RpcRequest {
    std::string id; ///< JSON text; empty for a notification, which gets no answer
    std::string method;
    std::string params; ///< JSON text of an object; "{}" when the request has none
};

/// Reads one message. Throws `RpcError`. Batches are refused, and so is nesting deeper than 64 levels.
RpcRequest parseRequest(const std::string& text);

/// The answers, without a line end. `result` and `data` are JSON texts that are passed on as they are, but for line
/// ends between tokens, which become blanks so that the answer is one line.
std::string resultAnswer(const std::string& id, const std::string& result);
std::string errorAnswer(const std::string& id, RpcCode code, const std::string& message, const std::string& data = {});

} // namespace Host
