#include "host/Platform.h"

#include "host/Errors.h"

#include <cstdlib>
#include <system_error>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Host {

namespace {

int descriptorOf(Stream stream)
{
    return stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

std::vector<std::string> programArguments(std::span<char*> arguments)
{
    return {arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end()};
}

void hideCommandLine(const std::vector<std::string>& /*secrets*/) {}

void prepareStreams() {}

void leaveProcess(ExitCode code)
{
    std::_Exit(static_cast<int>(code));
}

void requireFramework() {} // the system starts no program without its libraries

std::filesystem::path programFolder()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        throw Failure("the program's own folder is not to be found: " + error.message());
    return program.parent_path();
}

std::filesystem::path configurationFolder()
{
    // A relative folder would depend on where the program is started; the convention is to ignore it.
    if (const auto folder = environmentVariable("XDG_CONFIG_HOME"); folder && folder->front() == '/')
        return *folder;
    if (const auto home = environmentVariable("HOME"))
        return std::filesystem::path(*home) / ".config";
    return {};
}

std::vector<std::string> snmpConfFiles()
{
    std::vector<std::string> files = {"/etc/snmp/snmp.conf"};
    if (const auto home = environmentVariable("HOME"))
        files.insert(files.begin(), *home + "/.snmp/snmp.conf");
    return files;
}

const char* pluginFileName()
{
    return "libPrinterDiscovery.so";
}

std::optional<std::string> environmentVariable(const char* name)
{
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0')
        return std::nullopt;
    return value;
}

bool isTerminal(Stream stream)
{
    return isatty(descriptorOf(stream)) == 1;
}

bool showsColours(Stream stream)
{
    const auto terminal = environmentVariable("TERM");
    return isTerminal(stream) && terminal && *terminal != "dumb";
}

std::size_t terminalWidth(Stream stream)
{
    winsize size{};
    if (ioctl(descriptorOf(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80;
    return size.ws_col;
}

} // namespace Host
