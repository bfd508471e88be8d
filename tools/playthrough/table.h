#pragma once

// A player at the play window, which it reads from the screen's pixels.

#include "tools/playthrough/seat.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// The running game, started as a user would start it.
class GameProcess {
public:
  /// @param command  the program and its arguments
  /// @param display  X display; empty for the default
  explicit GameProcess(const std::vector<std::string> &command, const std::string &display = {});
  ~GameProcess();
  GameProcess(const GameProcess &) = delete;
  GameProcess &operator=(const GameProcess &) = delete;

  /// Waits for the program to exit.
  /// @throws GaveUp  if it doesn't exit, or not with status 0
  void WaitForEnd();

  pid_t Id() const { return process_; }

private:
  pid_t process_;
};

/// Saves numbered screenshots of stations and remembers which were reached.
class Album {
public:
  /// @param directory  for the screenshots; empty to save none
  explicit Album(std::filesystem::path directory) : directory_(std::move(directory)) {}
  void Take(Seat &seat, const std::string &station) {
    if (!directory_.empty()) Keep(seat.Screen(), station);
  }
  void Keep(const Image &screen, const std::string &station); ///< saves an earlier screenshot
  bool Has(const std::string &station) const;

private:
  std::filesystem::path directory_;
  std::vector<std::string> stations_;
};

// Titles of the end cards.
const std::string Won = "Home Team Wins!!", Lost = "Away Team Wins!!", Tied = "It's All Tied Up!";

/// The end card, if one is shown.
struct EndCard {
  std::string Title;
  ::Window Shown;
};
std::optional<EndCard> FindEndCard(Seat &seat);
void CloseEndCard(Seat &seat, const EndCard &card);

class Table {
public:
  /// Waits for the play window.
  /// @param pictures  the game's images, to recognise the cards
  Table(Seat &seat, const std::filesystem::path &pictures, Album &album, std::string prefix = {});

  int MeterLevel();  ///< value of the meter, 0 to 100
  int CardUp();      ///< code of the card shown, 0 for none
  bool HomeOnTurn(); ///< the arrow points at the Home Team

  /// Holds the button until the meter reads `level`. Above 100, until the shot fires by itself.
  void Shoot(int level);

  /// Watches a shot, with screenshots of the flight and the card. Returns the card's code, 0 for a rest
  /// without one.
  int Watch();

  /// Takes a screenshot of a card and waits until it is gone. Returns its code.
  int SeeCard(int code);

  std::vector<int> CardsSeen; ///< codes of the cards seen; may be cleared

  enum class Kick { Timed, Early };

  /// Plays one possession by a plan. After a Touchdown also plays the kick: timed, which is good, or early,
  /// which misses the posts.
  void Possess(const std::vector<int> &plan, Kick kick = Kick::Timed);

  /// Waits until that side is on turn or the match is over, watching for cards.
  void WaitForTurn(bool home);

  ::Window Window() const { return window_; }

  void Station(const std::string &name) { album_.Take(seat_, prefix_ + name); }

private:
  void PlayPointAfter(Kick kick);
  std::optional<int> Posts(); ///< their offset to the right of the middle of the view, pixels
  void WaitForPosts();        ///< waits until they have nearly reached a turning point

  Seat &seat_;
  Album &album_;
  std::string prefix_;
  ::Window window_;
  std::vector<Image> cards_;
  Image emptyMeter_;
};
