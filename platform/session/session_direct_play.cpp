#include "platform/session/session_direct_play.h"

#include "platform/plain_text.h"
#include "platform/session/host_session.h"
#include "platform/session/joined_session.h"

#include <algorithm>

namespace session {

namespace {

constexpr std::int32_t HostPlayer = 1;
constexpr std::int32_t JoiningPlayer = 2;

struct Method {
  const char *name;
  const char *address;
  Reach reach;
};

constexpr Method Methods[] = {
    {"This Computer", "this computer", Reach::ThisComputer},
    {"Internet TCP/IP Connection", "internet", Reach::Network},
};

const Method &MethodAt(std::int32_t index) {
  if (index < 1 || index > static_cast<std::int32_t>(std::size(Methods))) {
    throw DirectPlayError("connection methods: there is no number " + std::to_string(index));
  }
  return Methods[index - 1];
}

class EnumConnections : public DirectPlayEnumConnections {
public:
  std::int32_t GetCount() const override { return static_cast<std::int32_t>(std::size(Methods)); }
  std::string GetName(std::int32_t index) const override { return MethodAt(index).name; }
  std::string GetAddress(std::int32_t index) const override { return MethodAt(index).address; }
};

class EnumSessions : public DirectPlayEnumSessions {
public:
  explicit EnumSessions(std::vector<DirectPlaySessionData> found) : found_(std::move(found)) {}

  std::int32_t GetCount() const override { return static_cast<std::int32_t>(found_.size()); }
  DirectPlaySessionData GetItem(std::int32_t index) const override {
    if (index < 1 || index > GetCount()) {
      throw DirectPlayError("sessions found: there is no number " + std::to_string(index));
    }
    return found_[static_cast<std::size_t>(index - 1)];
  }

private:
  std::vector<DirectPlaySessionData> found_;
};

Guid ExpectGuid(const DirectPlaySessionData &description) {
  const auto guid = ParseGuid(description.GetGuidApplication());
  if (!guid) throw DirectPlayError("session: \"" + description.GetGuidApplication() + "\" is not a GUID");
  return *guid;
}

/// Resets a pointer at the end of its scope.
template <class Thing> struct ResetAtEnd {
  std::unique_ptr<Thing> &thing;
  ~ResetAtEnd() { thing.reset(); }
};

} // namespace

SessionDirectPlay::SessionDirectPlay(Machine &machine, std::shared_ptr<Transport> transport,
                                     MakeSearchPrompt makePrompt)
    : machine_(machine), transport_(std::move(transport)), makePrompt_(std::move(makePrompt)),
      poll_(machine.OnPump([this] { Poll(); })) {}

SessionDirectPlay::~SessionDirectPlay() {
  try {
    SessionDirectPlay::Close();
  } catch (const std::exception &) {
    // The other side will notice the silence instead.
  }
}

std::shared_ptr<DirectPlayEnumConnections> SessionDirectPlay::GetDPEnumConnections(const std::string &,
                                                                                   std::int32_t) {
  return std::make_shared<EnumConnections>();
}

void SessionDirectPlay::InitializeConnection(const std::string &address) {
  if (reach_) throw DirectPlayError("connection: this object already has one");
  const auto *method =
      std::ranges::find_if(Methods, [&](const Method &each) { return address == each.address; });
  if (method == std::end(Methods)) throw DirectPlayError("connection: \"" + address + "\" is not a method");
  reach_ = method->reach;
}

void SessionDirectPlay::ExpectConnection() const {
  if (!reach_) throw DirectPlayError("session: no connection method has been chosen");
  if (session_) throw DirectPlayError("session: one is open already");
  if (search_ || joining_) throw DirectPlayError("session: a search or a join is under way");
}

void SessionDirectPlay::Poll() {
  transport_->Poll();
  const std::int32_t now = machine_.timeGetTime();
  std::optional<std::int32_t> wake;
  if (search_) {
    search_->Poll(now);
    wake = search_->NextDeadline();
  }
  if (session_) {
    session_->Poll(now);
    const auto deadline = session_->NextDeadline();
    if (deadline && (!wake || Elapsed(*deadline, *wake) > 0)) wake = deadline;
  }
  transport_->WakeAt(wake);
}

std::shared_ptr<DirectPlayEnumSessions>
SessionDirectPlay::GetDPEnumSessions(const DirectPlaySessionData &wanted, std::int32_t, std::int32_t) {
  ExpectConnection();
  const Guid game = ExpectGuid(wanted);
  const ResetAtEnd<Search> end{search_};
  if (*reach_ == Reach::Network && makePrompt_) return std::make_shared<EnumSessions>(SearchByPrompt(game));
  const Machine::InputOff off(machine_); // a second press must not start a second search
  RunSearch(std::nullopt, game, [](const Search &) { return true; });
  return std::make_shared<EnumSessions>(search_->Sessions());
}

/// Runs a search until it is over or `keepGoing`, called after every poll, returns false. Leaves the result
/// in `search_`.
void SessionDirectPlay::RunSearch(std::optional<HostName> host, const Guid &game,
                                  const std::function<bool(const Search &)> &keepGoing) {
  search_ = std::make_unique<Search>(*transport_, *reach_, std::move(host), game, machine_.timeGetTime());
  Poll();
  while (!search_->Done() && keepGoing(*search_)) machine_.WaitUntil(machine_.ClockIn(NetworkPollMs));
}

/// Lets the player enter the host, and try again as long as no session is found there.
std::vector<DirectPlaySessionData> SessionDirectPlay::SearchByPrompt(const Guid &game) {
  const auto prompt = makePrompt_(machine_, machine_.SearchedHost);
  while (const auto answer = prompt->Ask()) {
    machine_.SearchedHost = *answer;
    const bool searchesLocally = Trimmed(*answer).empty();
    std::optional<HostName> host;
    if (!searchesLocally) host = HostName::Parse(*answer);
    if (!searchesLocally && !host) {
      prompt->ShowNobodyFound(NobodyFound::InvalidEntry, DefaultPort);
      continue;
    }
    const std::string where = searchesLocally ? "the local network" : *answer;
    bool keepGoing = true;
    RunSearch(host, game, [&](const Search &search) {
      const std::string what = search.LooksUp() ? "Looking up the name " : "Searching ";
      keepGoing = prompt->ShowSearching(what + where);
      return keepGoing;
    });
    // A player who wants to host comes this way too: on the local network an empty list is no failure.
    if (!keepGoing || searchesLocally || !search_->Sessions().empty()) return search_->Sessions();
    prompt->ShowNobodyFound(search_->WhyNobody(), host->Port.value_or(DefaultPort));
    search_.reset();
  }
  return {};
}

void SessionDirectPlay::Open(const DirectPlaySessionData &description, std::int32_t flags) {
  ExpectConnection();
  if (flags == DPOPEN_CREATE) {
    auto host = std::make_unique<HostSession>(*transport_, *reach_, description);
    if (*reach_ == Reach::Network) routerPort_ = transport_->OpenRouterPort(host->Port());
    session_ = std::move(host);
    isHost_ = true;
  } else if (flags == DPOPEN_JOIN) {
    Join(description);
    isHost_ = false;
  } else {
    throw DirectPlayError("session: can only be created or joined");
  }
}

void SessionDirectPlay::Join(const DirectPlaySessionData &description) {
  const auto address = SessionAddress::FromText(description.GetAddress());
  if (!address) throw DirectPlayError("session: its description isn't from a search");
  struct Joining {
    SessionDirectPlay &owner;
    bool done = false;
    ~Joining() {
      owner.joining_ = false;
      if (!done) owner.session_.reset();
    }
  } joining{*this};
  joining_ = true;
  auto opened =
      std::make_unique<JoinedSession>(*transport_, *address, ExpectGuid(description), machine_.timeGetTime());
  const JoinedSession &joined = *opened;
  session_ = std::move(opened);
  Await([&] { return joined.Joined() || !joined.Failure().empty(); });
  if (!joined.Joined()) {
    const std::string why = joined.Failure().empty() ? "the host does not answer" : joined.Failure();
    throw DirectPlayError("session \"" + description.GetSessionName() + "\": " + why);
  }
  joining.done = true;
}

std::int32_t SessionDirectPlay::CreatePlayer(const std::string &, const std::string &, std::int32_t,
                                             std::int32_t) {
  if (!session_ || joining_) throw DirectPlayError("player: there is no session");
  if (player_ != 0) throw DirectPlayError("player: there is one already");
  player_ = isHost_ ? HostPlayer : JoiningPlayer;
  // A joiner knows the host by having joined.
  if (isHost_) return player_;
  session_->GetLink().Send(DataKind::Player, {}, machine_.timeGetTime());
  // Only the host's acknowledgement confirms the place: another joiner may have been quicker.
  Link &link = session_->GetLink();
  Await([&] { return link.AllDelivered(); });
  const bool refused = link.GetState() == Link::State::Lost;
  if (refused || !link.AllDelivered()) {
    Close();
    throw DirectPlayError(refused ? "player: the host plays with another joiner"
                                  : "player: the host does not acknowledge it");
  }
  return player_;
}

/// Waits until `over` or `OpenMs`. Buttons don't work meanwhile, so that a second press can't start a second
/// attempt.
void SessionDirectPlay::Await(const std::function<bool()> &over) {
  const std::int32_t end = machine_.ClockIn(OpenMs);
  Poll();
  const Machine::InputOff off(machine_);
  while (!over() && !machine_.ClockReached(end)) {
    machine_.WaitUntil(machine_.ClockIn(NetworkPollMs));
    if (!session_) throw DirectPlayError("session: closed while it was being joined");
  }
}

std::int32_t SessionDirectPlay::GetMessageCount(std::int32_t player) {
  Poll();
  if (!session_ || player == 0 || player != player_) return 0;
  return static_cast<std::int32_t>(session_->GetLink().Waiting());
}

std::shared_ptr<DirectPlayMessage> SessionDirectPlay::Receive(std::int32_t &from, std::int32_t &to,
                                                              std::int32_t) {
  const auto message = session_ && player_ != 0 ? session_->GetLink().Take() : nullptr;
  if (!message) throw DirectPlayError("message: the queue is empty");
  const bool game = message->GetKind() == DirectPlayMessage::Kind::Game;
  from = !game ? DPID_ALLPLAYERS : isHost_ ? JoiningPlayer : HostPlayer;
  to = player_;
  return message;
}

std::shared_ptr<DirectPlayMessage> SessionDirectPlay::CreateMessage() {
  return std::make_shared<SessionMessage>();
}

void SessionDirectPlay::Send(std::int32_t from, std::int32_t, std::int32_t,
                             const DirectPlayMessage &message) {
  if (!session_ || player_ == 0 || from != player_)
    throw DirectPlayError("message: the sender is not the local player");
  const auto *fields = dynamic_cast<const SessionMessage *>(&message);
  if (!fields) throw DirectPlayError("message: is of another network");
  const Bytes payload = fields->Encode();
  if (payload.size() > LargestPayload) throw DirectPlayError("message: is too long");
  session_->GetLink().Send(DataKind::Game, payload, machine_.timeGetTime());
}

bool SessionDirectPlay::Delivered() {
  Poll();
  return !session_ || session_->GetLink().AllDelivered();
}

bool SessionDirectPlay::Broken() { return session_ && session_->GetLink().IsDown(); }

void SessionDirectPlay::Close() {
  if (!session_) return;
  // No pump here: the game may be unwinding and must not be called.
  session_->SayBye(machine_.timeGetTime());
  for (std::int32_t waited = 0; waited < FarewellMs && !session_->GetLink().ByeIsOver();
       waited += NetworkPollMs) {
    if (!transport_->Rest(NetworkPollMs)) break;
    transport_->Poll();
    session_->Poll(machine_.timeGetTime());
  }
  session_.reset();
  routerPort_.reset();
  player_ = 0;
  transport_->WakeAt(std::nullopt);
}

} // namespace session
