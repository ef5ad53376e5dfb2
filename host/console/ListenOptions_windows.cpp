#include "host/console/ListenOptions.h"

namespace Host {

/// Connections that have not quite ended hinder nothing here; another program could take the address over, though.
void setListenOptions(boost::asio::ip::tcp::acceptor& acceptor)
{
    using Exclusive = boost::asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>;
    boost::system::error_code ignored;
    acceptor.set_option(Exclusive(true), ignored);
}

} // namespace Host
