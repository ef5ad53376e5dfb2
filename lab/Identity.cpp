#include "lab/Identity.h"

#include "lab/Utf8.h"
#include "lab/WellKnownOids.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Lab {
namespace {

std::string textAt(const Device& device, const Oid& oid)
{
    const Record* record = device.profile().find(oid);
    return record == nullptr ? std::string() : device.value(*record).text();
}

std::string formatMac(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        text.append(text.empty() ? "" : "-").append(1, digits[byte >> 4]).append(1, digits[byte & 0xFU]);
    }
    return text;
}

std::vector<std::string> macsOf(const Device& device)
{
    constexpr std::size_t macSize = 6;
    std::vector<std::string> macs;
    for (const Oid& oid : WellKnown::firstPhysicalAddresses) {
        const std::string bytes = textAt(device, oid);
        if (bytes.size() == macSize)
            macs.push_back(formatMac(bytes));
    }
    return macs;
}

std::string serialNumberOf(const Device& device)
{
    for (const Oid& oid : WellKnown::serialNumbers) {
        std::string text = textAt(device, oid);
        if (!text.empty())
            return text;
    }
    return {};
}

} // namespace

bool isPrinter(const Profile& profile)
{
    const Value printer{Tag::objectId, encodeOidContents(WellKnown::devicePrinter)};
    return std::any_of(profile.records().begin(), profile.records().end(), [&](const Record& record) {
        return startsWith(record.oid, WellKnown::deviceTypeColumn) && record.value == printer;
    });
}

Identity identityOf(const Device& device)
{
    return {isPrinter(device.profile()), textAt(device, WellKnown::firstDeviceDescription), macsOf(device),
            serialNumberOf(device)};
}

std::string identityLine(const Device& device)
{
    const Identity identity = identityOf(device);
    nlohmann::ordered_json line{{"ip", formatIpv4(device.address())},
                                {"profile", toUtf8(device.profile().name())},
                                {"printer", identity.isPrinter}};
    if (device.profile().isHostile())
        line["hostile"] = true;
    if (identity.isPrinter) {
        line["name"] = toUtf8(identity.name);
        line["mac"] = identity.mac;
        line["sn"] = toUtf8(identity.serialNumber);
    }
    return line.dump();
}

} // namespace Lab
