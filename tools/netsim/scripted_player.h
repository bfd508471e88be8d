#pragma once

// A simulated player: finds the other one in the lobby and reacts to what is on the screen. Presses, waits
// for the meter, releases, turns the aim, chats, presses keys, and switches to other windows while charging.

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
    machine.OnDraw = [this](Canvas &) { SeeFrame(); };
    machine.OnRepaint = [this] { SeeCard(); };
  }

  /// Presses Esc during the match, at that moment of the virtual clock or soon after.
  void QuitAt(std::int32_t moment) { quitAt_ = moment; }

  /// Joins only a session whose name begins with this.
  void LookFor(const std::string &session) { wanted_ = session; }

  /// Closes the lobby: the other player has gone.
  void GoHome() { goHome_ = true; }

  /// Called when the program sends a shot of that force. Counts a shot that this player didn't release.
  void SeeShotSent(float force);

  bool AtTable() const { return atTable_; }
  const SeenMatch &Seen() const { return seen_; }

private:
  void Look();
  void UseLobby(frmNewNet &lobby);
  void Play(frmSnapwedge &table);
  void Hold(frmSnapwedge &table);
  void Press();
  void Release();
  bool Fidget(frmSnapwedge &table);
  void Aim(const frmSnapwedge &table);
  void MoveMouse(int reachX, int reachY);
  void Listen();
  void SeeFrame();
  void SeeCard();
  void Read(const frmSnapwedge &table);
  int Between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }

  /// The left button.
  enum class Hand {
    Open,
    Pressing, ///< down, and the meter is charging
    Stale,    ///< down, but a card or another window has interrupted: its release is ignored
  };

  HeadlessMachine &machine_;
  bool host_;
  int rounds_;
  std::string wanted_; ///< prefix of the name of the session to join
  std::mt19937 random_;
  SeenMatch seen_;
  std::int32_t actAt_ = 0; ///< virtual time of the next action
  std::optional<std::int32_t> quitAt_;
  bool goHome_ = false;
  bool atTable_ = false;
  Hand hand_ = Hand::Open;
  bool releasing_ = false;                ///< the release is posted
  std::optional<std::int32_t> releaseAt_; ///< time of a release that doesn't depend on the meter
  std::optional<float> leaveAt_;          ///< meter value at which the player switches to another window
  bool orbits_ = false;                   ///< the right button is down
  float release_ = 0;                     ///< meter value at which the left button is released
  int attempt_ = 0;
  bool aimed_ = false;        ///< the aim of the next shot is set
  bool planned_ = false;      ///< this possession follows the plan for a Touchdown
  std::size_t heard_ = 0;     ///< sounds processed so far
  Vector lastPlace_;          ///< last position of the piece in a flight
  std::optional<Vector> tee_; ///< position of the piece before a kick
  bool kicked_ = false;
};
