/// The files of SQLite, which fail on command: a layer between it and the system.
#pragma once

#include <functional>

namespace Kep::Testing {

/// What SQLite asks of a file; `remove` is that of a journal.
enum class FileCall { open, read, write, truncate, sync, remove };

/// While one lives, `hook` is called before each call on a file that is opened meanwhile, and decides what becomes of
/// it: SQLITE_OK lets it happen, any other code of SQLite is its failure. One at a time in the process; for one thread.
class FaultyFiles {
public:
    explicit FaultyFiles(std::function<int(FileCall)> hook);
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;
};

} // namespace Kep::Testing
