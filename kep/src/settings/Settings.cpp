#include "Kep/Host/Settings.h"

#include "settings/SettingTable.h"

namespace Kep::Host {
namespace {

std::vector<Setting> shownSettings()
{
    std::vector<Setting> shown;
    for (const SettingEntry& entry : settingTable()) {
        shown.push_back(entry.shown);
    }
    return shown;
}

} // namespace

const std::vector<Setting>& settings()
{
    static const std::vector<Setting> shown = shownSettings();
    return shown;
}

void checkSetting(std::string_view key, std::string_view value)
{
    HostSettings unused;
    takeSetting(unused, key, value);
}

} // namespace Kep::Host
