// The lobby: connection methods, search, create and wait, join.

#include "net/frm_new_net.h"

#include "net/application_guid.h"
#include "platform/network_times.h"

namespace {

constexpr std::int32_t MaxPlayers = 2;

const std::string NetworkTitle = "Error initializing DirectPlay.";
const std::string NetworkText =
    "Error Initializing DirectPlay.  Please make sure that you have the latest DirectX7 Drivers installed.";
const std::string CreateText =
    "An error was encountered while attempting to create a DirectPlay session.  Please make "
    "sure that you entered a Session Name and that you have the latest DirectX Drivers "
    "installed.";
const std::string JoinText = "You must select a game to join.";

const std::string NoGameText = "No game was found. Refresh looks again.";
const std::string AwaitingText = "Waiting for the other player to join.";

} // namespace

void frmNewNet::InitDirectPlay() {
  if (!program.DX) program.DX = machine.CreateDirectX();
  program.DP = program.DX->DirectPlayCreate("");
  program.Connections = program.DP->GetDPEnumConnections("", DPCONNECTION_DIRECTPLAY);
}

void frmNewNet::FillConnections() {
  constexpr int SecondRow = 1;
  try {
    InitDirectPlay();
    for (std::int32_t index = 1; index <= program.Connections->GetCount(); ++index) {
      lstConnections.List.push_back(program.Connections->GetName(index));
    }
    if (lstConnections.List.size() <= SecondRow)
      throw DirectPlayError("there is no second connection method to select");
    lstConnections.ListIndex = SecondRow;
  } catch (const DirectPlayError &) {
    Fail(NetworkText);
  }
}

void frmNewNet::CreateMyPlayer(const std::string &friendly, const std::string &formal) {
  program.PlayerFriendly = friendly;
  program.PlayerFormal = formal;
  program.MyPlayerId = program.DP->CreatePlayer(friendly, formal, 0, 0);
}

void frmNewNet::ResetButtons() {
  cmdConnect.Enabled = true;
  lstConnections.Enabled = true;
  lstSessions.EmptyText.clear();
  cmdJoin.Enabled = false;
  cmdCreate.Enabled = false;
  Command4.Enabled = false;
  Command5.Enabled = false;
}

void frmNewNet::Fail(const std::string &text) {
  program.IsHost = False;
  program.MyTurn = False;
  machine.MsgBox({text, NetworkTitle});
  ResetButtons();
}

void frmNewNet::Search() {
  SessionData = program.DP->CreateSessionData();
  SessionData.SetGuidApplication(ApplicationGuid);
  SessionData.SetSessionPassword("");
  program.Sessions = program.DP->GetDPEnumSessions(SessionData, 0, DPENUMSESSIONS_AVAILABLE);
  lstSessions.EmptyText = NoGameText;
  for (std::int32_t index = 1; index <= program.Sessions->GetCount(); ++index) {
    SessionData = program.Sessions->GetItem(index);
    lstSessions.List.push_back(SessionData.GetSessionName() + " (" +
                               std::to_string(SessionData.GetCurrentPlayers()) + "/" +
                               std::to_string(SessionData.GetMaxPlayers()) + ")");
  }
}

void frmNewNet::cmdConnect_Click() {
  lstSessions.List.clear();
  lstSessions.EmptyText.clear();
  lstSessions.ListIndex = -1;
  cmdConnect.Enabled = false;
  lstConnections.Enabled = false; // the method in use stays the one that is selected
  try {
    InitDirectPlay();
    const std::int32_t index = lstConnections.ListIndex + 1;
    program.DP->InitializeConnection(program.Connections->GetAddress(index));
    Search();
  } catch (const DirectPlayError &) {
    Fail(NetworkText);
    return;
  }
  cmdJoin.Enabled = true;
  cmdCreate.Enabled = true;
  Command4.Enabled = true;
}

void frmNewNet::Command4_Click() {
  Command4.Enabled = false;
  cmdJoin.Enabled = false;
  cmdCreate.Enabled = false;
  lstSessions.List.clear();
  lstSessions.EmptyText.clear();
  lstSessions.ListIndex = -1;
  try {
    Search();
  } catch (const DirectPlayError &) {
    Fail(NetworkText);
    return;
  }
  Command4.Enabled = true;
  cmdJoin.Enabled = true;
  cmdCreate.Enabled = true;
}

void frmNewNet::cmdCreate_Click() {
  if (!TakeRounds()) return;
  cmdCreate.Enabled = false;
  try {
    if (txtName.Text.empty()) throw DirectPlayError("a session needs a name");
    program.MyTurn = False;
    program.GameMode = "INET";
    program.IsHost = True;
    SessionData = program.DP->CreateSessionData();
    SessionData.SetMaxPlayers(MaxPlayers);
    SessionData.SetSessionName(txtName.Text);
    SessionData.SetGuidApplication(ApplicationGuid);
    SessionData.SetFlags(DPSESSION_MIGRATEHOST);
    SessionData.SetRounds(program.Rounds);
    program.DP->Open(SessionData, DPOPEN_CREATE);
    CreateMyPlayer("Bramble", "Player1");
    Polling = True;
    lstSessions.EmptyText = AwaitingText;
    Command5.Enabled = true;
    cmdJoin.Enabled = false;
    Command4.Enabled = false;
    Command1.Enabled = false;
    Command2.Enabled = false;
    machine.SetFocus(Command5); // Create had it
    AwaitJoiner();
  } catch (const DirectPlayError &) {
    Polling = False;
    Caption = LaunchCaption;
    Command1.Enabled = true;
    Command2.Enabled = true;
    Fail(CreateText);
    return;
  }
  Command1.Enabled = true;
  Command2.Enabled = true;
  if (Cancelled) {
    Cancelled = False;
    return;
  }
  OpenPlayWindow();
}

void frmNewNet::AwaitJoiner() {
  // Once a player has joined, no box or window open over this one may delay the match.
  const Machine::CloseModalsWhen joined(
      machine, [this] { return program.DP->GetMessageCount(program.MyPlayerId) > 0; });
  while (Polling) {
    CheckMessages();
    machine.WaitUntil(machine.ClockIn(LobbyPollMs));
    machine.Show(*this);
  }
}

void frmNewNet::CheckMessages() {
  Caption = "Polling...";
  program.MsgCount = program.DP->GetMessageCount(program.MyPlayerId);
  while (program.MsgCount > 0) {
    machine.Show(*this);
    program.InMsg = program.DP->Receive(program.FromId, program.ToId, DPRECEIVE_ALL);
    program.MsgCount -= 1;
    Polling = False;
    if (program.InMsg->GetKind() == DirectPlayMessage::Kind::ConnectionLost)
      throw DirectPlayError("the joiner has already left");
    machine.Pump();
    if (Cancelled) return; // the session is closed
  }
}

void frmNewNet::cmdJoin_Click() {
  program.GameMode = "INET";
  program.MyTurn = True;
  try {
    SessionData = program.Sessions->GetItem(lstSessions.ListIndex + 1);
    program.DP->Open(SessionData, DPOPEN_JOIN);
    CreateMyPlayer("Thicket", "Player2");
    program.Rounds = SessionData.GetRounds();
  } catch (const DirectPlayError &) {
    Fail(JoinText);
    return;
  }
  OpenPlayWindow();
}

void frmNewNet::Command5_Click() {
  Cancelled = True;
  Polling = False;
  Caption = LaunchCaption;
  program.IsHost = False;
  program.MyTurn = False;
  program.DP->Close();
  ResetButtons();
  machine.SetFocus(cmdConnect);
}
