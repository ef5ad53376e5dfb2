#include "lab/Profile.h"

#include <algorithm>

namespace Lab {
namespace {

bool isBefore(Arcs left, Arcs right)
{
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end());
}

} // namespace

Record::Record(Oid theOid, Value theValue)
    : oid(std::move(theOid)), value(std::move(theValue)),
      encodedOid(encodeElement(Tag::objectId, encodeOidContents(oid))), encodedValue(value.encoded())
{}

Profile::Profile(std::string name, std::vector<Record> records, TrickMaker trickMaker)
    : _name(std::move(name)), _records(std::move(records)), _makeTrick(trickMaker)
{
    std::sort(_records.begin(), _records.end(),
              [](const Record& left, const Record& right) { return left.oid < right.oid; });
}

const Record* Profile::find(Arcs oid) const
{
    const auto found = std::lower_bound(_records.begin(), _records.end(), oid,
                                        [](const Record& record, Arcs wanted) { return isBefore(record.oid, wanted); });
    if (found == _records.end() || isBefore(oid, found->oid))
        return nullptr;
    return &*found;
}

const Record* Profile::findNext(Arcs oid) const
{
    const auto found = std::upper_bound(_records.begin(), _records.end(), oid,
                                        [](Arcs wanted, const Record& record) { return isBefore(wanted, record.oid); });
    return found == _records.end() ? nullptr : &*found;
}

} // namespace Lab
