#pragma once

// "What's my IP address?": the address that a joining player has to type.

#include "platform/machine.h"

#include <cstdint>
#include <string>

/// Looks the address up and tells it, or that there is none.
void TellLocalAddress(Machine &machine);

/// The first address of this computer, in dotted decimal (an IPv6 address in its usual form); empty after a
/// failure, which has been told in a box of its own.
std::string LookUpLocalAddress(Machine &machine);

std::uint8_t AddressLowByte(std::uint16_t n);  ///< bits 0 to 7
std::uint8_t AddressHighByte(std::uint16_t n); ///< bits 8 to 15
