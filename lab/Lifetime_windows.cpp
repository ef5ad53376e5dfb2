#include "lab/Lifetime.h"

#include <winsock2.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <thread>

namespace Lab {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

/// Set when the program is to end. Lives as long as the process, whose threads set it.
HANDLE ending()
{
    static const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

BOOL WINAPI onControl(DWORD event)
{
    constexpr DWORD graceOfSystem = 5000;
    ::SetEvent(ending());
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        ::Sleep(graceOfSystem); // a console that closes ends the process as soon as this returns
    return TRUE;
}

/// Reads what there is until the end of the input.
void drainInput()
{
    std::array<char, 4096> discarded{};
    DWORD count = 1;
    while (::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), discarded.data(), discarded.size(), &count, nullptr) != 0 &&
           count > 0)
        ;
    ::SetEvent(ending());
}

DWORD milliseconds(std::optional<std::chrono::milliseconds> patience)
{
    constexpr std::chrono::milliseconds::rep longest = 0x7FFFFFFF;
    return patience ? static_cast<DWORD>(std::clamp<std::chrono::milliseconds::rep>(patience->count(), 0, longest))
                    : INFINITE;
}

} // namespace

class Lifetime::System {
public:
    explicit System(bool untilStandardInputCloses)
    {
        if (ending() == nullptr || ::SetConsoleCtrlHandler(onControl, TRUE) == 0)
            fail("cannot watch for interruptions");
        if (untilStandardInputCloses)
            std::thread(drainInput).detach();
    }

    ~System() { ::SetConsoleCtrlHandler(onControl, FALSE); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    Lifetime::Event wait(HANDLE arrival, DWORD timeout) const
    {
        const std::array<HANDLE, 2> watched{ending(), arrival};
        switch (::WaitForMultipleObjects(watched.size(), watched.data(), FALSE, timeout)) {
        case WAIT_OBJECT_0:
            return Lifetime::Event::End;
        case WAIT_OBJECT_0 + 1:
            return Lifetime::Event::Requests;
        case WAIT_TIMEOUT:
            return Lifetime::Event::Silence;
        default:
            fail("cannot wait");
        }
    }
};

Lifetime::Lifetime(bool untilStandardInputCloses) : _system(std::make_unique<System>(untilStandardInputCloses)) {}

Lifetime::~Lifetime() = default;

Lifetime::Event Lifetime::wait(const LoopbackSocket& socket, std::optional<std::chrono::milliseconds> patience)
{
    return _system->wait(reinterpret_cast<HANDLE>(socket.handle()), milliseconds(patience));
}

} // namespace Lab
