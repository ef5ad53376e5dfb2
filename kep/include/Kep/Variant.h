/// The dynamic value in which requests and SNMP answers travel.
#pragma once

#include "Kep/Export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace Kep {

/// What a `Variant` holds. The numbers are part of the interface.
enum class VariantType : int {
    null = 0,
    boolean = 1,
    integer = 2, ///< JSON number without fraction, 64 bits
    real = 3,    ///< any other JSON number
    text = 10,   ///< 8-bit clean: JSON string, SNMP octet string, SNMP object identifier (dotted, leading dot)
    array = 20,
    object = 21,
    snmpInteger = 40, ///< 40 to 46: SNMP values (RFC 2578, section 7.1), held as text in decimal or dotted form
    snmpCounter32 = 41,
    snmpGauge32 = 42,
    snmpTimeTicks = 43,
    snmpCounter64 = 44,
    snmpIpAddress = 45,
    snmpOpaque = 46, ///< any other type, held as its raw bytes
};

class VariantIterator;
struct VariantMembers;

/// An immutable value: copies share texts, arrays and objects and are cheap; several threads may read one or copies of
/// it.
///
/// Reading is strict. A conversion that does not fit, and an index, `contains` or a walk on a value that is no object
/// or array, throws `GenericException` with a message that names the member and says what was expected and found:
/// `member "cookie": expected text, found nothing`. Values reached through an index or a walk know their member's
/// name for that purpose, and where it lies unless that is the root: `member "from": expected text, found number
/// (in "config.includeRanges[2]")`, `element "config.includeRanges[2]": expected object, found text`. A root is called
/// `document`. Expected are `boolean`, `integer of 32 bits`, `text`, `list` or `object`; found are `nothing` (null or
/// absent), `boolean`, `number`, `text`, `list`, `object` or `SNMP value`. Messages never quote a value, which may be a
/// secret.
class KEP_API Variant {
public:
    using Array = std::vector<Variant>;
    using Member = std::pair<std::string, Variant>;
    using Object = std::vector<Member>; ///< in the order of the document, each key once

    Variant() noexcept = default;
    explicit Variant(bool value);
    explicit Variant(int value);
    explicit Variant(std::int64_t value);
    explicit Variant(double value);
    explicit Variant(const char* text);
    explicit Variant(std::string text);
    explicit Variant(Array elements);
    explicit Variant(Object members);

    /// A value that SNMP delivered. `kind` is one of 40 to 46, `text` its decimal, dotted or raw form.
    static Variant snmp(VariantType kind, std::string text);

    /// The type code, a value of `VariantType`; 10 is text.
    int type() const noexcept { return static_cast<int>(type_); }
    bool isNull() const noexcept { return type_ == VariantType::null; }

    /// Whether there is nothing in it: null, a text of no bytes, an array or object without elements.
    bool empty() const noexcept;

    /// The member under `key`; a null value when the object has none.
    Variant operator[](const char* key) const;

    /// Whether the object has `key`; if so its value, which may be null, is copied into `out`.
    bool contains(const std::string& key, Variant& out) const;

    /// A JSON number that is integral and within 32 bits signed.
    explicit operator int() const;
    explicit operator bool() const;

    /// A text as it stands, or the text form of an SNMP value.
    explicit operator std::string() const;

    /// The elements of an array, in order.
    VariantIterator begin() const;
    VariantIterator end() const;

    /// The value as JSON without white space, members in their order, texts by `Json::_encodeString`; an SNMP number
    /// is written as a number, other SNMP values as text. A number that JSON has no form for is written as null.
    std::string toJson() const;

private:
    friend class VariantIterator;
    friend struct VariantMembers; // the framework's own walk over an object

    // Copying one throws nothing, so that no copy is left half made when memory runs out.
    using Value = std::variant<std::monostate, bool, std::int64_t, double, std::shared_ptr<const std::string>,
                               std::shared_ptr<const Array>, std::shared_ptr<const Object>>;

    Variant(VariantType type, Value value);
    const Array& elements() const;
    const Object& members() const;
    Variant named(std::string name, const Variant& parent) const;
    std::string path() const;
    [[noreturn]] void throwExpected(std::string_view expected) const;

    VariantType type_ = VariantType::null;
    Value value_;
    std::string member_; // the key it was reached by, empty for a root and for an array's element
    std::string where_;  // the path of what holds it
};

/// A position in the elements of an array `Variant`, which it keeps alive. Used by one thread at a time.
class KEP_API VariantIterator {
public:
    bool operator!=(const VariantIterator& other) const noexcept { return index_ != other.index_; }
    VariantIterator& operator++() noexcept
    {
        ++index_;
        return *this;
    }

    /// The element here. Requires a position before the end.
    Variant value() const;
    Variant operator*() const { return value(); }

private:
    friend class Variant;
    VariantIterator(Variant array, std::size_t index) : array_(std::move(array)), index_(index) {}

    Variant array_;
    std::size_t index_;
};

} // namespace Kep
