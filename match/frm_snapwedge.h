#pragma once

// The play window. Its fields and procedures are the whole match. The fields are grouped by subject; each
// procedure is defined in the file named above its group.

#include "match/program.h"
#include "net/received.h"
#include "scene/graph/rm_canvas.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

constexpr std::int16_t AttemptsInPossession = 3;

/// The score board of one side, behind the controls: a frame around its score line, and a tile with its
/// points in large digits.
struct SideBoard {
  static constexpr std::size_t MostDigits = 3; ///< a side can score 990 points at the most

  BackPicture Line, Tile;
  std::array<BackPicture, MostDigits> Digits;
  std::int32_t Points = 0;     ///< as shown
  std::int16_t FlashSteps = 0; ///< remaining steps of flashing
};

class frmSnapwedge : public Window {
public:
  /// Lays the window out (scene/play_window.cpp). Nothing shows before `Load`.
  frmSnapwedge(Machine &onMachine, Program &ofProgram);
  ~frmSnapwedge() override { machine.Hide(*this); }

  // ---- The match ---------------------------------------------------------------------------------

  // match/match_loop.cpp

  /// Plays the whole match, from the set-up to the end card. Never returns: the program ends with the match.
  /// @throws ProgramEnd  at the end of the match, on Esc, and when the other computer has left
  [[noreturn]] void Load();

  void SetUp();
  void PlayRounds();
  [[noreturn]] void EndMatch();

  /// One idle frame of a turn loop: "A" side A at the mouse, "B" the computer opponent, "C" the other
  /// computer of a network game, "D" side B at the mouse.
  void Frame(const std::string &WMOD);

  /// Called first in every frame, with the letter of its loop. Does nothing.
  void WhatPlayer(const std::string &WMOD);

  /// Begins a step: sets `FrameEnd` to `milliseconds` from now.
  void BeginStep(std::int32_t milliseconds);

  /// Pumps until the clock reaches `FrameEnd`. Doesn't pump if it already has.
  void WaitForStepEnd();

  void MyDelay();       ///< waits 3000 ms and pumps: a result card
  void MyDelayNoCard(); ///< waits 1000 ms and pumps: a result without its card
  void MyDelay2();      ///< waits 1000 ms, handles messages and pumps: the waiting computer's pause

  // match/reset.cpp

  /// The turnover: gives the piece to the other side and puts everything back at the near end. During a match
  /// nothing else writes `MyTurn`.
  void Reset();

  // match/judging.cpp

  /// Casts a ray straight down from the piece's centre. Returns "OK" if it hits; else runs `Fall` and returns
  /// "Fall".
  std::string CheckRay();

  /// The fall off the table, its card and the turnover.
  void Fall();

  /// The verdict when a flick has come to rest: casts a ray down from each of the piece's three corners, adds
  /// points, shows cards, and ends the possession if the rules say so.
  void CheckScore(std::int16_t &Side);
  void FallShort(); ///< no attempt is left and the piece is on the table: card 7 and the turnover

  // match/cards.cpp

  /// Shows the card of a result, one of `Results`, for three seconds, with its sounds. On the waiting
  /// computer of a network game it only pauses.
  void ShowMessage(std::int16_t &MES);
  void ShowMessage(std::int16_t &&MES) { ShowMessage(MES); }

  Flag AnyPictures();                 ///< -1 if a result card is up
  void PostScore();                   ///< writes both score lines and the round line
  void ShowRound();                   ///< writes the round line
  PictureBox &Card(std::int16_t MES); ///< the card of that result, one of `Results`

  // match/hints.cpp: the texts of `lblHint`
  void HintAim();                         ///< what the side on turn can do now, and how its last try went
  void HintFlight();                      ///< a shot of `ShotPower` has begun
  void HintNoKick();                      ///< a kick was released without power
  void HintResult(std::int16_t MES);      ///< the reason for this side's result card
  void HintOtherResult(std::int16_t MES); ///< the meaning of the other computer's result card
  void HintOver();                        ///< the match is over
  void HintWriting();                     ///< a message is begun
  void HintWritten();                     ///< no message is being written any more
  void HintLeft();                        ///< the other player has left
  void SetHint(const std::string &text);  ///< what the line says while nothing else goes first
  void ShowHint(); ///< a broken line goes first while this side waits, then that a message is being written

  Program &program;
  Machine &machine;

  std::int16_t Round = 0;  ///< current round, 1 to `Rounds`; 0 before the first
  std::int16_t Player = 0; ///< 1 while `MyTurn` is set, else 2; on the waiting computer, as received
  std::int16_t Shots = AttemptsInPossession; ///< attempts left in this possession
  std::int32_t HomeScore = 0;                ///< points of side A
  std::int32_t AwayScore = 0;                ///< points of side B
  std::int32_t FrameStart = 0;               ///< clock at the start of the current step, ms
  std::int32_t FrameEnd = 0;                 ///< earliest clock at the end of the current step, ms
  std::string PieceSurface;  ///< mesh under the piece's centre at the last `CheckRay`; empty for none
  std::string CornerSurface; ///< mesh under the corner last tested by `CheckScore`
  Flag OverSide = False;     ///< at the last rest a corner was over an edge, but none past the far edge
  Flag OnCircle = False;     ///< at the last rest a corner was over the bonus area
  std::string Hint;          ///< of the match, in `lblHint` while nothing else goes first

  // ---- Phase: what the mouse may do --------------------------------------------------------------

  Flag Busy = False;   ///< a card or delay is running, or the other computer has the piece
  Flag NoShot = False; ///< no shot may begin
  /// The left button is down or its shot is running; idle frames don't draw.
  Flag ShotPending = False;
  Flag KickMode = False; ///< point-after: the next shot is a kick
  /// 0 aiming, 1 left button held (the meter charges), 2 right button held (orbit).
  std::int16_t MouseMode = 0;
  Flag Writing = False;            ///< "~" has moved the keyboard to `Text2`
  std::int16_t IgnoredButtons = 0; ///< bit set of the buttons whose next release is ignored
  Flag ShiftDown = False;          ///< Shift is held: the mouse zooms

  // ---- The shot ----------------------------------------------------------------------------------

  // shot/aim.cpp

  void InitMouse();     ///< measures the pointer's home
  void SetMouse();      ///< moves the pointer back to its home
  void CheckMouse();    ///< one frame of aim, meter and camera from the pointer's offset
  void GetFmain();      ///< copies `AimFrame` to the kick fields
  void ReadAim();       ///< copies `AimFrame`'s vectors to X1 to Z2
  void ReadShotPlace(); ///< copies `AimFrame`'s position to FrameX, FrameY, FrameZ
  Flag MouseGate();     ///< -1 if the mouse buttons work now
  void ResetMeter();    ///< resets the meter without a shot

  /// Treats held buttons as released without a shot, and ignores their actual release.
  void ReleaseButtons();
  void LetGo(); ///< the window lost the keyboard: treats all buttons and keys as released
  void RMCanvas1_MouseDown(std::int16_t Button, std::int16_t Shift, float X, float Y);
  void RMCanvas1_MouseUp(std::int16_t Button, std::int16_t Shift, float X, float Y);

  // shot/meter.cpp
  void ScaleForFlick(); ///< labels the steps of the meter in yards
  void ScaleForKick();  ///< labels the steps of the meter by whether a kick clears the bar

  // shot/keys.cpp
  void RMCanvas1_KeyDown(std::int16_t KeyCode, std::int16_t Shift);
  void RMCanvas1_KeyUp(std::int16_t KeyCode, std::int16_t Shift);

  /// Esc and the close box: sends "END" to the other computer and ends the program.
  [[noreturn]] void Quit();

  // shot/flick.cpp

  /// Runs one flick from start to verdict, with all its consequences: the result card, after a Touchdown the
  /// whole point-after sequence, and the turnover.
  ///
  /// Motion depends on steps, never on time: a step moves the piece Force / 50 scene units along the aim's -z
  /// and spins it Force / 200 rad, then Force falls by `ForceDecay`. The same arguments give the same path to
  /// the bit.
  ///
  /// @param ShotX,ShotY,ShotZ  position of `AimFrame`, scene units
  /// @param Power              speed, 0 to 120; counted down in place to 0 unless the piece falls
  /// @param DirX,DirY,DirZ     `AimFrame`'s direction, unit length, in the scene
  /// @param UpX,UpY,UpZ        `AimFrame`'s up vector, unit length, in the scene
  /// @param Side               the side that shoots, 1 or 2
  /// @throws SceneError        if a frame operation fails; a ray without a hit is a fall, not an error
  void Flick(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY, float &DirZ,
             float &UpX, float &UpY, float &UpZ, std::int16_t &Side);
  void PrematureFlick(); ///< the meter passed its limit: shoots with 120

  // shot/kick.cpp

  /// Runs one kick, scores it and shows its card. Arguments as in `Flick`; `Power` is above 0, and on return
  /// holds the forward step, a negative number.
  void KickFB(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY, float &DirZ,
              float &UpX, float &UpY, float &UpZ);
  void MoveGoal();      ///< one step of the posts
  void CheckFG();       ///< the verdict on a kick, on the kicker's computer only
  void PrematureKick(); ///< the meter passed its limit: kicks with 30

  // shot/point_after.cpp

  /// The point-after between a Touchdown and the turnover: sets up the piece and runs frames with moving
  /// posts until the kick is over.
  void MPAT();
  void HumanKickFrame();
  void ComputerKickFrame();
  void WaitingKickFrame();

  // shot/computer.cpp

  /// One attempt of the computer opponent, including all consequences of its flick.
  void CompShot1();

  std::int16_t MouseHomeX = 0; ///< the pointer's home, screen pixels
  std::int16_t MouseHomeY = 0;
  std::int32_t CursorX = 0; ///< the pointer's position when last read, screen pixels
  std::int32_t CursorY = 0;
  float Force = 0; ///< the meter's value while charging, then the power of the shot, then the flick's speed
  float ShotPower = 0;                                  ///< initial force of the last flick or kick
  float ForceDecay = 0;                                 ///< loss of `Force` per step
  float FrameX = 0, FrameY = 0, FrameZ = 0;             ///< `AimFrame`'s position at the flick
  float X1 = 0, Y1 = 0, Z1 = 0;                         ///< its direction
  float X2 = 0, Y2 = 0, Z2 = 0;                         ///< its up vector
  float KickFrameX = 0, KickFrameY = 0, KickFrameZ = 0; ///< the same for a kick
  float KickX1 = 0, KickY1 = 0, KickZ1 = 0;
  float KickX2 = 0, KickY2 = 0, KickZ2 = 0;
  float KickRise = 0;    ///< height that a kick gains per half step
  float KickDrop = 0;    ///< loss of `KickRise` per step
  Flag KickGood = False; ///< the kick went between the posts
  float GoalSpeed = 0;   ///< the posts' movement in x per step

  // ---- The scene ---------------------------------------------------------------------------------

  void LoadScene();     ///< builds the whole world (scene/load_scene.cpp)
  void LookCam();       ///< turns the camera to the piece (scene/camera.cpp)
  void WinCam();        ///< result view, from above the far corner on the piece's side (scene/camera.cpp)
  void CloseUp();       ///< view from 20 above and 20 behind the piece, drawn at once (scene/camera.cpp)
  void SideCam();       ///< moves the camera to the sideline, without turning it (scene/camera.cpp)
  void Wind();          ///< moves the sky one step (scene/camera.cpp)
  void ToggleStadium(); ///< the S key: hides or shows stadium, lines and sky (scene/camera.cpp)
  void TurnColor();     ///< marks the side on turn, updates shots and round (scene/play_window.cpp)

  // scene/score_board.cpp
  void LayOutBoards();
  void LightBoards(); ///< lights the board of the side on turn
  void ShowShots();   ///< shows the attempts left, as text and as paper triangles
  void CountScores(); ///< updates both boards; one whose score has risen flashes
  void StepBoards();  ///< one step of the flashing
  void CloseBoards(); ///< at the end: ends the flashing, lights the winner's board (both after a tie)

  RMCanvas RMCanvas1;
  Ref<Direct3DRMFrame3> CameraFrame, PieceFrame, AimFrame, ArrowFrame, CornerA, CornerB, CornerC, TableFrame,
      GoalFrame, SkyFrame, StadiumFrame;
  Ref<Direct3DRMMeshBuilder3> PieceMesh, TableMesh, SkyMesh, BonusMesh, ExtraMesh, ArrowMesh, GoalMesh,
      StadiumMesh, LinesMesh;
  Ref<Direct3DRMTexture> LooseTexture, GrassTexture, SkyTexture, StadiumTexture;
  Ref<Direct3DRMMaterial2> YellowMaterial, WhiteMaterial;
  Ref<Direct3DRMWrap> Wrap;           ///< the last created wrap
  D3DRMRAY Ray;                       ///< the pick ray
  float CamX = 0, CamY = 0, CamZ = 0; ///< camera position in the scene, read once per `CheckMouse`
  float CamOfsX = 0, CamOfsY = 0,
        CamOfsZ = 0;        ///< camera position relative to `AimFrame` at the start of a flick
  float SkyU = 0, SkyV = 0; ///< texture origin of the sky

  // ---- The controls ------------------------------------------------------------------------------

  Label lblPlayer1, lblPlayer2; ///< score lines
  Label Label3, Label4;         ///< turn arrows
  Label Label1, Label2, Label5; ///< round, shots, the other computer's version
  TextBox Text1, Text2;         ///< chat: the last received line, the line being typed
  ProgressBar ProgressBar1;     ///< the power meter
  Label lblHint;                ///< what the player can do, and after a shot what happened and why
  SideBoard HomeBoard, AwayBoard;
  std::array<BackPicture, AttemptsInPossession> Tries; ///< a paper triangle for each attempt left
  BackPicture VersionSlip;                             ///< the paper behind `Label5`
  BackPicture MessageKey;                              ///< the key that types to the other player
  BackPicture MouseKeys;                               ///< lit keys, while this side can aim and shoot
  PictureBox Picture1, Picture2, Picture3, Picture4, Picture5, Picture6, Picture7; ///< the result cards

  // ---- The other computer ------------------------------------------------------------------------

  // net/messages.cpp
  void SendVersion();
  void SyncScore(); ///< sends both scores and the round, then writes the score lines
  void SendFlick(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                 float &DirZ, float &UpX, float &UpY, float &UpZ, std::int16_t &Side);
  void SendFG(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY, float &DirZ,
              float &UpX, float &UpY, float &UpZ, std::int16_t &Side);
  void SendResult(std::int16_t MES);
  void SendContinue();
  void SendText();
  void SendEnd();
  void SendOver();

  Flag ResultSent = False;                                  ///< "RESULT" is sent, its "Continue" isn't yet
  std::vector<std::shared_ptr<DirectPlayMessage>> HeldChat; ///< chat lines held until "Continue"

  // net/message_pump.cpp
  void CheckMessages(); ///< handles one message of the queue, if there is one

  /// Acts on a message. During this side's turn the other side can't shoot, but the result of its last shot
  /// may still arrive.
  /// @returns false if the message is invalid or out of turn. It has no effect and is counted as dropped. A
  ///     message with an unknown tag is ignored and isn't counted.
  bool TakeMessage(const std::string &tag, DirectPlayMessage &message);

  /// Replays a received flick, or queues it if another is being replayed.
  /// @returns false if the queue already holds a whole possession
  bool TakeFlick(const ReceivedShot &shot);
  void ReplayFlick(const ReceivedShot &shot);
  void ReplayKick(const ReceivedShot &shot);
  void ShowOtherResult(std::int16_t MES); ///< the card of the other side's result, until its "Continue"
  void CanIContinue();                    ///< waits for the other computer's "Continue"
  void AwaitOver(); ///< at the end of the match: handles messages until the other side has finished too
  void Text2_KeyPress(std::int16_t KeyCode);
  [[noreturn]] void OtherSideLeft(); ///< says that the other player has left, and ends the program

  /// Says in the title bar and in `lblHint` that the line to the other computer is down, and in the title bar
  /// when it is back. Runs at every pump.
  void ShowLine();
  void EndLineWatch(); ///< the line doesn't matter any more

  std::shared_ptr<void> LineWatch; ///< keeps `ShowLine` registered
  Flag LineIsBroken = False;
  std::optional<std::int32_t> LineBackUntil; ///< clock until which the title says that it is back, ms

  Flag Replaying = False;     ///< a flick of the other side is being replayed, with its cards and its kick
  Flag ReplayingKick = False; ///< a kick of the other side is being replayed, with its card
  std::deque<ReceivedShot> QueuedFlicks; ///< received during the replay of another
  Flag ResultDue = False;                ///< the "RESULT" of a replayed shot is still to be shown
  Flag LastWait = False; ///< the host is waiting for the last possession of the match; nobody shoots after it
  Flag OtherSideOver = False;       ///< the other side has reported the result of its last possession
  std::int32_t DroppedMessages = 0; ///< invalid or unexpected messages received

  // front/end_cards.cpp
  void ShowHome(); ///< the end card "side A wins"; returns when it is closed
  void ShowAway();
  void ShowTie();
};

/// The title of the play window while the line to the other computer is up.
extern const std::string PlayCaption;
