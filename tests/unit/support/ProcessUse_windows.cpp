#include "tests/unit/support/ProcessUse.h"

#include <array>

#include <windows.h>

#include <tlhelp32.h>

namespace TestSupport {
namespace {

std::size_t busyBytes(HANDLE heap)
{
    std::size_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry) != 0)
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            bytes += entry.cbData;
    HeapUnlock(heap);
    return bytes;
}

} // namespace

std::size_t allocatedBytes()
{
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(heaps.size(), heaps.data());
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count && i < heaps.size(); ++i)
        bytes += busyBytes(heaps[i]);
    return bytes;
}

std::size_t threadCount()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::size_t count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more != 0; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1U : 0U;
    CloseHandle(snapshot);
    return count;
}

std::size_t openDescriptors()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

bool isSanitized()
{
    return false;
}

} // namespace TestSupport
