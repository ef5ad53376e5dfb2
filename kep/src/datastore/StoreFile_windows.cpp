#include "datastore/StoreFile.h"

#include "base/WideText.h"

#include <array>
#include <cstddef>
#include <memory>
#include <system_error>

#include <windows.h>

#include <sddl.h>

namespace Kep {
namespace {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

struct FreeLocal {
    void operator()(void* block) const { LocalFree(block); }
};

using Local = std::unique_ptr<void, FreeLocal>;

[[noreturn]] void throwSystemFailure(const std::string& path, DWORD error)
{
    throwStoreFailure(path, std::system_category().message(static_cast<int>(error)));
}

bool isAbsent(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void requireReadable(const std::string& path, const std::wstring& name)
{
    const HANDLE handle =
        CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        throwSystemFailure(path, GetLastError());
    }
    const std::unique_ptr<void, CloseFile> file(handle);
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        throwStoreFailure(path, "it is no regular file");
    }
}

// The user that this process runs for, as the system writes it.
std::wstring userName(const std::string& path)
{
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0) {
        throwSystemFailure(path, GetLastError());
    }
    const std::unique_ptr<void, CloseFile> owner(token);
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    DWORD size = 0;
    LPWSTR text = nullptr;
    if (GetTokenInformation(token, TokenUser, user.data(), user.size(), &size) == 0 ||
        ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &text) == 0) {
        throwSystemFailure(path, GetLastError());
    }
    const Local memory(text);
    return text;
}

// All rights for the user, none for others, whatever the folder would hand down.
Local rightsOfUserAlone(const std::string& path)
{
    PSECURITY_DESCRIPTOR rights = nullptr;
    const std::wstring text = L"D:P(A;;FA;;;" + userName(path) + L")";
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &rights, nullptr) == 0) {
        throwSystemFailure(path, GetLastError());
    }
    return Local(rights);
}

} // namespace

bool storeFileExists(const std::string& path)
{
    const std::wstring name = wideText(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        if (isAbsent(GetLastError())) {
            return false;
        }
        throwSystemFailure(path, GetLastError());
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        throwStoreFailure(path, "it is a folder");
    }
    requireReadable(path, name);
    return true;
}

void makeStoreFile(const std::string& path)
{
    const Local descriptor = rightsOfUserAlone(path);
    SECURITY_ATTRIBUTES security{sizeof security, descriptor.get(), FALSE};
    const HANDLE handle = CreateFileW(wideText(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &security, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE) {
        CloseHandle(handle);
    } else if (GetLastError() != ERROR_FILE_EXISTS) {
        throwSystemFailure(path, GetLastError());
    }
}

} // namespace Kep
