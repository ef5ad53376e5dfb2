/// SNMP messages of versions 1 and 2c (RFC 1157, RFC 1901, RFC 3416): requests read from the network, answers written.
///
/// A request is hostile input: one that is not well-formed to its last byte is no request.
#pragma once

#include "lab/Ber.h"

#include <vector>

namespace Lab {

enum class Version : std::uint8_t { V1 = 0, V2c = 1 };

/// Error statuses of an answer (RFC 1157, section 4.1.1).
enum class ErrorStatus : std::uint8_t { NoError = 0, NoSuchName = 2 };

/// An OID and a value, both whole elements.
struct Varbind {
    ByteView oid;
    ByteView value;
};

/// A get or get-next request. Views point into the datagram it was read from. Reusable: reading replaces everything,
/// so that a server's buffers grow once.
class Request {
public:
    /// Reads a whole datagram. False when it is no well-formed get or get-next request of version 1 or 2c; the object
    /// then holds nothing of use.
    bool read(ByteView datagram);

    [[nodiscard]] Version version() const { return _version; }
    [[nodiscard]] ByteView community() const { return _community.contents; }
    [[nodiscard]] bool isGetNext() const { return _isGetNext; }
    [[nodiscard]] const std::vector<Varbind>& varbinds() const { return _varbinds; }

    /// The OID of the varbind `index`.
    [[nodiscard]] Arcs oid(std::size_t index) const;

private:
    friend class AnswerWriter;

    bool readPdu(BerReader& message);
    bool readVarbinds(ByteView list);
    bool readVarbind(ByteView contents);

    Version _version = Version::V1;
    BerElement _community;
    ByteView _requestId;
    bool _isGetNext = false;
    std::vector<Varbind> _varbinds;
    /// The arcs of all varbinds one after another, and where each begins; one more entry marks the end.
    Oid _arcs;
    std::vector<std::size_t> _arcsBegin;
};

/// Writes the answer to a request.
class AnswerWriter {
public:
    AnswerWriter(const Request& request, const std::vector<Varbind>& varbinds, ErrorStatus status,
                 std::size_t errorIndex);

    /// Writes the message to the front of `out` and returns its size; 0, with nothing written, when it does not fit.
    std::size_t write(std::span<std::uint8_t> out) const;

private:
    const Request& _request;
    const std::vector<Varbind>& _varbinds;
    Bytes _version;
    Bytes _status;
    Bytes _errorIndex;
    std::size_t _listSize = 0;
    std::size_t _pduSize;
    std::size_t _messageSize;
};

} // namespace Lab
