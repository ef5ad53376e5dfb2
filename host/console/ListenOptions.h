/// How a listening socket shares its address, which systems see differently.
#pragma once

#include <utility>

#include <boost/asio/ip/tcp.hpp>

namespace Host {

/// Before the bind: nobody else may listen at the same address, and connections of an earlier server that have not
/// quite ended do not hinder it. Never fails: without, a restart may have to wait.
void setListenOptions(boost::asio::ip::tcp::acceptor& acceptor);

} // namespace Host
