#pragma once

// Processing of arbitrary bytes from a hostile computer, from the first frame to the state of the game, and
// from damaged files. A violation of the rules throws.

#include "platform/session/bytes.h"

namespace fuzz {

/// A violated rule.
class Breach : public std::logic_error {
public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char *rule) {
  if (!holds) throw Breach(rule);
}

/// Reads the bytes as datagrams, as a connection's data and as messages.
void ReadFrames(session::ByteView bytes);

/// Plays a match against them. The bytes are a sequence of the other player's actions: an opcode, a length,
/// that many bytes.
void PlayAgainst(session::ByteView bytes);

/// Reads the bytes as a model and as a bitmap. Returns whether they were accepted.
bool ReadModel(session::ByteView bytes);
bool ReadBitmap(session::ByteView bytes);

} // namespace fuzz
