#include "lab/Oid.h"

#include <algorithm>
#include <charconv>

namespace Lab {
namespace {

constexpr std::uint32_t arcsPerRoot = 40;

bool parseArc(std::string_view text, std::uint32_t& arc)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), arc);
    return error == std::errc{} && end == text.data() + text.size();
}

bool isEncodable(const Oid& oid)
{
    if (oid.size() < 2 || oid.size() > maximumArcs || oid[0] > 2)
        return false;
    return oid[0] == 2 ? oid[1] <= UINT32_MAX - 2 * arcsPerRoot : oid[1] < arcsPerRoot;
}

void appendArc(std::uint32_t arc, Bytes& out)
{
    for (int shift = 28; shift > 0; shift -= 7) {
        if (arc >> shift != 0)
            out.push_back(static_cast<std::uint8_t>(0x80U | ((arc >> shift) & 0x7FU)));
    }
    out.push_back(static_cast<std::uint8_t>(arc & 0x7FU));
}

/// Takes one base-128 number off the front of `contents`.
bool takeArc(ByteView& contents, std::uint32_t& arc)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const std::uint8_t byte = contents[i];
        if (i == 0 && byte == 0x80)
            return false;
        value = (value << 7) | (byte & 0x7FU);
        if (value > UINT32_MAX)
            return false;
        if ((byte & 0x80U) == 0) {
            arc = static_cast<std::uint32_t>(value);
            contents = contents.subspan(i + 1);
            return true;
        }
    }
    return false;
}

void appendFirstTwo(std::uint32_t joined, Oid& arcs)
{
    const std::uint32_t root = std::min(joined / arcsPerRoot, 2U);
    arcs.push_back(root);
    arcs.push_back(joined - root * arcsPerRoot);
}

bool appendArcs(ByteView contents, Oid& arcs)
{
    const std::size_t before = arcs.size();
    std::uint32_t arc = 0;
    if (!takeArc(contents, arc))
        return false;
    appendFirstTwo(arc, arcs);
    while (!contents.empty()) {
        if (arcs.size() - before == maximumArcs || !takeArc(contents, arc))
            return false;
        arcs.push_back(arc);
    }
    return true;
}

} // namespace

std::optional<Oid> parseOid(std::string_view text)
{
    Oid oid;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('.', begin), text.size());
        std::uint32_t arc = 0;
        if (!parseArc(text.substr(begin, end - begin), arc))
            return std::nullopt;
        oid.push_back(arc);
        begin = end + 1;
    }
    if (!isEncodable(oid))
        return std::nullopt;
    return oid;
}

std::string formatOid(Arcs arcs)
{
    std::string text;
    for (const std::uint32_t arc : arcs)
        text.append(1, '.').append(std::to_string(arc));
    return text;
}

Bytes encodeOidContents(Arcs arcs)
{
    Bytes out;
    appendArc(arcs[0] * arcsPerRoot + arcs[1], out);
    for (const std::uint32_t arc : arcs.subspan(2))
        appendArc(arc, out);
    return out;
}

bool decodeOidContents(ByteView contents, Oid& arcs)
{
    const std::size_t before = arcs.size();
    const bool complete = appendArcs(contents, arcs);
    if (!complete)
        arcs.resize(before);
    return complete;
}

bool startsWith(Arcs arcs, Arcs prefix)
{
    return arcs.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), arcs.begin());
}

} // namespace Lab
