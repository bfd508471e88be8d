// The worked example of docs/protocol.md: a joiner sends the bytes of the document to the game.

#include "tests/game_kit.h"
#include "tests/session_kit.h"

#include <gtest/gtest.h>

#include <bit>
#include <fstream>
#include <sstream>

using session::Bytes;
using session::ByteView;

namespace {

// Offsets in frames.
constexpr std::size_t LengthBytes = 4;
constexpr std::size_t SessionInAnswer = 31;
constexpr std::size_t SessionInJoin = LengthBytes + 23;
constexpr std::size_t SessionBytes = 8;
constexpr std::size_t SecretInWelcome = LengthBytes + 1;
constexpr std::size_t AskBytes = 256;
constexpr std::uint8_t AckType = 9;

struct Line {
  std::string Who;
  Bytes Frame;
};

std::string Hex(ByteView bytes) {
  std::ostringstream text;
  text << std::hex << std::uppercase;
  for (const std::uint8_t byte : bytes) text << (byte < 16 ? "0" : "") << static_cast<unsigned>(byte);
  return text.str();
}

/// The lines of the document's last section: sender, bytes, and a comment in brackets.
std::vector<Line> ReadExample() {
  std::ifstream document(SNAPWEDGE_TESTS_DIR "/../docs/protocol.md");
  std::vector<Line> lines;
  std::string row;
  while (std::getline(document, row) && row != "## An example") {
  }
  while (std::getline(document, row)) {
    if (!row.starts_with("    ")) continue;
    std::istringstream words(row.substr(0, row.find('(')));
    std::string word;
    while (words >> word) {
      if (std::islower(static_cast<unsigned char>(word[0]))) {
        lines.push_back({word, {}});
      } else if (word == "00...") {
        lines.back().Frame.resize(AskBytes);
      } else {
        for (std::size_t i = 0; i < word.size(); i += 2) {
          lines.back().Frame.push_back(static_cast<std::uint8_t>(std::stoi(word.substr(i, 2), nullptr, 16)));
        }
      }
    }
  }
  return lines;
}

/// A host on a headless machine, and the joiner.
struct Played {
  Played()
      : game("INET", 3), wire([this] { return game.machine.Now(); }, 1), transport(wire.Plug("10.0.0.2")),
        datagrams(transport->OpenDatagrams(session::Reach::Network, 0)), lines(ReadExample()) {
    game.machine.NextArrival = [this] { return wire.NextArrival("10.0.0.1"); };
    const auto play =
        std::make_shared<session::SessionDirectPlay>(game.machine, wire.Plug("10.0.0.1"), ShowSearchDialog);
    game.program.DP = play;
    game.program.IsHost = True;
    play->InitializeConnection("internet");
    game.program.MyPlayerId = kit::Host(*play, "SNWG7", 3);
  }

  Line &Now() { return lines[done]; }

  void Run() {
    const std::int32_t end = game.machine.ClockIn(10);
    while (!game.machine.ClockReached(end)) game.machine.WaitUntil(end);
  }

  /// Receives what the host has sent over TCP.
  void Listen() {
    Bytes part(10000);
    part.resize(stream->Receive(part));
    came.insert(came.end(), part.begin(), part.end());
  }

  /// The next complete frame of the host, with its length prefix.
  std::optional<Bytes> NextFrame() {
    if (came.size() < LengthBytes || came.size() < LengthBytes + came[0]) return std::nullopt;
    const auto end =
        came.begin() + static_cast<std::ptrdiff_t>(LengthBytes + came[0]); // all are shorter than 256 bytes
    Bytes frame(came.begin(), end);
    came.erase(came.begin(), end);
    return frame;
  }

  void Expect(const std::optional<Bytes> &frame) {
    ASSERT_TRUE(frame) << "instead of " << Hex(Now().Frame);
    ASSERT_EQ(Hex(*frame), Hex(Now().Frame)) << "line " << done + 1 << " of the example";
    ++done;
  }

  /// Search and handshake, up to the host's first Data.
  void Meet() {
    session::Endpoint from;
    Bytes answer;
    ASSERT_EQ(Now().Who, "searcher");
    datagrams->Send({"10.0.0.1", 28710}, lines[done++].Frame);
    Run();
    ASSERT_TRUE(datagrams->Receive(from, answer));
    // The session number and the secret are random. Everything else must match.
    const auto number = answer.begin() + SessionInAnswer;
    std::copy_n(number, SessionBytes, Now().Frame.begin() + SessionInAnswer);
    std::copy_n(number, SessionBytes, lines[done + 1].Frame.begin() + SessionInJoin);
    Expect(answer);
    stream = transport->Connect(from);
    Run();
    while (Now().Who == "joiner" || Now().Frame[LengthBytes] != 8) {
      if (Now().Who == "joiner") {
        stream->Send(lines[done++].Frame);
        Run();
        Listen();
        continue;
      }
      auto frame = NextFrame();
      if (Now().Frame[LengthBytes] == 5 && frame) {
        std::copy(frame->begin() + SecretInWelcome, frame->end(), Now().Frame.begin() + SecretInWelcome);
      }
      Expect(frame);
      if (::testing::Test::HasFatalFailure()) return;
    }
    std::int32_t newcomer = 0;
    while (game.program.DP->GetMessageCount(game.program.MyPlayerId) > 0) {
      game.program.DP->Receive(newcomer, newcomer, DPRECEIVE_ALL);
    }
  }

  /// Called at every pump of the match: handles the next line when it is due.
  void Step() {
    if (done == lines.size() || ::testing::Test::HasFatalFailure()) return;
    Listen();
    if (Now().Who == "joiner") {
      stream->Send(lines[done++].Frame);
    } else if (Now().Who == "rest") {
      if (game.window.Shots == 2 && !game.window.NoShot) ExpectRest();
    } else if (auto frame = NextFrame()) {
      if ((*frame)[LengthBytes] == AckType) return;
      Expect(frame);
      // The joiner's acknowledgements aren't in the example.
      ++heard;
      stream->Send(session::EncodeFrame(session::AckFrame{heard + 1}));
    } else if (game.window.MouseGate() && game.window.MouseMode == 0) {
      game.machine.PressMouse(1); // and holds
    }
  }

  void ExpectRest() {
    Vector direction, up;
    game.window.PieceFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
    Bytes seen;
    session::ByteWriter writer(seen);
    for (const float value : {game.Place(game.window.PieceFrame).z, direction.x, direction.z}) {
      writer.U32(std::bit_cast<std::uint32_t>(value));
    }
    Expect(seen);
  }

  Game game;
  FaultyWire wire;
  std::shared_ptr<session::Transport> transport;
  std::unique_ptr<session::DatagramPort> datagrams;
  std::unique_ptr<session::Stream> stream;
  std::vector<Line> lines;
  std::size_t done = 0;
  Bytes came;
  std::uint32_t heard = 0;
};

TEST(ProtocolExampleTest, TheDocumentsExampleIsPlayedByteByByte) {
  Played played;
  ASSERT_GT(played.lines.size(), 20U);
  ASSERT_NO_FATAL_FAILURE(played.Meet());
  played.game.machine.Player = [&] { played.Step(); };
  played.game.machine.After(60000, [] { throw std::runtime_error("the example doesn't go on"); });
  EXPECT_THROW(played.game.window.Load(), ProgramEnd);
  EXPECT_EQ(played.done, played.lines.size());
  ASSERT_EQ(played.game.machine.Boxes.size(), 1U);
  EXPECT_EQ(played.game.machine.Boxes[0].Text, "Away Team Disconnected!");
}

} // namespace
