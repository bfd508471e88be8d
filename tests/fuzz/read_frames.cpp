#include "tests/fuzz/hostile_bytes.h"

#include "net/received.h"
#include "platform/session/frame.h"
#include "platform/session/session_message.h"

#include <algorithm>
#include <cmath>

using namespace session;

namespace fuzz {

namespace {

/// Checks that re-encoding gives the same bytes.
void RequireSame(const AnyFrame &frame, ByteView bytes) {
  // The padding of a question is ignored, and so is the content of a frame of another version.
  if (std::holds_alternative<AskFrame>(frame) || std::holds_alternative<OtherVersionFrame>(frame)) return;
  Require(std::ranges::equal(EncodeDatagram(frame), bytes),
          "a frame encodes to the bytes it was decoded from");
}

/// Reads a message as each kind of the game's messages.
void ReadFields(const SessionMessage &message) {
  constexpr std::int16_t Rounds = 3;
  const auto behindTag = [&message] {
    SessionMessage copy = message;
    try {
      copy.ReadString();
    } catch (const DirectPlayError &) {
      // It has no tag, and is read all the same.
    }
    return copy;
  };
  auto copy = behindTag();
  if (const auto shot = ReadShot(copy)) {
    Require(shot->Force >= 0 && shot->Force <= 120, "force from 0 to 120");
    Require(std::abs(shot->FrameX) <= 300 && std::abs(shot->FrameY) <= 300 && std::abs(shot->FrameZ) <= 300,
            "position within 300");
    const double dot = shot->X1 * shot->X2 + shot->Y1 * shot->Y2 + shot->Z1 * shot->Z2;
    Require(std::abs(dot) <= 0.0011, "direction and up vector at a right angle");
    Require(shot->Player == 1 || shot->Player == 2, "side 1 or 2");
  }
  copy = behindTag();
  if (const auto score = ReadScore(copy, Rounds)) {
    Require(score->Home >= 0 && score->Home <= 30 && score->Away >= 0 && score->Away <= 30,
            "score from 0 to 30");
  }
  copy = behindTag();
  if (const auto result = ReadResult(copy)) Require(*result >= 1 && *result <= 7, "result from 1 to 7");
  copy = behindTag();
  if (const auto line = ReadChat(copy)) {
    Require(line->size() <= 800, "a chat line of at most 200 characters");
    Require(std::ranges::none_of(*line, [](char c) { return static_cast<unsigned char>(c) < 0x20; }),
            "a chat line without control characters");
  }
  copy = behindTag();
  if (const auto version = ReadVersion(copy))
    Require(version->Build.size() <= 24, "a build tag of at most 24 bytes");
}

void ReadMessage(ByteView payload) {
  try {
    const SessionMessage message = SessionMessage::Decode(payload);
    Require(std::ranges::equal(message.Encode(), payload),
            "a message encodes to the bytes it was decoded from");
    ReadFields(message);
  } catch (const MalformedError &) {
    // Refused.
  }
}

} // namespace

void ReadFrames(ByteView bytes) {
  ReadMessage(bytes);
  try {
    RequireSame(DecodeDatagram(bytes), bytes);
  } catch (const MalformedError &) {
    // Refused.
  }
  // The same bytes in pieces, with sizes taken from the bytes.
  FrameReader reader(LargestFrame);
  try {
    while (!bytes.empty()) {
      const std::size_t piece = std::min<std::size_t>(bytes.size(), 1U + (bytes[0] & 63U));
      reader.Add(bytes.first(piece));
      bytes = bytes.subspan(piece);
      while (const auto frame = reader.Next()) {
        if (const auto *data = std::get_if<DataFrame>(&*frame)) ReadMessage(data->Payload);
      }
      Require(reader.Held() < LargestFrame, "the reader holds less than a frame");
    }
  } catch (const MalformedError &) {
    // The connection would be closed.
  }
}

} // namespace fuzz
