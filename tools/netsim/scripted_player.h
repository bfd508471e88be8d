#pragma once

// A player who finds the other one in the lobby and plays by what stands on the screen: presses, waits for
// the meter, releases, turns the aim, chats, plays with the keys, and goes to other windows in mid-charge.

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
    machine.OnRepaint = [this] { SeeCard(); };
  }

  /// Presses Esc at the table, at that moment of the virtual clock or soon after.
  void QuitAt(std::int32_t moment) { quitAt_ = moment; }

  /// Joins only a session whose name begins like that.
  void LookFor(const std::string &session) { wanted_ = session; }

  /// Closes the lobby: there is nobody any more to play with.
  void GoHome() { goHome_ = true; }

  /// The program sends a shot of that force. It must come from this player's hand.
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
  void SeePicture();
  void SeeCard();
  void Read(const frmSnapwedge &table);
  int Between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }

  /// The left button.
  enum class Hand {
    Open,
    Pressing, ///< the meter that rises is this press's
    Stale,    ///< still down, but a card or another window came since: its release means nothing
  };

  HeadlessMachine &machine_;
  bool host_;
  int rounds_;
  std::string wanted_; ///< beginning of the name of the session to join
  std::mt19937 random_;
  SeenMatch seen_;
  std::int32_t actAt_ = 0; ///< virtual moment of the next act
  std::optional<std::int32_t> quitAt_;
  bool goHome_ = false;
  bool atTable_ = false;
  Hand hand_ = Hand::Open;
  bool letsGo_ = false;                 ///< the release is on its way to the program
  std::optional<std::int32_t> letGoAt_; ///< when a hand that waits for no meter lets go
  std::optional<float> leaveAt_;        ///< level of the meter at which the player goes to another window
  bool orbits_ = false;                 ///< the right button is down
  float release_ = 0;                   ///< level of the meter at which the left one is let go
  int attempt_ = 0;
  bool aimed_ = false;        ///< for the next shot
  bool planned_ = false;      ///< this possession goes by the plan of a Touchdown
  std::size_t heard_ = 0;     ///< sounds heard so far
  Vector lastPlace_;          ///< of the piece in a flight
  std::optional<Vector> tee_; ///< where the piece stands before a kick
  bool kicked_ = false;
};
