#include "platform/session/link.h"

namespace session {

void Link::Send(DataKind kind, const Bytes &payload, std::int32_t now) {
  if (state_ == State::Lost || leaving_) return;
  Outgoing out{nextOut_, EncodeFrame(DataFrame{nextOut_, kind, payload})};
  ++nextOut_;
  outgoingBytes_ += out.frame.size();
  if (unacknowledged_.empty()) awaitingAckSince_ = now;
  unacknowledged_.push_back(std::move(out));
  if (outgoingBytes_ > MostOutgoing || unacknowledged_.size() > MostOutgoingMessages) {
    // The other side has stopped acknowledging, and the messages can't be kept for ever.
    Lose();
    return;
  }
  if (connection_) {
    connection_->WriteBytes(unacknowledged_.back().frame, now);
    connection_->Flush();
    // A hostile peer can acknowledge by guessing and never read.
    if (connection_->Unsent() > MostOutgoing) Break(now);
  }
}

bool Link::Attach(std::unique_ptr<Connection> connection, std::uint32_t peerNext, std::int32_t now) {
  const std::uint32_t oldest = unacknowledged_.empty() ? nextOut_ : unacknowledged_.front().number;
  if (state_ == State::Lost || peerNext < oldest || !CanAcknowledge(peerNext)) return false;
  if (++emptyResumes_ > MostEmptyResumes) {
    Lose();
    return false;
  }
  Acknowledged(peerNext, now);
  awaitingAckSince_ = now;
  connection_ = std::move(connection);
  connection_->EndHandshake();
  state_ = State::Up;
  ++resumes_;
  for (const Outgoing &out : unacknowledged_) connection_->WriteBytes(out.frame, now);
  if (leaving_) connection_->Write(ByeFrame{nextOut_}, now);
  WriteAck(now);
  connection_->Flush();
  return true;
}

void Link::Poll(std::int32_t now) {
  if (!connection_) {
    if (state_ == State::Broken && Elapsed(brokenAt_, now) >= GiveUpMs) Lose();
    return;
  }
  const bool came = connection_->Fill(now);
  try {
    while (const auto frame = connection_->Next()) {
      Handle(*frame, now);
      if (!connection_) return;
    }
  } catch (const MalformedError &) {
    if (++brokenFrames_ >= MostBrokenFrames) {
      Lose();
    } else {
      Break(now);
    }
    return;
  }
  const bool ended = connection_->GetState() != StreamState::Open && !came;
  if (ended || Elapsed(connection_->Heard(), now) >= SilenceMs) {
    Break(now);
    return;
  }
  if (!unacknowledged_.empty() && Elapsed(awaitingAckSince_, now) >= GiveUpMs) {
    Lose(); // it is alive but acknowledges nothing
    return;
  }
  // No second acknowledgement while the first is still in the buffer.
  const bool signDue = Elapsed(connection_->Sent(), now) >= SignOfLifeMs;
  if ((ackDue_ || signDue) && connection_->Unsent() == 0) WriteAck(now);
  connection_->Flush();
}

void Link::Break(std::int32_t now) {
  connection_.reset();
  state_ = State::Broken;
  brokenAt_ = now;
  // The link is lost only in a later `Poll`, so that callers see the break first.
}

void Link::Lose() {
  if (state_ == State::Lost) return;
  connection_.reset();
  unacknowledged_.clear();
  outgoingBytes_ = 0;
  lostInBreak_ = state_ == State::Broken;
  state_ = State::Lost;
  incoming_.push_back({std::make_shared<SessionMessage>(DirectPlayMessage::Kind::ConnectionLost), 0});
}

void Link::SayBye(std::int32_t now) {
  if (leaving_) return;
  leaving_ = true;
  if (connection_) {
    connection_->Write(ByeFrame{nextOut_}, now);
    connection_->Flush();
  }
}

bool Link::ByeIsOver() const {
  if (state_ == State::Waiting || state_ == State::Lost) return true;
  // The receiver of the farewell ends the connection.
  return leaving_ && !connection_ && unacknowledged_.empty();
}

void Link::Handle(const AnyFrame &frame, std::int32_t now) {
  if (const auto *data = std::get_if<DataFrame>(&frame)) {
    HandleData(*data);
  } else if (const auto *ack = std::get_if<AckFrame>(&frame)) {
    if (!CanAcknowledge(ack->Next)) throw MalformedError("acknowledges what was never sent");
    Acknowledged(ack->Next, now);
  } else if (const auto *bye = std::get_if<ByeFrame>(&frame)) {
    if (bye->Next != nextIn_) throw MalformedError("leaves with messages missing");
    WriteAck(now);
    connection_->Flush();
    Lose();
  } else {
    throw MalformedError("unexpected frame in a running session");
  }
  emptyResumes_ = 0;
}

void Link::HandleData(const DataFrame &frame) {
  if (frame.Number > nextIn_) throw MalformedError("a message is missing");
  ackDue_ = true;
  if (frame.Number < nextIn_) return;
  if (playerFirst_ && !playerCame_ && frame.Kind != DataKind::Player) {
    throw MalformedError("a message before the player");
  }
  ++nextIn_;
  Deliver(frame);
}

void Link::Deliver(const DataFrame &frame) {
  if (leaving_) return;
  std::shared_ptr<SessionMessage> message;
  if (frame.Kind == DataKind::Player) {
    if (playerCame_) return;
    playerCame_ = true;
    message = std::make_shared<SessionMessage>(DirectPlayMessage::Kind::PlayerJoined);
  } else {
    try {
      message = std::make_shared<SessionMessage>(SessionMessage::Decode(frame.Payload));
    } catch (const MalformedError &) {
      ++dropped_;
      return;
    }
  }
  incomingBytes_ += frame.Payload.size();
  incoming_.push_back({std::move(message), frame.Payload.size()});
  if (incoming_.size() > MostIncomingMessages || incomingBytes_ > MostIncoming) {
    // No player sends this fast: it is a flood, and its messages are discarded.
    incoming_.clear();
    incomingBytes_ = 0;
    Lose();
  }
}

void Link::Acknowledged(std::uint32_t next, std::int32_t now) {
  while (!unacknowledged_.empty() && unacknowledged_.front().number < next) {
    awaitingAckSince_ = now;
    outgoingBytes_ -= unacknowledged_.front().frame.size();
    unacknowledged_.pop_front();
  }
}

void Link::WriteAck(std::int32_t now) {
  connection_->Write(AckFrame{nextIn_}, now);
  ackDue_ = false;
}

std::optional<std::int32_t> Link::NextDeadline() const {
  if (connection_) {
    const std::int32_t sign = ClockAfter(connection_->Sent(), SignOfLifeMs);
    const std::int32_t silence = ClockAfter(connection_->Heard(), SilenceMs);
    return connection_->Unsent() > 0 || Elapsed(sign, silence) < 0 ? silence : sign;
  }
  if (state_ == State::Broken) return ClockAfter(brokenAt_, GiveUpMs);
  return std::nullopt;
}

std::shared_ptr<SessionMessage> Link::Take() {
  if (incoming_.empty()) return nullptr;
  Incoming first = std::move(incoming_.front());
  incoming_.pop_front();
  incomingBytes_ -= first.bytes;
  return first.message;
}

} // namespace session
