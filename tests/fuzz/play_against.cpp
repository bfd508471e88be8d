#include "tests/fuzz/hostile_bytes.h"

#include "net/application_guid.h"
#include "platform/headless/wire.h"
#include "platform/search_dialog.h"
#include "platform/session/frame.h"
#include "platform/session/session_direct_play.h"
#include "tests/game_kit.h"

using namespace session;

namespace fuzz {

namespace {

constexpr std::int16_t Rounds = 2;
constexpr std::int32_t MostPoints =
    10 * (Rounds + 1);                   ///< a side's own, and a score that claims one round too many
constexpr std::size_t LongestLine = 800; ///< bytes of a chat line
constexpr int MostActs = 60;
constexpr std::size_t LongestPress = 20; ///< frames
constexpr std::int32_t FrameMs = 25;
constexpr std::int32_t AnswerMs = 5;
constexpr std::int32_t KickAgainMs = 2000;
constexpr std::int32_t PatienceMs = 200000; ///< within which a match must end after the other side has left

enum Act : std::uint8_t {
  SendMessage, ///< sends the bytes as the fields of a message
  SendBytes,   ///< sends the bytes as they are
  Wait,        ///< waits one frame per byte
  Reconnect,   ///< cuts the connection and sends the bytes on the next one
  Shoot,       ///< the local player flicks, if allowed
  ActCount,
};

const Guid GameId = *ParseGuid(ApplicationGuid);

/// A match hosted by this computer, with a joiner that follows the protocol until the input breaks it.
struct Match {
  explicit Match(ByteView row)
      : acts(row), game("INET", Rounds), wire([this] { return game.machine.Now(); }, 1),
        transport(wire.Plug("10.0.0.2")) {
    game.machine.NextArrival = [this] { return wire.NextArrival("10.0.0.1"); };
    const auto play =
        std::make_shared<SessionDirectPlay>(game.machine, wire.Plug("10.0.0.1"), ShowSearchDialog);
    game.program.DP = play;
    play->InitializeConnection("internet");
    DirectPlaySessionData data;
    data.SetGuidApplication(ApplicationGuid);
    data.SetMaxPlayers(2);
    data.SetRounds(Rounds);
    play->Open(data, DPOPEN_CREATE);
    game.program.MyPlayerId = play->CreatePlayer("Bramble", "Player1", 0, 0);
    game.program.IsHost = True;
    id = std::get<AnswerFrame>(Call(AskFrame{GameId, 1})).Session;
    secret = std::get<WelcomeFrame>(Call(JoinFrame{GameId, id})).Secret;
    Send(DataFrame{next++, DataKind::Player, {}});
    Run();
    game.machine.Player = [this] { Watch(); };
  }

  /// Waits for delivery and the answer.
  void Run() {
    const std::int32_t end = game.machine.ClockIn(AnswerMs);
    while (!game.machine.ClockReached(end)) game.machine.WaitUntil(end);
  }

  /// Reconnects, sends bytes and reads the first answer.
  AnyFrame Call(const AnyFrame &frame) {
    stream = transport->Connect({"10.0.0.1", DefaultPort});
    Run();
    Send(frame);
    Run();
    Bytes bytes(1000);
    bytes.resize(stream->Receive(bytes));
    reader = FrameReader(LargestFrame);
    reader.Add(bytes);
    return reader.Next().value();
  }

  void Send(const AnyFrame &frame) { stream->Send(EncodeFrame(frame)); }

  /// Called at every pump: the other player acts, and the rules are checked.
  void Watch() {
    RequireRules();
    if (!game.machine.Shown.empty() && game.machine.Shown.back()->Name.starts_with("frm") &&
        game.machine.Shown.back() != &game.window) {
      game.machine.ClickOn(*game.machine.Shown.back()); // closes an end card
    }
    if (!left && introduction.empty()) Listen();
    if (!game.machine.ClockReached(actAt)) return;
    if (left) {
      // In its own kick the game waits for the local player, even if the other has left.
      Do(Shoot, Bytes(LongestPress - 1));
      actAt = game.machine.ClockIn(KickAgainMs);
      return;
    }
    if (!introduction.empty()) stream->Send(std::exchange(introduction, {}));
    if (acts.size() < 2 || ++done > MostActs) {
      left = true;
      Send(ByeFrame{next});
      stream.reset();
      game.machine.After(PatienceMs, [] { throw Breach("a match that the other side has left goes on"); });
      return;
    }
    const auto act = static_cast<Act>(acts[0] % ActCount);
    const std::size_t length = std::min<std::size_t>(acts[1], acts.size() - 2);
    Do(act, acts.subspan(2, length));
    acts = acts.subspan(2 + length);
  }

  /// Acknowledges messages and sends keep-alives.
  void Listen() {
    Bytes bytes(10000);
    bytes.resize(stream->Receive(bytes));
    reader.Add(bytes);
    const std::uint32_t before = heard;
    while (const auto frame = reader.Next()) {
      if (const auto *data = std::get_if<DataFrame>(&*frame)) heard = std::max(heard, data->Number);
    }
    if (heard == before && !game.machine.ClockReached(signAt)) return;
    Send(AckFrame{heard + 1});
    signAt = game.machine.ClockIn(SignOfLifeMs);
  }

  void Do(Act act, ByteView bytes) {
    switch (act) {
    case SendMessage:
      Send(DataFrame{next++, DataKind::Game, {bytes.begin(), bytes.end()}});
      break;
    case SendBytes:
      stream->Send(bytes);
      break;
    case Wait:
      actAt = game.machine.ClockIn(FrameMs * static_cast<std::int32_t>(bytes.size()));
      break;
    case Reconnect:
      stream = transport->Connect({"10.0.0.1", DefaultPort});
      reader = FrameReader(LargestFrame);
      introduction = EncodeFrame(ResumeFrame{GameId, id, secret, heard + 1});
      introduction.insert(introduction.end(), bytes.begin(), bytes.end());
      actAt = game.machine.ClockIn(FrameMs);
      break;
    case Shoot:
      game.machine.PressMouse(1);
      game.machine.After(FrameMs * static_cast<std::int32_t>(bytes.size() % LongestPress),
                         [this] { game.machine.ReleaseMouse(1); });
      break;
    case ActCount:
      break;
    }
  }

  void RequireRules() {
    const auto &window = game.window;
    Require(window.Shots >= 0 && window.Shots <= 3, "attempts from 0 to 3");
    Require(window.Player >= 0 && window.Player <= 2, "side from 0 to 2");
    Require(window.Round >= 0 && window.Round <= Rounds, "round from 0 to the number of rounds");
    for (const std::int32_t score : {window.HomeScore, window.AwayScore}) {
      Require(score >= 0 && score <= MostPoints, "score within the rounds begun");
    }
    Require(window.Text1.Text.size() <= LongestLine, "a chat line of at most 200 characters");
  }

  ByteView acts;
  Game game;
  FaultyWire wire;
  std::shared_ptr<Transport> transport;
  std::unique_ptr<Stream> stream;
  Bytes introduction; ///< sent as soon as the new connection is open
  std::uint64_t id = 0;
  Token secret{};
  std::uint32_t next = 1;
  std::uint32_t heard = 0; ///< number of the last message received
  FrameReader reader{LargestFrame};
  std::int32_t signAt = 0;
  std::int32_t actAt = 0;
  int done = 0;
  bool left = false;
};

} // namespace

void PlayAgainst(ByteView bytes) {
  Match match(bytes);
  try {
    match.game.window.Load();
  } catch (const ProgramEnd &) {
    // Ended by the end of the match, or by the box that the other side has left.
  }
}

} // namespace fuzz
