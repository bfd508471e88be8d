#pragma once

// The play window. A whole match is its fields and its procedures: the fields stand here, grouped by subject;
// each procedure is defined in the folder and file named above its group.

#include "match/program.h"
#include "scene/graph/rm_canvas.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct ReceivedShot;

constexpr std::int16_t AttemptsInPossession = 3;

/// What tells of one side behind the controls: a frame around its score line, and a tile with its points in
/// large digits.
struct SideBoard {
  static constexpr std::size_t MostDigits = 3; ///< a side can score 990 points at the most

  BackPicture Line, Tile;
  std::array<BackPicture, MostDigits> Digits;
  std::int32_t Points = 0;     ///< as shown
  std::int16_t FlashSteps = 0; ///< steps for which the board goes on flashing
};

class frmSnapwedge : public Window {
public:
  /// Lays the window out (scene/play_window.cpp). Nothing shows before `Load`.
  frmSnapwedge(Machine &onMachine, Program &ofProgram);
  ~frmSnapwedge() override { machine.Hide(*this); }

  // ---- The match ---------------------------------------------------------------------------------

  // match/match_loop.cpp

  /// Plays the whole match, from the set-up to the end card. Never returns: the end of the match is the end
  /// of the program.
  /// @throws ProgramEnd  at the end of the match, on Esc, and when the other computer has left
  [[noreturn]] void Load();

  void SetUp();
  void PlayRounds();
  [[noreturn]] void EndMatch();

  /// One idle frame of the turn loop with that letter: "A" side A at the mouse, "B" the computer, "C" the
  /// other computer, "D" side B at the mouse.
  void Frame(const std::string &WMOD);

  /// Every frame calls it first with the letter of its loop. It does nothing.
  void WhatPlayer(const std::string &WMOD);

  /// Begins a step: `FrameEnd` is `milliseconds` from now.
  void BeginStep(std::int32_t milliseconds);

  /// Pumps until the clock reaches `FrameEnd`; returns at once if it has, without a pump.
  void WaitForStepEnd();

  void MyDelay();       ///< waits 3000 ms and pumps: a result card
  void MyDelayNoCard(); ///< waits 1000 ms and pumps: a result without its card
  void MyDelay2();      ///< waits 1000 ms, looks at the network and pumps: the waiting computer's pause

  // match/reset.cpp

  /// The turnover: gives the piece to the other side and puts everything back at the near end. The only
  /// writer of `MyTurn` during a match.
  void Reset();

  // match/judging.cpp

  /// Looks straight down from the piece's centre. Returns "OK", or "Fall" when nothing lies there; `Fall` has
  /// run then.
  std::string CheckRay();

  /// The piece's drop off the table, its card and the turnover.
  void Fall();

  /// The verdict when a flick has come to rest: looks straight down from the piece's three corners, adds
  /// points, shows cards, and ends the possession where the rules end it.
  void CheckScore(std::int16_t &Side);
  void FallShort(); ///< all attempts are used up on the table: card 7 and the turnover

  // match/cards.cpp

  /// Shows the card of a result, one of `Results`, for its three seconds, with its sounds. On the waiting
  /// computer of a network game it only pauses.
  void ShowMessage(std::int16_t &MES);
  void ShowMessage(std::int16_t &&MES) { ShowMessage(MES); }

  Flag AnyPictures();                 ///< -1 if a result card is up
  void PostScore();                   ///< writes both score lines and the round line
  PictureBox &Card(std::int16_t MES); ///< the card of that result, one of `Results`

  // match/hints.cpp: all that `lblHint` says
  void HintAim();                         ///< what the side on turn can do now, and what its last try was
  void HintFlight();                      ///< a shot of `ShotPower` has begun
  void HintNoKick();                      ///< a kick was let go of without power
  void HintResult(std::int16_t MES);      ///< why the card of this side's result comes up
  void HintOtherResult(std::int16_t MES); ///< what the card of the other computer's result means
  void HintOver();                        ///< the match is over

  Program &program;
  Machine &machine;

  std::int16_t Round = 0;  ///< running round, 1 to `Rounds`; 0 before the first
  std::int16_t Player = 0; ///< 1 while `MyTurn` is set, else 2; on the waiting computer as the sender says
  std::int16_t Shots = AttemptsInPossession; ///< attempts left in this possession
  std::int32_t HomeScore = 0;                ///< points of side A
  std::int32_t AwayScore = 0;                ///< points of side B
  std::int32_t FrameStart = 0;               ///< clock at the start of the present step, ms
  std::int32_t FrameEnd = 0;                 ///< clock at which the present step may end, ms
  std::string PieceSurface; ///< name found under the piece's centre by the last `CheckRay`; empty for nothing
  std::string CornerSurface; ///< name found under the corner that `CheckScore` tested last
  Flag OverSide = False;     ///< the last rest had a corner over an edge, and none past the far one
  Flag OnCircle = False;     ///< the last rest had a corner over the bonus area

  // ---- Phase: what the mouse may do --------------------------------------------------------------

  Flag Busy = False;   ///< a card or delay runs, or this computer waits for the other's possession
  Flag NoShot = False; ///< no shot may begin
  /// The left button went down and its shot isn't over; idle frames don't draw meanwhile.
  Flag ShotPending = False;
  Flag KickMode = False; ///< the point-after runs: the next shot is a kick
  /// 0 aiming, 1 left button held (the meter charges), 2 right button held (orbit).
  std::int16_t MouseMode = 0;
  std::int16_t ForgottenButtons = 0; ///< sum of the buttons whose release, when it comes, is none
  Flag ShiftDown = False;            ///< Shift is held: the mouse zooms

  // ---- The shot ----------------------------------------------------------------------------------

  // shot/aim.cpp

  void InitMouse();     ///< measures the pointer's home
  void SetMouse();      ///< pulls the pointer home
  void CheckMouse();    ///< one frame of aim, meter and camera from the pointer's offset
  void GetFmain();      ///< reads `AimFrame` into the kick fields
  void ReadAim();       ///< reads `AimFrame`'s vectors into the shot's
  void ReadShotPlace(); ///< reads `AimFrame`'s place into the flick's
  Flag MouseGate();     ///< -1 if a button may begin or end a shot now
  void RestMeter();     ///< puts the meter back to rest without a shot

  /// A button that is held counts as let go, without a shot, and its release doesn't count any more.
  void RestMouse();
  void LetGo(); ///< the window lost the keyboard: every button and key counts as let go, without a shot
  void RMCanvas1_MouseDown(std::int16_t Button, std::int16_t Shift, float X, float Y);
  void RMCanvas1_MouseUp(std::int16_t Button, std::int16_t Shift, float X, float Y);

  // shot/meter.cpp
  void ScaleForFlick(); ///< what each step of the meter is worth: yards
  void ScaleForKick();  ///< the same in the point-after: what clears the bar

  // shot/keys.cpp
  void RMCanvas1_KeyDown(std::int16_t KeyCode, std::int16_t Shift);
  void RMCanvas1_KeyUp(std::int16_t KeyCode, std::int16_t Shift);

  /// Esc and the close box: says "END" to the other computer and ends the program.
  [[noreturn]] void Quit();

  // shot/flick.cpp

  /// Flies one flick from start to verdict and returns when all that follows from it is over: the result
  /// card, after a Touchdown the whole point-after sequence, and the turnover.
  ///
  /// Motion is counted in steps, never in time: step k moves the piece Force / 50 scene units along the aim's
  /// -z and spins it Force / 200 rad, then Force falls by `ForceDecay`. The same arguments give the same path
  /// to the bit.
  ///
  /// @param ShotX,ShotY,ShotZ  where `AimFrame` stands at the shot, scene units
  /// @param Power              speed, 0 to 120; counted down in place, 0 (or a fall) when it returns
  /// @param DirX,DirY,DirZ     `AimFrame`'s direction, unit length, in the scene
  /// @param UpX,UpY,UpZ        `AimFrame`'s up vector, unit length, in the scene
  /// @param Side               the side that shoots, 1 or 2
  /// @throws SceneError        if a frame operation fails; a ray that finds nothing is a fall, no error
  void Flick(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY, float &DirZ,
             float &UpX, float &UpY, float &UpZ, std::int16_t &Side);
  void PrematureFlick(); ///< the meter passed its limit: a flick of 120

  // shot/kick.cpp

  /// Flies one kick at the posts, scores it and shows its card. Arguments as in `Flick`; `Power` is above 0
  /// and holds the forward step, a negative number, when it returns.
  void KickFB(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY, float &DirZ,
              float &UpX, float &UpY, float &UpZ);
  void MoveGoal();      ///< one step of the posts
  void CheckFG();       ///< the verdict on a kick; the kicker's computer alone gives it
  void PrematureKick(); ///< the meter passed its limit: a kick of 30

  // shot/point_after.cpp

  /// The point-after sequence between a Touchdown and the turnover: sets the piece up and runs frames with
  /// moving posts until the kick is over.
  void MPAT();
  void HumanKickFrame();
  void ComputerKickFrame();
  void WaitingKickFrame();

  // shot/computer.cpp

  /// One attempt of the computer, from the sideline view to all that follows from the flick.
  void CompShot1();

  std::int16_t MouseHomeX = 0; ///< the pointer's home, screen pixels
  std::int16_t MouseHomeY = 0;
  std::int32_t CursorX = 0; ///< the pointer's place as last read, screen pixels
  std::int32_t CursorY = 0;
  float Force = 0;      ///< power of the shot; the meter's value while it charges; a running flick's speed
  float ShotPower = 0;  ///< the force with which the last flick or kick began
  float ForceDecay = 0; ///< loss of `Force` in a step
  float FrameX = 0, FrameY = 0, FrameZ = 0;             ///< `AimFrame`'s place at the flick
  float X1 = 0, Y1 = 0, Z1 = 0;                         ///< its direction
  float X2 = 0, Y2 = 0, Z2 = 0;                         ///< its up vector
  float KickFrameX = 0, KickFrameY = 0, KickFrameZ = 0; ///< the same for a kick
  float KickX1 = 0, KickY1 = 0, KickZ1 = 0;
  float KickX2 = 0, KickY2 = 0, KickZ2 = 0;
  float KickRise = 0;    ///< height that a kick gains in half a step
  float KickDrop = 0;    ///< loss of `KickRise` in a step
  Flag KickGood = False; ///< the kick went between the posts
  float GoalSpeed = 0;   ///< the posts' step in x

  // ---- The scene ---------------------------------------------------------------------------------

  void LoadScene(); ///< builds the whole world (scene/load_scene.cpp)
  void LookCam();   ///< turns the camera to the piece (scene/camera.cpp)
  void WinCam();  ///< the view of a result, from above the far corner on the piece's side (scene/camera.cpp)
  void CloseUp(); ///< the view of the piece from 20 above and 20 behind it, drawn at once (scene/camera.cpp)
  void SideCam(); ///< puts the camera at the sideline, without turning it (scene/camera.cpp)
  void Wind();    ///< moves the sky one step (scene/camera.cpp)
  void ToggleStadium(); ///< the S key: takes stadium, lines and sky away or back (scene/camera.cpp)
  void TurnColor();     ///< marks the side on turn and writes shots and round (scene/play_window.cpp)

  // scene/score_board.cpp
  void LayOutBoards();
  void LightBoards(); ///< marks the side on turn behind the controls
  void ShowShots();   ///< writes the attempts that are left, and lays out a paper triangle for each
  void CountScores(); ///< brings both scores to their boards; one that has risen flashes
  void StepBoards();  ///< one step of the flashing

  RMCanvas RMCanvas1;
  Ref<Direct3DRMFrame3> CameraFrame, PieceFrame, AimFrame, ArrowFrame, CornerA, CornerB, CornerC, TableFrame,
      GoalFrame, SkyFrame, StadiumFrame;
  Ref<Direct3DRMMeshBuilder3> PieceMesh, TableMesh, SkyMesh, BonusMesh, ExtraMesh, ArrowMesh, GoalMesh,
      StadiumMesh, LinesMesh;
  Ref<Direct3DRMTexture> LooseTexture, GrassTexture, SkyTexture, StadiumTexture;
  Ref<Direct3DRMMaterial2> YellowMaterial, WhiteMaterial;
  Ref<Direct3DRMWrap> Wrap;                    ///< the wrap made last
  D3DRMRAY Ray;                                ///< the one pick ray
  float CamX = 0, CamY = 0, CamZ = 0;          ///< camera in the scene, read once in a `CheckMouse`
  float CamOfsX = 0, CamOfsY = 0, CamOfsZ = 0; ///< camera relative to `AimFrame` at the start of a flick
  float SkyU = 0, SkyV = 0;                    ///< texture origin of the sky

  // ---- The controls ------------------------------------------------------------------------------

  Label lblPlayer1, lblPlayer2; ///< score lines
  Label Label3, Label4;         ///< turn arrows
  Label Label1, Label2, Label5; ///< round, shots, the other computer's version
  TextBox Text1, Text2;         ///< chat: the other's last line, the line being typed
  ProgressBar ProgressBar1;     ///< the power meter
  Label lblHint;                ///< what can be done now, and after a shot what happened and why
  SideBoard HomeBoard, AwayBoard;
  std::array<BackPicture, AttemptsInPossession> Tries; ///< a paper triangle for each attempt that is left
  BackPicture VersionSlip;                             ///< the paper behind `Label5`
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

  Flag CardIsTold = False; ///< "RESULT" has gone out, and its "Continue" not yet
  std::vector<std::shared_ptr<DirectPlayMessage>> HeldLines; ///< chat that waits for the "Continue"

  // net/message_pump.cpp
  void CheckMessages(); ///< takes one message off the queue, if there is one, and acts on it

  /// Replays a flick that has come, or keeps it until the one that is being replayed is over.
  /// @returns false if more are kept already than a possession has
  bool TakeFlick(const ReceivedShot &shot);
  void ReplayFlick(const ReceivedShot &shot);
  void ReplayKick(const ReceivedShot &shot);
  void ShowOtherResult(std::int16_t MES); ///< the card of the other side's result, until its "Continue"
  void CanIContinue();                    ///< waits for the other computer's "Continue"
  void AwaitOver(); ///< this side's match is over: reads on until the other side's is over too
  void Text2_KeyPress(std::int16_t KeyCode);
  [[noreturn]] void OtherSideLeft(); ///< tells that the other player has gone, and ends the program

  /// Tells in the title bar that the line to the other computer is broken, and that it has come back. Runs at
  /// every pump.
  void ShowLine();

  std::shared_ptr<void> LineWatch; ///< what runs `ShowLine`
  Flag LineIsBroken = False;
  std::optional<std::int32_t> LineBackUntil; ///< clock up to which its return is told, ms

  Flag Replaying = False; ///< a flick of the other side is being replayed, its cards and its kick included
  Flag ReplayingKick = False; ///< a kick of the other side is being replayed, its card included
  std::deque<std::shared_ptr<const ReceivedShot>> KeptFlicks; ///< came inside the replay of another
  Flag ResultDue = False; ///< a replayed shot has an outcome whose "RESULT" hasn't been shown yet
  Flag LastWait = False;  ///< the host waits for the match's last possession: after it nobody shoots any more
  Flag OtherSideOver = False;       ///< the other side has said what its last possession was worth
  std::int32_t DroppedMessages = 0; ///< from the other side: against a rule, or out of their place

  // front/end_cards.cpp
  void ShowHome(); ///< the card of a match that side A has won; returns when it has been closed
  void ShowAway();
  void ShowTie();
};

/// The title of the play window, as long as the line to the other computer holds.
extern const std::string PlayCaption;
