#include "Kep/Platform/Service.h"

#include "Kep/Exception.h"
#include "tests/unit/kep/base/Messages.h"

#include <gtest/gtest.h>

#include <stdexcept>

using Kep::Variant;

namespace {

class EchoService : public Kep::Platform::Service {
public:
    EchoService()
    {
        setReference("Echo");
        dependencies_.push_back("PrintService");
        addOperation("say", [](const std::string& params) { return Variant("said " + params); });
        addOperation("fail", [](const std::string&) -> Variant { throw std::out_of_range("too far"); });
        addOperation("repeat", [this](const std::string& params) { return call("say", params); });
    }
    using Service::addOperation;
    using Service::plugin;
};

class OnePlugin : public Kep::Platform::IPlugin {
public:
    Kep::ServiceLocator& serviceLocator() override { return locator_; }

private:
    Kep::ServiceLocator locator_;
};

TEST(Services, RunTheOperationNamedWithItsParameters)
{
    EchoService service;
    EXPECT_EQ(static_cast<std::string>(service.call("say", "{}")), "said {}");
    EXPECT_EQ(static_cast<std::string>(service.call("say", "")), "said ");
}

TEST(Services, AnUnknownOperationIsNotFoundAndNamed)
{
    EchoService service;
    EXPECT_THROW(service.call("sing", ""), Kep::NotFoundException);
    EXPECT_EQ(messageOf([&] { service.call("sing", "secret"); }), "the service \"Echo\" has no operation \"sing\"");
    EXPECT_EQ(messageOf([&] { service.call("", ""); }), "the service \"Echo\" has no operation \"\"");
    EXPECT_EQ(messageOf([&] { service.call("Say", ""); }), "the service \"Echo\" has no operation \"Say\"");
}

TEST(Services, WhatAnOperationThrowsPasses)
{
    EchoService service;
    EXPECT_THROW(service.call("fail", ""), std::out_of_range);
}

TEST(Services, AnOperationMayCallAnother)
{
    EchoService service;
    EXPECT_EQ(static_cast<std::string>(service.call("repeat", "x")), "said x");
}

TEST(Services, ListOperationsInTheOrderOfRegistration)
{
    EchoService service;
    EXPECT_EQ(service.operationNames(), (std::vector<std::string>{"say", "fail", "repeat"}));
    EXPECT_EQ(service.dependencies(), std::vector<std::string>{"PrintService"});
    EXPECT_EQ(service.reference(), "Echo");
}

TEST(Services, TheLaterFunctionOfANameCounts)
{
    EchoService service;
    service.addOperation("say", [](const std::string&) { return Variant("anew"); });
    EXPECT_EQ(static_cast<std::string>(service.call("say", "")), "anew");
    EXPECT_EQ(service.operationNames(), (std::vector<std::string>{"say", "fail", "repeat"}));
}

TEST(Services, KnowTheirPluginOnceAdded)
{
    EchoService service;
    EXPECT_THROW(service.plugin(), Kep::InvalidOperationException);
    OnePlugin plugin;
    service.setPlugin(plugin);
    EXPECT_EQ(&service.plugin(), &plugin);
}

TEST(ServiceResults, SuccessSaysNothingElse)
{
    EXPECT_EQ(Kep::Platform::Service::resultSuccess().toJson(), R"({"success":true})");
}

TEST(ServiceResults, JsonTravelsAsATextByteForByte)
{
    const std::string json("{ \"b\":1,\"a\":\"\xE4\" }");
    const Variant result = Kep::Platform::Service::resultSuccessJson(json);
    EXPECT_EQ(result.type(), 10);
    EXPECT_EQ(static_cast<std::string>(result), json);
}

} // namespace
