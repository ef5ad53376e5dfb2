/// One transaction on the data store.
#pragma once

#include "datastore/Connection.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Kep {

/// Destroyed before `commit`, it leaves the store as it was. Used by one thread at a time; any number of threads and
/// processes may have transactions on a file: readers beside each other, one writer, each waiting up to 5 seconds for
/// the others. Every operation throws `GenericException` that names the file and the reason.
class StoreTransaction {
public:
    enum class Access { read, write };

    /// For reading, a file that does not exist is an empty store and stays away, and so is an empty path; for writing,
    /// the file is made.
    StoreTransaction(const std::string& path, Access access);

    /// All keys that begin with `prefix`, byte for byte, with their values.
    std::map<std::string, std::string> list(std::string_view prefix);
    std::optional<std::string> get(std::string_view key);

    /// Both require access for writing.
    void set(std::string_view key, std::string_view value);
    void unset(std::string_view key);

    void commit();

private:
    std::optional<Connection> connection_; // none: an empty store
    bool hasStore_ = false;
};

} // namespace Kep
