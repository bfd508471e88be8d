#pragma once

// Guaranteed delivery between the two programs of a session, across several connections: every message has a
// number, is kept until the other side acknowledges it, and is sent again on the next connection.

#include "platform/session/connection.h"
#include "platform/session/session_message.h"

#include <deque>
#include <memory>

namespace session {

class Link {
public:
  enum class State {
    Waiting, ///< nobody has joined yet
    Up,
    Broken, ///< the connection broke; a new one may resume
    Lost,   ///< for good: the other program has ended or is unreachable
  };

  /// @param playerFirst  the other side must create its player before it sends anything else
  explicit Link(bool playerFirst) : playerFirst_(playerFirst) {}

  State GetState() const { return state_; }
  bool IsUp() const { return state_ == State::Up; }

  /// Whether the connection broke and has not come back, even if the link was lost over it.
  bool IsDown() const { return state_ == State::Broken || lostInBreak_; }

  /// Sends a message, now or on the next connection. Does nothing once the link is lost.
  void Send(DataKind kind, const Bytes &payload, std::int32_t now);

  /// Continues on a connection whose handshake is done. Unacknowledged messages are sent again.
  /// @param peerNext  number of the next message that the other side expects
  /// @returns false if that number is impossible, or if too many connections in a row broke before any frame
  ///          arrived, which loses the link
  bool Attach(std::unique_ptr<Connection> connection, std::uint32_t peerNext, std::int32_t now);

  /// Receives and sends what is due, keeps the connection alive and detects when it breaks.
  void Poll(std::int32_t now);

  /// Gives up the other side. The game learns of it after all messages that arrived earlier.
  void Lose();

  /// Tells the other side that this program leaves, on this connection or on the next one.
  void SayBye(std::int32_t now);

  /// Whether nothing is left to wait for after `SayBye`.
  bool ByeIsOver() const;

  /// Whether the other side has acknowledged everything, or never will.
  bool AllDelivered() const {
    return unacknowledged_.empty() || state_ == State::Lost || state_ == State::Waiting;
  }

  /// When `Poll` is due next even if nothing arrives.
  std::optional<std::int32_t> NextDeadline() const;

  /// Received messages, oldest first.
  std::size_t Waiting() const { return incoming_.size(); }
  std::shared_ptr<SessionMessage> Take(); ///< null if there is none

  bool PlayerCame() const { return playerCame_; }  ///< the other side has created its player
  std::uint32_t NextIn() const { return nextIn_; } ///< number of the next message to receive
  int Resumes() const { return resumes_; }         ///< connections after the first
  int Dropped() const { return dropped_; }         ///< messages that could not be decoded

private:
  struct Outgoing {
    std::uint32_t number;
    Bytes frame;
  };
  struct Incoming {
    std::shared_ptr<SessionMessage> message;
    std::size_t bytes;
  };

  void Break(std::int32_t now);
  void Handle(const AnyFrame &frame, std::int32_t now);
  void HandleData(const DataFrame &frame);
  void Acknowledged(std::uint32_t next, std::int32_t now);
  bool CanAcknowledge(std::uint32_t next) const { return next >= 1 && next <= nextOut_; }
  void Deliver(const DataFrame &frame);
  void WriteAck(std::int32_t now);

  bool playerFirst_;
  State state_ = State::Waiting;
  std::unique_ptr<Connection> connection_;
  std::deque<Outgoing> unacknowledged_;
  std::size_t outgoingBytes_ = 0;
  std::int32_t awaitingAckSince_ = 0; ///< restarted by every acknowledgement and connection
  std::uint32_t nextOut_ = 1;
  std::deque<Incoming> incoming_;
  std::size_t incomingBytes_ = 0;
  std::uint32_t nextIn_ = 1;
  bool ackDue_ = false;
  bool playerCame_ = false;
  bool leaving_ = false;
  bool lostInBreak_ = false;
  std::int32_t brokenAt_ = 0; ///< when the last connection broke
  int resumes_ = -1;
  int emptyResumes_ = 0; ///< connections in a row that broke before any frame arrived
  int brokenFrames_ = 0;
  int dropped_ = 0;
};

} // namespace session
