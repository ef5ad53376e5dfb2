// JSON read, written and read again; and any bytes as a text.
#include "Kep/Exception.h"
#include "Kep/Json.h"
#include "fuzz/Target.h"

#include <nlohmann/json.hpp>

namespace {

// Never part of an error, whatever the document is.
constexpr std::string_view secret = "s3cr3t-pw";

void requireRoundTrip(std::string_view document)
{
    try {
        const std::string written = Kep::Json::parse(document).toJson();
        Fuzz::require(nlohmann::json::accept(written), "what is written is JSON");
        Fuzz::require(Kep::Json::parse(written).toJson() == written, "what is written reads as it was");
    } catch (const Kep::GenericException& error) {
        const std::string_view message = error.what();
        Fuzz::require(message.starts_with("malformed JSON at line "), "an error says where");
        Fuzz::require(message.find(secret) == std::string_view::npos, "an error does not quote the document");
    }
}

void requireText(std::string_view bytes)
{
    const std::string literal = Kep::Json::_encodeString(bytes);
    const auto read = nlohmann::json::parse(literal, nullptr, false);
    Fuzz::require(read.is_string(), "any bytes make a JSON text");
    const auto text = read.get<std::string>();
    Fuzz::require(static_cast<std::string>(Kep::Json::parse(literal)) == text, "both readers see the same text");
    Fuzz::require(Kep::Json::_encodeString(text) == literal, "a text is written in one way");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = Fuzz::textOf(data, size);
    requireRoundTrip(input);
    requireText(input);
    return 0;
}
