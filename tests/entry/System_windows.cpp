#include "entry/System.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <type_traits>

namespace System {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

class Handle {
public:
    explicit Handle(HANDLE value = nullptr) : value_(value) {}
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE get() const { return value_; }
    HANDLE* place() { return &value_; }
    void close()
    {
        if (value_ != nullptr)
            CloseHandle(value_);
        value_ = nullptr;
    }

private:
    HANDLE value_;
};

// An argument as programs take the command line apart: quoted, and backslashes before a quote doubled.
std::string quoted(const std::string& argument)
{
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"')
            text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\') + '"';
}

std::wstring commandLine(const std::vector<std::string>& command)
{
    std::string text;
    for (const std::string& argument : command)
        text += (text.empty() ? "" : " ") + quoted(argument);
    return std::filesystem::path(text).wstring();
}

// Starts the program with its standard output at `output`, if there is one.
void start(const std::vector<std::string>& command, HANDLE output, Handle& process)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    if (output != nullptr) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = output;
        startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    }
    PROCESS_INFORMATION started{};
    std::wstring line = commandLine(command);
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started) == 0)
        fail(command.at(0).c_str());
    CloseHandle(started.hThread);
    *process.place() = started.hProcess;
}

std::optional<int> exitStatus(HANDLE process, int seconds)
{
    DWORD status = 0;
    if (WaitForSingleObject(process, static_cast<DWORD>(seconds) * 1000) != WAIT_OBJECT_0) {
        TerminateProcess(process, 1);
        return std::nullopt;
    }
    constexpr DWORD firstOfExceptions = 0xC0000000;
    if (GetExitCodeProcess(process, &status) == 0 || status >= firstOfExceptions)
        return std::nullopt;
    return static_cast<int>(status);
}

std::string readAll(HANDLE pipe)
{
    std::string text;
    std::array<char, 4096> buffer{};
    DWORD count = 0;
    while (ReadFile(pipe, buffer.data(), buffer.size(), &count, nullptr) != 0 && count > 0)
        text.append(buffer.data(), count);
    return text;
}

void startSockets()
{
    WSADATA description{};
    static const int error = WSAStartup(MAKEWORD(2, 2), &description);
    if (error != 0)
        fail("WSAStartup");
}

// A socket that hears all addresses, on a free port, which `port` becomes.
SOCKET bindSocket(std::uint16_t& port)
{
    startSockets();
    const SOCKET handle = socket(AF_INET, SOCK_DGRAM, 0);
    if (handle == INVALID_SOCKET)
        fail("socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    int length = sizeof address;
    if (bind(handle, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        getsockname(handle, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        fail("bind");
    port = ntohs(address.sin_port);
    return handle;
}

} // namespace

std::optional<int> run(const std::vector<std::string>& command, int seconds, std::string* output)
{
    Handle process;
    if (output == nullptr) {
        start(command, nullptr, process);
        return exitStatus(process.get(), seconds);
    }
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    Handle reading;
    Handle writing;
    if (CreatePipe(reading.place(), writing.place(), &inherited, 0) == 0)
        fail("CreatePipe");
    start(command, writing.get(), process);
    writing.close();
    *output = readAll(reading.get());
    return exitStatus(process.get(), seconds);
}

TemporaryFolder::TemporaryFolder()
{
    static int count = 0;
    const auto name = "pd-entry-" + std::to_string(GetCurrentProcessId()) + '-' + std::to_string(++count);
    path_ = (std::filesystem::temp_directory_path() / name).generic_string();
    std::filesystem::create_directory(path_);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
    std::filesystem::remove(path_, ignored); // the former leaves it behind
}

// One socket stands for all: where Wine runs the tests, a socket cannot be bound to one loopback address.
SilentHosts::SilentHosts(int /*hosts*/)
{
    sockets_.push_back(static_cast<std::intptr_t>(bindSocket(port_)));
}

SilentHosts::~SilentHosts()
{
    for (const std::intptr_t handle : sockets_)
        closesocket(static_cast<SOCKET>(handle));
}

std::string SilentHosts::receive() const
{
    const auto handle = static_cast<SOCKET>(sockets_.at(0));
    const DWORD patience = 10'000;
    setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&patience), sizeof patience);
    std::array<char, 2048> buffer{};
    const int count = recv(handle, buffer.data(), buffer.size(), 0);
    return count < 0 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(count));
}

std::uint16_t closedPort()
{
    return SilentHosts(1).port();
}

std::vector<std::string> exportedNames(const std::string& library)
{
    const HMODULE handle = LoadLibraryExW(std::filesystem::path(library).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    if (handle == nullptr)
        fail("LoadLibraryEx");
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> owner(handle, FreeLibrary);
    const auto* const base = reinterpret_cast<const std::byte*>(handle);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* const exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place.VirtualAddress);
    const auto* const texts = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
    std::vector<std::string> names;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        names.emplace_back(reinterpret_cast<const char*>(base + texts[i]));
    if (exports->NumberOfFunctions != exports->NumberOfNames)
        names.emplace_back("without a name");
    return names;
}

bool isGone(const std::string& library)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (GetModuleHandleW(std::filesystem::path(library).filename().c_str()) != nullptr) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        Sleep(20);
    }
    return true;
}

} // namespace System
