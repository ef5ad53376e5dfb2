// The exported functions and the life of the plug-in object, in front of a plug-in that answers what the test says.
#include "FakePlugin.h"
#include "Kep/CoTaskMem.h"
#include "Kep/Exception.h"
#include "Kep/Json.h"
#include "Kep/Platform/ServiceException.h"
#include "plugin/Attach.h"
#include "plugin/CreatePlugin.h"
#include "plugin/include/PrinterDiscovery.h"

#include <gmock/gmock.h>

#include <cstring>
#include <stdexcept>

namespace {

bool buildsNothing = false;

} // namespace

namespace PrinterDiscoveryPlugin {

std::shared_ptr<Kep::Platform::Plugin> g_plugin;

std::shared_ptr<Kep::Platform::Plugin> createPlugin()
{
    return buildsNothing ? nullptr : std::make_shared<Kep::Platform::Plugin>();
}

} // namespace PrinterDiscoveryPlugin

namespace {

using Kep::Variant;
using PrinterDiscoveryPlugin::attach;
using PrinterDiscoveryPlugin::detach;
using PrinterDiscoveryPlugin::g_plugin;

struct HostBlock {
    explicit HostBlock(char* text) : text_(text) {}
    ~HostBlock() { CoTaskMemFree(text_); }
    HostBlock(const HostBlock&) = delete;
    HostBlock& operator=(const HostBlock&) = delete;

    char* text_;
};

class EntryPoints : public testing::Test {
protected:
    void SetUp() override
    {
        fakePlugin() = {};
        buildsNothing = false;
        attach();
    }
    void TearDown() override
    {
        fakePlugin() = {};
        detach();
    }

    static void answer(const Variant& value)
    {
        fakePlugin().call = [value](const auto&, const auto&, const auto&) { return value; };
    }

    template <class Error> static void fail(const Error& error)
    {
        fakePlugin().call = [error](const auto&, const auto&, const auto&) -> Variant { throw error; };
    }

    // The reply's bytes; tests on the way that the size counts a NUL which is there.
    static std::string call(const std::string& service = "PrinterDiscovery", const std::string& operation = "getStatus",
                            const std::string& params = "{}")
    {
        char* result = nullptr;
        std::size_t size = 0;
        dakPluginCall(service.data(), service.size(), operation.data(), operation.size(), params.data(), params.size(),
                      &result, &size);
        const HostBlock block(result);
        EXPECT_GE(size, 1U);
        EXPECT_EQ(result[size - 1], '\0');
        return {result, size - 1};
    }
};

TEST_F(EntryPoints, TheTextAnswerPassesByteForByte)
{
    const std::string text("{ \"b\":1,\"a\":\"\\u00e4\xe4\", nonsense \0 after", 39);
    answer(Variant(text));
    EXPECT_EQ(call(), text);
}

TEST_F(EntryPoints, TheEmptyTextAnswerIsASingleNul)
{
    answer(Variant(std::string()));
    EXPECT_EQ(call(), "");
}

TEST_F(EntryPoints, AnAnswerThatIsNoTextIsSerialised)
{
    const Variant success = Kep::Platform::Service::resultSuccess();
    answer(success);
    EXPECT_EQ(call(), success.toJson());
    EXPECT_EQ(call(), R"({"success":true})");
}

TEST_F(EntryPoints, OnlyTypeCodeTenCountsAsText)
{
    answer(Variant::snmp(Kep::VariantType::snmpOpaque, "raw"));
    EXPECT_EQ(call(), R"("raw")");
    answer(Variant());
    EXPECT_EQ(call(), "null");
}

TEST_F(EntryPoints, TheThreeTextsReachThePluginInTheirOrder)
{
    std::vector<std::string> seen;
    fakePlugin().call = [&seen](const auto& service, const auto& operation, const auto& params) {
        seen = {service, operation, params};
        return Variant(true);
    };
    const std::string params("{\"a\":\"\0\"}", 9);
    call("one", "two", params);
    EXPECT_THAT(seen, testing::ElementsAre("one", "two", params));
}

TEST_F(EntryPoints, CountedTextsNeedNoTerminator)
{
    std::vector<std::string> seen;
    fakePlugin().call = [&seen](const auto& service, const auto& operation, const auto& params) {
        seen = {service, operation, params};
        return Variant("answer");
    };
    const char texts[] = "serviceoperationparams";
    char* result = nullptr;
    std::size_t size = 0;
    dakPluginCall(texts, 7, texts + 7, 9, texts + 16, 6, &result, &size);
    const HostBlock block(result);
    EXPECT_THAT(seen, testing::ElementsAre("service", "operation", "params"));
    EXPECT_EQ(size, 7U);
    EXPECT_STREQ(result, "answer");
}

TEST_F(EntryPoints, TextsOfNoLengthArriveEmptyWhateverTheirAddress)
{
    std::vector<std::string> seen;
    fakePlugin().call = [&seen](const auto& service, const auto& operation, const auto& params) {
        seen = {service, operation, params};
        return Variant(true);
    };
    char* result = nullptr;
    std::size_t size = 0;
    dakPluginCall(nullptr, 0, "x", 0, nullptr, 0, &result, &size);
    const HostBlock block(result);
    EXPECT_THAT(seen, testing::ElementsAre("", "", ""));
    EXPECT_STREQ(result, "true");
}

TEST_F(EntryPoints, AServiceExceptionRepliesItsOwnDocument)
{
    Kep::Platform::Operation operation;
    operation.service = "s";
    operation.operation = "o";
    operation.params = R"({"p":1})";
    const Kep::Platform::ServiceException error("someCode", "some message", Variant(7), operation);
    fail(error);
    EXPECT_EQ(call(), error.toJson());
    EXPECT_EQ(call(), R"({"code":"someCode","message":"some message","data":7,)"
                      R"("operation":{"service":"s","operation":"o","params":{"p":1}}})");
}

TEST_F(EntryPoints, ASubclassOfServiceExceptionKeepsItsOwnDocument)
{
    const Kep::Platform::NotFoundException error("gone", Variant("what"), Kep::Platform::Operation());
    fail(error);
    EXPECT_EQ(call(), error.toJson());
}

constexpr auto emptyOperation = R"("data":null,"operation":{"service":"","operation":"","params":null}})";

TEST_F(EntryPoints, SomethingNotFoundRepliesNotFoundWithAnEmptyOperation)
{
    fail(Kep::NotFoundException("no such \"service\""));
    EXPECT_EQ(call("nobody", "nothing", "{}"),
              std::string(R"({"code":"notFound","message":"no such \"service\"",)") + emptyOperation);
}

TEST_F(EntryPoints, AStandardExceptionRepliesInternalServerErrorWithAnEmptyOperation)
{
    fail(std::invalid_argument("bad argument"));
    EXPECT_EQ(call(), std::string(R"({"code":"internalServerError","message":"bad argument",)") + emptyOperation);
    fail(std::runtime_error("bad luck"));
    EXPECT_EQ(call(), std::string(R"({"code":"internalServerError","message":"bad luck",)") + emptyOperation);
}

TEST_F(EntryPoints, OtherExceptionsOfTheFrameworkReplyInternalServerError)
{
    fail(Kep::NoFactoryException("no factory"));
    EXPECT_EQ(call(), std::string(R"({"code":"internalServerError","message":"no factory",)") + emptyOperation);
    fail(Kep::InvalidOperationException("getPdExecutor"));
    EXPECT_EQ(call(), std::string(R"({"code":"internalServerError","message":)"
                                  R"("Invalid operation occurred in the function: getPdExecutor",)") +
                          emptyOperation);
}

TEST_F(EntryPoints, AForeignExceptionReachesTheHostUnchanged)
{
    fail(42);
    char untouched = 'u';
    char* result = &untouched;
    std::size_t size = 99;
    try {
        dakPluginCall("s", 1, "o", 1, "{}", 2, &result, &size);
        ADD_FAILURE() << "nothing was thrown";
    } catch (int thrown) {
        EXPECT_EQ(thrown, 42);
    }
    EXPECT_EQ(result, &untouched);
    EXPECT_EQ(size, 99U);
}

TEST_F(EntryPoints, InitPassesTheConfigurationOnAndRepliesJson)
{
    std::string config;
    fakePlugin().init = [&config](const std::string& text) {
        config = text;
        return Variant(Variant::Object{{"name", Variant("x")}});
    };
    const HostBlock reply(dakPluginInit("{\"k\":1}"));
    EXPECT_EQ(config, "{\"k\":1}");
    EXPECT_STREQ(reply.text_, R"({"name":"x"})");
}

TEST_F(EntryPoints, InitSerialisesATextToo)
{
    fakePlugin().init = [](const std::string&) { return Variant("text"); };
    const HostBlock reply(dakPluginInit(""));
    EXPECT_STREQ(reply.text_, R"("text")");
}

TEST_F(EntryPoints, InitAndDeinitCatchNothing)
{
    fakePlugin().init = [](const std::string&) -> Variant { throw std::runtime_error("init"); };
    fakePlugin().deinit = [] { throw Kep::NotFoundException("deinit"); };
    EXPECT_THROW(dakPluginInit(""), std::runtime_error);
    EXPECT_THROW(dakPluginDeinit(), Kep::NotFoundException);
}

TEST_F(EntryPoints, DeinitKeepsThePluginObject)
{
    int calls = 0;
    fakePlugin().deinit = [&calls] { ++calls; };
    dakPluginDeinit();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(g_plugin);
    EXPECT_EQ(fakePlugin().alive, 1);
}

TEST_F(EntryPoints, DetachClearsThePointerBeforeItLetsGoOfTheObject)
{
    bool clearedFirst = false;
    fakePlugin().destroyed = [&clearedFirst] { clearedFirst = !g_plugin; };
    detach();
    EXPECT_TRUE(clearedFirst);
    EXPECT_EQ(fakePlugin().alive, 0);
}

TEST_F(EntryPoints, AnObjectThatSomebodySharesOutlivesDetach)
{
    auto shared = g_plugin;
    detach();
    EXPECT_FALSE(g_plugin);
    EXPECT_EQ(fakePlugin().alive, 1);
    shared.reset();
    EXPECT_EQ(fakePlugin().alive, 0);
}

TEST_F(EntryPoints, AttachReportsAPluginThatWasNotBuilt)
{
    buildsNothing = true;
    testing::internal::CaptureStderr();
    attach();
    const std::string report = testing::internal::GetCapturedStderr();
    EXPECT_THAT(report, testing::AllOf(testing::HasSubstr("\"g_plugin\""), testing::HasSubstr("Kep\\Platform\\DllApi"),
                                       testing::HasSubstr("42")));
    EXPECT_FALSE(g_plugin);
}

TEST_F(EntryPoints, AttachReportsNothingOtherwise)
{
    testing::internal::CaptureStderr();
    attach();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(g_plugin);
}

} // namespace
