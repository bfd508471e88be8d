#pragma once

// What a player sees on the play window and does there. Knows the window by its pixels alone.

#include "tools/playthrough/seat.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// The running game, started as a user would start it.
class GameProcess {
public:
  /// @param command  the program and its arguments
  /// @param display  X display; empty for the player's own
  explicit GameProcess(const std::vector<std::string> &command, const std::string &display = {});
  ~GameProcess();
  GameProcess(const GameProcess &) = delete;
  GameProcess &operator=(const GameProcess &) = delete;

  /// Waits for the program's own end.
  /// @throws GaveUp  if it doesn't come, or is no clean one
  void WaitForEnd();

private:
  pid_t process_;
};

/// Takes numbered pictures of stations and remembers which were reached.
class Album {
public:
  explicit Album(std::filesystem::path directory) : directory_(std::move(directory)) {}
  void Take(Seat &seat, const std::string &station) { Keep(seat.Screen(), station); }
  void Keep(const Image &screen, const std::string &station); ///< a picture taken before
  bool Has(const std::string &station) const;

private:
  std::filesystem::path directory_;
  std::vector<std::string> stations_;
};

/// Clicks a place of the launch window told in twips.
void ClickTwips(Seat &seat, ::Window launch, int x, int y);

/// Waits for the launch window and types a number of rounds.
::Window OpenLaunchWindow(Seat &seat);
void EnterRounds(Seat &seat, ::Window launch, const std::string &rounds);

/// One of the three end cards, if it is up.
std::optional<::Window> EndCard(Seat &seat);

class Table {
public:
  /// Sits down at the play window of that seat; waits until it has come.
  /// @param pictures  the game's own pictures, by which cards are known
  Table(Seat &seat, const std::filesystem::path &pictures, Album &album, std::string prefix = {});

  int MeterLevel();  ///< how full the meter is, 0 to 100
  int CardUp();      ///< the code of the card that is up, 0 for none
  bool HomeOnTurn(); ///< the turn's arrow points at the Home Team

  /// Holds the button until the meter reads `level` and lets go. Above 100 it is held until the shot fires by
  /// itself.
  void Shoot(int level);

  /// Watches what follows from a shot, with a picture of the flight and of its card. Returns the card's code,
  /// 0 if the piece has come to rest without one.
  int Watch();

  /// Takes the picture of a card and waits until it has gone. Returns its code.
  int SeeCard(int code);

  std::vector<int> CardsSeen; ///< codes of the cards so far; may be cleared

  enum class Kick { Timed, Early };

  /// One possession. Plays the shots of the plan until it ends; a Touchdown's kick is played too: timed,
  /// which is good, or early, which misses the posts.
  void Possess(const std::vector<int> &plan, Kick kick = Kick::Timed);

  /// Waits until that side is on turn or the match is over; sees the cards that come.
  void WaitForTurn(bool home);

  ::Window Window() const { return window_; }

  void Station(const std::string &name) { album_.Take(seat_, prefix_ + name); }

private:
  void PlayPointAfter(Kick kick);
  std::optional<int> Posts(); ///< how far right of the view's middle they stand, pixels
  void WaitForPosts();        ///< until they have nearly come to an end of their way

  Seat &seat_;
  Album &album_;
  std::string prefix_;
  ::Window window_;
  std::vector<Image> cards_;
  Image emptyMeter_;
};
