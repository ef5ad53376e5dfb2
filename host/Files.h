/// Which files the program uses when it is not told.
#pragma once

#include <string>

namespace Host {

/// The plug-in to load: `option` if it is not empty, else the library beside the program, else the one in the folder
/// where it is installed. Throws `Failure` that names the places when there is none.
std::string pluginFile(const std::string& option);

/// The data store: `option` if it is not empty, else "printer-discovery/settings.db" in the user's configuration
/// folder; empty when there is no such folder.
std::string dataStoreFile(const std::string& option);

/// Makes the folder of the data store, for the owner alone, where `dataStoreFile` would choose it itself.
/// Throws `Failure`.
void makeDataStoreFolder();

} // namespace Host
