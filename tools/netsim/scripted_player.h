#pragma once

// A player who finds the other one in the lobby and plays by what stands on the screen: presses, waits for
// the meter, releases, turns the aim, chats, and plays with the keys.

#include "match/frm_snapwedge.h"
#include "net/frm_new_net.h"
#include "platform/headless/headless_machine.h"
#include "tools/netsim/simulation.h"

#include <optional>
#include <random>

class ScriptedPlayer {
public:
  ScriptedPlayer(HeadlessMachine &machine, bool host, int rounds, std::uint32_t seed)
      : machine_(machine), host_(host), rounds_(rounds), random_(seed) {
    machine.Player = [this] { Look(); };
    machine.OnDraw = [this](Canvas &) { SeePicture(); };
  }

  /// Presses Esc at the table, at that moment of the virtual clock or soon after.
  void QuitAt(std::int32_t moment) { quitAt_ = moment; }

  const SeenMatch &Seen() const { return seen_; }

private:
  void Look();
  void UseLobby(frmNewNet &lobby);
  void Play(frmSnapwedge &table);
  bool Fidget(frmSnapwedge &table);
  void Aim(const frmSnapwedge &table);
  void Listen();
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
  std::optional<std::int32_t> quitAt_;
  bool holding_ = false; ///< the left button is down
  bool orbits_ = false;  ///< the right button is down
  float release_ = 0;    ///< level of the meter at which it is let go
  int attempt_ = 0;
  bool aimed_ = false;        ///< for the next shot
  bool planned_ = false;      ///< this possession goes by the plan of a Touchdown
  std::size_t heard_ = 0;     ///< sounds heard so far
  Vector lastPlace_;          ///< of the piece in a flight
  std::optional<Vector> tee_; ///< where the piece stands before a kick
  bool kicked_ = false;
};
