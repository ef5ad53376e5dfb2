#include "lab/hostile/HostileProfiles.h"

#include "lab/hostile/Tricks.h"

namespace Lab {

ProfileLibrary hostileProfiles()
{
    const ProfilePtr ordinary = findProfile(builtInProfiles(), "laser-mono");
    ProfileLibrary library;
    for (const auto& tricks : {messageTricks(), tableTricks(), deliveryTricks(), v3Tricks()})
        for (const NamedTrick& trick : tricks)
            library.emplace(trick.name, std::make_shared<Profile>(trick.name, ordinary->records(), trick.make));
    return library;
}

} // namespace Lab
