#include "host/Comparison.h"

#include "host/DisplayText.h"
#include "host/Errors.h"
#include "host/PrinterDocument.h"
#include "host/TextFile.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>

namespace Host {

namespace {

using Keys = std::vector<std::string>;
using KeysOf = std::function<Keys(const Printer&)>;

Keys serialOf(const Printer& printer)
{
    return printer.sn.empty() ? Keys() : Keys{printer.sn};
}

/// The addresses that tell a device from others: not the ones of nothing but zeros.
Keys macsOf(const Printer& printer)
{
    Keys macs = printer.mac;
    std::erase_if(macs, [](const std::string& mac) { return mac.find_first_not_of("0-:.") == std::string::npos; });
    return macs;
}

Keys addressOf(const Printer& printer)
{
    return {printer.ip};
}

bool shareOne(const Keys& a, const Keys& b)
{
    return std::find_first_of(a.begin(), a.end(), b.begin(), b.end()) != a.end();
}

/// Whether both have keys of a kind and none in common: then they are two devices.
bool contradict(const Keys& a, const Keys& b)
{
    return !a.empty() && !b.empty() && !shareOne(a, b);
}

/// Pairs the printers of two runs, kind of key by kind of key.
class Pairing {
public:
    Pairing(const std::vector<Printer>& before, const std::vector<Printer>& now)
        : before_(before.begin(), before.end()), now_(now.begin(), now.end())
    {
        pairBy(serialOf, [](const Printer&, const Printer&) { return true; });
        pairBy(macsOf, sameSerial);
        pairBy(addressOf, [](const Printer& a, const Printer& b) {
            return sameSerial(a, b) && !contradict(macsOf(a), macsOf(b));
        });
    }

    const std::vector<PrinterPair>& pairs() const { return pairs_; }
    const std::vector<Printer>& onlyBefore() const { return before_; }
    const std::vector<Printer>& onlyNow() const { return now_; }

private:
    using MayBeOne = std::function<bool(const Printer&, const Printer&)>;

    static bool sameSerial(const Printer& a, const Printer& b) { return !contradict(serialOf(a), serialOf(b)); }

    /// First those at one address, so that of several with one key none seems to have moved.
    void pairBy(const KeysOf& keysOf, const MayBeOne& mayBeOne)
    {
        pairOff(keysOf, [&](const Printer& a, const Printer& b) { return a.ip == b.ip && mayBeOne(a, b); });
        pairOff(keysOf, mayBeOne);
    }

    void pairOff(const KeysOf& keysOf, const MayBeOne& mayBeOne)
    {
        std::multimap<std::string, std::size_t> places;
        for (std::size_t i = 0; i < now_.size(); ++i)
            for (const std::string& key : keysOf(now_[i]))
                places.emplace(key, i);
        std::vector<bool> taken(now_.size());
        std::erase_if(before_, [&](const Printer& printer) {
            for (const std::string& key : keysOf(printer))
                for (auto [each, end] = places.equal_range(key); each != end; ++each)
                    if (const std::size_t i = each->second; !taken[i] && mayBeOne(printer, now_[i])) {
                        taken[i] = true;
                        pairs_.push_back({printer, now_[i]});
                        places.erase(each);
                        return true;
                    }
            return false;
        });
        std::size_t index = 0;
        std::erase_if(now_, [&](const Printer&) { return taken[index++]; });
    }

    std::vector<Printer> before_;
    std::vector<Printer> now_;
    std::vector<PrinterPair> pairs_;
};

std::uint32_t addressNumber(const Printer& printer)
{
    return parseAddress(printer.ip).value_or(0);
}

void sortByAddress(std::vector<Printer>& printers)
{
    std::stable_sort(printers.begin(), printers.end(),
                     [](const Printer& a, const Printer& b) { return addressNumber(a) < addressNumber(b); });
}

} // namespace

EarlierResult parseEarlierResult(const std::string& text, const std::string& name)
{
    const JsonValue document = JsonValue::parse(text, nullptr, false);
    try {
        EarlierResult result{name, {}, document.value("interrupted", false)};
        for (const JsonValue& printer : document.at("printers").get_ref<const JsonValue::array_t&>())
            result.printers.push_back(printerOf(printer));
        return result;
    } catch (const JsonValue::exception&) {
        throw UsageError(name + " holds no result of discover --format json");
    }
}

EarlierResult readEarlierResult(const std::string& path)
{
    return parseEarlierResult(readTextFile(path, "--diff"), path);
}

std::vector<Difference> differencesOf(const PrinterPair& pair)
{
    const Printer& before = pair.before;
    const Printer& now = pair.now;
    std::vector<Difference> all = {
        {"name", before.name, now.name}, {"sn", before.sn, now.sn}, {"mac", joined(before.mac), joined(now.mac)}};
    if (!before.hostname.empty() && !now.hostname.empty())
        all.push_back({"hostname", before.hostname, now.hostname});
    std::erase_if(all, [](const Difference& difference) { return difference.before == difference.now; });
    return all;
}

Comparison compare(const std::vector<Printer>& before, const RunResult& now, const AddressRanges& swept)
{
    std::vector<Printer> present = now.printers;
    sortByAddress(present);
    const Pairing pairing(before, present);
    Comparison result;
    result.added = pairing.onlyNow();
    for (const PrinterPair& pair : pairing.pairs()) {
        const bool moved = pair.before.ip != pair.now.ip;
        const bool changed = !differencesOf(pair).empty();
        if (moved)
            result.moved.push_back(pair);
        if (changed)
            result.changed.push_back(pair);
        result.same += moved || changed ? 0 : 1;
    }
    if (!now.interrupted)
        std::copy_if(pairing.onlyBefore().begin(), pairing.onlyBefore().end(), std::back_inserter(result.gone),
                     [&](const Printer& printer) { return holdAddress(swept, addressNumber(printer)); });
    sortByAddress(result.gone);
    for (auto* pairs : {&result.moved, &result.changed})
        std::stable_sort(pairs->begin(), pairs->end(), [](const PrinterPair& a, const PrinterPair& b) {
            return addressNumber(a.now) < addressNumber(b.now);
        });
    return result;
}

} // namespace Host
