#pragma once

// The joiner's side: connects to the host, and reconnects when the connection breaks.

#include "platform/session/session.h"

namespace session {

/// What is needed to join a session that a search has found.
struct SessionAddress {
  Endpoint Host;
  std::uint64_t Session = 0;

  std::string ToText() const;
  static std::optional<SessionAddress> FromText(const std::string &text);
};

class JoinedSession : public Session {
public:
  JoinedSession(Transport &transport, SessionAddress address, const Guid &game, std::int32_t now)
      : Session(false), transport_(transport), address_(std::move(address)), game_(game), dialAt_(now) {}

  void Poll(std::int32_t now) override;
  void SayBye(std::int32_t now) override { link_.SayBye(now); }
  std::optional<std::int32_t> NextDeadline() const override;

  bool Joined() const { return joined_; }
  /// Why joining failed; empty if it hasn't.
  const std::string &Failure() const { return failure_; }

private:
  void Dial(std::int32_t now);
  void PollDial(std::int32_t now);
  void Introduce(std::int32_t now);
  void HandleReply(const AnyFrame &frame, std::int32_t now);
  void HandleRefusal(RefuseReason reason);
  void HandleNoListener();
  void Fail(const std::string &why);

  Transport &transport_;
  SessionAddress address_;
  Guid game_;
  Token secret_{};
  bool joined_ = false;
  std::string failure_;
  std::unique_ptr<Connection> dial_; ///< connection during the handshake
  bool introduced_ = false;          ///< this side has sent its first frame
  std::int32_t dialAt_;              ///< time of the next attempt
  int refusals_ = 0;                 ///< in a row
};

} // namespace session
