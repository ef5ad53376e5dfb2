#include "tests/network/harness/RpcClient.h"

#include <stdexcept>

namespace NetworkTests {

RpcClient::RpcClient()
    : server_(
          {.words = {builtProgram("printer-discovery"), "serve", "--stdio", "--data-store", folder_ / "settings.db"}})
{}

int RpcClient::send(const std::string& operation, const Document& parameters)
{
    Document request = Document::object();
    request["jsonrpc"] = "2.0";
    request["id"] = ++lastId_;
    request["method"] = "PrinterDiscovery." + operation;
    request["params"] = parameters;
    server_.writeLine(request.dump());
    return lastId_;
}

bool RpcClient::answered(int id)
{
    while (receive(std::chrono::milliseconds(0))) {
    }
    return answers_.contains(id);
}

Document RpcClient::answerTo(int id)
{
    while (!answers_.contains(id)) {
        if (!receive(sweepBound)) {
            throw std::runtime_error("no answer to request " + std::to_string(id) + ": " + server_.errors());
        }
    }
    Document answer = std::move(answers_.at(id));
    answers_.erase(id);
    return answer;
}

Document RpcClient::call(const std::string& operation, const Document& parameters)
{
    const Document answer = answerTo(send(operation, parameters));
    if (!answer.contains("result")) {
        throw std::runtime_error(operation + " failed: " + answer.dump());
    }
    return answer.at("result");
}

int RpcClient::finish()
{
    server_.closeInput();
    return server_.waitForExit(sweepBound).value_or(-1);
}

bool RpcClient::receive(std::chrono::milliseconds bound)
{
    const auto line = server_.readLine(bound);
    if (line) {
        Document answer = parseOutput(*line);
        const int id = answer.at("id").get<int>();
        answers_[id] = std::move(answer);
    }
    return line.has_value();
}

} // namespace NetworkTests
