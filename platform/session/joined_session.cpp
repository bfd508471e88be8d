#include "platform/session/joined_session.h"

#include <charconv>

namespace session {

std::string SessionAddress::ToText() const {
  return Host.Address + ' ' + std::to_string(Host.Port) + ' ' + std::to_string(Session);
}

std::optional<SessionAddress> SessionAddress::FromText(const std::string &text) {
  const auto first = text.find(' ');
  const auto second = text.find(' ', first + 1);
  if (first == std::string::npos || second == std::string::npos) return std::nullopt;
  SessionAddress address;
  address.Host.Address = text.substr(0, first);
  const char *begin = text.data();
  const char *end = begin + text.size();
  const auto port = std::from_chars(begin + first + 1, begin + second, address.Host.Port);
  const auto id = std::from_chars(begin + second + 1, end, address.Session);
  if (port.ec != std::errc() || port.ptr != begin + second) return std::nullopt;
  if (id.ec != std::errc() || id.ptr != end) return std::nullopt;
  return address;
}

void JoinedSession::Poll(std::int32_t now) {
  if (!failure_.empty() || link_.GetState() == Link::State::Lost) {
    dial_.reset();
    return;
  }
  if (link_.IsUp()) {
    link_.Poll(now);
    if (link_.GetState() != Link::State::Broken) return;
    dialAt_ = now;
  }
  if (dial_) PollDial(now);
  const bool over = !failure_.empty() || link_.IsUp() || link_.GetState() == Link::State::Lost;
  if (!dial_ && !over && Elapsed(dialAt_, now) >= 0) Dial(now);
  if (!link_.IsUp()) link_.Poll(now);
}

void JoinedSession::Dial(std::int32_t now) {
  dial_ = std::make_unique<Connection>(transport_.Connect(address_.Host), now);
  introduced_ = false;
  dialAt_ = ClockAfter(now, RedialMs);
}

void JoinedSession::PollDial(std::int32_t now) {
  const StreamState state = dial_->GetState();
  if (state == StreamState::Refused) {
    dial_.reset();
    HandleNoListener();
    return;
  }
  if (state == StreamState::Open && !introduced_) Introduce(now);
  try {
    const bool came = dial_->Fill(now);
    dial_->Flush();
    if (const auto frame = dial_->Next()) {
      refusals_ = 0;
      HandleReply(*frame, now);
    } else if ((state == StreamState::Closed && !came) || Elapsed(dial_->Begun(), now) >= DialMs) {
      refusals_ = 0;
      dial_.reset();
    }
  } catch (const MalformedError &) {
    dial_.reset();
    if (!joined_) Fail("the program that answers is not a host of this game");
  }
}

void JoinedSession::Introduce(std::int32_t now) {
  introduced_ = true;
  if (joined_) {
    dial_->Write(ResumeFrame{game_, address_.Session, secret_, link_.NextIn()}, now);
  } else {
    dial_->Write(JoinFrame{game_, address_.Session}, now);
  }
}

void JoinedSession::HandleReply(const AnyFrame &frame, std::int32_t now) {
  const auto *welcome = std::get_if<WelcomeFrame>(&frame);
  const auto *resumed = std::get_if<ResumedFrame>(&frame);
  if (welcome && !joined_) {
    joined_ = true;
    secret_ = welcome->Secret;
    link_.Attach(std::move(dial_), 1, now);
  } else if (resumed && joined_) {
    // The host's count is impossible, so the session can't be resumed.
    if (!link_.Attach(std::move(dial_), resumed->Next, now)) link_.Lose();
  } else if (const auto *refuse = std::get_if<RefuseFrame>(&frame)) {
    HandleRefusal(refuse->Reason);
  } else {
    throw MalformedError("unexpected frame in a handshake");
  }
  dial_.reset();
}

void JoinedSession::HandleRefusal(RefuseReason reason) {
  if (joined_) {
    link_.Lose(); // a host doesn't refuse whom it has welcomed: this is another program
    return;
  }
  switch (reason) {
  case RefuseReason::OtherVersion:
    return Fail("the host speaks another version of the protocol");
  case RefuseReason::OtherGame:
    return Fail("the host plays another game");
  case RefuseReason::Full:
    return Fail("the session is full");
  case RefuseReason::NoSuchSession:
  case RefuseReason::WrongSecret:
    return Fail("the session has ended");
  }
}

void JoinedSession::HandleNoListener() {
  if (!joined_) return Fail("no program listens at " + address_.Host.Address);
  if (++refusals_ >= RefusalsThatEnd) link_.Lose();
}

void JoinedSession::Fail(const std::string &why) { failure_ = why; }

std::optional<std::int32_t> JoinedSession::NextDeadline() const {
  std::optional<std::int32_t> deadline = link_.NextDeadline();
  if (link_.IsUp() || link_.GetState() == Link::State::Lost || !failure_.empty()) return deadline;
  const std::int32_t dial = dial_ ? ClockAfter(dial_->Begun(), DialMs) : dialAt_;
  return deadline && Elapsed(*deadline, dial) > 0 ? deadline : dial;
}

} // namespace session
