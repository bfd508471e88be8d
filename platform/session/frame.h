#pragma once

// Everything that two programs say to each other below the game, as typed values and as bytes. The one place
// where the wire format stands in code; docs/protocol.md tells the same in words.

#include "platform/session/bytes.h"
#include "platform/session/protocol.h"

#include <optional>
#include <variant>

namespace session {

/// A search asks everybody, or the one host that was named, for sessions.
struct AskFrame {
  Guid Game{};
  std::uint64_t Nonce = 0; ///< comes back in the answer
};

/// A host describes its session. It is joined at the address and port from which this came.
struct AnswerFrame {
  Guid Game{};
  std::uint64_t Nonce = 0;
  std::uint64_t Session = 0; ///< differs from session to session
  std::uint8_t CurrentPlayers = 0;
  std::uint8_t MaxPlayers = 0;
  std::uint32_t Flags = 0;
  std::uint16_t Rounds = 0;
  std::string Name; ///< UTF-8, at most LongestName bytes
};

/// The first frame of a joiner.
struct JoinFrame {
  Guid Game{};
  std::uint64_t Session = 0;
};

/// The first frame on a new connection that goes on where a broken one stopped.
struct ResumeFrame {
  Guid Game{};
  std::uint64_t Session = 0;
  Token Secret{};
  std::uint32_t Next = 0; ///< number of the next message that the joiner waits for
};

/// The host takes the joiner in.
struct WelcomeFrame {
  Token Secret{};
};

/// The host goes on.
struct ResumedFrame {
  std::uint32_t Next = 0; ///< number of the next message that the host waits for
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
  Player = 1, ///< the sender's player has come
};

/// A numbered message; the first has the number 1.
struct DataFrame {
  std::uint32_t Number = 0;
  DataKind Kind = DataKind::Game;
  Bytes Payload;
};

/// A sign of life. Everything below `Next` has come.
struct AckFrame {
  std::uint32_t Next = 0;
};

/// The sender's program leaves the session.
struct ByeFrame {
  std::uint32_t Next = 0; ///< the number that its next message would have had
};

/// The first frame of a program that speaks another version of the protocol.
struct StrangerFrame {
  std::uint16_t Version = 0;
};

using AnyFrame = std::variant<AskFrame, AnswerFrame, JoinFrame, ResumeFrame, WelcomeFrame, ResumedFrame,
                              RefuseFrame, DataFrame, AckFrame, ByeFrame, StrangerFrame>;

/// The bytes of a frame as a datagram carries it: without its length.
Bytes EncodeDatagram(const AnyFrame &frame);

/// The bytes of a frame as a connection carries it: behind its length.
Bytes EncodeFrame(const AnyFrame &frame);

/// @throws MalformedError  if the bytes aren't exactly one frame
AnyFrame DecodeDatagram(ByteView bytes);

/// Cuts the bytes of a connection into frames.
class FrameReader {
public:
  /// @param largest  longest frame that is taken, its length included
  explicit FrameReader(std::size_t largest) : largest_(largest) {}

  void SetLargest(std::size_t largest) { largest_ = largest; }
  void Add(ByteView bytes);

  /// The next whole frame, if there is one.
  /// @throws MalformedError  if what comes next is none; nothing can be read after that
  std::optional<AnyFrame> Next();

  /// Bytes that wait for the rest of their frame.
  std::size_t Held() const { return bytes_.size() - begin_; }

private:
  std::size_t largest_;
  Bytes bytes_;
  std::size_t begin_ = 0; ///< bytes before it belong to frames already taken
};

/// "{7AB2F242-475F-11D4-AF9B-00C04F361528}" as bytes; nothing if the text is no GUID.
std::optional<Guid> ParseGuid(const std::string &text);
std::string GuidText(const Guid &guid);

/// The text, cut to at most `bytes` bytes between two characters.
std::string CutText(const std::string &text, std::size_t bytes);

} // namespace session
