/// The data store's file before SQLite opens it: is it there, and may only its owner read it?
///
/// Any thread; a lock of its own keeps a thread from opening a file that another one is just making. Paths are UTF-8.
/// SQLite's locks on a file would be lost if the file were opened and closed beside it, so nothing here opens an
/// existing one.
#pragma once

#include <string>
#include <string_view>

namespace Kep {

/// Throws `GenericException` that names the file and the reason.
[[noreturn]] void throwStoreFailure(const std::string& path, std::string_view reason);

/// Whether there is a file. Throws as above when what is there is no file, or may not be read.
bool storeFileExists(const std::string& path);

/// Makes an empty file that only its owner may read and write, unless there is a file. Throws as above.
void makeStoreFile(const std::string& path);

} // namespace Kep
