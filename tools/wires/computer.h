#pragma once

// One of the computers on the wire: its display, a player in front of it, and the running game.

#include "tools/playthrough/launch.h"
#include "tools/playthrough/table.h"

#include <atomic>
#include <memory>
#include <optional>

class Computer {
public:
  /// @param name     of the network namespace
  /// @param program  the game
  /// @param display  of this computer, as in the DISPLAY variable
  /// @param who      prefix of the names of its screenshots
  Computer(std::string name, std::filesystem::path program, const std::filesystem::path &pictures,
           const std::string &display, std::string who)
      : name_(std::move(name)), program_(std::move(program)), display_(display), who_(std::move(who)),
        seat_(display), album_(pictures) {}

  void Start(const std::string &rounds); ///< starts the program and waits for the launch window
  void Connect();                        ///< lists the games of the local network
  void Create();                         ///< creates a game, which then waits for a joiner
  void Cancel();                         ///< stops waiting
  void FindGame();                       ///< connects and refreshes until a game is listed

  /// Connects, or refreshes if already connected, and returns whether a game is listed. If the dialog says
  /// why none is, takes a screenshot of it and closes it.
  /// @param host  the entry in the dialog; empty for the local network
  bool FindsGameAt(const std::string &host);

  void AskAddress(); ///< presses "What's my IP address?" and closes the box
  void OpenReadMe(); ///< opens the read-me and leaves it open
  void Join();       ///< joins the first game of the list
  void SitDown();    ///< waits for the play window

  /// Waits for a box with that title and closes it.
  void AnswerBox(const std::string &title, Milliseconds patience);

  /// @throws GaveUp  if the game says that the other player has left
  void ExpectNobodyGone();

  std::optional<EndCard> SeesEndCard() { return FindEndCard(seat_); }

  /// Watches until a number of cards has been shown, or the end card.
  /// @param wanted  the number; may decrease meanwhile
  void Watch(const std::atomic<std::size_t> &wanted);

  /// Types a chat line and sends it. Returns its image.
  Image Say(const std::string &line);
  Image WaitForChat(); ///< waits for the other player's line; returns its image

  // Texts of the play window, as images.
  Image HomeScore();
  Image AwayScore();
  Image Round();

  bool Sees(const std::string &title) { return seat_.Find(title).has_value(); }
  void ClickOn(const std::string &title);
  void TurnAim(int pixels); ///< positive: to the right
  void PressEscape();
  void Picture(const std::string &station) { album_.Take(seat_, who_ + station); }
  void WaitForEnd() { game_->WaitForEnd(); } ///< of the program, by itself
  void Kill() { game_.reset(); }
  Table &AtTable() { return *table_; }

private:
  void Search(const Spot &button, const std::string &host = {});
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
