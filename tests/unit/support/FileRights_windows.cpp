#include "tests/unit/support/FileRights.h"

#include <memory>
#include <stdexcept>
#include <string>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

namespace TestSupport {

const char* const mendingCommand = "icacls";

namespace {

struct FreeMemory {
    void operator()(void* block) const { LocalFree(block); }
};
using Memory = std::unique_ptr<void, FreeMemory>;

[[noreturn]] void fail()
{
    throw std::runtime_error("the rights of a file cannot be set: error " + std::to_string(GetLastError()));
}

/// The owner of a file, as the system writes it.
std::wstring ownerOf(const std::filesystem::path& file)
{
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    LPWSTR text = nullptr;
    if (GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                              nullptr, &descriptor) != ERROR_SUCCESS)
        fail();
    const Memory memory(descriptor);
    if (ConvertSidToStringSidW(owner, &text) == 0)
        fail();
    const Memory textMemory(text);
    return text;
}

} // namespace

void setRights(const std::filesystem::path& file, std::filesystem::perms rights)
{
    using std::filesystem::perms;
    const bool shared = (rights & (perms::group_all | perms::others_all)) != perms::none;
    const std::wstring text = L"D:P(A;;FA;;;" + ownerOf(file) + L")" + (shared ? L"(A;;FRFW;;;WD)" : L"");
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr) == 0)
        fail();
    const Memory memory(descriptor);
    if (SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, descriptor) == 0)
        fail();
}

} // namespace TestSupport
