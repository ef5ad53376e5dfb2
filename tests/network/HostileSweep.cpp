/// Sweeps of networks with hostile devices: they end, in time, and the other devices are found as ever.
#include "tests/network/HostileNames.h"
#include "tests/network/harness/Lab.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/SnmpProfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>

using namespace NetworkTests;
using std::chrono::seconds;

namespace {

/// What a sweep makes of a hostile device.
enum class Found {
    nothing,   ///< no printer
    asHonest,  ///< all that an honest device would tell
    bare,      ///< a printer of which nothing is known
    largeTexts ///< a printer whose texts have 60,000 bytes
};

using Options = std::vector<std::string>;

/// A hostile profile and what is expected of a sweep that meets it. The bounds are what the time-outs, the pauses
/// between a probe's attempts and the session's budget add up to, and 10 seconds for a slow machine.
struct Hostile {
    std::string profile;
    Found found;
    Options patience = {"-t", "0.5", "-r", "1"};
    seconds bound = seconds(11); ///< one request without an answer
    Found foundByVersion3 = found;
};

const std::vector<Hostile> hostileDevices = {
    {"truncated-messages", Found::nothing},
    {"overlong-messages", Found::asHonest},
    {"lying-lengths", Found::nothing},
    {"nine-byte-integers", Found::nothing},
    {"oids-of-129-arcs", Found::nothing},
    {"unknown-types", Found::nothing},
    {"wrong-request-id", Found::nothing},
    {"wrong-community", Found::nothing},
    {"values-of-60-kb", Found::largeTexts},
    {"error-status-5", Found::nothing},
    {"error-status-99", Found::nothing},
    {"endless-table-fast", Found::nothing, {"-t", "0.5", "-r", "1"}, seconds(30)},
    {"repeating-table", Found::nothing},
    {"backward-table", Found::nothing},
    {"alternating-table", Found::nothing},
    {"replies-from-other-address", Found::nothing},
    {"replies-from-other-port", Found::nothing},
    {"duplicated-replies", Found::asHonest},
    // Each answer comes 1.5 s late, in the second of four tries; in version 3 the second try is another message.
    {"late-replies", Found::asHonest, {"-t", "1", "-r", "3"}, seconds(40), Found::nothing},
    {"reordered-replies", Found::asHonest, {"-t", "0.5", "-r", "2"}, seconds(20)},
    {"replies-to-every-third", Found::asHonest, {"-t", "0.5", "-r", "2"}, seconds(20)},
    {"replies-after-time-out", Found::nothing},
    // Six objects, three attempts each of two tries and a pause of a second.
    {"silent-after-walk", Found::bare, {"-t", "0.25", "-r", "1"}, seconds(37)},
    {"v3-report-loop", Found::asHonest, {"-t", "0.5", "-r", "1"}, seconds(11), Found::nothing},
    {"v3-engine-loop", Found::asHonest, {"-t", "0.5", "-r", "1"}, seconds(11), Found::nothing},
    {"v3-clock-at-limit", Found::asHonest},
    {"v3-clock-below-zero", Found::asHonest, {"-t", "0.5", "-r", "1"}, seconds(11), Found::nothing},
    {"v3-empty-engine-id", Found::asHonest, {"-t", "0.5", "-r", "1"}, seconds(11), Found::nothing},
};

/// A walk of this one takes the whole time that a session has for walks, whatever the time-out is.
constexpr char slowTable[] = "endless-table-slow";
constexpr seconds slowTableBound(60 + 2 + 10);

void PrintTo(const Hostile& hostile, std::ostream* out)
{
    std::string name = hostile.profile;
    std::erase(name, '-');
    *out << name;
}

SnmpProfile v3Visitor()
{
    SnmpProfile profile = v3("", "");
    profile.user = "public";
    return profile;
}

const std::vector<SnmpProfile> versions = {v1(), v2c(), v3Visitor()};

/// A lab at work, swept with one version.
class LabAtWork {
public:
    LabAtWork(const LabPlan& plan, const SnmpProfile& profile) : profile_(profile), lab_(plan, port_) {}

    struct Result {
        Document document;
        std::chrono::steady_clock::duration time;
    };

    Result sweep(const std::string& target, const Options& patience) const
    {
        Sweep sweep{.arguments = {target, "--port", std::to_string(port_)}};
        for (const Options& more : {profile_.options(), patience}) {
            sweep.arguments.insert(sweep.arguments.end(), more.begin(), more.end());
        }
        const auto start = std::chrono::steady_clock::now();
        Document document = discover(sweep);
        return {std::move(document), std::chrono::steady_clock::now() - start};
    }

    const SnmpProfile& profile() const { return profile_; }

private:
    const SnmpProfile& profile_;
    std::uint16_t port_ = freeUdpPort({"0.0.0.0"});
    Lab lab_;
};

/// Sweeps the plan's network in every version at once and hands each result to `check`.
template <class Check>
void sweepInEveryVersion(const LabPlan& plan, const std::string& target, const Options& patience, const Check& check)
{
    std::vector<std::unique_ptr<LabAtWork>> labs;
    std::vector<std::future<LabAtWork::Result>> results;
    for (const SnmpProfile& profile : versions) {
        labs.push_back(std::make_unique<LabAtWork>(plan, profile));
    }
    for (const auto& lab : labs) {
        results.push_back(std::async(std::launch::async, [&] { return lab->sweep(target, patience); }));
    }
    for (std::size_t i = 0; i < labs.size(); ++i) {
        SCOPED_TRACE(labs[i]->profile().name);
        check(labs[i]->profile(), results[i].get());
    }
}

Document asFound(const Document& honest, Found found)
{
    constexpr std::size_t largeText = 60000;
    const std::string text = found == Found::largeTexts ? std::string(largeText, 'x') : std::string();
    return found == Found::asHonest ? honest : printerRecord(honest.at("ip"), text, Document::array(), text);
}

class HostileSweep : public testing::TestWithParam<Hostile> {};

INSTANTIATE_TEST_SUITE_P(Devices, HostileSweep, testing::ValuesIn(hostileDevices), testing::PrintToStringParamName());

TEST_P(HostileSweep, EndsInTimeAndFindsTheOthers)
{
    const Hostile& hostile = GetParam();
    const LabPlan plan = {{ownAddress(1), "laser-mono"},
                          {ownAddress(2), hostile.profile},
                          {ownAddress(3), "mfp-office"},
                          {ownAddress(4), "scanner"},
                          {ownAddress(5), "printer-second-row"}};
    const std::vector<LabDevice> devices = Lab::list(plan);
    const auto expected = [&](const SnmpProfile& profile) {
        std::vector<Document> printers;
        const Found found = profile.version == "3" ? hostile.foundByVersion3 : hostile.found;
        for (const LabDevice& device : devices) {
            if (device.hostile && found != Found::nothing) {
                printers.push_back(asFound(device.printer, found));
            } else if (!device.hostile && !device.printer.is_null()) {
                printers.push_back(device.printer);
            }
        }
        return finishedSweep(5, printers);
    };
    sweepInEveryVersion(plan, ownAddress(1) + "-" + ownAddress(5), hostile.patience,
                        [&](const SnmpProfile& profile, const LabAtWork::Result& result) {
                            EXPECT_EQ(result.document, expected(profile));
                            EXPECT_LT(result.time, hostile.bound);
                        });
}

/// The honest printers among those that a sweep has found.
std::vector<Document> honestOnes(const Document& printers, const std::vector<LabDevice>& devices)
{
    std::vector<Document> honest;
    for (const Document& printer : printers) {
        const auto device = std::ranges::find(devices, printer.at("ip").get<std::string>(),
                                              [](const LabDevice& d) { return d.address; });
        if (device != devices.end() && !device->hostile) {
            honest.push_back(printer);
        }
    }
    return honest;
}

TEST(HostileNetwork, OfEveryKindIsSweptAsLongAsItsSlowestTableTakes)
{
    LabPlan plan;
    int last = 0;
    for (const std::string& name : hostileNames()) {
        plan[ownAddress(++last)] = name;
        ++last;
        plan[ownAddress(last)] = last % 4 == 0 ? "laser-colour" : "label-printer";
    }
    const std::vector<LabDevice> devices = Lab::list(plan);
    std::vector<Document> expected;
    std::string slowAddress;
    for (const LabDevice& device : devices) {
        if (!device.hostile) {
            expected.push_back(device.printer);
        } else if (device.profile == slowTable) {
            slowAddress = device.address;
        }
    }
    sweepInEveryVersion(plan, ownAddress(1) + "-" + ownAddress(last), {"-t", "1", "-r", "1"},
                        [&](const SnmpProfile&, const LabAtWork::Result& result) {
                            const Document& printers = result.document.at("printers");
                            EXPECT_EQ(result.document.at("step"), last);
                            EXPECT_EQ(honestOnes(printers, devices), expected);
                            EXPECT_TRUE(std::ranges::none_of(
                                printers, [&](const Document& printer) { return printer.at("ip") == slowAddress; }));
                            EXPECT_GT(result.time, seconds(50)) << "the slow table has not been walked to the end";
                            EXPECT_LT(result.time, slowTableBound);
                        });
}

TEST(HostileNetwork, OfTheseTestsHasEveryKind)
{
    std::vector<std::string> met = {slowTable};
    for (const Hostile& hostile : hostileDevices) {
        met.push_back(hostile.profile);
    }
    EXPECT_THAT(met, testing::UnorderedElementsAreArray(hostileNames()));
}

} // namespace
