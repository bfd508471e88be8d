// Plays the real program as a player would, by what stands on the screen, and takes a picture at each
// station. Fails if a station isn't reached.
//   playthrough GAME PICTURES_DIRECTORY

#include "tools/playthrough/seat.h"

#include <X11/keysym.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>
#include <map>
#include <set>

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

// Places on the play window, logical pixels of its client area.
struct Box {
  int X, Y, Width, Height;
};
constexpr Box Meter{536, 32, 17, 409};
constexpr Box HomeArrow{248, 6, 17, 17};
constexpr Box Table{112, 58, 417, 361};
constexpr int CardLeft = 432;
constexpr int CardWidth = 200;
constexpr int CardHeight = 173;
constexpr std::array<int, 8> CardTop = {0, 112, 144, 56, 176, 88, 240, 208}; ///< by code, 1 to 7
constexpr double SameCard = 25.0; ///< mean difference of colour parts, up to which it is that card

constexpr int MeterStep = 8;
constexpr Milliseconds CardPatience(6000);
constexpr Milliseconds TurnPatience(90000);

/// The running game.
class Game {
public:
  explicit Game(const fs::path &program) : process_(fork()) {
    if (process_ == 0) {
      execl(program.c_str(), program.c_str(), nullptr);
      _exit(127);
    }
  }
  ~Game() {
    if (process_ > 0) {
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
    }
  }
  Game(const Game &) = delete;
  Game &operator=(const Game &) = delete;

  /// Waits for the program's end. @throws GaveUp  if it doesn't come, or is no clean one
  void WaitForEnd() {
    for (const auto end = Clock::now() + Milliseconds(10000); Clock::now() < end; Pause(Milliseconds(20))) {
      int status = 0;
      if (waitpid(process_, &status, WNOHANG) != process_) continue;
      process_ = -1;
      if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw GaveUp("the program didn't end cleanly");
      return;
    }
    throw GaveUp("the program doesn't end");
  }

private:
  pid_t process_;
};

class Player {
public:
  Player(fs::path program, fs::path pictures) : program_(std::move(program)), pictures_(std::move(pictures)) {
    for (int code = 1; code <= 7; ++code) {
      cards_.push_back(
          LoadImage(program_.parent_path() / "pictures" / ("Picture" + std::to_string(code) + ".png")));
    }
  }

  void Play() {
    LookAround();
    AgainstTheComputer();
    TwoPeople();
    QuitInFlight();
    Report();
  }

private:
  void Station(const std::string &name) {
    const std::string number = std::to_string(100 + ++count_).substr(1);
    seat_.TakePicture(pictures_ / (number + "-" + name + ".png"));
    stations_.insert(name);
    std::cout << number << ' ' << name << std::endl;
  }

  // ---- The launch window. Places in twips are those of its layout. ----

  ::Window Launch() {
    const ::Window window = seat_.WaitFor("Snapwedge V1.0 -");
    Pause(Milliseconds(300));
    return window;
  }

  void ClickTwips(::Window window, int x, int y) { seat_.Click(window, x / 15, y / 15); }

  /// Opens every information window and closes it again.
  void LookAround() {
    Game game(program_);
    const ::Window launch = Launch();
    Station("launch");
    struct Row {
      const char *station;
      const char *title;
      int x, y;           ///< of the button, twips
      int closeX, closeY; ///< where a click closes it, pixels
    };
    for (const Row &row : {Row{"controls", "Controls", 1380, 3780, 200, 200},
                           Row{"background", "Background", 3300, 3780, 200, 200},
                           Row{"readme", "ReadMe", 8400, 5700, 64, 396}}) {
      ClickTwips(launch, row.x, row.y);
      const ::Window window = seat_.WaitFor(row.title);
      Pause(Milliseconds(300));
      Station(row.station);
      seat_.Click(window, row.closeX, row.closeY);
      WaitUntilGone(row.title);
    }
    // A number of rounds that can't be played.
    EnterRounds(launch, "0");
    ClickTwips(launch, 3300, 5700);
    seat_.WaitFor("Rounds to Play:");
    Pause(Milliseconds(200));
    Station("rounds-refused");
    seat_.Press(XK_Return);
    WaitUntilGone("Rounds to Play:");
  }

  void WaitUntilGone(const std::string &title) {
    for (const auto end = Clock::now() + Milliseconds(5000); Clock::now() < end; Pause(Milliseconds(20))) {
      if (!seat_.Find(title)) return;
    }
    throw GaveUp("\"" + title + "\" doesn't close");
  }

  void EnterRounds(::Window launch, const std::string &rounds) {
    ClickTwips(launch, 3120, 4450);
    seat_.Press(XK_End);
    seat_.Press(XK_BackSpace);
    seat_.Press(XK_BackSpace);
    seat_.Type(rounds);
  }

  void Start(const std::string &rounds, int buttonX) {
    const ::Window launch = Launch();
    EnterRounds(launch, rounds);
    ClickTwips(launch, buttonX, 5700);
    window_ = seat_.WaitFor("Snapwedge V1.01");
    Pause(Milliseconds(1000));
    emptyMeter_ = Look(Meter);
  }

  // ---- Eyes on the play window. ----

  Image Look(const Box &box) { return seat_.Look(window_, box.X, box.Y, box.Width, box.Height); }

  /// How full the meter is, 0 to 100: its rows that have changed since it was empty.
  int MeterLevel() {
    const Image now = Look(Meter);
    if (now.Height != emptyMeter_.Height) return 0;
    int rows = 0;
    const int column = now.Width / 2;
    for (int y = 0; y < now.Height; ++y) {
      const Pixel &a = now.At(column, y);
      const Pixel &b = emptyMeter_.At(column, y);
      if (std::abs(a.Red - b.Red) + std::abs(a.Green - b.Green) + std::abs(a.Blue - b.Blue) > 60) ++rows;
    }
    return rows * 100 / now.Height;
  }

  /// The code of the card that is up, 0 for none.
  int CardUp() {
    for (int code = 1; code <= 7; ++code) {
      // A frame of the box may shift the picture by a few pixels.
      const Image seen =
          seat_.Look(window_, CardLeft, CardTop[static_cast<std::size_t>(code)], CardWidth, CardHeight);
      if (MeanDifference(seen, cards_[static_cast<std::size_t>(code - 1)]) < SameCard) return code;
    }
    return 0;
  }

  bool HomeOnTurn() {
    int yellow = 0;
    for (const Pixel &pixel : Look(HomeArrow).Pixels) {
      if (pixel.Red > 200 && pixel.Green > 200 && pixel.Blue < 100) ++yellow;
    }
    return yellow > 3;
  }

  bool EndCardUp() {
    return seat_.Find("Home Team Wins!!") || seat_.Find("Away Team Wins!!") ||
           seat_.Find("It's All Tied Up!");
  }

  // ---- The hand. ----

  /// Holds the button until the meter reads `level`, lets go, and takes the picture of the half-full meter.
  void Shoot(int level, bool picture = false) {
    seat_.Button(1, true);
    bool half = !picture;
    const auto end = Clock::now() + Milliseconds(2000);
    for (;;) {
      const int now = MeterLevel();
      if (now >= level - MeterStep / 2 || Clock::now() > end) break;
      if (!half && now >= 40) {
        half = true;
        Station("meter");
      }
    }
    seat_.Button(1, false);
  }

  /// Watches what follows from a shot: a picture of the flight, of each card. Returns the last card's code.
  int Watch(int level, const std::string &flight) {
    const auto start = Clock::now();
    const auto flightEnd = start + Milliseconds(level * 100 * 20 / 60 * 16 / 10 + 600);
    bool seen = false;
    while (Clock::now() < flightEnd) {
      if (!seen && Clock::now() > start + Milliseconds(350)) {
        seen = true;
        Station(flight);
      }
      if (const int card = CardUp()) return SeeCard(card);
      Pause(Milliseconds(40));
    }
    return 0;
  }

  int SeeCard(int code) {
    static const std::map<int, std::string> Names = {
        {1, "card-good"},  {2, "card-no-good"}, {3, "card-touchdown"}, {4, "card-turnover"},
        {5, "card-bonus"}, {6, "card-penalty"}, {7, "card-short"}};
    Pause(Milliseconds(100));
    Station(Names.at(code));
    for (const auto end = Clock::now() + CardPatience; Clock::now() < end; Pause(Milliseconds(40))) {
      if (CardUp() != code) return code;
    }
    throw GaveUp("a card stays up");
  }

  void CloseEndCard(Game &game) {
    for (const char *title : {"Home Team Wins!!", "Away Team Wins!!", "It's All Tied Up!"}) {
      if (const auto card = seat_.Find(title)) {
        Pause(Milliseconds(300));
        Station("end-card");
        seat_.Click(*card, 150, 110);
        game.WaitForEnd();
        return;
      }
    }
  }

  /// One possession at the mouse. Returns the codes of the cards that came.
  std::vector<int> Possess(const std::vector<int> &plan) {
    std::vector<int> cards;
    for (const int level : plan) {
      Shoot(level, !stations_.contains("meter"));
      const int card = Watch(level, "flight");
      if (card) cards.push_back(card);
      if (card == 3) {
        cards.push_back(PlayPointAfter());
        break;
      }
      if (card == 4 || card == 6 || card == 7) break;
      Pause(Milliseconds(200));
    }
    return cards;
  }

  /// The point-after: looks at it, then kicks when the posts come back to the middle.
  int PlayPointAfter() {
    Pause(Milliseconds(600));
    Station("point-after");
    // The posts start in the middle and walk a unit every 20 ms: 89 out, 178 back. A kick takes 76 steps.
    Pause(Milliseconds(1500));
    Shoot(96);
    Pause(Milliseconds(700));
    Station("kick");
    for (const auto end = Clock::now() + Milliseconds(15000); Clock::now() < end; Pause(Milliseconds(40))) {
      if (const int card = CardUp()) return SeeCard(card);
    }
    throw GaveUp("the kick has no card");
  }

  void WaitForTurn(bool home) {
    for (const auto end = Clock::now() + TurnPatience; Clock::now() < end; Pause(Milliseconds(40))) {
      if (EndCardUp()) return;
      const int card = CardUp();
      if (card) SeeCard(card);
      if (!card && HomeOnTurn() == home) return;
    }
    throw GaveUp("the turn doesn't come");
  }

  // ---- The matches. ----

  void AgainstTheComputer() {
    Game game(program_);
    Start("1", 1380);
    Station("aim");
    seat_.MoveBy(80, 0);
    Pause(Milliseconds(200));
    Station("aim-turned");
    seat_.MoveBy(-80, 0);
    Pause(Milliseconds(200));
    seat_.Press(XK_s);
    Pause(Milliseconds(200));
    Station("without-stadium");
    seat_.Press(XK_s);
    seat_.Key(XK_Shift_L, true);
    seat_.MoveBy(0, -60);
    Pause(Milliseconds(200));
    Station("zoomed");
    seat_.MoveBy(0, 60);
    Pause(Milliseconds(200));
    seat_.Key(XK_Shift_L, false);
    Possess(TouchdownPlan);
    WaitForTurn(false);
    if (!EndCardUp()) Station("computer");
    for (const auto end = Clock::now() + TurnPatience; !EndCardUp(); Pause(Milliseconds(40))) {
      if (Clock::now() > end) throw GaveUp("the computer's possession doesn't end");
      if (const int card = CardUp()) SeeCard(card);
    }
    CloseEndCard(game);
  }

  void TwoPeople() {
    Game game(program_);
    Start("2", 3300);
    const std::vector<std::vector<int>> plans = {TouchdownPlan, {96, 32}, {200}, TouchdownPlan};
    for (std::size_t i = 0; i < plans.size(); ++i) {
      WaitForTurn(i % 2 == 0);
      if (EndCardUp()) break;
      Possess(plans[i]);
      WaitUntilOver(i % 2 == 0);
    }
    CloseEndCard(game);
  }

  /// A possession that its plan didn't end is played to its end with soft shots.
  void WaitUntilOver(bool home) {
    for (int tries = 0; tries < 3; ++tries) {
      Pause(Milliseconds(400));
      if (EndCardUp() || HomeOnTurn() != home) return;
      Possess({8});
    }
  }

  void QuitInFlight() {
    Game game(program_);
    Start("1", 3300);
    Shoot(88);
    Pause(Milliseconds(400));
    seat_.Press(XK_Escape);
    game.WaitForEnd();
    stations_.insert("quit");
  }

  void Report() {
    for (const char *needed : {"launch", "controls", "background", "readme", "aim", "meter", "flight",
                               "point-after", "kick", "card-touchdown", "computer", "end-card", "quit"}) {
      if (!stations_.contains(needed)) throw GaveUp(std::string("station not reached: ") + needed);
    }
    if (!stations_.contains("card-good") && !stations_.contains("card-no-good"))
      throw GaveUp("no kick was judged");
  }

  const std::vector<int> TouchdownPlan = {96, 24, 16};

  fs::path program_;
  fs::path pictures_;
  Seat seat_;
  std::vector<Image> cards_;
  ::Window window_ = 0;
  Image emptyMeter_;
  std::set<std::string> stations_;
  int count_ = 0;
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
