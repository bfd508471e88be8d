#pragma once

// Numbers as little-endian bytes, on every processor.

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace session {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// Bytes from the network that are not a valid frame, datagram or message; says what is wrong.
class MalformedError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Appends numbers and strings to a byte buffer.
class ByteWriter {
public:
  explicit ByteWriter(Bytes &out) : out_(out) {}

  void U8(std::uint8_t value) { out_.push_back(value); }
  void U16(std::uint16_t value) { Number(value, 2); }
  void U32(std::uint32_t value) { Number(value, 4); }
  void U64(std::uint64_t value) { Number(value, 8); }
  void Raw(ByteView bytes) { out_.insert(out_.end(), bytes.begin(), bytes.end()); }
  void Text(std::string_view text) { out_.insert(out_.end(), text.begin(), text.end()); }

private:
  void Number(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }

  Bytes &out_;
};

/// Reads them back. Every read throws MalformedError if too few bytes are left.
class ByteReader {
public:
  explicit ByteReader(ByteView bytes) : bytes_(bytes) {}

  std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  std::uint32_t U32() { return static_cast<std::uint32_t>(Number(4)); }
  std::uint64_t U64() { return Number(8); }

  ByteView Raw(std::size_t count) {
    if (count > bytes_.size()) throw MalformedError("ends too early");
    const ByteView taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }

  std::string Text(std::size_t count) {
    const ByteView raw = Raw(count);
    return {raw.begin(), raw.end()};
  }

  ByteView Rest() { return Raw(bytes_.size()); }
  std::size_t Left() const { return bytes_.size(); }

  /// @throws MalformedError  if anything is left
  void ExpectEnd() const {
    if (!bytes_.empty()) throw MalformedError("has surplus bytes");
  }

private:
  std::uint64_t Number(std::size_t count) {
    const ByteView raw = Raw(count);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value |= static_cast<std::uint64_t>(raw[i]) << (8 * i);
    return value;
  }

  ByteView bytes_;
};

} // namespace session
