// Include less exclude for requests of many ranges: a site's list of subnets is tens to hundreds of lines long, its
// exclude list about the same.
#include "documents/IpRange.h"

#include "Kep/Net.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

using PrinterDiscoveryPlugin::IpRange;
using PrinterDiscoveryPlugin::IpRangeText;

namespace {

/// `count` ranges of `size` addresses, one every 1,024 addresses from 10.0.0.0 plus `offset` on, last one first.
std::vector<IpRangeText> ranges(std::int64_t count, std::uint32_t offset, std::uint32_t size)
{
    std::vector<IpRangeText> result;
    for (std::int64_t index = count; index-- > 0;) {
        const std::uint32_t from = 0x0a000000U + static_cast<std::uint32_t>(index) * 1024U + offset;
        result.push_back({Kep::Net::formatIpAddress(from), Kep::Net::formatIpAddress(from + size - 1)});
    }
    return result;
}

void buildProbeRanges(benchmark::State& state)
{
    const auto include = ranges(state.range(0), 0, 512);
    const auto exclude = ranges(state.range(0), 100, 50);
    std::vector<IpRange> result;
    for (auto _ : state)
        benchmark::DoNotOptimize(PrinterDiscoveryPlugin::buildProbeRanges(include, exclude, result));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(buildProbeRanges)->RangeMultiplier(10)->Range(1, 10000);

} // namespace
