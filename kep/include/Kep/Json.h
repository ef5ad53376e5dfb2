/// Reading and writing of JSON (RFC 8259).
///
/// Functions may be called from any thread; the writers are plain objects for one thread at a time. Nothing here
/// takes a lock. Besides what is said, only `std::bad_alloc` and `std::length_error` are thrown.
#pragma once

#include "Kep/Export.h"
#include "Kep/Variant.h"

#include <string>
#include <string_view>

namespace Kep::Json {

/// The value of a JSON text. Of a key given twice the last counts. Throws `GenericException` with line and column of
/// what is wrong, nesting of more than 64 levels included; the message never quotes the text, which may hold a
/// password.
KEP_API Variant parse(std::string_view text);

/// The JSON string literal of `text`, quotes included, valid whatever the bytes: valid UTF-8 passes; quotes,
/// backslashes and control characters are escaped; a byte that is not part of valid UTF-8 becomes the Latin-1
/// character that it stands for.
KEP_API std::string _encodeString(std::string_view text);

/// What can write itself as JSON.
class KEP_API IJsonable {
public:
    virtual std::string toJson() const = 0;

protected:
    ~IJsonable() = default;
};

/// The text of a JSON object, grown member by member.
///
/// Between calls it is complete. `prepareAdd` opens it for one member, which the caller appends together with the
/// closing brace; `add` and `addJson` do all of that.
class KEP_API Object {
public:
    Object();
    ~Object();

    /// Takes the closing brace off and puts a comma where a member precedes.
    void prepareAdd();

    /// Appends raw text. Requires that `prepareAdd` came before and that the text is whole again afterwards.
    void append(std::string_view text);

    /// Adds a text member.
    void add(std::string_view key, std::string_view value);

    /// Adds a member whose value is already JSON; an empty text counts as null.
    void addJson(std::string_view key, const std::string& json);

    operator std::string() const;

private:
    std::string text_;
};

/// The text of a JSON array, grown element by element; see `Object`.
class KEP_API Array {
public:
    Array();
    ~Array();

    /// Takes the closing bracket off and puts a comma where an element precedes.
    void prepareAdd();

    /// Appends raw text. Requires that `prepareAdd` came before and that the text is whole again afterwards.
    void append(std::string_view text);

    /// Adds an element that is already JSON; an empty text counts as null.
    void addJson(const std::string& json);

    std::string toJson() const;

private:
    std::string text_;
};

} // namespace Kep::Json
