/// The plug-in, loaded and initialised for a test through the C driver, with short verbs for what a host does.
#pragma once

#include "entry/Driver.h"
#include "entry/System.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <string>

/// A data store of its own and short SNMP time-outs: `timeout` in seconds.
std::string configurationOf(const std::string& dataStore, const std::string& timeout = "0.3");

/// The parameters of a start: SNMPv2c to `port` of the addresses `from` to `to`.
nlohmann::json startParameters(const std::string& cookie, const std::string& from, const std::string& to,
                               std::uint16_t port);

/// The error document with an empty operation.
std::string errorDocument(const std::string& code, const std::string& message);

/// The error document of a stopped service.
std::string refusal(const std::string& operation);

/// The status document of an unknown cookie.
std::string unknownStatus(const std::string& cookie);

class WithHost : public testing::Test {
protected:
    static constexpr auto success = R"({"success":true})";

    /// Loads the library; does not initialise it.
    WithHost();
    ~WithHost() override;

    void load();
    void unload();

    std::string init(const std::string& configuration);
    std::string init() { return init(configurationOf(dataStore())); }

    /// The reply; tests that its size counts a NUL which is there.
    std::string callService(const std::string& service, const std::string& operation, const std::string& params) const;
    std::string call(const std::string& operation, const std::string& params = "{}") const
    {
        return callService("PrinterDiscovery", operation, params);
    }

    std::string start(const std::string& cookie, const std::string& from, const std::string& to,
                      std::uint16_t port) const
    {
        return call("startDiscovery", startParameters(cookie, from, to, port).dump());
    }
    std::string status(const std::string& cookie, int firstIdx = 0) const;
    std::string stop(const std::string& cookie) const;

    /// Polls until the run has finished, and returns that last status.
    nlohmann::json finish(const std::string& cookie) const;

    std::string dataStore() const { return folder_.path() + "/settings.db"; }
    void set(const std::string& key, const std::string& value) const;

    Driver driver{};

private:
    System::TemporaryFolder folder_;
};
