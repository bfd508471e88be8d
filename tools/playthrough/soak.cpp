// Plays the real program for a long time and checks that what it holds doesn't grow. Beside the samples it
// writes a screenshot wherever play doesn't go as planned.
//   soak match GAME DIRECTORY MINUTES   a match of 99 rounds against the computer, left after that time
//   soak windows GAME DIRECTORY TIMES   opens and closes all of the launch window so many times
//   soak network GAME DIRECTORY ROUNDS HOST_DISPLAY JOINER_DISPLAY   a match between two programs on loopback

#include "match/results.h"
#include "tools/playthrough/launch.h"
#include "tools/playthrough/table.h"
#include "tools/playthrough/usage.h"
#include "tools/wires/writing.h"

#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <iostream>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char *MostRounds = "99";
constexpr int MayStumble = 3;             ///< times in a row that something doesn't go as planned
constexpr Milliseconds SearchTakes(2000); ///< on this computer
constexpr Milliseconds TurnPasses(500);   ///< with all its cards
constexpr Milliseconds OtherSideTakes(120000);
constexpr Milliseconds WindowTakes(5000); ///< to open or close

struct Plan {
  std::vector<int> Levels;
  Table::Kick Kick;
};
const Plan Overcharge{{200}, Table::Kick::Timed};
const std::vector<Plan> Plans = {{{96, 24, 16}, Table::Kick::Timed}, // a Touchdown and a kick
                                 Overcharge,
                                 {{96, 32}, Table::Kick::Timed},     // a penalty
                                 {{40, 40, 40}, Table::Kick::Timed}, // attempts used up
                                 {{96, 24, 16}, Table::Kick::Early}, // a missed kick
                                 {{120}, Table::Kick::Timed}};       // a fall

/// A player at a program, whose use of the machine is sampled.
class Player {
public:
  /// @param name  of the files with samples and screenshots
  Player(const fs::path &program, const fs::path &directory, const std::string &name,
         const std::string &display)
      : pictures_(program.parent_path() / "pictures"), directory_(directory), name_(name), seat_(display),
        game_({program}, display), launch_(OpenLaunchWindow(seat_)),
        usage_(game_.Id(), display, directory / (name + ".tsv")) {}

  void Press(const Spot &spot) { ClickSpot(seat_, launch_, spot); }
  void Rounds(const std::string &rounds) { EnterRounds(seat_, launch_, rounds); }

  /// Presses a button until that window appears: a click while another window is closing counts for nothing.
  void Open(const Spot &button, const std::string &title) {
    while (true) {
      Press(button);
      try {
        seat_.WaitFor(title, WindowTakes);
        return;
      } catch (const GaveUp &error) {
        Stumble(error);
      }
    }
  }

  /// Opens a window from the launch window and closes it by a key.
  void OpenAndClose(const Spot &button, const std::string &title, KeySym key) {
    Open(button, title);
    const auto end = Clock::now() + WindowTakes;
    for (auto opened = seat_.Find(title); opened && !seat_.HasKeyboard(*opened) && Clock::now() < end;)
      Pause(Milliseconds(5));
    seat_.Press(key); // once: the launch window would take the next
    for (; Clock::now() < end; Pause(Milliseconds(10))) {
      if (seat_.Find(title)) continue;
      inRow_ = 0;
      return;
    }
    throw GaveUp("\"" + title + "\" doesn't close");
  }

  void SitDown() { table_.emplace(seat_, pictures_, none_); }

  /// Plays one possession when it is this side's turn, however it goes.
  void Possess(const Plan &plan, const std::function<void()> &before = {}) {
    try {
      WaitForTurn();
      if (IsOver()) return;
      if (before) before();
      ++possessions_;
      table_->Possess(plan.Levels, plan.Kick);
      inRow_ = 0;
    } catch (const GaveUp &error) {
      Stumble(error);
    }
  }

  /// Closes the end card, the match if it isn't over, or the launch window, and waits until the program has
  /// ended.
  void Leave() {
    usage_.Stop();
    SaveImage(seat_.Screen(), directory_ / (name_ + "-end.png"));
    if (const auto card = FindEndCard(seat_)) {
      CloseEndCard(seat_, *card);
    } else if (table_) {
      seat_.Press(XK_Escape);
    } else {
      CloseLaunchWindow(seat_);
    }
    game_.WaitForEnd();
  }

  /// Prints what was played and held.
  /// @returns false if something has grown
  bool Report() const {
    std::cout << name_ << ": " << stumbles_ << " times not as planned";
    if (table_) {
      std::cout << ", " << possessions_ << " possessions, cards";
      for (int code = Results::First; code <= Results::Last; ++code)
        std::cout << ' ' << std::ranges::count(Cards(), code);
    }
    std::cout << std::endl;
    return usage_.Report();
  }

  Seat &AtSeat() { return seat_; }
  int Possessions() const { return possessions_; }
  bool IsOver() { return FindEndCard(seat_).has_value(); }
  const std::vector<int> &Cards() const { return table_->CardsSeen; }
  Image HomeScore() { return Score(104); }
  Image AwayScore() { return Score(394); }
  std::string Result() {
    const auto card = FindEndCard(seat_);
    return card ? card->Title : std::string();
  }

private:
  void Stumble(const GaveUp &error) {
    ++stumbles_;
    std::cout << name_ << ": not as planned: " << error.what() << std::endl;
    SaveImage(seat_.Screen(), directory_ / (name_ + "-stumble-" + std::to_string(stumbles_) + ".png"));
    if (++inRow_ > MayStumble) throw error;
  }

  /// The arrow turns to this side before the last card comes up, and before the other side kicks.
  void WaitForTurn() {
    for (const auto end = Clock::now() + OtherSideTakes; Clock::now() < end;) {
      table_->WaitForTurn(true);
      Pause(TurnPasses);
      const bool kick = !Cards().empty() && Cards().back() == Results::Touchdown;
      if (IsOver() || (!kick && table_->CardUp() == 0 && table_->HomeOnTurn())) return;
    }
    throw GaveUp("the turn doesn't come");
  }

  Image Score(int x) { return LastWord(WritingOn(seat_.Look(table_->Window(), x, 4, 144, 19))); }

  fs::path pictures_, directory_;
  std::string name_;
  Seat seat_;
  GameProcess game_;
  ::Window launch_;
  Usage usage_;
  Album none_{{}};
  std::optional<Table> table_;
  int possessions_ = 0, stumbles_ = 0, inRow_ = 0;
};

/// Turns the aim, zooms and looks around, hides and shows the stadium.
void LookAround(Seat &seat) {
  constexpr int Steps = 10; // there, and as many back
  const auto sweep = [&](int dx, int dy) {
    for (int step = 0; step < 2 * Steps; ++step) {
      const int sign = step < Steps ? 1 : -1;
      seat.MoveBy(sign * dx, sign * dy);
      Pause(Milliseconds(40));
    }
  };
  sweep(8, 0);
  seat.Key(XK_Shift_L, true);
  sweep(0, -6);
  seat.Key(XK_Shift_L, false);
  seat.Button(3, true);
  sweep(20, -6);
  seat.Button(3, false);
  for (int press = 0; press < 2; ++press) {
    seat.Press(XK_s);
    Pause(Milliseconds(200));
  }
}

bool PlayMatch(const fs::path &program, const fs::path &directory, std::chrono::minutes time) {
  Player player(program, directory, "match", {});
  player.Rounds(MostRounds);
  player.Press(Spots::AgainstComputer);
  player.SitDown();
  const auto start = Clock::now();
  // Spreads the rounds over the time.
  const auto lookAround = [&] {
    while (Clock::now() < start + time * player.Possessions() / std::stoi(MostRounds))
      LookAround(player.AtSeat());
  };
  while (Clock::now() < start + time && !player.IsOver()) {
    player.Possess(Plans[static_cast<std::size_t>(player.Possessions()) % Plans.size()], lookAround);
  }
  player.Leave();
  return player.Report();
}

bool OpenWindows(const fs::path &program, const fs::path &directory, int times) {
  Player player(program, directory, "windows", {});
  player.Rounds("0");
  for (int i = 0; i < times; ++i) {
    player.OpenAndClose(Spots::Controls, "Controls", XK_Escape);
    player.OpenAndClose(Spots::Background, "Background", XK_Escape);
    player.OpenAndClose(Spots::ReadMe, "ReadMe", XK_Return);
    player.OpenAndClose(Spots::AgainstHuman, "Rounds to Play:", XK_Return);
    player.OpenAndClose(Spots::Address, "Error:", XK_Return); // there is no network
  }
  player.Leave();
  return player.Report();
}

/// A host's lobby holds sockets, so these windows are counted by themselves.
bool OpenLobby(const fs::path &program, const fs::path &directory, int times) {
  Player player(program, directory, "lobby", {});
  player.Rounds(MostRounds);
  for (int i = 0; i < times; ++i) {
    player.OpenAndClose(Spots::Connect, "Locate Session", XK_Escape);
    player.Open(Spots::Create, "Polling...");
    player.Open(Spots::Cancel, "Snapwedge V1.0 -");
  }
  player.Leave();
  return player.Report();
}

/// Both sides mostly overcharge, which is over soonest.
void PlaySide(Player &side) {
  constexpr int Seldom = 4;
  while (!side.IsOver()) {
    const auto possession = static_cast<std::size_t>(side.Possessions());
    side.Possess(possession % Seldom == 0 ? Plans[possession / Seldom % Plans.size()] : Overcharge);
  }
}

bool PlayNetwork(const fs::path &program, const fs::path &directory, const std::string &rounds,
                 char **displays) {
  Player host(program, directory, "host", displays[0]);
  Player joiner(program, directory, "joiner", displays[1]);
  const auto connect = [](Player &side) {
    side.Press(Spots::ThisComputer);
    side.Press(Spots::Connect);
    Pause(SearchTakes);
  };
  connect(host);
  host.Rounds(rounds);
  host.Press(Spots::Create);
  host.AtSeat().WaitFor("Polling...");
  connect(joiner);
  joiner.Press(Spots::FirstGame);
  joiner.Press(Spots::Join);
  host.SitDown();
  joiner.SitDown();
  auto other = std::async(std::launch::async, [&] { PlaySide(joiner); });
  PlaySide(host);
  other.get();
  // Cards aren't compared: on a busy computer a player who looks a few times a second may miss one.
  const bool agree =
      SameLetters(host.HomeScore(), joiner.AwayScore()) && SameLetters(host.AwayScore(), joiner.HomeScore());
  const std::string result = host.Result(), otherResult = joiner.Result();
  const bool fit = result == Tied ? otherResult == Tied : otherResult == (result == Won ? Lost : Won);
  host.Leave();
  joiner.Leave();
  std::cout << "The host's card: " << result << " The joiner's: " << otherResult
            << (agree && fit ? " Both have the same scores." : " THEY DISAGREE.") << std::endl;
  const bool hostFlat = host.Report(), joinerFlat = joiner.Report();
  return hostFlat && joinerFlat && agree && fit;
}

bool Soak(const std::vector<std::string> &words, char **displays) {
  const fs::path program = fs::absolute(words[1]);
  if (words[0] == "match") return PlayMatch(program, words[2], std::chrono::minutes(std::stoi(words[3])));
  if (words[0] == "windows") {
    const int times = std::stoi(words[3]);
    const bool flat = OpenWindows(program, words[2], times);
    return OpenLobby(program, words[2], times) && flat;
  }
  return PlayNetwork(program, words[2], words[3], displays);
}

} // namespace

int main(int argc, char **argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const bool one = words.size() == 4 && (words[0] == "match" || words[0] == "windows");
  if (!one && !(words.size() == 6 && words[0] == "network")) {
    std::cerr << "usage: soak match|windows|network GAME DIRECTORY MINUTES|TIMES|ROUNDS [DISPLAY DISPLAY]"
              << std::endl;
    return 2;
  }
  XInitThreads();
  try {
    return Soak(words, argv + 5) ? 0 : 1;
  } catch (const GaveUp &error) {
    std::cerr << "soak: " << error.what() << std::endl;
    return 1;
  }
}
