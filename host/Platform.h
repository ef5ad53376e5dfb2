/// What the commands need of the operating system besides signals: folders, the environment, terminals.
#pragma once

#include "host/ExitCode.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Host {

/// What follows the program's name in `main`'s arguments, in UTF-8. Throws `Failure`.
std::vector<std::string> programArguments(std::span<char*> arguments);

/// Writes asterisks over `secrets` where the system keeps the command line apart from `main`'s arguments.
void hideCommandLine(const std::vector<std::string>& secrets);

/// Has the standard streams pass bytes on as they are, and a console show them as UTF-8. Once, before they are used.
void prepareStreams();

/// Ends the process at once: nothing is waited for, no destructor runs. Written output must have been flushed.
[[noreturn]] void leaveProcess(ExitCode code);

/// Throws `Failure` where the program has started without the framework's library and it is not to be had.
void requireFramework();

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
