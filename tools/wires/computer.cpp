#include "tools/wires/computer.h"

#include "tools/wires/writing.h"

#include <X11/keysym.h>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds LookAgain(40);
constexpr Milliseconds SearchTakes(2000); ///< duration of a search
constexpr Milliseconds CardsPatience(90000);
constexpr Milliseconds ChatPatience(60000);
constexpr int Searches = 5; ///< before giving up

constexpr double Listed = 0.5; ///< mean difference per channel from an empty list

} // namespace

void Computer::Start(const std::string &rounds) {
  table_.reset();
  game_ = std::make_unique<GameProcess>(
      std::vector<std::string>{"ip", "netns", "exec", name_, program_.string()}, display_);
  launch_ = OpenLaunchWindow(seat_);
  EnterRounds(seat_, launch_, rounds);
  emptyList_ = List();
  connected_ = false;
}

void Computer::Search(const Spot &button, const std::string &host) {
  ClickSpot(seat_, launch_, button);
  seat_.WaitFor("Locate Session");
  Pause(Milliseconds(300));
  seat_.Press(XK_Delete); // clears the previous entry
  seat_.Type(host);
  Pause(Milliseconds(100));
  seat_.Press(XK_Return);
  Pause(SearchTakes);
  connected_ = true;
}

void Computer::Connect() { Search(Spots::Connect); }

bool Computer::FindsGameAt(const std::string &host) {
  Search(connected_ ? Spots::Refresh : Spots::Connect, host);
  if (Sees("Locate Session")) {
    Picture("told");
    seat_.Press(XK_Escape);
    Pause(Milliseconds(500));
  }
  return MeanDifference(emptyList_, List()) > Listed;
}

void Computer::AskAddress() {
  ClickSpot(seat_, launch_, Spots::Address);
  AnswerBox("IP Address:", Milliseconds(5000));
}

void Computer::OpenReadMe() {
  ClickSpot(seat_, launch_, Spots::ReadMe);
  seat_.WaitFor("ReadMe");
  Pause(Milliseconds(300));
  Picture("reads");
}

void Computer::Create() {
  ClickSpot(seat_, launch_, Spots::Create);
  seat_.WaitFor("Polling...");
}

void Computer::Cancel() {
  ClickSpot(seat_, launch_, Spots::Cancel);
  OpenLaunchWindow(seat_);
}

void Computer::FindGame() {
  for (int i = 0; i < Searches; ++i) {
    if (FindsGameAt({})) return;
  }
  throw GaveUp("no game is listed");
}

void Computer::Join() {
  ClickSpot(seat_, launch_, Spots::FirstGame);
  Pause(Milliseconds(200));
  Picture("found");
  ClickSpot(seat_, launch_, Spots::Join);
}

void Computer::SitDown() { table_.emplace(seat_, program_.parent_path() / "pictures", album_, who_); }

void Computer::AnswerBox(const std::string &title, Milliseconds patience) {
  seat_.WaitFor(title, patience);
  Pause(Milliseconds(400));
  Picture("box");
  seat_.Press(XK_Return);
}

void Computer::ExpectNobodyGone() {
  if (Sees("Game Over:")) throw GaveUp(who_ + " is told that the other player has left");
}

void Computer::Watch(const std::atomic<std::size_t> &wanted) {
  for (const auto end = Clock::now() + CardsPatience; table_->CardsSeen.size() < wanted; Pause(LookAgain)) {
    if (SeesEndCard()) return;
    if (const int card = table_->CardUp()) table_->SeeCard(card);
    if (Clock::now() > end) throw GaveUp(who_ + " misses a card");
  }
}

Image Computer::Line(int x, int y, int width, int height) {
  return WritingOn(seat_.Look(table_->Window(), x, y, width, height));
}

Image Computer::Say(const std::string &line) {
  seat_.Press(XK_grave);
  seat_.Type(line);
  Pause(Milliseconds(300));
  Picture("chat-typed");
  const Image typed = Line(115, 424, 400, 19);
  seat_.Press(XK_Return);
  return typed;
}

Image Computer::WaitForChat() {
  for (const auto end = Clock::now() + ChatPatience; Clock::now() < end; Pause(LookAgain)) {
    const Image line = Line(117, 34, 400, 19);
    if (line.Width == 0) continue;
    Picture("chat-came");
    return line;
  }
  throw GaveUp(who_ + " gets no chat line");
}

Image Computer::HomeScore() { return LastWord(Line(104, 4, 140, 19)); }
Image Computer::AwayScore() { return LastWord(Line(394, 4, 144, 19)); }
Image Computer::Round() { return Line(278, 1, 81, 14); }

void Computer::ClickOn(const std::string &title) { seat_.Click(seat_.WaitFor(title), 150, 110); }

void Computer::TurnAim(int pixels) {
  seat_.MoveBy(pixels, 0);
  Pause(Milliseconds(300));
}

void Computer::PressEscape() { seat_.Press(XK_Escape); }
