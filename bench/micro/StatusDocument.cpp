// The status document of a run that has found many printers, as a client's first poll after a pause gets it.
#include "documents/StatusDocument.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

void statusToJson(benchmark::State& state)
{
    PrinterDiscoveryPlugin::DiscoveryStatus status;
    status.cookie = "a run";
    for (std::int64_t index = 0; index < state.range(0); ++index) {
        PrinterDiscoveryPlugin::PrinterRecord printer;
        printer.ip = "10.0.0." + std::to_string(index % 254 + 1);
        printer.name = "Laser B\xfcro 2000";
        printer.sn = "SN" + std::to_string(index);
        printer.mac = {"00-1B-A9-0C-33-7E"};
        printer.hostname = "printer" + std::to_string(index);
        status.printers.push_back(printer);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(PrinterDiscoveryPlugin::statusToJson(status));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(statusToJson)->RangeMultiplier(10)->Range(1, 10000);

} // namespace
