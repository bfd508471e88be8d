#pragma once

// The joiner's side: it connects to the host, and connects again whenever the connection breaks.

#include "platform/session/session.h"

namespace session {

/// Everything by which a session found by a search can be joined.
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
  /// Why the host can't be joined; empty as long as it still may.
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
  std::unique_ptr<Connection> dial_; ///< a connection whose handshake isn't done
  bool introduced_ = false;          ///< this side's half of it is
  std::int32_t dialAt_;              ///< when to try next
  int refusals_ = 0;                 ///< in a row
};

} // namespace session
