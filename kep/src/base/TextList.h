/// Lists of texts as values.
#pragma once

#include "Kep/Variant.h"

#include <string>
#include <vector>

namespace Kep {

/// An array of the texts, in order.
inline Variant textList(const std::vector<std::string>& texts)
{
    Variant::Array elements;
    elements.reserve(texts.size());
    for (const std::string& text : texts) {
        elements.emplace_back(text);
    }
    return Variant(std::move(elements));
}

} // namespace Kep
