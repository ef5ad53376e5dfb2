/// SQLite behind objects: a connection to a file, and statements on it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace Kep {

/// Used by one thread at a time. Destroyed within a transaction, it rolls that back. Every operation throws
/// `GenericException` that names the file and gives SQLite's reason; where another connection holds the file, only
/// after waiting 5 seconds for it.
class Connection {
public:
    /// Opens an existing file, for writing as well where that is permitted.
    explicit Connection(std::string path);

    const std::string& path() const noexcept { return path_; }

    /// Runs a statement that has no result.
    void execute(const char* sql);

private:
    friend class Statement;
    struct Close {
        void operator()(sqlite3* handle) const noexcept;
    };

    void check(int code) const;

    std::string path_;
    std::unique_ptr<sqlite3, Close> handle_;
};

/// One statement, run once. Lives within its connection, and is used by the same thread.
class Statement {
public:
    /// `arguments` are bound as texts to ?1, ?2 ... and must outlive the statement.
    Statement(Connection& connection, const char* sql, std::initializer_list<std::string_view> arguments = {});

    /// Goes to the next row; false when there is none, and then the statement has been run.
    bool next();

    /// A column of the row, from 0.
    std::string text(int column) const;
    std::int64_t integer(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };

    Connection& connection_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

} // namespace Kep
