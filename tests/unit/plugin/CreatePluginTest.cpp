#include "plugin/CreatePlugin.h"

#include "ServiceFixture.h"

namespace PrinterDiscoveryPlugin {
namespace {

using testing::ElementsAre;

using TaskQueueProxy = Kep::Platform::Proxy::Tasks::Proxy;

class CreatedPlugin : public testing::Test {
protected:
    CreatedPlugin()
    {
        fakePlugin() = {};
        fakeTaskProxies() = {};
        plugin = createPlugin();
    }
    ~CreatedPlugin() override
    {
        plugin.reset();
        fakePlugin() = {};
        fakeTaskProxies() = {};
    }

    std::shared_ptr<Kep::Platform::Plugin> plugin;
};

TEST_F(CreatedPlugin, IsSetUpInOrder)
{
    EXPECT_THAT(fakePlugin().events,
                ElementsAre("setName PrinterDiscovery", "setDescription Discovers printers using snmp", "setConfigured",
                            "serviceLocator", "addService PrinterDiscovery"));
}

TEST_F(CreatedPlugin, KnowsItsSharedOwner)
{
    EXPECT_EQ(plugin->shared_from_this(), plugin);
}

TEST_F(CreatedPlugin, MakesANewTaskQueueProxyAtEachRequest)
{
    const auto first = plugin->serviceLocator().get<TaskQueueProxy>();
    const auto second = plugin->serviceLocator().get<TaskQueueProxy>();
    EXPECT_NE(first, second);
    ASSERT_EQ(fakeTaskProxies().made.size(), 2U);
    for (const TaskProxyArguments& made : fakeTaskProxies().made) {
        EXPECT_EQ(made.caller, &plugin->serviceCaller());
        EXPECT_EQ(made.callbacks, plugin->callbacks().get());
        EXPECT_EQ(made.service, "TaskQueue");
    }
}

TEST_F(CreatedPlugin, MakesNoProxyByItself)
{
    EXPECT_TRUE(fakeTaskProxies().made.empty());
    EXPECT_EQ(fakeTaskProxies().alive, 0);
}

TEST_F(CreatedPlugin, NothingInsideKeepsItAlive)
{
    const auto proxy = plugin->serviceLocator().get<TaskQueueProxy>();
    plugin.reset();
    EXPECT_EQ(fakePlugin().alive, 0);
}

} // namespace
} // namespace PrinterDiscoveryPlugin
