/// What the commands need of the operating system besides signals: folders, the environment, terminals.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace Host {

/// The folder of the running program. Throws `Failure`.
std::filesystem::path programFolder();

/// The user's folder for configuration; empty when the system names none.
std::filesystem::path configurationFolder();

/// The name that the plug-in's library has on this system.
const char* pluginFileName();

/// A variable of the environment; none when it is not set or empty.
std::optional<std::string> environmentVariable(const char* name);

enum class Stream { Output, Error };

bool isTerminal(Stream stream);

/// Columns of the terminal that standard error is connected to; 80 when it does not say.
std::size_t terminalWidth();

} // namespace Host
