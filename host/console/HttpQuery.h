/// The part of a request's target after the question mark: name=value, joined by ampersands.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Host {

/// The value of a name, as it stands there; none when the name is absent.
std::optional<std::string> queryText(const std::string& query, const std::string& name);

/// The value as a number; 0 when the name is absent. Throws `HttpError` with status 400 when it is none.
std::size_t queryNumber(const std::string& query, const std::string& name);

} // namespace Host
