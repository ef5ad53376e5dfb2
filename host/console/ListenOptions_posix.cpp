#include "host/console/ListenOptions.h"

namespace Host {

void setListenOptions(boost::asio::ip::tcp::acceptor& acceptor)
{
    boost::system::error_code ignored;
    acceptor.set_option(boost::asio::socket_base::reuse_address(true), ignored);
}

} // namespace Host
