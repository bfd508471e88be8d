#pragma once

// "What's my IP address?": the address that the joining player has to enter.

#include "platform/machine.h"

#include <cstdint>
#include <string>

/// Finds the address and shows it in a box, or an error.
void TellLocalAddress(Machine &machine);

/// The first address of this computer, IPv4 in dotted decimal or IPv6; empty after a failure, which has been
/// shown in a box.
std::string LookUpLocalAddress(Machine &machine);

std::uint8_t AddressLowByte(std::uint16_t n);  ///< bits 0 to 7
std::uint8_t AddressHighByte(std::uint16_t n); ///< bits 8 to 15
