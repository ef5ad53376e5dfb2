#include "base/Utf8.h"

namespace Kep {
namespace {

struct Lead {
    std::size_t length;          // 0: leads no sequence
    unsigned char secondAtLeast; // the range of the second byte, which keeps out overlong forms, surrogates and
    unsigned char secondAtMost;  // values beyond Unicode (RFC 3629, section 4)
};

Lead leadOf(unsigned char byte) noexcept
{
    if (byte < 0xC2 || byte > 0xF4) {
        return {byte < 0x80 ? std::size_t{1} : std::size_t{0}, 0x80, 0xBF};
    }
    switch (byte) {
    case 0xE0:
        return {3, 0xA0, 0xBF};
    case 0xED:
        return {3, 0x80, 0x9F};
    case 0xF0:
        return {4, 0x90, 0xBF};
    case 0xF4:
        return {4, 0x80, 0x8F};
    default:
        return {byte < 0xE0 ? std::size_t{2} : byte < 0xF0 ? std::size_t{3} : std::size_t{4}, 0x80, 0xBF};
    }
}

} // namespace

std::size_t utf8SequenceLength(std::string_view bytes) noexcept
{
    const auto byteAt = [bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const Lead lead = leadOf(byteAt(0));
    if (lead.length > bytes.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < lead.length; ++index) {
        const bool second = index == 1;
        if (byteAt(index) < (second ? lead.secondAtLeast : 0x80) ||
            byteAt(index) > (second ? lead.secondAtMost : 0xBF)) {
            return 0;
        }
    }
    return lead.length;
}

} // namespace Kep
