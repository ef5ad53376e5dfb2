// Recordings of devices: what is accepted is found again, in order, and encodes as what it was read from.
#include "fuzz/Target.h"
#include "lab/Ber.h"
#include "lab/Error.h"
#include "lab/Snmprec.h"

namespace {

using Lab::BerReader;
using Lab::Profile;
using Lab::Record;

void requireEncoded(const Record& record)
{
    BerReader oid(record.encodedOid);
    const auto name = oid.next(Lab::Tag::objectId);
    Lab::Oid arcs;
    Fuzz::require(name && oid.atEnd(), "an OID is one element");
    Fuzz::require(Lab::decodeOidContents(name->contents, arcs) && arcs == record.oid, "an OID reads as it was written");
    BerReader value(record.encodedValue);
    Fuzz::require(value.next(record.value.tag).has_value() && value.atEnd(), "a value is one element");
}

void requireOrder(const Profile& profile)
{
    const Record* previous = nullptr;
    for (const Record& record : profile.records()) {
        Fuzz::require(profile.find(record.oid) == &record, "each record is found");
        Fuzz::require(previous == nullptr || profile.findNext(previous->oid) == &record, "each follows the one before");
        requireEncoded(record);
        previous = &record;
    }
    Fuzz::require(previous != nullptr && profile.findNext(previous->oid) == nullptr, "nothing follows the last");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        requireOrder(*Lab::readSnmprec("fuzzed", "fuzzed.snmprec", Fuzz::textOf(data, size)));
    } catch (const Lab::Error& error) {
        Fuzz::require(std::string_view(error.what()).starts_with("fuzzed.snmprec"), "an error names the file");
    }
    return 0;
}
