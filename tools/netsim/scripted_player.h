#pragma once

// A player who finds the other one in the lobby and plays by what stands on the screen: presses, waits for
// the meter, releases, turns the aim, chats, and plays with the keys.

#include "match/frm_snapwedge.h"
#include "net/frm_new_net.h"
#include "platform/headless/headless_machine.h"
#include "tools/netsim/simulation.h"

#include <random>

class ScriptedPlayer {
public:
  ScriptedPlayer(HeadlessMachine &machine, bool host, int rounds, std::uint32_t seed)
      : machine_(machine), host_(host), rounds_(rounds), random_(seed) {
    machine.Player = [this] { Look(); };
    machine.OnDraw = [this](Canvas &) { SeePicture(); };
  }

  const SeenMatch &Seen() const { return seen_; }

private:
  void Look();
  void UseLobby(frmNewNet &lobby);
  void Play(frmSnapwedge &table);
  void SeePicture();
  int Between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }

  HeadlessMachine &machine_;
  bool host_;
  int rounds_;
  std::mt19937 random_;
  SeenMatch seen_;
  std::int32_t actAt_ = 0; ///< virtual moment of the next act
  bool holding_ = false;   ///< the left button is down
  float release_ = 0;      ///< level of the meter at which it is let go
  int attempt_ = 0;
  bool planned_ = false; ///< this possession goes by the plan of a Touchdown
  bool wasFlying_ = false;
  Vector lastPlace_;
};
