#pragma once

// The program-wide variables. One record is one running program: two records in one process are two
// computers.

#include "match/skill_levels.h"
#include "platform/machine.h"

#include <cstdint>
#include <memory>
#include <string>

/// A boolean as the game stores it: 0 is false, -1 is true, any value except 0 tests as true. `~` toggles it.
using Flag = std::int16_t;
constexpr Flag False = 0;
constexpr Flag True = -1;

constexpr Flag Not(Flag flag) { return static_cast<Flag>(~flag); }

constexpr int LongestChat = 200; ///< characters of a line

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
  SkillLevel Skill = DefaultSkillLevel;

  // Sound. The buffers are null while `SoundOn` is 0. `SoundFiles` below has a row for each.
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

  /// Stops every sound.
  void StopSounds() const;
};

struct SoundFile {
  SoundBuffer Program::*Buffer;
  const char *Name; ///< in the directory of the game
};

/// Every sound, in the order of loading.
inline constexpr SoundFile SoundFiles[] = {
    {&Program::SndCrowd, "crowd.daw"}, {&Program::SndCrowd2, "crowd2.daw"}, {&Program::SndYeah, "yeah.daw"},
    {&Program::SndYeah2, "yeah2.daw"}, {&Program::SndBoo, "boo.daw"},       {&Program::SndTheme, "theme.daw"},
    {&Program::SndGuit2, "guit2.daw"}, {&Program::SndSwoosh, "swoosh.daw"}, {&Program::SndWis1, "wis1.daw"},
    {&Program::SndWis2, "wis2.daw"},   {&Program::SndWis3, "wis3.daw"},
};

inline void Program::StopSounds() const {
  for (const SoundFile &sound : SoundFiles) Stop(this->*sound.Buffer);
}
