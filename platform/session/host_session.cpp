#include "platform/session/host_session.h"

#include <algorithm>

namespace session {

namespace {

/// Constant time, so that timing reveals nothing about the secret.
bool SameSecret(const Token &a, const Token &b) {
  unsigned difference = 0;
  for (std::size_t i = 0; i < a.size(); ++i) difference |= static_cast<unsigned>(a[i] ^ b[i]);
  return difference == 0;
}

void Refuse(Connection &connection, RefuseReason reason, std::int32_t now) {
  connection.Write(RefuseFrame{reason}, now);
  connection.Flush();
}

/// Makes room for one more by removing the oldest connection of the address with the most connections: one
/// computer alone can't push the others out, and a real joiner doesn't stay in the queue for long.
template <class Queue, class PeerOf> void MakeRoom(Queue &queue, PeerOf peerOf) {
  if (queue.size() < MostPending) return;
  const auto fromSamePeer = [&](const auto &each) {
    return std::ranges::count_if(queue, [&](const auto &other) { return peerOf(other) == peerOf(each); });
  };
  queue.erase(std::ranges::max_element(queue, {}, fromSamePeer));
}

std::uint8_t ToByte(std::int32_t value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

} // namespace

HostSession::HostSession(Transport &transport, Reach reach, const DirectPlaySessionData &description)
    : Session(true), transport_(transport), description_(description) {
  const auto game = ParseGuid(description.GetGuidApplication());
  if (!game) throw DirectPlayError("session: \"" + description.GetGuidApplication() + "\" is not a GUID");
  game_ = *game;
  Bytes random(sizeof id_);
  transport.FillRandom(random);
  id_ = ByteReader(random).U64();
  OpenPort(reach);
}

void HostSession::OpenPort(Reach reach) {
  for (port_ = DefaultPort; port_ < DefaultPort + PortCount; ++port_) {
    listener_ = transport_.Listen(reach, port_);
    if (!listener_) continue;
    datagrams_ = transport_.OpenDatagrams(reach, port_);
    if (datagrams_) return;
  }
  listener_.reset();
  throw DirectPlayError("session: no port from " + std::to_string(DefaultPort) + " to " +
                        std::to_string(DefaultPort + PortCount - 1) + " is free");
}

AnswerFrame HostSession::Answer(std::uint64_t nonce) const {
  AnswerFrame answer;
  answer.Game = game_;
  answer.Nonce = nonce;
  answer.Session = id_;
  answer.CurrentPlayers = 1;
  answer.MaxPlayers = ToByte(description_.GetMaxPlayers());
  answer.Flags = static_cast<std::uint32_t>(description_.GetFlags());
  answer.Rounds = static_cast<std::uint16_t>(description_.GetRounds());
  answer.Name = description_.GetSessionName();
  return answer;
}

void HostSession::Poll(std::int32_t now) {
  if (datagrams_) AnswerDatagrams();
  if (listener_) AcceptConnections(now);
  PollPending(now);
  PollCandidates(now);
  link_.Poll(now);
  if (link_.GetState() == Link::State::Lost) StopListening();
}

void HostSession::AnswerDatagrams() {
  Endpoint from;
  Bytes data;
  for (int i = 0; i < MostDatagramsAtOnce && datagrams_->Receive(from, data); ++i) {
    try {
      const AnyFrame frame = DecodeDatagram(data);
      const auto *ask = std::get_if<AskFrame>(&frame);
      if (ask && ask->Game == game_ && TakesJoiner()) {
        datagrams_->Send(from, EncodeDatagram(Answer(ask->Nonce)));
      }
    } catch (const MalformedError &) {
      // Anybody may send anything to an open port.
    }
  }
}

void HostSession::AcceptConnections(std::int32_t now) {
  for (int i = 0; i < MostAcceptedAtOnce; ++i) {
    auto stream = listener_->Accept();
    if (!stream) return;
    MakeRoom(pending_, [](const auto &each) { return each->Peer(); });
    pending_.push_back(std::make_unique<Connection>(std::move(stream), now));
  }
}

void HostSession::PollPending(std::int32_t now) {
  for (auto &connection : pending_) {
    if (!HandleFirstFrame(connection, now)) connection.reset();
  }
  std::erase(pending_, nullptr);
}

/// Handles the first frame on a new connection. Returns whether the connection is still waiting for it.
bool HostSession::HandleFirstFrame(std::unique_ptr<Connection> &connection, std::int32_t now) {
  try {
    const bool came = connection->Fill(now);
    const auto frame = connection->Next();
    if (!frame) {
      const bool open = came || connection->GetState() == StreamState::Open;
      return open && Elapsed(connection->Begun(), now) < PendingMs;
    }
    if (const auto *join = std::get_if<JoinFrame>(&*frame)) {
      TakeJoiner(std::move(connection), *join, now);
    } else if (const auto *resume = std::get_if<ResumeFrame>(&*frame)) {
      Resume(std::move(connection), *resume, now);
    } else if (const auto *ask = std::get_if<AskFrame>(&*frame)) {
      if (ask->Game == game_ && TakesJoiner()) {
        connection->Write(Answer(ask->Nonce), now);
        connection->Flush();
      }
    } else if (std::holds_alternative<OtherVersionFrame>(*frame)) {
      Refuse(*connection, RefuseReason::OtherVersion, now);
    }
  } catch (const MalformedError &) {
    // Not a program of ours.
  }
  return false;
}

void HostSession::TakeJoiner(std::unique_ptr<Connection> connection, const JoinFrame &join,
                             std::int32_t now) {
  if (join.Game != game_) return Refuse(*connection, RefuseReason::OtherGame, now);
  if (join.Session != id_ || leaving_) return Refuse(*connection, RefuseReason::NoSuchSession, now);
  if (IsFull()) return Refuse(*connection, RefuseReason::Full, now);
  MakeRoom(candidates_, [](const Candidate &each) { return each.Peer; });
  Candidate &candidate = candidates_.emplace_back();
  candidate.Peer = connection->Peer();
  candidate.Welcomed = now;
  transport_.FillRandom(candidate.Secret);
  connection->Write(WelcomeFrame{candidate.Secret}, now);
  candidate.Line.Attach(std::move(connection), 1, now);
}

void HostSession::Resume(std::unique_ptr<Connection> connection, const ResumeFrame &resume,
                         std::int32_t now) {
  if (resume.Game != game_) return Refuse(*connection, RefuseReason::OtherGame, now);
  if (resume.Session != id_) return Refuse(*connection, RefuseReason::NoSuchSession, now);
  Link *link = link_.PlayerCame() && SameSecret(resume.Secret, secret_) ? &link_ : nullptr;
  for (Candidate &each : candidates_) {
    if (SameSecret(resume.Secret, each.Secret)) link = &each.Line;
  }
  if (!link || link->GetState() == Link::State::Lost) {
    return Refuse(*connection, RefuseReason::WrongSecret, now);
  }
  connection->Write(ResumedFrame{link->NextIn()}, now);
  link->Attach(std::move(connection), resume.Next, now);
}

void HostSession::PollCandidates(std::int32_t now) {
  for (Candidate &each : candidates_) {
    each.Line.Poll(now);
    if (!each.Line.PlayerCame()) continue;
    secret_ = each.Secret;
    link_ = std::move(each.Line);
    candidates_.clear(); // to the others the session is full
    return;
  }
  std::erase_if(candidates_, [&](const Candidate &each) {
    return each.Line.GetState() == Link::State::Lost || Elapsed(each.Welcomed, now) >= GiveUpMs;
  });
}

void HostSession::StopListening() {
  listener_.reset();
  datagrams_.reset();
  pending_.clear();
}

void HostSession::SayBye(std::int32_t now) {
  leaving_ = true;
  datagrams_.reset();
  candidates_.clear();
  if (link_.GetState() == Link::State::Waiting) StopListening();
  link_.SayBye(now);
}

std::optional<std::int32_t> HostSession::NextDeadline() const {
  std::optional<std::int32_t> deadline = link_.NextDeadline();
  const auto earlier = [&](std::int32_t moment) {
    if (!deadline || Elapsed(moment, *deadline) > 0) deadline = moment;
  };
  for (const Candidate &each : candidates_) {
    earlier(ClockAfter(each.Welcomed, GiveUpMs));
    if (const auto line = each.Line.NextDeadline()) earlier(*line);
  }
  for (const auto &connection : pending_) earlier(ClockAfter(connection->Begun(), PendingMs));
  return deadline;
}

} // namespace session
