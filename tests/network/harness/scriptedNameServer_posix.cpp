/// A DNS server for tests. Arguments: the address to listen at (port 53), then ADDRESS=NAME for each address that has
/// a name; an empty NAME leaves questions about that address unanswered, other addresses do not exist. Prints
/// "listening", then a line with the address for every question about one.
#include "tests/network/harness/Descriptor.h"

#include <arpa/inet.h>
#include <arpa/nameser.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::uint16_t dnsPort = 53;
constexpr unsigned char typePointer = 12;
constexpr std::size_t headerSize = 12;
constexpr unsigned char answerFlags = 0x84; ///< a response, authoritative
constexpr unsigned char nameError = 3;

/// The labels of the name at the start of the question section; empty when they are cut short.
std::vector<std::string> questionLabels(const Bytes& query)
{
    std::vector<std::string> labels;
    std::size_t at = headerSize;
    while (at < query.size() && query[at] != 0) {
        const std::size_t length = query[at];
        if (at + 1 + length > query.size()) {
            return {};
        }
        labels.emplace_back(query.begin() + static_cast<std::ptrdiff_t>(at + 1),
                            query.begin() + static_cast<std::ptrdiff_t>(at + 1 + length));
        at += 1 + length;
    }
    return labels;
}

/// The address that a reverse question is about: its octets come last first, before "in-addr.arpa".
std::optional<std::string> addressAsked(const Bytes& query)
{
    const std::vector<std::string> labels = questionLabels(query);
    if (labels.size() != 6 || labels[4] != "in-addr" || labels[5] != "arpa") {
        return std::nullopt;
    }
    return labels[3] + "." + labels[2] + "." + labels[1] + "." + labels[0];
}

std::size_t questionEnd(const Bytes& query)
{
    std::size_t at = headerSize;
    for (const std::string& label : questionLabels(query)) {
        at += 1 + label.size();
    }
    return std::min(query.size(), at + 5);
}

Bytes encodedName(const std::string& name)
{
    Bytes bytes;
    std::istringstream labels(name);
    for (std::string label; std::getline(labels, label, '.');) {
        bytes.push_back(static_cast<unsigned char>(label.size()));
        bytes.insert(bytes.end(), label.begin(), label.end());
    }
    bytes.push_back(0);
    return bytes;
}

/// The header and question of the query, marked as a response with so many answers.
Bytes response(const Bytes& query, unsigned char code, unsigned char answers)
{
    Bytes bytes(query.begin(), query.begin() + static_cast<std::ptrdiff_t>(questionEnd(query)));
    bytes[2] = static_cast<unsigned char>(answerFlags | (query[2] & 1));
    bytes[3] = code;
    for (std::size_t at = 6; at < headerSize; ++at) {
        bytes[at] = 0;
    }
    bytes[7] = answers;
    return bytes;
}

Bytes pointerResponse(const Bytes& query, const std::string& name)
{
    Bytes bytes = response(query, 0, 1);
    const Bytes target = encodedName(name);
    const Bytes fixed = {0xC0, headerSize, 0, typePointer, 0, 1, 0, 0, 0, 60, 0};
    bytes.insert(bytes.end(), fixed.begin(), fixed.end());
    bytes.push_back(static_cast<unsigned char>(target.size()));
    bytes.insert(bytes.end(), target.begin(), target.end());
    return bytes;
}

using Names = std::map<std::string, std::string>;

/// The response to a query; empty when there is to be none.
Bytes answer(const Bytes& query, const Names& names)
{
    const std::optional<std::string> address = addressAsked(query);
    if (address) {
        std::cout << *address << std::endl;
    }
    const auto found = address ? names.find(*address) : names.end();
    if (found == names.end()) {
        return response(query, nameError, 0);
    }
    return found->second.empty() ? Bytes() : pointerResponse(query, found->second);
}

NetworkTests::Descriptor listenAt(const char* address)
{
    NetworkTests::Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in name = {};
    name.sin_family = AF_INET;
    name.sin_port = htons(dnsPort);
    if (inet_pton(AF_INET, address, &name.sin_addr) != 1 ||
        bind(socket.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
        socket.reset();
    }
    return socket;
}

[[noreturn]] void serve(int socket, const Names& names)
{
    while (true) {
        Bytes query(512);
        sockaddr_in from = {};
        socklen_t fromSize = sizeof from;
        const ssize_t size =
            recvfrom(socket, query.data(), query.size(), 0, reinterpret_cast<sockaddr*>(&from), &fromSize);
        if (size < static_cast<ssize_t>(headerSize)) {
            continue;
        }
        query.resize(static_cast<std::size_t>(size));
        const Bytes reply = answer(query, names);
        if (!reply.empty()) {
            sendto(socket, reply.data(), reply.size(), 0, reinterpret_cast<const sockaddr*>(&from), fromSize);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: scripted-name-server LISTEN-ADDRESS [ADDRESS=NAME]...\n";
        return 2;
    }
    Names names;
    for (int at = 2; at < argc; ++at) {
        const std::string word = argv[at];
        const std::size_t separator = std::min(word.find('='), word.size() - 1);
        names[word.substr(0, separator)] = word.substr(separator + 1);
    }
    const NetworkTests::Descriptor socket = listenAt(argv[1]);
    if (!socket) {
        std::cerr << "cannot listen at " << argv[1] << "\n";
        return 1;
    }
    std::cout << "listening" << std::endl;
    serve(socket.get(), names);
}
