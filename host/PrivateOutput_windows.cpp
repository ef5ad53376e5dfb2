#include "host/PrivateOutput.h"

#include "host/Errors.h"
#include "host/WindowsText.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

namespace Host {

namespace {

// All rights for whoever owns the file, none for others, whatever the folder would have handed down.
constexpr wchar_t OwnerAlone[] = L"D:P(A;;FA;;;OW)";
constexpr std::size_t LargestWrite = std::size_t{1} << 30U;

struct FreeDescriptor {
    void operator()(void* descriptor) const { LocalFree(descriptor); }
};

/// Gives a file that may have been there before the rights of a new one; false when that fails.
bool restrictToOwner(HANDLE file)
{
    PSECURITY_DESCRIPTOR rights = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(OwnerAlone, SDDL_REVISION_1, &rights, nullptr) == 0)
        return false;
    const std::unique_ptr<void, FreeDescriptor> descriptor(rights);
    BOOL present = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    if (GetSecurityDescriptorDacl(rights, &present, &list, &isDefault) == 0)
        return false;
    const DWORD error =
        SetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                        nullptr, list, nullptr);
    SetLastError(error);
    return error == ERROR_SUCCESS;
}

HANDLE asHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

} // namespace

PrivateOutput::PrivateOutput(std::string path, const std::string& option)
    : path_(std::move(path)), handle_(reinterpret_cast<std::intptr_t>(
                                  CreateFileW(wideText(path_).c_str(), GENERIC_WRITE | WRITE_DAC, FILE_SHARE_READ,
                                              nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)))
{
    const HANDLE file = asHandle(handle_);
    if (file != INVALID_HANDLE_VALUE && restrictToOwner(file))
        return;
    const DWORD error = GetLastError();
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    throw UsageError(option + ": cannot write " + path_ + ": " + systemMessage(error));
}

PrivateOutput::~PrivateOutput()
{
    CloseHandle(asHandle(handle_));
}

void PrivateOutput::write(std::string_view text)
{
    while (!text.empty()) {
        const auto most = static_cast<DWORD>(std::min(text.size(), LargestWrite));
        DWORD count = 0;
        if (WriteFile(asHandle(handle_), text.data(), most, &count, nullptr) == 0)
            throw Failure("cannot write " + path_ + ": " + systemMessage(GetLastError()));
        text.remove_prefix(count);
    }
}

} // namespace Host
