/// Hand-made NetBIOS node status replies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Kep::Testing {

using Bytes = std::vector<std::uint8_t>;

/// Builds the reply that a node gives to the request with `transactionId`; each part can be falsified.
class StatusReply {
public:
    explicit StatusReply(std::uint16_t transactionId) : transactionId_(transactionId) {}

    std::uint16_t flags = 0x8400;
    std::uint16_t questions = 0;
    std::uint16_t answers = 1;
    Bytes questionSection;
    Bytes name = encodedWildcard();
    std::uint16_t type = 0x0021;
    std::uint16_t klass = 0x0001;
    int extraCount = 0;  ///< what the number of names says beyond the names
    int extraLength = 0; ///< what RDLENGTH says beyond the data

    StatusReply& add(std::string text, std::uint8_t suffix, bool group = false)
    {
        text.resize(15, ' ');
        names_.insert(names_.end(), text.begin(), text.end());
        names_.push_back(suffix);
        put16(names_, group ? 0x8400 : 0x0400);
        ++count_;
        return *this;
    }

    Bytes bytes() const
    {
        Bytes packet;
        for (const int word : {int{transactionId_}, int{flags}, int{questions}, int{answers}, 0, 0}) {
            put16(packet, word);
        }
        append(packet, questionSection);
        append(packet, name);
        for (const int word :
             {int{type}, int{klass}, 0, 0, static_cast<int>(1 + names_.size() + statistics) + extraLength}) {
            put16(packet, word);
        }
        packet.push_back(static_cast<std::uint8_t>(count_ + extraCount));
        append(packet, names_);
        packet.insert(packet.end(), statistics, 0);
        return packet;
    }

    static Bytes encodedWildcard()
    {
        const std::string text = " CKAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA";
        Bytes bytes(text.begin(), text.end());
        bytes.push_back(0);
        return bytes;
    }

    static void append(Bytes& to, const Bytes& from) { to.insert(to.end(), from.begin(), from.end()); }

    static void put16(Bytes& to, int word)
    {
        to.push_back(static_cast<std::uint8_t>(word >> 8 & 0xFF));
        to.push_back(static_cast<std::uint8_t>(word & 0xFF));
    }

private:
    static constexpr std::size_t statistics = 46; // what follows the names

    std::uint16_t transactionId_;
    Bytes names_;
    int count_ = 0;
};

} // namespace Kep::Testing
