#include "tests/network/harness/Snmpsim.h"

#include "tests/network/harness/SnmpTools.h"

#include <stdexcept>

namespace fs = std::filesystem;

namespace NetworkTests {
namespace {

constexpr char community[] = "public"; ///< the simulator names communities and contexts after the files

/// Copies a recording to where the simulator finds it. It trusts an index only if its file is younger in whole
/// seconds, hence the earlier time.
void placeRecording(const fs::path& recording, const fs::path& folder, const std::string& context = community)
{
    const fs::path copy = folder / (context + ".snmprec");
    fs::copy_file(recording, copy);
    fs::permissions(copy, fs::perms(0644));
    fs::last_write_time(copy, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

/// An engine ID of its own: the octets after the enterprise number tell the device's place in the list.
std::string engineId(std::size_t number)
{
    constexpr std::size_t first = 0x1000;
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "800000000501020304";
    for (const int shift : {12, 8, 4, 0}) {
        text += digits[((first + number) >> shift) % 16];
    }
    return text;
}

/// The simulator's name for a privacy protocol. Its own "AES192" and "AES256" have the 3DES-style key extension.
std::string simulatorPrivacy(const std::string& protocol)
{
    static const std::map<std::string, std::string> names = {
        {"AES-192", "AES192BLMT"}, {"AES-256", "AES256BLMT"}, {"AES-192-C", "AES192"}, {"AES-256-C", "AES256"}};
    const auto known = names.find(protocol);
    return known == names.end() ? protocol : known->second;
}

std::string userOptions(const SnmpProfile& profile)
{
    std::string text = "--v3-user=" + profile.user + "\n";
    if (!profile.authProtocol.empty()) {
        text += "--v3-auth-key=" + profile.authPassword + "\n--v3-auth-proto=" + profile.authProtocol + "\n";
    }
    if (!profile.privacyProtocol.empty()) {
        text += "--v3-priv-key=" + profile.privacyPassword +
                "\n--v3-priv-proto=" + simulatorPrivacy(profile.privacyProtocol) + "\n";
    }
    return text;
}

std::string usersOptions(const std::vector<SnmpProfile>& profiles)
{
    std::string text;
    for (const SnmpProfile& profile : profiles) {
        text += profile.version == "3" ? userOptions(profile) : "";
    }
    return text;
}

} // namespace

Snmpsim::Snmpsim(const Files& devices, std::uint16_t port, const std::vector<SnmpProfile>& profiles,
                 const Files& contexts)
    : process_(std::make_unique<ChildProcess>(prepare(devices, port, profiles, contexts)))
{
    waitUntilAnswers(*process_, {devices.rbegin()->first, port}, v2c(community), nullptr);
}

SnmpProfile Snmpsim::reaching(SnmpProfile profile)
{
    if (profile.version == "3") {
        profile.context = community;
    }
    return profile;
}

Command Snmpsim::prepare(const Files& devices, std::uint16_t port, const std::vector<SnmpProfile>& profiles,
                         const Files& contexts)
{
    const fs::path cache = folder_.makeFolder("cache");
    fs::permissions(cache, fs::perms(0777));
    std::string options;
    std::size_t number = 0;
    for (const auto& [address, recording] : devices) {
        const fs::path folder = folder_.makeFolder(std::to_string(number));
        placeRecording(recording, folder);
        for (const auto& [context, held] : contexts) {
            placeRecording(held, folder, context);
        }
        options += "--v3-engine-id=" + engineId(number) + "\n--data-dir=" + folder.string() + "\n" +
                   usersOptions(profiles) + "--agent-udpv4-endpoint=" + Endpoint{address, port}.text() + "\n";
        ++number;
    }
    const std::string file = folder_.write("options", options);
    return {
        .words = {"snmpsimd", "--cache-dir=" + cache.string(), "--args-from-file=" + file, "--logging-method=stderr"},
        .asNobody = true};
}

} // namespace NetworkTests
