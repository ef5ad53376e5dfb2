/// The configuration data store as a hosting program edits it.
#pragma once

#include "Kep/Export.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Kep::Host {

/// One SQLite file of dotted keys and text values, readable by its owner alone; made on the first write. Used by one
/// thread at a time; any number of processes may share the file, each change being a transaction of its own.
/// Every operation throws `GenericException` that names the file and the reason when the file cannot be used.
class KEP_API DataStore {
public:
    /// `path` is UTF-8. A file that does not exist counts as an empty store.
    explicit DataStore(std::string path);
    ~DataStore();
    DataStore(DataStore&&) noexcept;
    DataStore& operator=(DataStore&&) noexcept;

    /// All keys that begin with `prefix`, with their values, in ascending order.
    std::map<std::string, std::string> list(const std::string& prefix) const;
    std::optional<std::string> get(const std::string& key) const;
    void set(const std::string& key, const std::string& value);

    /// Keys with their new values; those without one are removed.
    using Changes = std::map<std::string, std::optional<std::string>>;

    /// Makes all of the changes or, when it throws or the process ends, none.
    void change(const Changes& changes);

    /// Whether there was something to remove.
    bool unset(const std::string& key);

private:
    std::string path_;
};

} // namespace Kep::Host
