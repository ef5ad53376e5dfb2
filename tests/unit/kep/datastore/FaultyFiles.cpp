#include "tests/unit/kep/datastore/FaultyFiles.h"

#include <sqlite3.h>

#include <stdexcept>
#include <utility>

namespace Kep::Testing {
namespace {

std::function<int(FileCall)> theHook;
sqlite3_vfs* system_ = nullptr;
sqlite3_vfs layer;

// Stands before the system's file in one block.
struct File {
    sqlite3_file base;
    sqlite3_file* real;
};

sqlite3_file* realOf(sqlite3_file* file)
{
    return reinterpret_cast<File*>(file)->real;
}

// The outcome of `call`, or the failure that the hook wants in its place.
template <class Call> int unlessFailing(FileCall what, Call call)
{
    const int failure = theHook(what);
    return failure == SQLITE_OK ? call() : failure;
}

int closeFile(sqlite3_file* file)
{
    return realOf(file)->pMethods->xClose(realOf(file));
}

int readFile(sqlite3_file* file, void* bytes, int size, sqlite3_int64 from)
{
    return unlessFailing(FileCall::read,
                         [=] { return realOf(file)->pMethods->xRead(realOf(file), bytes, size, from); });
}

int writeFile(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 to)
{
    return unlessFailing(FileCall::write,
                         [=] { return realOf(file)->pMethods->xWrite(realOf(file), bytes, size, to); });
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size)
{
    return unlessFailing(FileCall::truncate, [=] { return realOf(file)->pMethods->xTruncate(realOf(file), size); });
}

int syncFile(sqlite3_file* file, int flags)
{
    return unlessFailing(FileCall::sync, [=] { return realOf(file)->pMethods->xSync(realOf(file), flags); });
}

int sizeOfFile(sqlite3_file* file, sqlite3_int64* size)
{
    return realOf(file)->pMethods->xFileSize(realOf(file), size);
}

int lockFile(sqlite3_file* file, int level)
{
    return realOf(file)->pMethods->xLock(realOf(file), level);
}

int unlockFile(sqlite3_file* file, int level)
{
    return realOf(file)->pMethods->xUnlock(realOf(file), level);
}

int isFileReserved(sqlite3_file* file, int* result)
{
    return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}

int controlFile(sqlite3_file* file, int operation, void* argument)
{
    return realOf(file)->pMethods->xFileControl(realOf(file), operation, argument);
}

int sectorSizeOfFile(sqlite3_file* file)
{
    return realOf(file)->pMethods->xSectorSize(realOf(file));
}

int characteristicsOfFile(sqlite3_file* file)
{
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

const sqlite3_io_methods methods = {.iVersion = 1,
                                    .xClose = closeFile,
                                    .xRead = readFile,
                                    .xWrite = writeFile,
                                    .xTruncate = truncateFile,
                                    .xSync = syncFile,
                                    .xFileSize = sizeOfFile,
                                    .xLock = lockFile,
                                    .xUnlock = unlockFile,
                                    .xCheckReservedLock = isFileReserved,
                                    .xFileControl = controlFile,
                                    .xSectorSize = sectorSizeOfFile,
                                    .xDeviceCharacteristics = characteristicsOfFile,
                                    .xShmMap = nullptr,
                                    .xShmLock = nullptr,
                                    .xShmBarrier = nullptr,
                                    .xShmUnmap = nullptr,
                                    .xFetch = nullptr,
                                    .xUnfetch = nullptr};

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outcome)
{
    auto* const own = reinterpret_cast<File*>(file);
    own->base.pMethods = nullptr;
    own->real = reinterpret_cast<sqlite3_file*>(own + 1);
    return unlessFailing(FileCall::open, [=] {
        const int code = system_->xOpen(system_, name, own->real, flags, outcome);
        own->base.pMethods = own->real->pMethods == nullptr ? nullptr : &methods;
        return code;
    });
}

int removeFile(sqlite3_vfs*, const char* name, int sync)
{
    return unlessFailing(FileCall::remove, [=] { return system_->xDelete(system_, name, sync); });
}

} // namespace

FaultyFiles::FaultyFiles(std::function<int(FileCall)> hook)
{
    if (theHook)
        throw std::logic_error("there are faulty files already");
    theHook = std::move(hook);
    system_ = sqlite3_vfs_find(nullptr);
    layer = *system_;
    layer.zName = "faulty";
    layer.pNext = nullptr;
    layer.szOsFile += static_cast<int>(sizeof(File));
    layer.xOpen = openFile;
    layer.xDelete = removeFile;
    sqlite3_vfs_register(&layer, 1);
}

FaultyFiles::~FaultyFiles()
{
    sqlite3_vfs_unregister(&layer);
    sqlite3_vfs_register(system_, 1);
    theHook = nullptr;
}

} // namespace Kep::Testing
