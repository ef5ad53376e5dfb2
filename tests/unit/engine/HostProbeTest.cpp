// The probe of one host: what it asks, what it makes of the answers, and what it counts.
#include "RunFixture.h"

#include "Kep/Snmp/Exception.h"
#include "engine/HostProbe.h"

#include <stdexcept>

namespace PrinterDiscoveryPlugin {
namespace {

using Fakes::answer;
using Fakes::noAnswer;
using Fakes::row;
using Fakes::throwing;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::string host = "10.0.0.1";
const std::string column = ".1.3.6.1.2.1.25.3.2.1.2";
const std::string printerType = ".1.3.6.1.2.1.25.3.1.5";
const std::string diskType = ".1.3.6.1.2.1.25.3.1.6";
const std::string description = ".1.3.6.1.2.1.25.3.2.1.3.1";
const std::string mac1 = ".1.3.6.1.2.1.2.2.1.6.1";
const std::string mac2 = ".1.3.6.1.2.1.2.2.1.6.2";
const std::string serial1 = ".1.3.6.1.2.1.43.5.1.1.17.1";
const std::string serial2 = ".1.3.6.1.4.1.1347.43.5.1.1.28.1";
const std::string serial3 = ".1.3.6.1.4.1.367.3.2.1.2.1.4.0";
const std::string sixBytes("\x00\x1b\xa9\x0c\x33\x7e", 6);
const std::string wait = "sleep 1000 ms";

class Probe : public RunTest {
protected:
    Fakes::FakeAgent& agent() { return snmp.agent(host); }

    /// A printer that answers everything at the first attempt.
    void answeringPrinter()
    {
        agent().isPrinter();
        agent().onGet(description, {answer("Laser 9")});
        agent().onGet(mac1, {answer(sixBytes)});
        agent().onGet(mac2, {answer(std::string("\xff\xfe\xfd\xfc\xfb\xfa"))});
        agent().onGet(serial1, {answer("S1")});
        names.netbios(host, "PRN");
    }

    /// A printer whose fields are all empty texts.
    void taciturnPrinter()
    {
        agent().isPrinter();
        for (const std::string& oid : {description, mac1, mac2, serial1, serial2, serial3})
            agent().onGet(oid, {answer("")});
    }

    void probeHost() { probe(host); }

    /// The one printer that a probe of the host finds.
    PrinterRecord found()
    {
        probeHost();
        const std::vector<PrinterRecord> all = printers();
        EXPECT_THAT(all, SizeIs(1));
        return all.empty() ? PrinterRecord() : all.front();
    }

    void expectCountedButNoPrinter()
    {
        probeHost();
        EXPECT_EQ(step(), 1u);
        EXPECT_THAT(printers(), IsEmpty());
    }

    template <class Exception> void expectUncounted()
    {
        EXPECT_THROW(probeHost(), Exception);
        EXPECT_EQ(step(), 0u);
        EXPECT_THAT(printers(), IsEmpty());
        EXPECT_TRUE(Fakes::isMutexFree(run()));
    }
};

TEST_F(Probe, AsksInItsOrder)
{
    answeringPrinter();
    probeHost();
    EXPECT_THAT(journal.texts(), ElementsAre("engine", "create", "open " + host, "getNext " + column,
                                             "get " + description, "get " + mac1, "get " + mac2, "get " + serial1,
                                             "netbios " + host, "release session", "release factory"));
}

TEST_F(Probe, GathersWhatThePrinterSays)
{
    answeringPrinter();
    const PrinterRecord printer = found();
    EXPECT_EQ(printer.ip, host);
    EXPECT_EQ(printer.name, "Laser 9");
    EXPECT_EQ(printer.sn, "S1");
    EXPECT_THAT(printer.mac, ElementsAre("00-1B-A9-0C-33-7E", "FF-FE-FD-FC-FB-FA"));
    EXPECT_EQ(printer.hostname, "PRN");
    EXPECT_EQ(step(), 1u);
}

TEST_F(Probe, UsesTheProfileOfTheRun)
{
    config.snmpProfile = std::make_shared<Kep::Snmp::ProfileV3>();
    probeHost();
    EXPECT_THAT(snmp.profiles(), ElementsAre(config.snmpProfile));
}

TEST_F(Probe, HoldsNoLockAcrossSnmpNamesAndSleeps)
{
    agent().isPrinter();
    agent().onGet(mac1, {noAnswer(), answer(sixBytes)});
    journal.watch(run());
    probeHost();
    EXPECT_THAT(journal.texts(), Contains(wait));
    EXPECT_THAT(journal.texts(), Contains("dns " + host));
    EXPECT_THAT(journal.textsUnderMutex(), IsEmpty());
}

TEST_F(Probe, LetsGoOfTheSessionBeforeItCounts)
{
    answeringPrinter();
    std::uint32_t countedBefore = 99;
    journal.during("release factory", [&] { countedBefore = step(); });
    probeHost();
    EXPECT_EQ(countedBefore, 0u);
    EXPECT_EQ(step(), 1u);
}

TEST_F(Probe, OfASilentHostIsCounted)
{
    expectCountedButNoPrinter();
    EXPECT_THAT(journal.texts(), ElementsAre("engine", "create", "open " + host, "release session", "release factory"));
}

TEST_F(Probe, OnAStoppedRunDoesNothing)
{
    answeringPrinter();
    run().stop();
    probeHost();
    EXPECT_EQ(step(), 0u);
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Probe, ThatHasBegunWhenTheRunIsStoppedCounts)
{
    answeringPrinter();
    journal.during("open " + host, [this] { run().stop(); });
    probeHost();
    EXPECT_EQ(step(), 1u);
    EXPECT_THAT(printers(), SizeIs(1));
}

TEST_F(Probe, FindsNoPrinterOutsideTheColumn)
{
    agent().onGetNext(column, {row(".1.3.6.1.2.1.25.3.2.1.3.1", printerType)});
    expectCountedButNoPrinter();
    EXPECT_THAT(journal.texts(), Not(Contains("netbios " + host)));
}

TEST_F(Probe, FindsThePrinterInTheSecondRow)
{
    taciturnPrinter();
    agent().onGetNext(column, {row(column + ".1", diskType)});
    agent().onGetNext(column + ".1", {row(column + ".2", printerType)});
    EXPECT_EQ(found().ip, host);
}

TEST_F(Probe, StopsWalkingAtThePrinter)
{
    taciturnPrinter();
    probeHost();
    EXPECT_THAT(journal.texts(), Not(Contains("getNext " + column + ".1")));
}

TEST_F(Probe, StopsWalkingWhenTheColumnEnds)
{
    agent().onGetNext(column, {row(column + ".1", diskType)});
    agent().onGetNext(column + ".1", {row(".1.3.6.1.2.1.25.3.2.1.3.1", printerType)});
    expectCountedButNoPrinter();
}

TEST_F(Probe, PrefixOfTheColumnIsTextual)
{
    taciturnPrinter();
    agent().onGetNext(column, {row(column + "0.1", printerType)});
    EXPECT_EQ(found().ip, host);
}

TEST_F(Probe, OidShorterThanTheColumnIsOutside)
{
    agent().onGetNext(column, {row(".1.3.6.1.2.1.25.3.2.1", printerType)});
    expectCountedButNoPrinter();
}

TEST_F(Probe, AgentThatMakesNoProgressIsNoPrinter)
{
    agent().onGetNext(column, {row(column + ".1", diskType)});
    agent().onGetNext(column + ".1", {row(column + ".1", diskType)});
    expectCountedButNoPrinter();
    EXPECT_THAT(journal.texts(), ElementsAre("engine", "create", "open " + host, "getNext " + column,
                                             "getNext " + column + ".1", "release session", "release factory"));
}

TEST_F(Probe, EndOfTheAgentsViewIsNoPrinter)
{
    agent().onGetNext(column, {row(column, Kep::Variant())});
    expectCountedButNoPrinter();
}

TEST_F(Probe, ValueCountsBeforeTheMissingProgress)
{
    taciturnPrinter();
    agent().onGetNext(column, {row(column, printerType)});
    EXPECT_EQ(found().ip, host);
}

TEST_F(Probe, TypeIsComparedExactly)
{
    agent().onGetNext(column, {row(column + ".1", printerType + ".1")});
    agent().onGetNext(column + ".1", {row(column + ".2", ".1.3.6.1.2.1.25.3.1")});
    expectCountedButNoPrinter();
}

TEST_F(Probe, TypeThatIsNoTextValueIsPassedOver)
{
    agent().onGetNext(column, {row(column + ".1", Kep::Variant::snmp(Kep::VariantType::snmpOpaque, printerType))});
    agent().onGetNext(column + ".1", {row(".1.9", "")});
    expectCountedButNoPrinter();
    EXPECT_THAT(journal.texts(), Contains("getNext " + column + ".1"));
}

TEST_F(Probe, AnyOfThePrinterTypesWillDo)
{
    identificationSettings().oidDeviceTypePrinter = {".1.1", ".1.2"};
    taciturnPrinter();
    agent().onGetNext(column, {row(column + ".1", ".1.2")});
    EXPECT_EQ(found().ip, host);
}

TEST_F(Probe, WalkThatFailsIsCountedAndNoPrinter)
{
    agent().onGetNext(column, {row(column + ".1", diskType)});
    agent().onGetNext(column + ".1", {noAnswer()});
    expectCountedButNoPrinter();
}

TEST_F(Probe, WalkIsNotRetried)
{
    agent().onGetNext(column, {noAnswer(), row(column + ".1", printerType)});
    expectCountedButNoPrinter();
    EXPECT_THAT(journal.texts(), Not(Contains(wait)));
}

TEST_F(Probe, PrinterThatAnswersNothingElseIsReportedWithEmptyFields)
{
    agent().isPrinter();
    const PrinterRecord printer = found();
    EXPECT_EQ(printer.ip, host);
    EXPECT_EQ(printer.name, "");
    EXPECT_EQ(printer.sn, "");
    EXPECT_EQ(printer.hostname, "");
    EXPECT_THAT(printer.mac, IsEmpty());
    EXPECT_EQ(step(), 1u);
}

TEST_F(Probe, MacAddressesOfAnotherLengthAddNothing)
{
    for (const std::string& bytes : {std::string("\x00\x1b\xa9\x0c\x33\x7e\x01\x02", 8), std::string("12345"),
                                     std::string("1234567"), std::string()}) {
        snmp.agent("10.0.0.2").isPrinter();
        snmp.agent("10.0.0.2").onGet(mac1, {answer(bytes)});
        probe("10.0.0.2");
        EXPECT_THAT(printers().back().mac, IsEmpty());
    }
}

TEST_F(Probe, MacOidsAreAllTried)
{
    agent().isPrinter();
    agent().onGet(mac1, {answer("8 bytes.")});
    agent().onGet(mac2, {answer(sixBytes)});
    EXPECT_THAT(found().mac, ElementsAre("00-1B-A9-0C-33-7E"));
}

TEST_F(Probe, MacOidsKeepTheirOrder)
{
    identificationSettings().macAddressOids = {".1.9", ".1.8", ".1.7"};
    agent().isPrinter();
    agent().onGet(".1.7", {answer("777777")});
    agent().onGet(".1.9", {answer("999999")});
    EXPECT_THAT(found().mac, ElementsAre("39-39-39-39-39-39", "37-37-37-37-37-37"));
}

TEST_F(Probe, MacOidsAreThoseOfTheRunsConstruction)
{
    identificationSettings().macAddressOids = {".1.9"};
    run();
    identificationSettings().macAddressOids = {".1.8"};
    taciturnPrinter();
    agent().onGet(".1.9", {answer(sixBytes)});
    EXPECT_THAT(found().mac, SizeIs(1));
    EXPECT_THAT(journal.texts(), Not(Contains("get .1.8")));
}

TEST_F(Probe, OtherOidsAreThoseInForceWhenItRuns)
{
    run();
    IdentificationSettings& settings = identificationSettings();
    settings.oidDeviceType = ".1.2";
    settings.oidDeviceTypePrinter = {".1.3"};
    settings.oidDeviceDescr = ".1.4";
    settings.serialNumberOids = {".1.5"};
    agent().onGetNext(".1.2", {row(".1.2.1", ".1.3")});
    agent().onGet(".1.4", {answer("name")});
    agent().onGet(".1.5", {answer("serial")});
    const PrinterRecord printer = found();
    EXPECT_EQ(printer.name, "name");
    EXPECT_EQ(printer.sn, "serial");
}

TEST_F(Probe, SecondSerialServesWhenTheFirstIsEmpty)
{
    answeringPrinter();
    agent().onGet(serial1, {answer(""), answer("late")});
    agent().onGet(serial2, {answer("S2")});
    EXPECT_EQ(found().sn, "S2");
    EXPECT_THAT(journal.texts(), Not(Contains("get " + serial3)));
    EXPECT_THAT(journal.texts(), Not(Contains(wait)));
}

TEST_F(Probe, NetbiosNameSparesDns)
{
    answeringPrinter();
    names.dns(host, "prn.example");
    EXPECT_EQ(found().hostname, "PRN");
    EXPECT_THAT(journal.texts(), Not(Contains("dns " + host)));
}

TEST_F(Probe, DnsNameServesWhenNetbiosHasNone)
{
    taciturnPrinter();
    names.dns(host, "prn.example");
    EXPECT_EQ(found().hostname, "prn.example");
}

TEST_F(Probe, DnsAnswerThatIsTheAddressIsNoName)
{
    taciturnPrinter();
    names.dns(host, host);
    EXPECT_EQ(found().hostname, "");
}

TEST_F(Probe, NetbiosAnswerThatIsTheAddressIsAName)
{
    taciturnPrinter();
    names.netbios(host, host);
    EXPECT_EQ(found().hostname, host);
}

TEST_F(Probe, FailureOfNetbiosLeadsToDns)
{
    taciturnPrinter();
    names.netbiosThrows(host, std::make_exception_ptr(std::runtime_error("no socket")));
    names.dns(host, "prn.example");
    EXPECT_EQ(found().hostname, "prn.example");
}

TEST_F(Probe, FailureOfDnsLeavesTheNameEmpty)
{
    taciturnPrinter();
    names.dnsThrows(host, std::make_exception_ptr(std::bad_alloc()));
    EXPECT_EQ(found().hostname, "");
    EXPECT_EQ(step(), 1u);
}

TEST_F(Probe, NameThrownThatIsNoStandardExceptionPasses)
{
    taciturnPrinter();
    names.netbiosThrows(host, std::make_exception_ptr(42));
    expectUncounted<int>();
}

TEST_F(Probe, AddressThatIsNoneHasItsNameLookedUpAsZero)
{
    snmp.agent("nonsense").isPrinter();
    probe("nonsense");
    EXPECT_THAT(journal.texts(), Contains("netbios 0.0.0.0"));
    EXPECT_EQ(printers().front().ip, "nonsense");
}

TEST_F(Probe, EngineThatIsNotToBeHadLeavesItUncounted)
{
    snmp.engineThrows(std::make_exception_ptr(Kep::Snmp::Exception("no engine")));
    expectUncounted<Kep::Snmp::Exception>();
}

TEST_F(Probe, SessionThatCannotBeMadeLeavesItUncounted)
{
    snmp.createThrows(std::make_exception_ptr(Kep::Snmp::Exception("no session")));
    expectUncounted<Kep::Snmp::Exception>();
}

TEST_F(Probe, ForeignFailureOfOpenLeavesItUncounted)
{
    agent().onOpen({throwing(std::runtime_error("foreign"))});
    expectUncounted<std::runtime_error>();
}

TEST_F(Probe, FailureOfOpenIsOnlyThatOfSnmp)
{
    agent().onOpen({throwing(Kep::GenericException("not SNMP's"))});
    expectUncounted<Kep::GenericException>();
}

TEST_F(Probe, ForeignFailureOfTheWalkLeavesItUncounted)
{
    agent().onGetNext(column, {throwing(Kep::GenericException("foreign"))});
    expectUncounted<Kep::GenericException>();
}

TEST_F(Probe, ForeignFailureOfAValueLeavesItUncounted)
{
    taciturnPrinter();
    agent().onGet(serial1, {throwing(std::bad_alloc())});
    expectUncounted<std::bad_alloc>();
}

TEST_F(Probe, ValueWithoutTextFormLeavesItUncounted)
{
    taciturnPrinter();
    agent().onGet(description, {answer(Kep::Variant())});
    expectUncounted<Kep::GenericException>();
}

TEST_F(Probe, UncountedProbeLetsGoOfItsSession)
{
    agent().onOpen({throwing(std::runtime_error("foreign"))});
    EXPECT_THROW(probeHost(), std::runtime_error);
    EXPECT_EQ(journal.texts().back(), "release factory");
}

TEST_F(Probe, OneStepEachWhateverItFinds)
{
    answeringPrinter();
    probe(host);
    probe("10.0.0.2");
    probe(host);
    EXPECT_EQ(step(), 3u);
    EXPECT_THAT(printers(), SizeIs(2));
}

TEST(MacText, IsUpperCaseHexadecimalWithHyphens)
{
    EXPECT_EQ(formatMac(sixBytes), "00-1B-A9-0C-33-7E");
    EXPECT_EQ(formatMac("\xab\xcd\xef\x01\x10\xff"), "AB-CD-EF-01-10-FF");
}

} // namespace
} // namespace PrinterDiscoveryPlugin
