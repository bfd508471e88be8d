// The delay of a message between two programs on this computer, beside a bare exchange over TCP: in turn,
// from the call that sends to the handler that sees it. Both programs have the real play window, event loop
// and sockets; each message comes at a random moment of the other side's wait.
//   compare_delay [MESSAGES OF EACH KIND]

#include "match/frm_snapwedge.h"
#include "net/application_guid.h"
#include "platform/network_times.h"
#include "tools/built_game.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int UsualMessages = 300;
constexpr int MostMessages = 5000;
constexpr double ShortestPauseMs = 20.0; ///< before a message, so that the other side is at rest
constexpr double LongestPauseMs = 70.0;  ///< covers several polls and two frames
constexpr std::size_t BareBytes = 32;    ///< about the size of a message
constexpr double PollMs = NetworkPollMs; ///< what our delay may add to the bare one

/// What a message is, and who waits for it.
enum class Kind {
  Bare,  ///< bytes on a socket of their own, for which the other side blocks
  Card,  ///< "Continue", for which the other side waits with a card up
  Frame, ///< a chat line, for which the other side looks once a frame during this side's turn
};
constexpr int Kinds = 3;

/// Nanoseconds of a clock that both processes share.
std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

/// Memory of both processes.
struct Shared {
  std::atomic<bool> Hosted;
  std::atomic<int> Awaited; ///< number of the message that its receiver is about to await
  std::array<std::atomic<std::int64_t>, Kinds * MostMessages> Sent, Seen;
};

/// A sound that remembers when it was played: with the whistle, the game's handler shows a chat line.
class Whistle : public DirectSoundBuffer {
public:
  void Play(std::int32_t) override { Played = Now(); }
  void Stop() override {}
  std::int64_t Played = 0;
};

/// One of the two programs, in its match.
class Player {
public:
  Player(int &argc, char **argv, bool host, int bare, Shared &shared)
      : machine_(argc, argv), program_(machine_), window_(machine_, program_), host_(host), bare_(bare),
        shared_(shared), random_(host ? 1 : 2) {
    for (const SoundFile &sound : SoundFiles) program_.*sound.Buffer = whistle_;
    program_.DX = machine_.CreateDirectX();
    program_.DP = program_.DX->DirectPlayCreate("");
    program_.DP->InitializeConnection("this computer");
    program_.GameMode = "INET";
    Meet();
    window_.SetUp();
    window_.Frame("C"); // shows the window and takes the other side's version
    window_.Frame("C");
  }

  /// Sends every second message and awaits the others.
  void Exchange(int count) {
    for (int number = 0; number < count; ++number) {
      if ((number / Kinds % 2 == 0) == host_) {
        Send(number);
      } else {
        Await(number);
      }
    }
  }

private:
  void Meet() {
    DirectPlaySessionData data;
    data.SetGuidApplication(ApplicationGuid);
    data.SetMaxPlayers(2);
    data.SetRounds(1);
    const std::string name = "delay " + std::to_string(host_ ? getpid() : getppid());
    if (host_) {
      data.SetSessionName(name);
      program_.DP->Open(data, DPOPEN_CREATE);
      program_.MyPlayerId = program_.DP->CreatePlayer("Bramble", "Player1", 0, 0);
      shared_.Hosted = true;
      while (program_.DP->GetMessageCount(program_.MyPlayerId) == 0) Rest(NetworkPollMs);
      return;
    }
    while (!shared_.Hosted) Rest(NetworkPollMs);
    const auto found = program_.DP->GetDPEnumSessions(data, 0, DPENUMSESSIONS_AVAILABLE);
    for (std::int32_t i = 1; i <= found->GetCount(); ++i) {
      if (found->GetItem(i).GetSessionName() == name) program_.DP->Open(found->GetItem(i), DPOPEN_JOIN);
    }
    program_.MyPlayerId = program_.DP->CreatePlayer("Thicket", "Player2", 0, 0);
  }

  void Rest(double milliseconds) {
    const std::int64_t end = Now() + static_cast<std::int64_t>(milliseconds * 1e6);
    for (std::int64_t left = end - Now(); left > 0; left = end - Now())
      machine_.WaitUntil(machine_.ClockIn(static_cast<std::int32_t>(left / 1000000 + 1)));
  }

  void Send(int number) {
    while (shared_.Awaited != number + 1) Rest(1);
    Rest(std::uniform_real_distribution(ShortestPauseMs, LongestPauseMs)(random_));
    const auto index = static_cast<std::size_t>(number);
    shared_.Sent[index] = Now();
    switch (static_cast<Kind>(number % Kinds)) {
    case Kind::Bare: {
      const std::array<char, BareBytes> bytes{};
      if (send(bare_, bytes.data(), bytes.size(), 0) != BareBytes) throw std::runtime_error("can't send");
      break;
    }
    case Kind::Card:
      window_.SendContinue();
      break;
    case Kind::Frame:
      window_.Text2.Text = "hello";
      window_.SendText();
      break;
    }
  }

  void Await(int number) {
    shared_.Awaited = number + 1;
    std::int64_t seen = 0;
    switch (static_cast<Kind>(number % Kinds)) {
    case Kind::Bare: {
      std::array<char, BareBytes> bytes{};
      if (recv(bare_, bytes.data(), bytes.size(), MSG_WAITALL) != BareBytes)
        throw std::runtime_error("can't receive");
      seen = Now();
      break;
    }
    case Kind::Card:
      window_.CanIContinue();
      seen = Now();
      break;
    case Kind::Frame:
      whistle_->Played = 0;
      while (whistle_->Played == 0) window_.Frame("C");
      seen = whistle_->Played;
      break;
    }
    shared_.Seen[static_cast<std::size_t>(number)] = seen;
  }

  BuiltGameMachine machine_;
  Program program_;
  frmSnapwedge window_;
  bool host_;
  int bare_; ///< socket
  Shared &shared_;
  std::mt19937 random_;
  std::shared_ptr<Whistle> whistle_ = std::make_shared<Whistle>();
};

/// The two ends of a connection through the loopback interface.
std::array<int, 2> ConnectBare() {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  const int near = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in at{};
  at.sin_family = AF_INET;
  at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof at;
  auto *address = reinterpret_cast<sockaddr *>(&at);
  if (bind(listener, address, size) != 0 || listen(listener, 1) != 0 ||
      getsockname(listener, address, &size) != 0 || connect(near, address, size) != 0)
    throw std::runtime_error("no connection through the loopback interface");
  const int far = accept(listener, nullptr, nullptr);
  close(listener);
  const int on = 1;
  for (const int end : {near, far}) setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return {near, far};
}

/// Prints the delays of one kind. Returns their median and 95th percentile, ms.
std::array<double, 2> Report(const Shared &shared, Kind kind, int count, const char *name) {
  std::vector<double> delays;
  for (int number = static_cast<int>(kind); number < count; number += Kinds) {
    const auto index = static_cast<std::size_t>(number);
    delays.push_back(static_cast<double>(shared.Seen[index] - shared.Sent[index]) / 1e6);
  }
  std::ranges::sort(delays);
  const double median = delays[delays.size() / 2], high = delays[delays.size() * 95 / 100];
  std::printf("%-22s median %6.3f ms, 95th percentile %6.3f ms, longest %6.3f ms\n", name, median, high,
              delays.back());
  return {median, high};
}

int Play(int &argc, char **argv, bool host, int bare, Shared &shared, int count) {
  try {
    Player(argc, argv, host, bare, shared).Exchange(count);
    return 0;
  } catch (const std::exception &error) {
    std::fprintf(stderr, "compare_delay: %s\n", error.what());
  } catch (const ProgramEnd &) {
    std::fprintf(stderr, "compare_delay: the other side has left\n");
  }
  return 1;
}

} // namespace

int main(int argc, char **argv) {
  const int messages = argc > 1 ? std::atoi(argv[1]) : UsualMessages;
  if (messages < 1 || messages > MostMessages) {
    std::fprintf(stderr, "usage: compare_delay [1 to %d]\n", MostMessages);
    return 2;
  }
  void *memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return 1;
  auto &shared = *new (memory) Shared();
  const auto bare = ConnectBare();
  const int count = messages * Kinds;
  const pid_t child = fork();
  if (child < 0) return 1;
  const bool host = child != 0;
  close(bare[host ? 1 : 0]);
  const int failed = Play(argc, argv, host, bare[host ? 0 : 1], shared, count);
  if (!host) return failed;
  int status = 0;
  waitpid(child, &status, 0);
  if (failed || status != 0) return 1;
  const auto plain = Report(shared, Kind::Bare, count, "bare TCP");
  const auto card = Report(shared, Kind::Card, count, "wait under a card");
  const auto frame = Report(shared, Kind::Frame, count, "frames of a wait");
  std::printf("over bare TCP: under a card %.3f and %.3f ms, goal %.0f; in frames %.3f and %.3f ms\n",
              card[0] - plain[0], card[1] - plain[1], PollMs, frame[0] - plain[0], frame[1] - plain[1]);
}
