// Plays the real program as a player would, by what is on the screen, and takes a screenshot at each station.
// Fails if a station isn't reached.
//   playthrough GAME SCREENSHOTS_DIRECTORY

#include "match/results.h"
#include "tools/playthrough/launch.h"
#include "tools/playthrough/table.h"

#include <X11/keysym.h>

#include <chrono>
#include <iostream>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

const std::vector<int> TouchdownPlan = {96, 24, 16}; ///< ends with a corner over the edge
const std::vector<int> PenaltyPlan = {96, 32};       ///< crosses on the second attempt
const std::vector<int> OverchargePlan = {200};

constexpr Milliseconds TakesClicks(600); ///< until a picture window accepts clicks

class Player {
public:
  Player(const fs::path &program, const fs::path &pictures)
      : program_(program), gamePictures_(program.parent_path() / "pictures"), album_(pictures) {}

  void Play() {
    LookAround();
    QuitInFlight();
    AgainstTheComputer();
    TwoPeople(Won, {TouchdownPlan, PenaltyPlan});
    TwoPeople(Tied, {OverchargePlan, OverchargePlan});
    TwoPeople(Lost, {OverchargePlan, TouchdownPlan});
    for (const char *station :
         {"launch", "controls", "background", "readme", "aim", "meter", "flight", "point-after", "kick",
          "card-touchdown", "card-good", "card-no-good", "computer"}) {
      if (!album_.Has(station)) throw GaveUp(std::string("station not reached: ") + station);
    }
  }

private:
  void WaitUntilGone(const std::string &title) {
    for (const auto end = Clock::now() + Milliseconds(5000); Clock::now() < end; Pause(Milliseconds(20))) {
      if (!seat_.Find(title)) return;
    }
    throw GaveUp("\"" + title + "\" doesn't close");
  }

  /// Opens and closes every window of the launch window, enters an invalid number of rounds, and closes the
  /// launch window.
  void LookAround() {
    GameProcess game({program_});
    const ::Window launch = OpenLaunchWindow(seat_);
    album_.Take(seat_, "launch");
    struct Row {
      const char *station;
      const char *title;
      Spot button;
      int closeX, closeY; ///< where a click closes it, pixels
      bool escapes;       ///< Esc closes it too
    };
    for (const Row &row : {Row{"controls", "Controls", Spots::Controls, 200, 200, true},
                           Row{"background", "Background", Spots::Background, 200, 200, true},
                           Row{"readme", "ReadMe", Spots::ReadMe, 64, 396, false}}) {
      ClickSpot(seat_, launch, row.button);
      ::Window window = seat_.WaitFor(row.title);
      Pause(TakesClicks);
      album_.Take(seat_, row.station);
      seat_.Press(XK_Escape);
      if (row.escapes) {
        WaitUntilGone(row.title);
        // The second click of a double-click must not close it.
        for (int click = 0; click < 2; ++click) ClickSpot(seat_, launch, row.button);
        window = seat_.WaitFor(row.title);
      }
      Pause(TakesClicks);
      if (!seat_.Find(row.title)) throw GaveUp("\"" + std::string(row.title) + "\" closes by itself");
      seat_.Click(window, row.closeX, row.closeY);
      WaitUntilGone(row.title);
    }
    EnterRounds(seat_, launch, "0");
    ClickSpot(seat_, launch, Spots::AgainstHuman);
    seat_.WaitFor("Rounds to Play:");
    Pause(Milliseconds(200));
    album_.Take(seat_, "rounds-refused");
    seat_.Press(XK_Return);
    WaitUntilGone("Rounds to Play:");
    CloseLaunchWindow(seat_);
    game.WaitForEnd();
  }

  Table Start(const std::string &rounds, const Spot &button) {
    const ::Window launch = OpenLaunchWindow(seat_);
    EnterRounds(seat_, launch, rounds);
    ClickSpot(seat_, launch, button);
    return Table(seat_, gamePictures_, album_);
  }

  /// @returns the end card shown
  std::string End(GameProcess &game) {
    std::optional<EndCard> card;
    for (const auto end = Clock::now() + Milliseconds(5000); !card; card = FindEndCard(seat_)) {
      if (Clock::now() > end) throw GaveUp("the match has no end card");
      Pause(Milliseconds(20));
    }
    Pause(TakesClicks);
    album_.Take(seat_, "end-card");
    CloseEndCard(seat_, *card);
    game.WaitForEnd();
    return card->Title;
  }

  /// Tries the mouse and every key, with a screenshot of each.
  void TryControls(Table &table) {
    table.Station("aim");
    seat_.MoveBy(80, 0);
    Pause(Milliseconds(200));
    table.Station("aim-turned");
    seat_.MoveBy(-80, 0);
    seat_.Press(XK_s);
    Pause(Milliseconds(200));
    table.Station("without-stadium");
    seat_.Press(XK_s);
    seat_.Key(XK_Shift_L, true);
    seat_.MoveBy(0, -60);
    Pause(Milliseconds(200));
    table.Station("zoomed");
    seat_.MoveBy(0, 60);
    Pause(Milliseconds(200));
    seat_.Key(XK_Shift_L, false);
    seat_.Button(3, true);
    Pause(Milliseconds(100));
    seat_.MoveBy(200, -60);
    Pause(Milliseconds(200));
    table.Station("orbit");
    seat_.MoveBy(-200, 60);
    Pause(Milliseconds(200));
    seat_.Button(3, false);
    Pause(Milliseconds(100));
  }

  void AgainstTheComputer() {
    GameProcess game({program_});
    Table table = Start("1", Spots::AgainstComputer);
    TryControls(table);
    Possess(table, TouchdownPlan, Table::Kick::Timed);
    PlayOut(table, true);
    table.WaitForTurn(false);
    if (!FindEndCard(seat_)) table.Station("computer");
    table.WaitForTurn(true);
    End(game);
  }

  /// One possession. If it ends in a kick, the verdict must match the kick.
  void Possess(Table &table, const std::vector<int> &plan, Table::Kick kick) {
    table.CardsSeen.clear();
    table.Possess(plan, kick);
    const auto &cards = table.CardsSeen;
    if (cards.size() < 2 || cards[cards.size() - 2] != Results::Touchdown) return;
    const bool timed = kick == Table::Kick::Timed;
    if (cards.back() != (timed ? Results::GoodKick : Results::MissedKick))
      throw GaveUp(timed ? "a timed kick isn't good" : "an early kick doesn't miss");
  }

  /// Repeats a round with a plan for each side until it ends with that card, since input timing varies.
  void TwoPeople(const std::string &endCard, const std::vector<std::vector<int>> &plans) {
    constexpr int Tries = 3;
    for (int time = 0; time < Tries; ++time) {
      GameProcess game({program_});
      Table table = Start("1", Spots::AgainstHuman);
      bool home = true;
      for (const auto &plan : plans) {
        table.WaitForTurn(home);
        Possess(table, plan, home ? Table::Kick::Timed : Table::Kick::Early);
        PlayOut(table, home);
        home = !home;
      }
      if (End(game) == endCard) return;
    }
    throw GaveUp("no match ends with \"" + endCard + '"');
  }

  /// If the plan doesn't end the possession, soft shots do.
  void PlayOut(Table &table, bool home) {
    for (int attempt = 0; attempt < 3; ++attempt) {
      Pause(Milliseconds(500));
      if (FindEndCard(seat_) || table.HomeOnTurn() != home) return;
      table.Possess({8});
    }
  }

  void QuitInFlight() {
    GameProcess game({program_});
    Table table = Start("1", Spots::AgainstHuman);
    table.Shoot(88);
    Pause(Milliseconds(400));
    seat_.Press(XK_Escape);
    game.WaitForEnd();
  }

  fs::path program_;
  fs::path gamePictures_;
  Album album_;
  Seat seat_;
};

} // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::cerr << "usage: playthrough GAME SCREENSHOTS_DIRECTORY" << std::endl;
    return 2;
  }
  try {
    Player(fs::absolute(argv[1]), argv[2]).Play();
  } catch (const GaveUp &error) {
    std::cerr << "playthrough: " << error.what() << std::endl;
    return 1;
  }
}
