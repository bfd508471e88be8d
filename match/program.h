#pragma once

// The program-wide variables. One record is one running program: two of them in one process are two
// computers.

#include "platform/machine.h"

#include <cstdint>
#include <memory>
#include <string>

/// A truth value as the game stores it: 0 is false, -1 is true, and any value but 0 tests as true. Toggled by
/// `~`.
using Flag = std::int16_t;
constexpr Flag False = 0;
constexpr Flag True = -1;

constexpr Flag Not(Flag flag) { return static_cast<Flag>(~flag); }

/// How well the computer plays: the level scales its random errors and nothing else.
enum class SkillLevel { Easy, Medium, Hard };

constexpr std::int16_t MostRounds = 99; ///< of a match

using SoundBuffer = std::shared_ptr<DirectSoundBuffer>;

struct Program {
  explicit Program(Machine &on) : machine(on) {}

  Machine &machine;

  Window *LaunchWindow = nullptr; ///< what opened the play window, if anything did

  // The match.
  std::int16_t Rounds = 5;  ///< rounds to play, 1 to `MostRounds`
  std::string GameMode;     ///< "Computer", "Human" or "INET"
  Flag MyTurn = False;      ///< side A has the piece; after the launch `Reset` alone writes it
  std::int16_t FlickMs = 0; ///< shortest length of one step of a running shot, ms
  std::int16_t FrameMs = 0; ///< length of one idle frame, ms

  // The options.
  Flag StadiumOn = True;  ///< stadium, field lines and sky are shown
  Flag MessagesOn = True; ///< result cards come up in a match on one computer
  SkillLevel Skill = SkillLevel::Medium;

  // Sound. The buffers are null while `SoundOn` is 0.
  Flag SoundOn = True; ///< sound can be played; 0 for good once setting it up has failed
  std::unique_ptr<DirectX7> DX;
  std::shared_ptr<DirectSound> DS;
  SoundBuffer SndCrowd;  ///< crowd, looped
  SoundBuffer SndCrowd2; ///< second crowd, looped with the first
  SoundBuffer SndYeah;   ///< cheer
  SoundBuffer SndYeah2;  ///< second, larger cheer
  SoundBuffer SndBoo;    ///< boo
  SoundBuffer SndTheme;  ///< theme, looped
  SoundBuffer SndGuit2;  ///< sting at each change of stage
  SoundBuffer SndSwoosh; ///< a flick starts
  SoundBuffer SndWis1;   ///< whistle: penalty, chat line
  SoundBuffer SndWis2;   ///< whistle: Touchdown, the play window opens
  SoundBuffer SndWis3;   ///< whistle: the game ends

  // The network.
  Flag IsHost = False;                                    ///< this computer created the session
  std::shared_ptr<DirectPlay4> DP;                        ///< replaced at every Connect
  std::shared_ptr<DirectPlayEnumConnections> Connections; ///< connection methods
  std::shared_ptr<DirectPlayEnumSessions> Sessions;       ///< what the last search found
  std::string PlayerFriendly;                             ///< names of the local player
  std::string PlayerFormal;
  std::int32_t MyPlayerId = 0;
  std::int32_t FromId = 0; ///< written by each receive, read by nobody
  std::int32_t ToId = 0;
  std::int32_t MsgCount = 0;                 ///< messages waiting, as last counted
  std::shared_ptr<DirectPlayMessage> InMsg;  ///< last received
  std::shared_ptr<DirectPlayMessage> OutMsg; ///< last built

  /// Plays a sound once if there is sound.
  void PlayOnce(const SoundBuffer &sound) const {
    if (SoundOn) sound->Play(DSBPLAY_DEFAULT);
  }

  /// Plays a sound in a loop if there is sound.
  void PlayLoop(const SoundBuffer &sound) const {
    if (SoundOn) sound->Play(DSBPLAY_LOOPING);
  }

  /// Stops a sound where it stands if there is sound.
  void Stop(const SoundBuffer &sound) const {
    if (SoundOn) sound->Stop();
  }

  /// Silence.
  void StopSounds() const {
    for (const SoundBuffer *sound : {&SndCrowd, &SndCrowd2, &SndYeah, &SndYeah2, &SndBoo, &SndTheme,
                                     &SndGuit2, &SndSwoosh, &SndWis1, &SndWis2, &SndWis3}) {
      Stop(*sound);
    }
  }
};
