#pragma once

// The host's side: answers searches, welcomes joiners, plays with the first one that creates its player, and
// resumes with it after a break.

#include "platform/direct_play.h"
#include "platform/session/session.h"

namespace session {

class HostSession : public Session {
public:
  /// Opens the session on the first free port.
  /// @throws DirectPlayError  if the description has no application GUID, or no port is free
  HostSession(Transport &transport, Reach reach, const DirectPlaySessionData &description);

  void Poll(std::int32_t now) override;
  void SayBye(std::int32_t now) override;
  std::optional<std::int32_t> NextDeadline() const override;

  std::uint16_t Port() const { return port_; }

private:
  using Pending = std::vector<std::unique_ptr<Connection>>;

  /// A joiner that has been welcomed and hasn't created its player yet. It doesn't reserve the place.
  struct Candidate {
    std::string Peer;
    Token Secret{};
    std::int32_t Welcomed = 0;
    Link Line{true};
  };

  void OpenPort(Reach reach);
  bool IsFull() const { return description_.GetMaxPlayers() < Places || link_.PlayerCame(); }
  bool TakesJoiner() const { return listener_ && !leaving_ && !IsFull(); }
  AnswerFrame Answer(std::uint64_t nonce) const;
  void AnswerDatagrams();
  void AcceptConnections(std::int32_t now);
  void PollPending(std::int32_t now);
  bool HandleFirstFrame(std::unique_ptr<Connection> &connection, std::int32_t now);
  void TakeJoiner(std::unique_ptr<Connection> connection, const JoinFrame &join, std::int32_t now);
  void Resume(std::unique_ptr<Connection> connection, const ResumeFrame &resume, std::int32_t now);
  void PollCandidates(std::int32_t now);
  void StopListening();

  static constexpr std::int32_t Places = 2; ///< two computers play

  Transport &transport_;
  Guid game_{};
  std::uint64_t id_ = 0;
  DirectPlaySessionData description_;
  std::uint16_t port_ = 0;
  std::unique_ptr<Listener> listener_;
  std::unique_ptr<DatagramPort> datagrams_;
  Pending pending_;                   ///< connections without a first frame, oldest first
  std::vector<Candidate> candidates_; ///< oldest first
  Token secret_{};                    ///< of the joiner that plays
  bool leaving_ = false;
};

} // namespace session
