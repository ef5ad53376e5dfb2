#include "lab/ProfileLibrary.h"

#include "lab/BuiltInProfiles.h"
#include "lab/Error.h"
#include "lab/Snmprec.h"
#include "lab/TextLines.h"

#include <filesystem>

namespace Lab {

ProfileLibrary builtInProfiles()
{
    ProfileLibrary library;
    for (const BuiltInProfile& profile : builtInProfileTexts()) {
        const std::string name(profile.name);
        library.emplace(name, readSnmprec(name, name + ".snmprec", profile.text));
    }
    return library;
}

ProfileLibrary readProfiles(const std::string& folder)
{
    std::error_code error;
    ProfileLibrary library;
    for (const auto& entry : std::filesystem::directory_iterator(pathOf(folder), error)) {
        if (entry.path().extension() != ".snmprec")
            continue;
        const std::string name = entry.path().stem().string();
        const std::string file = folder + "/" + entry.path().filename().string();
        library.emplace(name, readSnmprec(name, file, readFile(file)));
    }
    if (error)
        throw Error(folder + ": expected a folder of .snmprec files, found: " + error.message());
    if (library.empty())
        throw Error(folder + ": expected a folder of .snmprec files, found none in it");
    return library;
}

ProfilePtr findProfile(const ProfileLibrary& library, const std::string& name)
{
    const auto found = library.find(name);
    if (found != library.end())
        return found->second;
    std::string names;
    for (const auto& [known, profile] : library)
        names.append(names.empty() ? "" : ", ").append(known);
    throw Error("expected a profile out of " + names);
}

} // namespace Lab
