#pragma once

// Arithmetic with the machine's clock: milliseconds as a signed 32-bit number that wraps round after 49 days.

#include <cstdint>

/// Milliseconds from `from` to `to`; negative if `to` is the earlier one. Right for spans below 24 days.
constexpr std::int32_t Elapsed(std::int32_t from, std::int32_t to) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from));
}

/// The clock's value `milliseconds` after `start`.
constexpr std::int32_t ClockAfter(std::int32_t start, std::int32_t milliseconds) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(start) +
                                   static_cast<std::uint32_t>(milliseconds));
}
