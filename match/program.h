#pragma once

// The program-wide variables. One record is one running program: two records in one process are two
// computers.

#include "platform/machine.h"

#include <cstdint>
#include <memory>
#include <string>

/// A boolean as the game stores it: 0 is false, -1 is true, any value except 0 tests as true. `~` toggles it.
using Flag = std::int16_t;
constexpr Flag False = 0;
constexpr Flag True = -1;

constexpr Flag Not(Flag flag) { return static_cast<Flag>(~flag); }

/// How well the computer plays. The level only scales its random errors.
enum class SkillLevel { Easy, Medium, Hard };

constexpr std::int16_t MostRounds = 99; ///< of a match

using SoundBuffer = std::shared_ptr<DirectSoundBuffer>;

struct Program {
  explicit Program(Machine &on) : machine(on) {}

  Machine &machine;

  Window *LaunchWindow = nullptr; ///< the window that opened the play window, or null

  // The match.
  std::int16_t Rounds = 5;  ///< rounds to play, 1 to `MostRounds`
  std::string GameMode;     ///< "Computer", "Human" or "INET"
  Flag MyTurn = False;      ///< side A has the piece; during a match only `Reset` writes it
  std::int16_t FlickMs = 0; ///< minimum length of a step of a running shot, ms
  std::int16_t FrameMs = 0; ///< length of an idle frame, ms

  // The options.
  Flag StadiumOn = True;  ///< stadium, field lines and sky are shown
  Flag MessagesOn = True; ///< result cards come up in a match on one computer
  SkillLevel Skill = SkillLevel::Medium;

  // Sound. The buffers are null while `SoundOn` is 0.
  Flag SoundOn = True; ///< sound works; 0 for good once initialisation has failed
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
  std::shared_ptr<DirectPlay4> DP;                        ///< recreated at every Connect
  std::shared_ptr<DirectPlayEnumConnections> Connections; ///< connection methods
  std::shared_ptr<DirectPlayEnumSessions> Sessions;       ///< result of the last search
  std::string PlayerFriendly;                             ///< names of the local player
  std::string PlayerFormal;
  std::int32_t MyPlayerId = 0;
  std::int32_t FromId = 0; ///< written by each receive, never read
  std::int32_t ToId = 0;
  std::int32_t MsgCount = 0;                 ///< messages in the queue when last counted
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

  /// Pauses a sound if there is sound.
  void Stop(const SoundBuffer &sound) const {
    if (SoundOn) sound->Stop();
  }

  /// Stops all sounds.
  void StopSounds() const {
    for (const SoundBuffer *sound : {&SndCrowd, &SndCrowd2, &SndYeah, &SndYeah2, &SndBoo, &SndTheme,
                                     &SndGuit2, &SndSwoosh, &SndWis1, &SndWis2, &SndWis3}) {
      Stop(*sound);
    }
  }
};
