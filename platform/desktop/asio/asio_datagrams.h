#pragma once

#include "platform/session/transport.h"

#include <asio.hpp>

/// Converts an IPv4-mapped IPv6 address to IPv4; returns any other unchanged.
asio::ip::address PlainAddress(const asio::ip::address &address);

/// Opens a datagram port; null if it isn't available.
std::unique_ptr<session::DatagramPort> OpenAsioDatagrams(asio::io_context &context, session::Reach reach,
                                                         std::uint16_t port);
