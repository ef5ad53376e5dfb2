/// What a recording says about its device, read from the file alone.
#pragma once

#include "tests/network/harness/Program.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace NetworkTests {

/// A recording in the `.snmprec` form: lines `OID|type|value`, where the type is the BER tag as a number and an "x"
/// behind it marks a hexadecimal value.
class Recording {
public:
    /// Throws `std::runtime_error` when the file cannot be read or has a line of another form.
    explicit Recording(const std::filesystem::path& file);

    /// Whether a row of the device table has the type of a printer.
    bool isPrinter() const;

    /// The record that a sweep must give of this printer at `address`, without a host name.
    Document record(const std::string& address) const;

    /// The value at an OID (no leading dot): octets as they are, numbers in decimal. Empty when there is none.
    std::string value(const std::string& oid) const;

private:
    struct Entry {
        std::string type;
        std::string text;
    };
    std::string firstOf(const std::vector<std::string>& oids) const;

    std::filesystem::path file_;
    std::map<std::string, Entry> entries_;
};

/// The text with which JSON shows these bytes: UTF-8 stays, and each byte that is no part of UTF-8 becomes the Latin-1
/// character of its number.
std::string jsonText(const std::string& bytes);

/// The recordings of a folder in the order of their names. Throws when the folder cannot be read.
std::vector<std::filesystem::path> recordingsIn(const std::filesystem::path& folder);

} // namespace NetworkTests
