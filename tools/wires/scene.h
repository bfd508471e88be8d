#pragma once

// What all scenes share: two computers at which the game is started, found, joined and played.

#include "tools/wires/computer.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::seconds;

const std::vector<int> ShortPlan = {40, 40, 40}; ///< stays on the table

const std::string Won = "Home Team Wins!!";
const std::string Lost = "Away Team Wins!!";
const std::string Tied = "It's All Tied Up!";
const std::string NetworkError = "Error initializing DirectPlay.";

constexpr Seconds LeavingTakes(15); ///< until the other player is told, on a line that holds
constexpr Seconds GivingUpTakes(45);

void Tell(const std::string &what);
void Expect(bool fits, const std::string &what); ///< @throws GaveUp  if it doesn't

/// Runs one of the scripts beside this file, and returns what it says.
/// @throws GaveUp  if it fails
std::string RunScript(const std::string &script, const std::string &act);

class Scene {
public:
  Scene(const std::filesystem::path &game, const std::filesystem::path &pictures, char **displays)
      : host_("host", game, pictures, displays[0], "host-"),
        joiner_("joiner", game, pictures, displays[1], "joiner-") {}
  virtual ~Scene() = default;

  /// Plays the scene of that name. Returns false if there is none.
  bool Play(const std::string &name);

protected:
  using Scenes = std::map<std::string, std::function<void()>>;
  virtual Scenes All() = 0;

  void SitDown(); ///< both at their play windows

  /// One shoots, and the other must see the same cards, however late.
  void Shoot(Computer &shooter, Computer &other, const std::vector<int> &plan);

  static std::string WaitForEndCard(Computer &side);

  /// The other player has left: the one who stays is told, and its program ends.
  static void ExpectGone(Computer &stayed, Seconds patience, const std::string &how);

  Computer host_, joiner_;
};
