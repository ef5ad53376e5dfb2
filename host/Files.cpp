#include "host/Files.h"

#include "host/Errors.h"
#include "host/Paths.h"
#include "host/Platform.h"

#include <filesystem>
#include <system_error>

namespace Host {

namespace fs = std::filesystem;

namespace {

fs::path dataStoreFolder()
{
    const fs::path configuration = configurationFolder();
    return configuration.empty() ? configuration : configuration / "printer-discovery";
}

} // namespace

std::string pluginFile(const std::string& option)
{
    if (!option.empty())
        return fs::absolute(pathOf(option)).string(); // a bare name would be looked up along the loader's path
    const fs::path beside = programFolder() / pluginFileName();
    const fs::path installed = (programFolder() / HOST_LIBRARY_FOLDER / pluginFileName()).lexically_normal();
    std::error_code ignored;
    for (const fs::path& file : {beside, installed})
        if (fs::exists(file, ignored))
            return file.string();
    throw Failure("there is no plug-in at " + beside.string() + " nor at " + installed.string() +
                  "; --plugin names another place");
}

std::string dataStoreFile(const std::string& option)
{
    if (!option.empty())
        return option;
    const fs::path folder = dataStoreFolder();
    return folder.empty() ? std::string() : (folder / "settings.db").string();
}

void makeDataStoreFolder()
{
    const fs::path folder = dataStoreFolder();
    if (folder.empty())
        return;
    std::error_code error;
    if (fs::create_directories(folder, error))
        fs::permissions(folder, fs::perms::owner_all, error);
    if (error)
        throw Failure("cannot make the folder " + folder.string() + ": " + error.message());
}

} // namespace Host
