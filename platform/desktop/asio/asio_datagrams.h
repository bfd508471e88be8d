#pragma once

#include "platform/session/transport.h"

#include <asio.hpp>

/// An IPv4 address that a socket of both kinds shows as an IPv6 one, as itself; any other as it is.
asio::ip::address PlainAddress(const asio::ip::address &address);

/// Datagrams on that port; null if it can't be had.
std::unique_ptr<session::DatagramPort> OpenAsioDatagrams(asio::io_context &context, session::Reach reach,
                                                         std::uint16_t port);
