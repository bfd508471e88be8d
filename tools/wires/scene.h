#pragma once

// The base of all scenes: two computers on which the game is started, found, joined and played.

#include "tools/wires/computer.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::seconds;

const std::vector<int> ShortPlan = {40, 40, 40}; ///< stays on the table

const std::string NetworkError = "Error initializing DirectPlay.";

constexpr Seconds LeavingTakes(15); ///< until the other player is told, on a working line
constexpr Seconds GivingUpTakes(45);

void Tell(const std::string &what);
void Expect(bool fits, const std::string &what); ///< @throws GaveUp  if it doesn't

/// Runs one of the scripts in this directory and returns its output.
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

  void SitDown(); ///< waits for both play windows

  /// One side plays a possession; the other must see the same cards, however late.
  void Shoot(Computer &shooter, Computer &other, const std::vector<int> &plan);

  static std::string WaitForEndCard(Computer &side);

  /// After the other player has left: the remaining one must be told, and its program must end.
  static void ExpectGone(Computer &stayed, Seconds patience, const std::string &how);

  Computer host_, joiner_;
};
