#include "host/Interruption.h"

#include "host/Errors.h"
#include "host/ExitCode.h"
#include "host/WindowsText.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>
#include <memory>
#include <thread>

#include <windows.h>

namespace Host {

namespace {

constexpr std::size_t ReadSize = 65536;
constexpr DWORD GraceOfSystem = 5000;

// What the handler touches, on a thread of the system's: a flag, and an event that wakes waits.
std::atomic<bool> g_interrupted{false};
HANDLE g_wake = nullptr;

BOOL WINAPI onControl(DWORD event)
{
    if (g_interrupted.exchange(true))
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ExitCode::Interrupted));
    SetEvent(g_wake);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep(GraceOfSystem); // a console that closes ends the process as soon as this returns
    return TRUE;
}

[[noreturn]] void refuse()
{
    throw Failure("interruptions cannot be handled: " + systemMessage(GetLastError()));
}

DWORD milliseconds(std::chrono::milliseconds time)
{
    constexpr std::chrono::milliseconds::rep longest = 0x7FFFFFFF;
    return static_cast<DWORD>(std::clamp<std::chrono::milliseconds::rep>(time.count(), 0, longest));
}

/// Reads standard input on a thread of its own, one piece at a time when it is asked to: a read cannot be waited for
/// together with something else.
class InputReader {
public:
    InputReader()
        : wanted_(CreateEventW(nullptr, FALSE, FALSE, nullptr)), ready_(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    {
        if (wanted_ == nullptr || ready_ == nullptr)
            refuse();
        std::thread([this] { read(); }).detach();
    }

    void ask()
    {
        if (!asked_)
            SetEvent(wanted_);
        asked_ = true;
    }

    HANDLE ready() const { return ready_; }

    /// What was read; empty at the end of the input. Once `ready` has been signalled.
    std::string take()
    {
        asked_ = false;
        return std::move(bytes_);
    }

private:
    void read()
    {
        while (WaitForSingleObject(wanted_, INFINITE) == WAIT_OBJECT_0) {
            bytes_.resize(ReadSize);
            DWORD count = 0;
            const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
            while (ReadFile(input, bytes_.data(), ReadSize, &count, nullptr) == 0 &&
                   GetLastError() == ERROR_OPERATION_ABORTED) // by Ctrl-C
                count = 0;
            bytes_.resize(count);
            SetEvent(ready_);
        }
    }

    const HANDLE wanted_;
    const HANDLE ready_;
    bool asked_ = false; // used by the asking thread alone
    std::string bytes_;  // the reading thread's from `wanted_` to `ready_`
};

/// Never destroyed: its thread may be inside a read when the process ends.
InputReader& inputReader()
{
    static InputReader& reader = *std::make_unique<InputReader>().release();
    return reader;
}

} // namespace

Interruption::Interruption()
{
    g_interrupted = false;
    if (g_wake == nullptr)
        g_wake = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (g_wake == nullptr || ResetEvent(g_wake) == 0 || SetConsoleCtrlHandler(onControl, TRUE) == 0)
        refuse();
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(onControl, FALSE);
}

bool Interruption::interrupted()
{
    return g_interrupted;
}

void Interruption::waitForWish(std::chrono::milliseconds time)
{
    WaitForSingleObject(g_wake, milliseconds(time));
}

Interruption::Input Interruption::readInput(std::string& bytes)
{
    if (g_interrupted)
        return Input::Interrupted;
    InputReader& reader = inputReader();
    reader.ask();
    const std::array<HANDLE, 2> sources{g_wake, reader.ready()};
    const DWORD source = WaitForMultipleObjects(sources.size(), sources.data(), FALSE, INFINITE);
    if (source != WAIT_OBJECT_0 + 1)
        return Input::Interrupted;
    bytes = reader.take();
    return bytes.empty() ? Input::End : Input::Data;
}

} // namespace Host
