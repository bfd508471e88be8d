#pragma once

// 64-bit FNV-1a, for golden values and for comparing two computers.

#include <cstdint>
#include <cstring>

constexpr std::uint64_t FnvStart = 0xCBF29CE484222325ULL;

/// Adds a number to a hash, by its bytes in memory.
template <class Number> void AddToHash(std::uint64_t &hash, Number value) {
  constexpr std::uint64_t Prime = 0x100000001B3ULL;
  unsigned char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  for (const unsigned char byte : bytes) hash = (hash ^ byte) * Prime;
}
