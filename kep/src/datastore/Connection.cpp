#include "datastore/Connection.h"

#include "datastore/StoreFile.h"

#include <filesystem>
#include <sqlite3.h>
#include <utility>

namespace Kep {
namespace {

constexpr int busyMilliseconds = 5000;

// SQLite takes some relative names for something else than files.
std::string absolutePath(const std::string& path)
{
    const auto absolute = std::filesystem::absolute(std::u8string(path.begin(), path.end())).u8string();
    return {absolute.begin(), absolute.end()};
}

} // namespace

void Connection::Close::operator()(sqlite3* handle) const noexcept
{
    sqlite3_close(handle);
}

Connection::Connection(std::string path) : path_(std::move(path))
{
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(absolutePath(path_).c_str(), &handle,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, nullptr);
    handle_.reset(handle);
    check(code);
    check(sqlite3_busy_timeout(handle, busyMilliseconds));
}

void Connection::execute(const char* sql)
{
    check(sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr));
}

void Connection::check(int code) const
{
    if (code != SQLITE_OK) {
        throwStoreFailure(path_, sqlite3_errstr(code));
    }
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const noexcept
{
    sqlite3_finalize(statement);
}

Statement::Statement(Connection& connection, const char* sql, std::initializer_list<std::string_view> arguments)
    : connection_(connection)
{
    sqlite3_stmt* statement = nullptr;
    connection_.check(sqlite3_prepare_v2(connection_.handle_.get(), sql, -1, &statement, nullptr));
    statement_.reset(statement);
    int index = 0;
    for (const std::string_view argument : arguments) {
        const char* bytes = argument.empty() ? "" : argument.data(); // a null pointer would be bound as NULL
        connection_.check(sqlite3_bind_text64(statement, ++index, bytes, argument.size(), SQLITE_STATIC, SQLITE_UTF8));
    }
}

bool Statement::next()
{
    const int code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        connection_.check(code);
    }
    return code == SQLITE_ROW;
}

std::string Statement::text(int column) const
{
    const auto* bytes = sqlite3_column_text(statement_.get(), column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
    return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(bytes), size);
}

std::int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(statement_.get(), column);
}

} // namespace Kep
