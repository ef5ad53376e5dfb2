#include "Snmpd.h"

#include "Sessions.h"

#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>

namespace {

using namespace std::chrono_literals;

constexpr const char* program = "/usr/sbin/snmpd";

std::filesystem::path newFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kep-snmpd-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot make a folder");
    return pattern;
}

std::string contentOf(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

} // namespace

Snmpd::Snmpd(const std::string& configuration) : folder_(newFolder())
{
    std::filesystem::create_directory(folder_ / "persistent");
    std::ofstream(folder_ / "snmpd.conf") << configuration;
    // Another program may take the port between its choice and the start.
    for (int attempt = 0; attempt < 5; ++attempt) {
        port_ = closedPort();
        if (start() && answers())
            return;
        stop();
    }
    const std::string problem = "snmpd does not start: " + log();
    std::filesystem::remove_all(folder_);
    throw std::runtime_error(problem);
}

Snmpd::~Snmpd()
{
    stop();
    std::filesystem::remove_all(folder_);
}

void Snmpd::restart()
{
    stop();
    startAgain();
}

void Snmpd::replace()
{
    stop();
    std::filesystem::remove_all(folder_ / "persistent");
    std::filesystem::create_directory(folder_ / "persistent");
    startAgain();
}

void Snmpd::startAgain()
{
    if (!start() || !answers())
        throw std::runtime_error("snmpd does not start again: " + log());
}

bool Snmpd::start()
{
    const std::string address = "udp:127.0.0.1:" + std::to_string(port_);
    const std::string logFile = folder_ / "log";
    const std::string persistent = "SNMP_PERSISTENT_DIR=" + (folder_ / "persistent").string();
    // The persistent folder too, or else the agent would be another engine after each start.
    const std::string configPath = "SNMPCONFPATH=" + folder_.string() + ":" + (folder_ / "persistent").string();
    const std::array arguments{program, "-f", "-Lf",           logFile.c_str(),
                               "-m",    "",   address.c_str(), static_cast<const char*>(nullptr)};
    const std::array environment{persistent.c_str(), configPath.c_str(), static_cast<const char*>(nullptr)};
    return ::posix_spawn(&process_, program, nullptr, nullptr, const_cast<char* const*>(arguments.data()),
                         const_cast<char* const*>(environment.data())) == 0;
}

bool Snmpd::answers()
{
    const ChosenSettings settings(200ms, 0);
    const auto giveUp = std::chrono::steady_clock::now() + 20s;
    const auto session = openSession(communityProfile(1, port_));
    Kep::Variant value;
    while (std::chrono::steady_clock::now() < giveUp && ::waitpid(process_, nullptr, WNOHANG) == 0) {
        if (problemOf([&] { session->get(".1.3.6.1.2.1.1.5.0", value); }).empty())
            return true;
        std::this_thread::sleep_for(20ms);
    }
    return false;
}

void Snmpd::stop()
{
    if (process_ > 0 && ::kill(process_, SIGTERM) == 0)
        ::waitpid(process_, nullptr, 0);
    process_ = -1;
}

std::string Snmpd::log() const
{
    return contentOf(folder_ / "log");
}
