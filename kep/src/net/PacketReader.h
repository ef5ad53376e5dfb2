/// Reads a packet from the front, and never past its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Kep::Net {

/// A view of bytes that live elsewhere. A read that goes past the end gives zero or nothing and leaves the reader
/// failed, for good; so a caller may read a whole structure and ask once. One thread at a time; throws nothing.
class PacketReader {
public:
    explicit PacketReader(std::span<const std::uint8_t> packet) : rest_(packet) {}

    bool failed() const { return failed_; }
    std::size_t left() const { return rest_.size(); }

    /// The next `count` bytes; nothing when there are fewer.
    std::span<const std::uint8_t> bytes(std::size_t count)
    {
        if (failed_ || count > rest_.size()) {
            failed_ = true;
            rest_ = {};
            return {};
        }
        const auto taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }

    std::uint8_t u8()
    {
        const auto byte = bytes(1);
        return byte.empty() ? std::uint8_t{0} : byte[0];
    }

    /// Most significant byte first.
    std::uint16_t u16()
    {
        const auto pair = bytes(2);
        return pair.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(pair[0] << 8 | pair[1]);
    }

private:
    std::span<const std::uint8_t> rest_;
    bool failed_ = false;
};

} // namespace Kep::Net
