// The lines that a client of the JSON-RPC service sends: how the stream is cut, and what is made of each line.
#include "fuzz/Target.h"
#include "host/JsonRpc.h"
#include "host/LineSplitter.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

// Never part of an error, whatever the message is.
constexpr std::string_view secret = "s3cr3t-pw";

using Lines = std::vector<std::optional<std::string>>; ///< nothing for a line that was too long

Lines cutInChunks(std::string_view stream, std::size_t longest, std::size_t chunk)
{
    Lines lines;
    Host::LineSplitter splitter(
        longest, [&lines](std::string line) { lines.emplace_back(std::move(line)); },
        [&lines] { lines.emplace_back(std::nullopt); });
    for (; !stream.empty(); stream.remove_prefix(std::min(chunk, stream.size())))
        splitter.feed(stream.substr(0, chunk));
    splitter.finish();
    return lines;
}

Lines cutAtOnce(std::string_view stream, std::size_t longest)
{
    Lines lines;
    while (!stream.empty()) {
        const std::string_view line = stream.substr(0, stream.find('\n'));
        lines.push_back(line.size() > longest ? std::nullopt : std::optional<std::string>(line));
        stream.remove_prefix(std::min(line.size() + 1, stream.size()));
    }
    return lines;
}

void requireAnswer(const std::string& answer)
{
    Fuzz::require(nlohmann::json::accept(answer), "an answer is JSON");
    Fuzz::require(answer.find('\n') == std::string::npos, "an answer is one line");
}

void requireAnswered(const std::string& line)
{
    try {
        const Host::RpcRequest request = Host::parseRequest(line);
        const auto params = nlohmann::json::parse(request.params, nullptr, false);
        Fuzz::require(params.is_object(), "parameters are an object");
        if (!request.id.empty())
            requireAnswer(Host::resultAnswer(request.id, request.params));
    } catch (const Host::RpcError& error) {
        const std::string_view message = error.what();
        Fuzz::require(message.find(secret) == std::string_view::npos, "an error does not quote the message");
        if (!error.id().empty())
            requireAnswer(Host::errorAnswer(error.id(), error.code(), error.what()));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view stream = Fuzz::textOf(data, size);
    const std::size_t chunk = Fuzz::takeChoice(stream) + std::size_t{1};
    const std::size_t longest = Fuzz::takeChoice(stream) * std::size_t{16};
    const Lines lines = cutInChunks(stream, longest, chunk);
    Fuzz::require(lines == cutAtOnce(stream, longest), "lines do not depend on how the stream arrives");
    for (const auto& line : lines)
        if (line)
            requireAnswered(*line);
    return 0;
}
