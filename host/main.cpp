#include "host/Commands.h"
#include "host/Errors.h"
#include "host/LocalNetworks.h"
#include "host/Output.h"
#include "host/Platform.h"
#include "host/Secrets.h"
#include "host/SnmpConf.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <span>

namespace Host {

namespace {

/// Runs the command that the command line asks for; an overload for each.
struct Run {
    std::span<char*> arguments;

    ExitCode operator()(const TextRequest& request) const
    {
        writeOutput(request.text);
        return ExitCode::Done;
    }

    ExitCode operator()(const DiscoverArguments& command) const
    {
        hideArguments(arguments, secretsOf(command.snmp));
        const DiscoverOptions options =
            readDiscoverOptions(command, overlaid(environmentCredentials(), snmpConfCredentials()),
                                {.standardInput = std::cin, .localNetworks = localNetworks});
        return discover(command, options);
    }

    ExitCode operator()(const ServeArguments& command) const { return serve(command); }

    ExitCode operator()(const SettingsArguments& command) const { return settings(command, std::cout, outputStyle()); }
};

ExitCode report(ExitCode code, const char* message)
{
    reportError(message);
    if (code == ExitCode::Usage)
        std::fputs("printer-discovery --help shows how to use it\n", stderr);
    return code;
}

ExitCode run(std::span<char*> arguments)
{
    try {
        prepareStreams();
        requireFramework();
        return std::visit(Run{arguments}, parseCommandLine(programArguments(arguments)));
    } catch (const UsageError& error) {
        return report(ExitCode::Usage, error.what());
    } catch (const std::exception& error) {
        return report(ExitCode::Failed, error.what());
    }
}

} // namespace

} // namespace Host

int main(int count, char** arguments)
{
    return static_cast<int>(Host::run({arguments, static_cast<std::size_t>(count)}));
}
