#pragma once

// Messages from the other computer, validated once on arrival. An invalid message is dropped whole and has no
// effect.

#include "platform/direct_play.h"

#include <cstdint>
#include <optional>
#include <string>

/// The inputs of a shot.
struct ReceivedShot {
  float FrameX, FrameY, FrameZ; ///< at most 300 scene units from the origin in any axis
  float Force;                  ///< 0 to 120
  float X1, Y1, Z1;             ///< direction, unit length
  float X2, Y2, Z2;             ///< up vector, unit length, at a right angle to the direction
  std::int16_t Player;          ///< 1 or 2
};

struct ReceivedVersion {
  std::string Build;
  std::int32_t Number;
};

struct ReceivedScore {
  std::int32_t Home, Away; ///< 0 to the most points possible in the rounds begun so far
  std::int32_t Round;      ///< the sender's, 0 to 99
};

// Each reads the fields after the tag. Returns nothing if a field is missing, surplus, of the wrong type or
// out of range.
std::optional<ReceivedShot> ReadShot(DirectPlayMessage &message);
std::optional<ReceivedVersion> ReadVersion(DirectPlayMessage &message);
std::optional<ReceivedScore> ReadScore(DirectPlayMessage &message, std::int16_t roundsBegun);
std::optional<std::int16_t> ReadResult(DirectPlayMessage &message); ///< 1 to 7
std::optional<std::string> ReadChat(DirectPlayMessage &message);    ///< a line of plain text
bool NothingFollows(DirectPlayMessage &message);                    ///< the tag is the only field
