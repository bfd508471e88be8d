#pragma once

// One of the computers on the wire: its display with the player at it, and the game that runs there.

#include "tools/playthrough/table.h"

#include <atomic>
#include <memory>
#include <optional>

class Computer {
public:
  /// @param name     of the network namespace
  /// @param program  the game
  /// @param display  of this computer, as in the DISPLAY variable
  /// @param who      begins the names of its pictures
  Computer(std::string name, std::filesystem::path program, const std::filesystem::path &pictures,
           const std::string &display, std::string who)
      : name_(std::move(name)), program_(std::move(program)), display_(display), who_(std::move(who)),
        seat_(display), album_(pictures) {}

  void Start(const std::string &rounds); ///< the program, up to the launch window
  void Connect();                        ///< to the local network, whose games are listed then
  void Create();                         ///< a game; waits for its joiner
  void Cancel();                         ///< the waiting
  void FindGame();                       ///< connects and looks until a game is listed

  /// Connects, or looks again if this computer has connected, and tells whether a game is listed then. A
  /// dialog that says why none is gets a picture, and is closed.
  /// @param host  what is typed into the dialog; empty for the local network
  bool FindsGameAt(const std::string &host);

  void AskAddress(); ///< presses "What's my IP address?" and closes the box
  void OpenReadMe(); ///< and leaves it open
  void Join();       ///< the first game of the list
  void SitDown();    ///< at the play window

  /// Waits for the box with that title and closes it.
  void AnswerBox(const std::string &title, Milliseconds patience);

  /// @throws GaveUp  if this player is told that the other one has gone
  void ExpectNobodyGone();

  /// Watches the cards that come up until it has seen so many.
  /// @param wanted  may come down while it watches
  void Watch(const std::atomic<std::size_t> &wanted);

  /// Types a chat line and sends it. Returns how it looked.
  Image Say(const std::string &line);
  Image WaitForChat(); ///< until the other player's line has come

  // What is written on the play window.
  Image HomeScore();
  Image AwayScore();
  Image Round();

  bool Sees(const std::string &title) { return seat_.Find(title).has_value(); }
  void ClickOn(const std::string &title);
  void TurnAim(int pixels); ///< to the right
  void PressEscape();
  void Picture(const std::string &station) { album_.Take(seat_, who_ + station); }
  void WaitForEnd() { game_->WaitForEnd(); } ///< of the program, by itself
  void Kill() { game_.reset(); }
  Table &AtTable() { return *table_; }

private:
  void Search(int buttonX, int buttonY, const std::string &host = {});
  Image List() { return seat_.Look(launch_, 356, 324, 240, 36); }
  Image Line(int x, int y, int width, int height);

  std::string name_;
  std::filesystem::path program_;
  std::string display_;
  std::string who_;
  Seat seat_;
  Album album_;
  std::unique_ptr<GameProcess> game_;
  std::optional<Table> table_;
  ::Window launch_ = 0;
  Image emptyList_;
  bool connected_ = false;
};
