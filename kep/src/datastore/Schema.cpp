#include "datastore/Schema.h"

#include "datastore/StoreFile.h"

#include <string>

namespace Kep {
namespace {

constexpr std::int64_t applicationId = 0x4B657044; // "KepD": tells our files from other SQLite files
constexpr std::int64_t newestVersion = 1;

std::int64_t numberFrom(Connection& connection, const char* sql)
{
    Statement statement(connection, sql);
    return statement.next() ? statement.integer(0) : 0;
}

void setPragma(Connection& connection, const std::string& name, std::int64_t value)
{
    connection.execute(("PRAGMA " + name + "=" + std::to_string(value)).c_str());
}

} // namespace

bool hasStore(Connection& connection)
{
    const std::int64_t id = numberFrom(connection, "PRAGMA application_id");
    const std::int64_t version = numberFrom(connection, "PRAGMA user_version");
    if (id == 0 && version == 0 && numberFrom(connection, "SELECT count(*) FROM sqlite_master") == 0) {
        return false;
    }
    if (id != applicationId) {
        throwStoreFailure(connection.path(), "it is a database of another program");
    }
    if (version > newestVersion) {
        throwStoreFailure(connection.path(), "its format " + std::to_string(version) +
                                                 " is newer than this program, which knows formats up to " +
                                                 std::to_string(newestVersion));
    }
    return true;
}

void createStore(Connection& connection)
{
    setPragma(connection, "application_id", applicationId);
    setPragma(connection, "user_version", newestVersion);
    connection.execute("CREATE TABLE setting (key TEXT NOT NULL PRIMARY KEY, value TEXT NOT NULL) "
                       "STRICT, WITHOUT ROWID");
}

} // namespace Kep
