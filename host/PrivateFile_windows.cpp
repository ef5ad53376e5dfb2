#include "host/PrivateFile.h"

#include "host/Errors.h"
#include "host/FreeMemory_windows.h"
#include "host/WindowsText.h"

#include <memory>
#include <optional>

#include <windows.h>

#include <aclapi.h>

namespace Host {

namespace {

constexpr DWORD Knowing = FILE_READ_DATA | FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC | WRITE_OWNER | GENERIC_READ |
                          GENERIC_WRITE | GENERIC_ALL;

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using File = std::unique_ptr<void, CloseFile>;

[[noreturn]] void refuse(const std::string& path, const std::string& option, DWORD error)
{
    throw UsageError(option + ": cannot read " + path + ": " + systemMessage(error));
}

bool isWellKnown(PSID who, WELL_KNOWN_SID_TYPE type)
{
    return IsWellKnownSid(who, type) != 0;
}

/// The owner, and those who run the machine and could read it anyway.
bool isTrusted(PSID who, PSID owner)
{
    return EqualSid(who, owner) != 0 || isWellKnown(who, WinLocalSystemSid) ||
           isWellKnown(who, WinBuiltinAdministratorsSid) || isWellKnown(who, WinCreatorOwnerRightsSid);
}

bool isShared(const ACL& rights, PSID owner)
{
    for (DWORD index = 0; index < rights.AceCount; ++index) {
        void* entry = nullptr;
        if (GetAce(const_cast<ACL*>(&rights), index, &entry) == 0)
            return true;
        auto& allowed = *static_cast<ACCESS_ALLOWED_ACE*>(entry);
        const bool applies = allowed.Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
                             (allowed.Header.AceFlags & INHERIT_ONLY_ACE) == 0 && (allowed.Mask & Knowing) != 0;
        if (applies && !isTrusted(&allowed.SidStart, owner))
            return true;
    }
    return false;
}

/// Without a list of rights a file is everybody's.
std::optional<bool> isShared(HANDLE file)
{
    PSID owner = nullptr;
    PACL rights = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                        &owner, nullptr, &rights, nullptr, &descriptor);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return std::nullopt;
    }
    const std::unique_ptr<void, FreeMemory> memory(descriptor);
    return rights == nullptr || isShared(*rights, owner);
}

HANDLE open(const std::string& path, DWORD access)
{
    return CreateFileW(wideText(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

std::string readPrivateFile(const std::string& path, const std::string& option, std::size_t most)
{
    const HANDLE handle = open(path, GENERIC_READ | READ_CONTROL);
    if (handle == INVALID_HANDLE_VALUE)
        refuse(path, option, GetLastError());
    const File file(handle);
    const std::optional<bool> shared = isShared(handle);
    if (!shared)
        refuse(path, option, GetLastError());
    if (*shared)
        throw UsageError(option + ": " + sharedFileText(path));
    std::string content(most, '\0');
    std::size_t length = 0;
    for (DWORD count = 1; count > 0 && length < most; length += count)
        if (ReadFile(handle, content.data() + length, static_cast<DWORD>(most - length), &count, nullptr) == 0)
            refuse(path, option, GetLastError());
    content.resize(length);
    return content;
}

bool isSharedFile(const std::string& path)
{
    const HANDLE handle = open(path, READ_CONTROL);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const File file(handle);
    return isShared(handle).value_or(false);
}

std::string sharedFileText(const std::string& path)
{
    return "others than the owner of " + path + " have access to it; icacls \"" + path +
           "\" /inheritance:r /grant:r \"%USERNAME%:F\" mends that";
}

} // namespace Host
