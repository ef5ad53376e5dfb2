#include "host/Platform.h"

#include "host/Errors.h"
#include "host/FreeMemory_windows.h"
#include "host/Paths.h"
#include "host/WindowsText.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace Host {

namespace {

constexpr DWORD LongestPath = 32768;

UINT g_codePageBefore = 0;

HANDLE handleOf(Stream stream)
{
    return GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

void restoreConsole()
{
    if (g_codePageBefore != 0)
        SetConsoleOutputCP(g_codePageBefore);
}

/// Whether a secret that stands at `begin` in the command line ends where an argument does.
bool endsArgument(const wchar_t* end)
{
    return *end == L'\0' || *end == L' ' || *end == L'\t' || *end == L'"';
}

void hide(wchar_t* commandLine, const std::wstring& secret)
{
    for (wchar_t* found = std::wcsstr(commandLine, secret.c_str()); found != nullptr;
         found = std::wcsstr(found + 1, secret.c_str()))
        if (endsArgument(found + secret.size()))
            std::fill_n(found, secret.size(), L'*');
}

} // namespace

std::vector<std::string> programArguments(std::span<char*> /*arguments*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, FreeMemory> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!wide)
        throw Failure("the command line cannot be read: " + systemMessage(GetLastError()));
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i)
        texts.push_back(utf8Text(wide.get()[i]));
    return texts;
}

void hideCommandLine(const std::vector<std::string>& secrets)
{
    for (const std::string& secret : secrets)
        if (!secret.empty())
            hide(GetCommandLineW(), wideText(secret));
}

void prepareStreams()
{
    for (std::FILE* stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    if (!isTerminal(Stream::Output) && !isTerminal(Stream::Error))
        return;
    g_codePageBefore = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit(restoreConsole);
}

void leaveProcess(ExitCode code)
{
    restoreConsole();
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::abort(); // not reached
}

void requireFramework()
{
    const std::filesystem::path library = programFolder() / "Kep.dll";
    if (LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH) == nullptr &&
        LoadLibraryW(L"Kep.dll") == nullptr)
        throw Failure(library.string() +
                      " cannot be loaded, and nothing works without it: " + systemMessage(GetLastError()));
}

std::filesystem::path programFolder()
{
    std::wstring program(LongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, program.data(), LongestPath);
    if (length == 0)
        throw Failure("the program's own folder is not to be found: " + systemMessage(GetLastError()));
    program.resize(length);
    return std::filesystem::path(program).parent_path();
}

std::filesystem::path configurationFolder()
{
    const auto folder = environmentVariable("APPDATA");
    return pathOf(folder.value_or(""));
}

std::vector<std::string> snmpConfFiles()
{
    std::vector<std::string> files = {"C:\\usr\\etc\\snmp\\snmp.conf"};
    if (const auto home = environmentVariable("USERPROFILE"))
        files.insert(files.begin(), *home + "\\.snmp\\snmp.conf");
    return files;
}

const char* pluginFileName()
{
    return "PrinterDiscovery.dll";
}

std::optional<std::string> environmentVariable(const char* name)
{
    const std::wstring wideName = wideText(name);
    std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
    if (value.empty())
        return std::nullopt;
    return utf8Text(value);
}

bool isTerminal(Stream stream)
{
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

bool showsColours(Stream stream)
{
    // Consoles that do not know the sequences refuse the mode, and get none.
    DWORD mode = 0;
    const HANDLE handle = handleOf(stream);
    return GetConsoleMode(handle, &mode) != 0 &&
           SetConsoleMode(handle, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::size_t terminalWidth(Stream stream)
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(handleOf(stream), &info) == 0)
        return 80;
    return static_cast<std::size_t>(std::max(info.srWindow.Right - info.srWindow.Left + 1, 1));
}

} // namespace Host
