/// What a kind of device answers: its objects in the order of their OIDs.
///
/// Immutable once built, so that any number of devices and threads may share one.
#pragma once

#include "lab/Value.h"
#include "lab/hostile/Trick.h"

#include <memory>
#include <string>
#include <vector>

namespace Lab {

/// One object: its OID, its value, and both as they stand in an answer.
struct Record {
    Record(Oid theOid, Value theValue);

    Oid oid;
    Value value;
    Bytes encodedOid;
    Bytes encodedValue;
};

class Profile {
public:
    /// Takes `records` in any order; no OID may occur twice. With `trickMaker` its devices are hostile.
    Profile(std::string name, std::vector<Record> records, TrickMaker trickMaker = nullptr);

    [[nodiscard]] const std::string& name() const { return _name; }
    [[nodiscard]] const std::vector<Record>& records() const { return _records; }

    [[nodiscard]] bool isHostile() const { return _makeTrick != nullptr; }

    /// A trick for one device. Requires a hostile profile.
    [[nodiscard]] Trick makeTrick() const { return _makeTrick(); }

    /// The record of exactly this OID; null when there is none. Owned by the profile, as the other's result is.
    [[nodiscard]] const Record* find(Arcs oid) const;

    /// The first record after `oid`, which itself need not exist; null past the end.
    [[nodiscard]] const Record* findNext(Arcs oid) const;

private:
    std::string _name;
    std::vector<Record> _records;
    TrickMaker _makeTrick;
};

using ProfilePtr = std::shared_ptr<const Profile>;

} // namespace Lab
