#include "tests/unit/support/Privacy.h"

#include <filesystem>
#include <memory>

#include <windows.h>

#include <aclapi.h>

namespace {

struct FreeMemory {
    void operator()(void* block) const { LocalFree(block); }
};

bool isOwners(PSID who, PSID owner)
{
    return EqualSid(who, owner) != 0 || IsWellKnownSid(who, WinLocalSystemSid) != 0; // the system is nobody else
}

} // namespace

bool isPrivate(const std::string& path)
{
    PSID owner = nullptr;
    PACL rights = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const std::wstring name = std::filesystem::path(path).wstring();
    if (GetNamedSecurityInfoW(name.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                              &owner, nullptr, &rights, nullptr, &descriptor) != ERROR_SUCCESS)
        return false;
    const std::unique_ptr<void, FreeMemory> memory(descriptor);
    bool owners = rights != nullptr;
    for (DWORD index = 0; owners && index < rights->AceCount; ++index) {
        void* entry = nullptr;
        owners =
            GetAce(rights, index, &entry) != 0 && isOwners(&static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart, owner);
    }
    return owners;
}

// There is no such thing here: what a file does not say of itself comes from its folder.
NoUmask::NoUmask() : before_(0) {}

NoUmask::~NoUmask() = default;
