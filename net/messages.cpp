// Outgoing messages. The other computer gets the inputs of a shot and simulates the same flight itself; it
// also gets result cards, scores and chat. Every message begins with a tag.

#include "match/frm_snapwedge.h"

#include <string>

namespace {

const std::string BuildTag = "SW";
constexpr std::int32_t VersionNumber = 1;

/// Begins a message with its tag.
DirectPlayMessage &Begin(Program &program, const std::string &tag) {
  program.OutMsg = program.DP->CreateMessage();
  program.OutMsg->WriteString(tag);
  return *program.OutMsg;
}

void Send(Program &program) {
  program.DP->Send(program.MyPlayerId, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *program.OutMsg);
}

void SendTag(Program &program, const std::string &tag) {
  Begin(program, tag);
  Send(program);
}

void SendShot(Program &program, const std::string &tag, std::initializer_list<float> shot,
              std::int16_t side) {
  DirectPlayMessage &message = Begin(program, tag);
  for (const float value : shot) message.WriteSingle(value);
  message.WriteLong(side);
  Send(program);
}

} // namespace

void frmSnapwedge::SendVersion() {
  DirectPlayMessage &message = Begin(program, "Version");
  message.WriteString(BuildTag);
  message.WriteLong(VersionNumber);
  Send(program);
}

void frmSnapwedge::SyncScore() {
  DirectPlayMessage &message = Begin(program, "Score");
  message.WriteLong(HomeScore);
  message.WriteLong(AwayScore);
  message.WriteLong(Round);
  Send(program);
  PostScore();
}

void frmSnapwedge::SendFlick(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                             float &DirZ, float &UpX, float &UpY, float &UpZ, std::int16_t &Side) {
  SendShot(program, "Flick", {ShotX, ShotY, ShotZ, Power, DirX, DirY, DirZ, UpX, UpY, UpZ}, Side);
}

void frmSnapwedge::SendFG(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                          float &DirZ, float &UpX, float &UpY, float &UpZ, std::int16_t &Side) {
  SendShot(program, "Goal", {ShotX, ShotY, ShotZ, Power, DirX, DirY, DirZ, UpX, UpY, UpZ}, Side);
}

void frmSnapwedge::SendResult(std::int16_t MES) {
  DirectPlayMessage &message = Begin(program, "RESULT");
  message.WriteLong(MES);
  Send(program);
  ResultSent = True;
}

void frmSnapwedge::SendContinue() {
  SendTag(program, "Continue");
  ResultSent = False;
  for (const auto &line : HeldChat) {
    program.OutMsg = line;
    Send(program);
  }
  HeldChat.clear();
}

void frmSnapwedge::SendText() {
  DirectPlayMessage &message = Begin(program, "MESSAGE");
  message.WriteString(Text2.Text);
  // While the other computer shows our card it drops every line, so this one is held until "Continue".
  if (ResultSent) {
    HeldChat.push_back(program.OutMsg);
  } else {
    Send(program);
  }
  Text2.Text.clear();
  RMCanvas1.SetFocus();
  HintWritten();
}

void frmSnapwedge::SendEnd() { SendTag(program, "END"); }

void frmSnapwedge::SendOver() { SendTag(program, "OVER"); }
