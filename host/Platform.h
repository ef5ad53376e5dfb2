/// What the commands need of the operating system besides signals: folders, the environment, terminals.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/// The folder of the running program. Throws `Failure`.
std::filesystem::path programFolder();

/// The user's folder for configuration; empty when the system names none.
std::filesystem::path configurationFolder();

/// Where the net-snmp tools keep their configuration, the user's own file first.
std::vector<std::string> snmpConfFiles();

/// The name that the plug-in's library has on this system.
const char* pluginFileName();

/// A variable of the environment; none when it is not set or empty.
std::optional<std::string> environmentVariable(const char* name);

enum class Stream { Output, Error };

bool isTerminal(Stream stream);

/// Whether the stream is a terminal that shows colours.
bool showsColours(Stream stream);

/// Columns of the terminal that a stream is connected to; 80 when it does not say.
std::size_t terminalWidth(Stream stream);

} // namespace Host
