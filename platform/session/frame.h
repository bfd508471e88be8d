#pragma once

// The frames of the protocol, as typed values and as bytes. The whole wire format is defined here;
// docs/protocol.md describes it in words.

#include "platform/session/bytes.h"
#include "platform/session/protocol.h"

#include <optional>
#include <variant>

namespace session {

/// A search asks for sessions: every computer within reach, or one named host.
struct AskFrame {
  Guid Game{};
  std::uint64_t Nonce = 0; ///< repeated in the answer
};

/// A host's description of its session. Joiners connect to the address and port that sent it.
struct AnswerFrame {
  Guid Game{};
  std::uint64_t Nonce = 0;
  std::uint64_t Session = 0; ///< unique to the session
  std::uint8_t CurrentPlayers = 0;
  std::uint8_t MaxPlayers = 0;
  std::uint32_t Flags = 0;
  std::uint16_t Rounds = 0;
  std::string Name; ///< UTF-8, at most LongestName bytes
};

/// The first frame from a joiner.
struct JoinFrame {
  Guid Game{};
  std::uint64_t Session = 0;
};

/// The first frame on a connection that resumes a broken one.
struct ResumeFrame {
  Guid Game{};
  std::uint64_t Session = 0;
  Token Secret{};
  std::uint32_t Next = 0; ///< number of the next message that the joiner expects
};

/// The host accepts the joiner.
struct WelcomeFrame {
  Token Secret{};
};

/// The host resumes.
struct ResumedFrame {
  std::uint32_t Next = 0; ///< number of the next message that the host expects
};

enum class RefuseReason : std::uint8_t {
  OtherVersion = 1, ///< of the protocol
  OtherGame = 2,
  NoSuchSession = 3,
  Full = 4,
  WrongSecret = 5,
};

struct RefuseFrame {
  RefuseReason Reason = RefuseReason::Full;
};

enum class DataKind : std::uint8_t {
  Game = 0,   ///< a message of the game
  Player = 1, ///< the sender has created its player
};

/// A numbered message; the first has the number 1.
struct DataFrame {
  std::uint32_t Number = 0;
  DataKind Kind = DataKind::Game;
  Bytes Payload;
};

/// Acknowledges every message below `Next`. Also the keep-alive.
struct AckFrame {
  std::uint32_t Next = 0;
};

/// The sender leaves the session.
struct ByeFrame {
  std::uint32_t Next = 0; ///< the number that its next message would have had
};

/// The first frame of a program that speaks another version of the protocol.
struct OtherVersionFrame {
  std::uint16_t Version = 0;
};

using AnyFrame = std::variant<AskFrame, AnswerFrame, JoinFrame, ResumeFrame, WelcomeFrame, ResumedFrame,
                              RefuseFrame, DataFrame, AckFrame, ByeFrame, OtherVersionFrame>;

/// A frame as a datagram carries it: without a length prefix.
Bytes EncodeDatagram(const AnyFrame &frame);

/// A frame as a connection carries it: with a length prefix.
Bytes EncodeFrame(const AnyFrame &frame);

/// @throws MalformedError  if the bytes are not exactly one frame
AnyFrame DecodeDatagram(ByteView bytes);

/// Splits the bytes of a connection into frames.
class FrameReader {
public:
  /// @param largest  longest accepted frame, length prefix included
  explicit FrameReader(std::size_t largest) : largest_(largest) {}

  void SetLargest(std::size_t largest) { largest_ = largest; }
  void Add(ByteView bytes);

  /// The next complete frame, if there is one.
  /// @throws MalformedError  if the next bytes are not a valid frame; the reader is unusable after that
  std::optional<AnyFrame> Next();

  /// Bytes of an incomplete frame.
  std::size_t Held() const { return bytes_.size() - begin_; }

private:
  std::size_t largest_;
  Bytes bytes_;
  std::size_t begin_ = 0; ///< bytes before it are consumed
};

/// "{7AB2F242-475F-11D4-AF9B-00C04F361528}" as bytes; nothing if the text is not a GUID.
std::optional<Guid> ParseGuid(const std::string &text);
std::string GuidText(const Guid &guid);

/// The text, truncated to at most `bytes` bytes at a character boundary.
std::string CutText(const std::string &text, std::size_t bytes);

} // namespace session
