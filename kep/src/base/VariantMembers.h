/// A walk over the members of an object, which plug-ins have no use for.
#pragma once

#include "Kep/Variant.h"

#include <string>
#include <vector>

namespace Kep {

struct VariantMembers {
    /// The keys of an object in the order of the document. Throws `GenericException` as `Variant`'s readers do when
    /// `value` is none. Any thread.
    static std::vector<std::string> keysOf(const Variant& value)
    {
        std::vector<std::string> keys;
        for (const Variant::Member& member : value.members()) {
            keys.push_back(member.first);
        }
        return keys;
    }
};

} // namespace Kep
