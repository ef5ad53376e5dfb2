/// docs/operations.md against the built plug-in: every request in it is made, and every reply has to be as it says.
#include "host/PluginLibrary.h"
#include "tests/unit/host/Process.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace Host {
namespace {

using Json = nlohmann::ordered_json;

struct Exchange {
    std::string operation; ///< "init" for the configuration, else an operation's name
    std::string request;
    std::string reply;
    int line = 0;
};

/// The fenced blocks "```json init" and "```json call OPERATION", each followed by its "```json reply". Requests are
/// sent as they stand and need not be JSON.
class Blocks {
public:
    explicit Blocks(const std::string& path) : file_(path) {}

    std::vector<Exchange> exchanges()
    {
        std::vector<Exchange> all;
        for (std::string line; next(line);) {
            const int at = line_;
            if (line == "```json reply" && !all.empty())
                all.back().reply = body();
            else if (line.starts_with("```json init"))
                all.push_back({"init", body(), "", at});
            else if (line.starts_with("```json call "))
                all.push_back({line.substr(13), body(), "", at});
        }
        return all;
    }

private:
    bool next(std::string& line)
    {
        ++line_;
        return static_cast<bool>(std::getline(file_, line));
    }

    std::string body()
    {
        std::string text;
        for (std::string line; next(line) && line != "```";)
            text += line + '\n';
        return text;
    }

    std::ifstream file_;
    int line_ = 0;
};

class OperationsDocument : public testing::Test {
protected:
    TemporaryFolder folder;
    Process lab{{LAB_PROGRAM, "--verbatim", "--port", "0", "--until-stdin-closes", "--plan",
                 folder.write("plan", "127.77.0.7 laser-mono\n127.77.0.8 server\n")}};
    std::unique_ptr<PluginLibrary> plugin;
    std::string port;

    void SetUp() override
    {
        const std::string before = "UDP port ";
        const std::string announcement = lab.line();
        const auto begin = announcement.find(before) + before.size();
        port = announcement.substr(begin, announcement.find(',', begin) - begin);
        ASSERT_EQ(lab.line(), "ready");
    }

    /// What the document has for places of this test's own.
    std::string localised(std::string text) const
    {
        replace(text, "16161", port);
        replace(text, "/var/lib/printer-discovery/settings.db", folder.file("settings.db"));
        return text;
    }

    static void replace(std::string& text, const std::string& from, const std::string& to)
    {
        for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
            text.replace(at, from.size(), to);
    }

    std::string perform(const Exchange& exchange)
    {
        const std::string request = localised(exchange.request);
        if (exchange.operation != "init")
            return plugin->call({"PrinterDiscovery", exchange.operation, request}, {});
        plugin.reset();
        plugin = std::make_unique<PluginLibrary>(PLUGIN_LIBRARY);
        return plugin->init(request);
    }
};

TEST_F(OperationsDocument, SaysWhatThePluginSays)
{
    const auto exchanges = Blocks(OPERATIONS_DOCUMENT).exchanges();
    ASSERT_GT(exchanges.size(), 10U);
    for (const Exchange& exchange : exchanges) {
        SCOPED_TRACE("docs/operations.md, line " + std::to_string(exchange.line));
        const std::string reply = perform(exchange);
        ASSERT_FALSE(exchange.reply.empty()) << "no reply is given; it is " << reply;
        EXPECT_EQ(Json::parse(reply).dump(), Json::parse(exchange.reply).dump());
    }
}

} // namespace
} // namespace Host
