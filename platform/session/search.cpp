#include "platform/session/search.h"

#include "platform/plain_text.h"
#include "platform/session/joined_session.h"

#include <algorithm>
#include <charconv>

namespace session {

namespace {

constexpr std::size_t MostAddresses = 2; ///< of a name; the rest would be the same host again
constexpr std::size_t LongestHost = 255; ///< bytes; the limit of a DNS name

std::optional<std::uint16_t> ParsePort(const std::string &text) {
  std::uint16_t port = 0;
  const char *end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  if (error != std::errc() || stop != end || port == 0) return std::nullopt;
  return port;
}

} // namespace

std::optional<HostName> HostName::Parse(const std::string &text) {
  HostName name;
  name.Host = Trimmed(text);
  std::string port;
  if (name.Host.starts_with('[')) {
    const auto close = name.Host.find(']');
    if (close == std::string::npos) return std::nullopt;
    port = name.Host.substr(close + 1);
    name.Host = name.Host.substr(1, close - 1);
  } else if (std::ranges::count(name.Host, ':') == 1) {
    const auto colon = name.Host.find(':');
    port = name.Host.substr(colon);
    name.Host.resize(colon);
  }
  if (!port.empty()) {
    name.Port = port.front() == ':' ? ParsePort(port.substr(1)) : std::nullopt;
    if (!name.Port) return std::nullopt;
  }
  if (name.Host.empty() || name.Host.size() > LongestHost) return std::nullopt;
  if (name.Host.find_first_of(" \t[]") != std::string::npos) return std::nullopt;
  return name;
}

Search::Search(Transport &transport, Reach reach, std::optional<HostName> host, const Guid &game,
               std::int32_t now)
    : transport_(transport), reach_(reach), host_(std::move(host)), game_(game), begun_(now), askAt_(now) {
  Bytes random(sizeof nonce_);
  transport.FillRandom(random);
  nonce_ = ByteReader(random).U64();
  datagrams_ = transport.OpenDatagrams(reach, 0);
  if (host_) {
    lookup_ = transport.LookUp(host_->Host);
  } else if (reach == Reach::ThisComputer) {
    for (const std::uint16_t port : Ports()) asked_.push_back({LoopbackAddress, port});
  }
}

std::vector<DirectPlaySessionData> Search::Sessions() const {
  std::vector<DirectPlaySessionData> sessions;
  for (const Found &each : found_) sessions.push_back(each.Data);
  return sessions;
}

std::vector<std::uint16_t> Search::Ports() const {
  if (host_ && host_->Port) return {*host_->Port};
  std::vector<std::uint16_t> ports;
  for (std::uint16_t i = 0; i < PortCount; ++i) ports.push_back(static_cast<std::uint16_t>(DefaultPort + i));
  return ports;
}

void Search::Poll(std::int32_t now) {
  if (done_) return;
  if (lookup_ && !FinishLookup(now)) return;
  if (Elapsed(askAt_, now) >= 0) {
    askAt_ = ClockAfter(now, AskAgainMs);
    Ask();
  }
  TakeDatagrams();
  std::erase_if(calls_, [&](Call &call) { return !PollCall(call, now); });
  const bool answered = host_ && host_->Port && !found_.empty();
  done_ = answered || Elapsed(begun_, now) >= SearchMs;
}

/// Returns whether the search can begin. An unknown name ends it.
bool Search::FinishLookup(std::int32_t now) {
  if (!lookup_->Done() && Elapsed(begun_, now) < LookupMs) return false;
  const auto addresses = lookup_->Done() ? lookup_->Addresses() : std::vector<std::string>();
  lookup_.reset();
  if (addresses.empty()) {
    why_ = NobodyFound::UnknownName;
    done_ = true;
    return false;
  }
  begun_ = askAt_ = now; // the lookup doesn't count against the host's time to answer
  BeginCalls(addresses, now);
  return true;
}

std::int32_t Search::NextDeadline() const {
  const std::int32_t end = ClockAfter(begun_, lookup_ ? LookupMs : SearchMs);
  return !lookup_ && Elapsed(askAt_, end) > 0 ? askAt_ : end;
}

void Search::BeginCalls(const std::vector<std::string> &addresses, std::int32_t now) {
  for (std::size_t i = 0; i < std::min(addresses.size(), MostAddresses); ++i) {
    for (const std::uint16_t port : Ports()) {
      const Endpoint host{addresses[i], port};
      asked_.push_back(host);
      calls_.push_back({host, Connection(transport_.Connect(host), now)});
    }
  }
}

void Search::Ask() {
  if (!datagrams_) return;
  const Bytes question = EncodeDatagram(AskFrame{game_, nonce_});
  for (const Endpoint &host : asked_) datagrams_->Send(host, question);
  if (host_ || reach_ == Reach::ThisComputer) return;
  for (const std::uint16_t port : Ports()) datagrams_->SendToAll(port, question);
}

/// Returns whether the call may still get an answer.
bool Search::PollCall(Call &call, std::int32_t now) {
  if (call.connection.GetState() == StreamState::Refused) {
    Learn(NobodyFound::NoGame);
    return false;
  }
  if (!call.asked && call.connection.GetState() == StreamState::Open) {
    call.asked = true;
    call.connection.Write(AskFrame{game_, nonce_}, now);
  }
  if (!call.asked) return true;
  try {
    call.connection.Flush();
    call.connection.Fill(now);
    const auto frame = call.connection.Next();
    if (frame) TakeReply(*frame, call.host);
    const bool hungUp = !frame && call.connection.GetState() == StreamState::Closed;
    if (hungUp) Learn(NobodyFound::Full); // a host that takes no joiner hangs up
    return !frame && !hungUp;
  } catch (const MalformedError &) {
    return false; // another program listens there
  }
}

void Search::TakeReply(const AnyFrame &frame, const Endpoint &from) {
  const auto *refuse = std::get_if<RefuseFrame>(&frame);
  if (refuse && refuse->Reason == RefuseReason::OtherVersion) Learn(NobodyFound::OtherVersion);
  TakeAnswer(frame, from);
}

void Search::TakeDatagrams() {
  if (!datagrams_) return;
  Endpoint from;
  Bytes data;
  for (int i = 0; i < MostDatagramsAtOnce && datagrams_->Receive(from, data); ++i) {
    try {
      TakeAnswer(DecodeDatagram(data), from);
    } catch (const MalformedError &) {
      // Anybody may send anything to an open port.
    }
  }
}

void Search::TakeAnswer(const AnyFrame &frame, const Endpoint &from) {
  const auto *answer = std::get_if<AnswerFrame>(&frame);
  // Only a receiver of the question knows its nonce.
  if (!answer || answer->Nonce != nonce_ || answer->Game != game_) return;
  if (answer->Rounds < 1 || answer->Rounds > MostRounds) return;
  if (answer->CurrentPlayers >= answer->MaxPlayers) return;
  // A host answers every repetition of the question, over every network that leads to it.
  if (found_.size() == MostSessionsFound) return;
  if (std::ranges::count(found_, answer->Session, &Found::Session) > 0) return;
  // One computer has at most one session a port, so it can't push the others off the list.
  if (std::ranges::count(found_, from.Address, &Found::Address) >= PortCount) return;
  DirectPlaySessionData data;
  data.SetGuidApplication(GuidText(answer->Game));
  data.SetSessionName(PlainText(answer->Name, LongestName));
  data.SetCurrentPlayers(answer->CurrentPlayers);
  data.SetMaxPlayers(answer->MaxPlayers);
  data.SetFlags(static_cast<std::int32_t>(answer->Flags));
  data.SetRounds(static_cast<std::int16_t>(answer->Rounds));
  data.SetAddress(SessionAddress{from, answer->Session}.ToText());
  found_.push_back({answer->Session, from.Address, std::move(data)});
}

} // namespace session
