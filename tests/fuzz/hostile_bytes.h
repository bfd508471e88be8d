#pragma once

// Bytes of a hostile computer, from its first frame to the game's state, and of damaged files. Whatever they
// are, they do no more than the rules allow; a breach throws.

#include "platform/session/bytes.h"

namespace fuzz {

/// A rule that the bytes have broken.
class Breach : public std::logic_error {
public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char *rule) {
  if (!holds) throw Breach(rule);
}

/// Reads them as datagrams, as the bytes of a connection and as messages.
void ReadFrames(session::ByteView bytes);

/// Plays a match against them. They are a row of acts of the other player: an opcode, a length, that many
/// bytes.
void PlayAgainst(session::ByteView bytes);

/// Reads them as a model and as a bitmap. Returns whether they were taken.
bool ReadModel(session::ByteView bytes);
bool ReadBitmap(session::ByteView bytes);

} // namespace fuzz
