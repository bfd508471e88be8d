#pragma once

// The launch window: rules, options, the start of a match on this computer, and the network lobby. Layout and
// local buttons are defined in front/, the lobby in net/lobby.cpp.

#include "match/program.h"

#include <cstdint>
#include <string>

class frmNewNet : public Window {
public:
  /// Lays the window out (front/launch_layout.cpp). Nothing shows before `Form_Load`.
  frmNewNet(Machine &onMachine, Program &ofProgram);
  ~frmNewNet() override { machine.Hide(*this); }

  // front/frm_new_net.cpp

  /// Sets the options' defaults, checks the display, starts sound, lists the network's connection methods and
  /// shows the window. Each failure has its box.
  /// @throws ProgramEnd  if the display can't show the game
  void Form_Load();

  void Check1_Click();   ///< "Stadium/Sky On:"
  void Check2_Click();   ///< "Messages On:"
  void Combo1_Click();   ///< "Computer Skill Level:"
  void Command1_Click(); ///< "VS, Computer"
  void Command2_Click(); ///< "VS. Human"
  void Command3_Click(); ///< "Controls"
  void Command6_Click(); ///< "Background"
  void Command7_Click(); ///< "ReadMe"
  void Command8_Click(); ///< "What's my IP address?"

  /// Reads `Rounds` from `Text1`. Shows a box and returns false if it isn't a whole number from 1 to 99.
  bool TakeRounds();

  /// Opens the play window; a whole match runs inside this call.
  /// @throws ProgramEnd  always: the end of the match is the end of the program
  [[noreturn]] void OpenPlayWindow();

  // net/lobby.cpp
  void InitDirectPlay();  ///< creates a new network object and the list of connection methods
  void FillConnections(); ///< lists the connection methods and selects the second
  void CreateMyPlayer(const std::string &friendly, const std::string &formal);
  void AwaitJoiner();      ///< polls until a player joins or the host cancels
  void CheckMessages();    ///< empties the queue while polling; any message ends the wait
  void ResetButtons();     ///< back to the state before Connect
  void Search();           ///< fills the list of sessions
  void cmdConnect_Click(); ///< "Connect"
  void Command4_Click();   ///< "Refresh"
  void cmdCreate_Click();  ///< "Create"
  void cmdJoin_Click();    ///< "Join"
  void Command5_Click();   ///< "Cancel"

  Program &program;
  Machine &machine;

  std::int16_t SessionSuffix = 0;    ///< random number in the default session name, 0 to 9999
  DirectPlaySessionData SessionData; ///< the search template, the row being read, or the open session
  Flag Polling = False;              ///< the host waits for a joiner
  Flag Cancelled = False;            ///< set by Cancel, cleared by Create

  // Left: rules and options.
  Label Label8, Label9;
  CommandButton Command3, Command6;
  Label Label5, Label6, Label10, Label7, Label11, Label12;
  TextBox Text1;
  CheckBox Check1, Check2;
  ComboBox Combo1;
  CommandButton Command1, Command2;

  // Right: the network.
  Label Label4, Label2, Label3, Label1;
  ListBox lstConnections, lstSessions;
  CommandButton cmdConnect, cmdJoin, Command4, cmdCreate, Command5, Command8, Command7;
  TextBox txtName;

  Line Line1, Line2, Line3;
  Shape Shape1;

private:
  void LayOutLeft();
  void LayOutRight();
  void Fail(const std::string &text); ///< shows the box of a network failure and resets the lobby
};

/// The caption of the launch window.
extern const std::string LaunchCaption;
