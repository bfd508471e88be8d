// Plays the real program as a player would, by what is on the screen, and takes a screenshot at each station.
// Fails if a station isn't reached.
//   playthrough GAME PICTURES_DIRECTORY

#include "tools/playthrough/table.h"

#include <X11/keysym.h>

#include <chrono>
#include <iostream>

namespace {

namespace fs = std::filesystem;

const std::vector<int> TouchdownPlan = {96, 24, 16}; ///< ends with a corner over the edge
const std::vector<int> PenaltyPlan = {96, 32};       ///< crosses on the second attempt
const std::vector<int> OverchargePlan = {200};

constexpr Milliseconds TakesClicks(600); ///< until a picture window accepts clicks

// Buttons of the launch window, twips.
constexpr int StartTop = 5700;
constexpr int ComputerLeft = 1380;
constexpr int HumanLeft = 3300;

class Player {
public:
  Player(const fs::path &program, const fs::path &pictures)
      : program_(program), gamePictures_(program.parent_path() / "pictures"), album_(pictures) {}

  void Play() {
    LookAround();
    QuitInFlight();
    AgainstTheComputer();
    TwoPeople("Home Team Wins!!", {TouchdownPlan, PenaltyPlan});
    TwoPeople("It's All Tied Up!", {OverchargePlan, OverchargePlan});
    TwoPeople("Away Team Wins!!", {OverchargePlan, TouchdownPlan});
    for (const char *station :
         {"launch", "controls", "background", "readme", "aim", "meter", "flight", "point-after", "kick",
          "card-touchdown", "card-good", "card-no-good", "computer"}) {
      if (!album_.Has(station)) throw GaveUp(std::string("station not reached: ") + station);
    }
  }

private:
  void WaitUntilGone(const std::string &title) {
    using Clock = std::chrono::steady_clock;
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
      int x, y;           ///< of the button, twips
      int closeX, closeY; ///< where a click closes it, pixels
      bool escapes;       ///< Esc closes it too
    };
    for (const Row &row : {Row{"controls", "Controls", 1380, 3780, 200, 200, true},
                           Row{"background", "Background", 3300, 3780, 200, 200, true},
                           Row{"readme", "ReadMe", 8400, 5700, 64, 396, false}}) {
      ClickTwips(seat_, launch, row.x, row.y);
      ::Window window = seat_.WaitFor(row.title);
      Pause(TakesClicks);
      album_.Take(seat_, row.station);
      seat_.Press(XK_Escape);
      if (row.escapes) {
        WaitUntilGone(row.title);
        // The second click of a double-click must not close it.
        for (int click = 0; click < 2; ++click) ClickTwips(seat_, launch, row.x, row.y);
        window = seat_.WaitFor(row.title);
      }
      Pause(TakesClicks);
      if (!seat_.Find(row.title)) throw GaveUp("\"" + std::string(row.title) + "\" closes by itself");
      seat_.Click(window, row.closeX, row.closeY);
      WaitUntilGone(row.title);
    }
    EnterRounds(seat_, launch, "0");
    ClickTwips(seat_, launch, HumanLeft, StartTop);
    seat_.WaitFor("Rounds to Play:");
    Pause(Milliseconds(200));
    album_.Take(seat_, "rounds-refused");
    seat_.Press(XK_Return);
    WaitUntilGone("Rounds to Play:");
    seat_.Key(XK_Alt_L, true);
    seat_.Press(XK_F4);
    seat_.Key(XK_Alt_L, false);
    game.WaitForEnd();
  }

  Table Start(const std::string &rounds, int button) {
    const ::Window launch = OpenLaunchWindow(seat_);
    EnterRounds(seat_, launch, rounds);
    ClickTwips(seat_, launch, button, StartTop);
    return Table(seat_, gamePictures_, album_);
  }

  /// @returns the end card shown
  std::string CloseEndCard(GameProcess &game) {
    for (const char *title : {"Home Team Wins!!", "Away Team Wins!!", "It's All Tied Up!"}) {
      const auto card = seat_.Find(title);
      if (!card) continue;
      Pause(TakesClicks);
      album_.Take(seat_, "end-card");
      seat_.Click(*card, 150, 110);
      game.WaitForEnd();
      return title;
    }
    throw GaveUp("the match has no end card");
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
    Table table = Start("1", ComputerLeft);
    TryControls(table);
    Possess(table, TouchdownPlan, Table::Kick::Timed);
    PlayOut(table, true);
    table.WaitForTurn(false);
    if (!EndCard(seat_)) table.Station("computer");
    table.WaitForTurn(true);
    CloseEndCard(game);
  }

  /// One possession. If it ends in a kick, the verdict must match the kick.
  void Possess(Table &table, const std::vector<int> &plan, Table::Kick kick) {
    constexpr int Touchdown = 3, Good = 1, NoGood = 2;
    table.CardsSeen.clear();
    table.Possess(plan, kick);
    const auto &cards = table.CardsSeen;
    if (cards.size() < 2 || cards[cards.size() - 2] != Touchdown) return;
    const bool timed = kick == Table::Kick::Timed;
    if (cards.back() != (timed ? Good : NoGood))
      throw GaveUp(timed ? "a timed kick isn't good" : "an early kick doesn't miss");
  }

  /// Repeats a round with a plan for each side until it ends with that card, since input timing varies.
  void TwoPeople(const std::string &endCard, const std::vector<std::vector<int>> &plans) {
    constexpr int Tries = 3;
    for (int time = 0; time < Tries; ++time) {
      GameProcess game({program_});
      Table table = Start("1", HumanLeft);
      bool home = true;
      for (const auto &plan : plans) {
        table.WaitForTurn(home);
        Possess(table, plan, home ? Table::Kick::Timed : Table::Kick::Early);
        PlayOut(table, home);
        home = !home;
      }
      if (CloseEndCard(game) == endCard) return;
    }
    throw GaveUp("no match ends with \"" + endCard + '"');
  }

  /// If the plan doesn't end the possession, soft shots do.
  void PlayOut(Table &table, bool home) {
    for (int attempt = 0; attempt < 3; ++attempt) {
      Pause(Milliseconds(500));
      if (EndCard(seat_) || table.HomeOnTurn() != home) return;
      table.Possess({8});
    }
  }

  void QuitInFlight() {
    GameProcess game({program_});
    Table table = Start("1", HumanLeft);
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
    std::cerr << "usage: playthrough GAME PICTURES_DIRECTORY" << std::endl;
    return 2;
  }
  try {
    Player(fs::absolute(argv[1]), argv[2]).Play();
  } catch (const GaveUp &error) {
    std::cerr << "playthrough: " << error.what() << std::endl;
    return 1;
  }
}
