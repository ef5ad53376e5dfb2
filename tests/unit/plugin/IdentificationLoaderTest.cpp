#include "plugin/IdentificationLoader.h"

#include "FakeProxies.h"
#include "Kep/Exception.h"

#include <gmock/gmock.h>

namespace PrinterDiscoveryPlugin {
namespace {

using Kep::Variant;
using testing::ElementsAre;

class IdentificationLoading : public testing::Test {
protected:
    IdentificationLoading() { FakeDataStore::offer(locator, store); }

    void given(const std::string& key, const std::string& value) { store->subtree.emplace_back(key, Variant(value)); }

    void load() { loadIdentificationSettings("PrinterDiscovery", locator, settings); }

    // The list that the value of one key is cut into.
    std::vector<std::string> macOidsFrom(const std::string& value)
    {
        store->subtree = {{".macAddressOids", Variant(value)}};
        load();
        return settings.macAddressOids;
    }

    std::shared_ptr<FakeDataStore> store = std::make_shared<FakeDataStore>();
    Kep::ServiceLocator locator;
    IdentificationSettings settings;
    const IdentificationSettings defaults;
};

TEST(IdentificationDefaults, AreThoseOfTheStandardMibs)
{
    const IdentificationSettings defaults;
    EXPECT_EQ(defaults.oidDeviceType, ".1.3.6.1.2.1.25.3.2.1.2");
    EXPECT_THAT(defaults.oidDeviceTypePrinter, ElementsAre(".1.3.6.1.2.1.25.3.1.5"));
    EXPECT_EQ(defaults.oidDeviceDescr, ".1.3.6.1.2.1.25.3.2.1.3.1");
    EXPECT_THAT(defaults.macAddressOids, ElementsAre(".1.3.6.1.2.1.2.2.1.6.1", ".1.3.6.1.2.1.2.2.1.6.2"));
    EXPECT_THAT(defaults.serialNumberOids, ElementsAre(".1.3.6.1.2.1.43.5.1.1.17.1", ".1.3.6.1.4.1.1347.43.5.1.1.28.1",
                                                       ".1.3.6.1.4.1.367.3.2.1.2.1.4.0"));
    EXPECT_EQ(defaults.discoveryTaskGroup, "networkDiscovery");
}

TEST_F(IdentificationLoading, ReadsTheSubtreeOfTheServiceInOneTransaction)
{
    load();
    EXPECT_THAT(store->events, ElementsAre("begin", "getKeySubtree services.PrinterDiscovery", "commit", "destroyed"));
}

TEST_F(IdentificationLoading, WithoutKeysEverySettingStaysAsItWas)
{
    settings.oidDeviceType = ".1.2";
    load();
    EXPECT_EQ(settings.oidDeviceType, ".1.2");
    EXPECT_EQ(settings.macAddressOids, defaults.macAddressOids);
    EXPECT_EQ(settings.oidDeviceTypePrinter, defaults.oidDeviceTypePrinter);
}

TEST_F(IdentificationLoading, ASingleMacOidReplacesBoth)
{
    EXPECT_THAT(macOidsFrom(".1.3.6.1.9"), ElementsAre(".1.3.6.1.9"));
}

TEST_F(IdentificationLoading, EachOfTheFourSeparatorsCuts)
{
    EXPECT_THAT(macOidsFrom(".1,.2;.3-.4 .5"), ElementsAre(".1", ".2", ".3", ".4", ".5"));
}

TEST_F(IdentificationLoading, ASemicolonAndABlankGiveTheSameTwoItems)
{
    EXPECT_THAT(macOidsFrom(".1;.2"), ElementsAre(".1", ".2"));
    EXPECT_THAT(macOidsFrom(".1 .2"), ElementsAre(".1", ".2"));
}

TEST_F(IdentificationLoading, SeparatorsSideBySideStandAroundAnEmptyItem)
{
    EXPECT_THAT(macOidsFrom(".1,,.2"), ElementsAre(".1", "", ".2"));
    EXPECT_THAT(macOidsFrom(".1, .2"), ElementsAre(".1", "", ".2"));
}

TEST_F(IdentificationLoading, SeparatorsAtTheEndsGiveEmptyItems)
{
    EXPECT_THAT(macOidsFrom(",.1;"), ElementsAre("", ".1", ""));
}

TEST_F(IdentificationLoading, ATextOfSeparatorsAloneStillReplaces)
{
    EXPECT_THAT(macOidsFrom(","), ElementsAre("", ""));
}

TEST_F(IdentificationLoading, OtherCharactersNeitherCutNorGoAway)
{
    EXPECT_THAT(macOidsFrom("\t.1\n:no oid/"), ElementsAre("\t.1\n:no", "oid/"));
}

TEST_F(IdentificationLoading, AnEmptyTextIsAnEmptyListAndKeepsTheSetting)
{
    given(".macAddressOids", "");
    given(".oidDeviceTypePrinter", "");
    load();
    EXPECT_EQ(settings.macAddressOids, defaults.macAddressOids);
    EXPECT_EQ(settings.oidDeviceTypePrinter, defaults.oidDeviceTypePrinter);
}

TEST_F(IdentificationLoading, AnEmptyTextEmptiesTheDeviceTypeColumn)
{
    given(".oidDeviceType", "");
    load();
    EXPECT_EQ(settings.oidDeviceType, "");
}

TEST_F(IdentificationLoading, TheDeviceTypeColumnIsTakenAsItStands)
{
    given(".oidDeviceType", " .1.2, ;-.3");
    load();
    EXPECT_EQ(settings.oidDeviceType, " .1.2, ;-.3");
}

TEST_F(IdentificationLoading, PrinterTypesAreAListToo)
{
    given(".oidDeviceTypePrinter", ".1.5;.1.6");
    load();
    EXPECT_THAT(settings.oidDeviceTypePrinter, ElementsAre(".1.5", ".1.6"));
}

TEST_F(IdentificationLoading, NothingElseCanBeOverridden)
{
    given(".oidDeviceDescr", ".9");
    given(".serialNumberOids", ".9");
    given(".discoveryTaskGroup", "other");
    given("macAddressOids", ".9");
    load();
    EXPECT_EQ(settings.oidDeviceDescr, defaults.oidDeviceDescr);
    EXPECT_EQ(settings.serialNumberOids, defaults.serialNumberOids);
    EXPECT_EQ(settings.discoveryTaskGroup, defaults.discoveryTaskGroup);
    EXPECT_EQ(settings.macAddressOids, defaults.macAddressOids);
}

TEST_F(IdentificationLoading, ALaterLoadOverridesOnlyWhatIsThereThen)
{
    given(".oidDeviceType", ".1.9");
    load();
    store->subtree = {{".oidDeviceTypePrinter", Variant(".1.8")}};
    load();
    EXPECT_EQ(settings.oidDeviceType, ".1.9");
    EXPECT_THAT(settings.oidDeviceTypePrinter, ElementsAre(".1.8"));
}

TEST_F(IdentificationLoading, AValueThatIsNoTextEndsTheLoadAfterWhatWasApplied)
{
    given(".macAddressOids", ".1.7");
    store->subtree.emplace_back(".oidDeviceType", Variant(7));
    given(".oidDeviceTypePrinter", ".1.8");
    EXPECT_THROW(load(), Kep::GenericException);
    EXPECT_THAT(settings.macAddressOids, ElementsAre(".1.7"));
    EXPECT_EQ(settings.oidDeviceType, defaults.oidDeviceType);
    EXPECT_EQ(settings.oidDeviceTypePrinter, defaults.oidDeviceTypePrinter);
}

TEST_F(IdentificationLoading, ANullIsPresentAndNoText)
{
    store->subtree.emplace_back(".macAddressOids", Variant());
    EXPECT_THROW(load(), Kep::GenericException);
}

TEST_F(IdentificationLoading, FailuresOfTheTransactionPassAndEndIt)
{
    given(".oidDeviceType", ".1.9");
    for (const std::string step : {"getKeySubtree", "commit"}) {
        store->events.clear();
        store->failing = step;
        EXPECT_THROW(load(), Kep::GenericException);
        EXPECT_EQ(store->events.back(), "destroyed");
    }
    store->failing = "begin";
    EXPECT_THROW(load(), Kep::GenericException);
    EXPECT_EQ(settings.oidDeviceType, defaults.oidDeviceType);
}

TEST(IdentificationLoadingWithoutStore, NamesTheMissingFactory)
{
    const Kep::ServiceLocator locator;
    IdentificationSettings settings;
    try {
        loadIdentificationSettings("PrinterDiscovery", locator, settings);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Kep::NoFactoryException& error) {
        EXPECT_EQ(error.what(), std::string("Factory: no factory for the reference ") +
                                    typeid(Kep::Platform::Proxy::DataStore::Proxy).name());
    }
}

TEST(IdentificationLoadingWithoutStore, NamesAFactoryOfAnotherType)
{
    Kep::ServiceLocator locator;
    locator.store(typeid(Kep::Platform::Proxy::DataStore::Proxy).name(), std::function<std::shared_ptr<int>()>());
    IdentificationSettings settings;
    try {
        loadIdentificationSettings("PrinterDiscovery", locator, settings);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Kep::GenericException& error) {
        EXPECT_EQ(error.what(), std::string("Factory: invalid factory type for the reference ") +
                                    typeid(Kep::Platform::Proxy::DataStore::Proxy).name());
    }
}

} // namespace
} // namespace PrinterDiscoveryPlugin
