/// A client of `printer-discovery serve --stdio`.
#pragma once

#include "tests/network/harness/Program.h"

#include <chrono>
#include <map>
#include <string>

namespace NetworkTests {

/// Starts the server with a data store of its own and speaks JSON-RPC 2.0 with it, one message a line. Used by one
/// thread. Operations that wait for an answer throw `std::runtime_error` when none comes within `sweepBound`.
class RpcClient {
public:
    RpcClient();

    /// Sends a request for an operation of the service and gives its id.
    int send(const std::string& operation, const Document& parameters);

    /// Whether the request has been answered.
    bool answered(int id);

    /// The whole answer to a request, which is forgotten.
    Document answerTo(int id);

    /// Sends, waits, and gives the member "result". Throws when the answer has none.
    Document call(const std::string& operation, const Document& parameters);

    /// Ends the input; the exit status of the server.
    int finish();

private:
    /// Takes the next answer from the server; false when there is none within `bound`.
    bool receive(std::chrono::milliseconds bound);

    TemporaryFolder folder_;
    ChildProcess server_;
    int lastId_ = 0;
    std::map<int, Document> answers_;
};

} // namespace NetworkTests
