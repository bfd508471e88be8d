#include "tools/playthrough/table.h"

#include "match/results.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>

namespace {

using Clock = std::chrono::steady_clock;

// Rectangles on the play window, logical pixels of its client area.
struct Box {
  int X, Y, Width, Height;
};
constexpr Box Meter{536, 32, 17, 409};
constexpr Box HomeArrow{248, 6, 17, 17};
constexpr Box Uprights{112, 134, 417, 54}; ///< the posts above the crossbar, from the kicker's view
constexpr Box Field{112, 250, 318, 168};   ///< the part of the canvas without sky and cards
constexpr int CardLeft = 432;
constexpr int CardWidth = 200;
constexpr int CardHeight = 173;
constexpr std::array<int, 8> CardTop = {0, 112, 144, 56, 176, 88, 240, 208}; ///< by code, 1 to 7
constexpr double SameCard = 25.0; ///< mean difference per channel up to which it is that card

constexpr int MeterStep = 8;
constexpr int OtherPixel = 60; ///< difference per channel from which a pixel of the meter has changed
constexpr Milliseconds LookAgain(40);
constexpr double SamePicture = 0.02; ///< mean difference per channel up to which nothing has moved
constexpr Milliseconds AtRest(800);  ///< without movement for this long, no shot is running
constexpr Milliseconds MeterPatience(10000);
constexpr Milliseconds FlightPatience(30000);
constexpr Milliseconds CardPatience(30000);
constexpr Milliseconds TurnPatience(120000);
constexpr Milliseconds PostsPatience(20000);

constexpr const char *CardNames[] = {
    "",           "card-good",    "card-no-good", "card-touchdown", "card-turnover",
    "card-bonus", "card-penalty", "card-short"};

} // namespace

GameProcess::GameProcess(const std::vector<std::string> &command, const std::string &display)
    : process_(fork()) {
  if (process_ != 0) return;
  if (!display.empty()) setenv("DISPLAY", display.c_str(), 1);
  std::vector<char *> arguments;
  for (const std::string &word : command) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

GameProcess::~GameProcess() {
  if (process_ <= 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void GameProcess::WaitForEnd() {
  for (const auto end = Clock::now() + Milliseconds(10000); Clock::now() < end; Pause(LookAgain)) {
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) != process_) continue;
    process_ = -1;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw GaveUp("the program didn't end cleanly");
    return;
  }
  throw GaveUp("the program doesn't end");
}

void Album::Keep(const Image &screen, const std::string &station) {
  if (directory_.empty()) return;
  stations_.push_back(station);
  const std::string number = std::to_string(100 + stations_.size()).substr(1);
  SaveImage(screen, directory_ / (number + "-" + station + ".png"));
  std::cout << number << ' ' << station << std::endl;
}

bool Album::Has(const std::string &station) const {
  return std::ranges::find(stations_, station) != stations_.end();
}

std::optional<EndCard> FindEndCard(Seat &seat) {
  for (const std::string &title : {Won, Lost, Tied}) {
    if (const auto card = seat.Find(title)) return EndCard{title, *card};
  }
  return std::nullopt;
}

void CloseEndCard(Seat &seat, const EndCard &card) {
  constexpr Milliseconds TakesClicks(600);
  Pause(TakesClicks);
  seat.Click(card.Shown, 150, 110);
}

Table::Table(Seat &seat, const std::filesystem::path &pictures, Album &album, std::string prefix)
    : seat_(seat), album_(album), prefix_(std::move(prefix)), window_(seat.WaitFor("Snapwedge V1.01")) {
  for (int code = Results::First; code <= Results::Last; ++code) {
    cards_.push_back(LoadImage(pictures / ("Picture" + std::to_string(code) + ".png")));
  }
  Pause(Milliseconds(1200));
  emptyMeter_ = seat_.Look(window_, Meter.X, Meter.Y, Meter.Width, Meter.Height);
}

int Table::MeterLevel() {
  const Image now = seat_.Look(window_, Meter.X, Meter.Y, Meter.Width, Meter.Height);
  if (now.Height == 0 || now.Height != emptyMeter_.Height) return 0;
  int rows = 0;
  const int column = now.Width / 2;
  for (int y = 0; y < now.Height; ++y) {
    const Pixel &a = now.At(column, y);
    const Pixel &b = emptyMeter_.At(column, y);
    const int difference = std::abs(a.Red - b.Red) + std::abs(a.Green - b.Green) + std::abs(a.Blue - b.Blue);
    if (difference > OtherPixel) ++rows;
  }
  return rows * 100 / now.Height;
}

int Table::CardUp() {
  for (int code = Results::First; code <= Results::Last; ++code) {
    const Image seen =
        seat_.Look(window_, CardLeft, CardTop[static_cast<std::size_t>(code)], CardWidth, CardHeight);
    if (MeanDifference(seen, cards_[static_cast<std::size_t>(code - 1)]) < SameCard) return code;
  }
  return 0;
}

bool Table::HomeOnTurn() {
  constexpr int PixelsOfAnArrow = 4;
  const Image arrow = seat_.Look(window_, HomeArrow.X, HomeArrow.Y, HomeArrow.Width, HomeArrow.Height);
  const auto yellow = std::ranges::count_if(arrow.Pixels, [](const Pixel &pixel) {
    return pixel.Red > 200 && pixel.Green > 200 && pixel.Blue < 100;
  });
  return yellow >= PixelsOfAnArrow;
}

void Table::Shoot(int level) {
  seat_.Button(1, true);
  std::optional<Image> half;
  int highest = 0;
  for (const auto end = Clock::now() + MeterPatience; Clock::now() < end;) {
    const int now = MeterLevel();
    highest = std::max(highest, now);
    const bool fired = now < highest / 2; // the shot has fired by itself
    if (now >= level - MeterStep / 2 || fired) break;
    if (!half && now >= 40) half = seat_.Screen();
  }
  seat_.Button(1, false);
  if (half && !album_.Has(prefix_ + "meter")) album_.Keep(*half, prefix_ + "meter");
}

int Table::Watch() {
  const auto field = [&] { return seat_.Look(window_, Field.X, Field.Y, Field.Width, Field.Height); };
  const auto start = Clock::now();
  auto moved = start;
  Image last = field();
  bool seen = false;
  for (; Clock::now() < start + FlightPatience; Pause(LookAgain)) {
    if (!seen && Clock::now() > start + Milliseconds(350)) {
      seen = true;
      Station("flight");
    }
    if (const int card = CardUp()) return SeeCard(card);
    // The camera follows the piece, so the whole field moves during a flight.
    Image now = field();
    if (MeanDifference(now, last) > SamePicture) moved = Clock::now();
    last = std::move(now);
    if (Clock::now() > moved + AtRest) return 0;
  }
  throw GaveUp("the piece doesn't come to rest");
}

int Table::SeeCard(int code) {
  CardsSeen.push_back(code);
  Pause(Milliseconds(100));
  Station(CardNames[code]);
  for (const auto end = Clock::now() + CardPatience; Clock::now() < end; Pause(LookAgain)) {
    if (CardUp() != code) return code;
  }
  throw GaveUp("a card stays up");
}

std::optional<int> Table::Posts() {
  constexpr int PixelsOfAPost = 8; // in a column; flags have fewer
  constexpr int Narrowest = 40, Widest = 70;
  const Image seen = seat_.Look(window_, Uprights.X, Uprights.Y, Uprights.Width, Uprights.Height);
  int first = -1, last = -1;
  for (int x = 0; x < seen.Width; ++x) {
    int yellow = 0;
    for (int y = 0; y < seen.Height; ++y) {
      const Pixel &pixel = seen.At(x, y);
      if (pixel.Red > 200 && pixel.Green > 180 && pixel.Blue < 100) ++yellow;
    }
    if (yellow < PixelsOfAPost) continue;
    if (first < 0) first = x;
    last = x;
  }
  if (last - first < Narrowest || last - first > Widest) return std::nullopt;
  return (first + last - seen.Width) / 2;
}

void Table::WaitForPosts() {
  // From here they turn and are in the middle when a strong kick arrives.
  constexpr int NearTheEnd = 141;
  int before = 0;
  for (const auto end = Clock::now() + PostsPatience; Clock::now() < end; Pause(Milliseconds(10))) {
    const auto posts = Posts();
    if (!posts) continue;
    const int out = std::abs(*posts);
    if (out >= NearTheEnd && out > before) return;
    before = out;
  }
  throw GaveUp("the posts don't reach a turning point");
}

void Table::PlayPointAfter(Kick kick) {
  Pause(Milliseconds(600));
  Station("point-after");
  if (kick == Kick::Timed) WaitForPosts();
  // Still good if the release is a step or two late.
  Shoot(80);
  Pause(Milliseconds(700));
  Station("kick");
  for (const auto end = Clock::now() + Milliseconds(20000); Clock::now() < end; Pause(LookAgain)) {
    if (const int card = CardUp()) {
      SeeCard(card);
      return;
    }
  }
  throw GaveUp("the kick has no card");
}

void Table::Possess(const std::vector<int> &plan, Kick kick) {
  for (const int level : plan) {
    Shoot(level);
    const int card = Watch();
    if (card == Results::Touchdown) PlayPointAfter(kick);
    if (card != 0 && card != Results::Bonus) return;
    Pause(Milliseconds(200));
  }
}

void Table::WaitForTurn(bool home) {
  for (const auto end = Clock::now() + TurnPatience; Clock::now() < end; Pause(LookAgain)) {
    if (FindEndCard(seat_)) return;
    if (const int card = CardUp()) {
      SeeCard(card);
    } else if (HomeOnTurn() == home) {
      return;
    }
  }
  throw GaveUp("the side's turn doesn't come");
}
