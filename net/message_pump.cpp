// Incoming messages during a match. A shot is replayed from its inputs, and only the end of the replay hands
// over the turn. A field goal is replayed too, but only the kicker judges it: "RESULT" brings the card, and
// "Score" the point. Each call takes one message, and calls may be nested inside a replay.

#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "net/received.h"
#include "platform/network_times.h"

#include <algorithm>
#include <string>

namespace {

/// Takes the oldest message and returns its tag; empty if the first field is not a text.
std::string ReceiveTag(Program &program) {
  program.InMsg = program.DP->Receive(program.FromId, program.ToId, DPRECEIVE_ALL);
  program.MsgCount -= 1;
  if (program.InMsg->GetKind() != DirectPlayMessage::Kind::Game) return {};
  try {
    return program.InMsg->ReadString();
  } catch (const DirectPlayError &) {
    return {};
  }
}

/// The sound before the card of the other side's result.
void PlayBeforeCard(const Program &program, std::int16_t result) {
  if (result == Results::Touchdown) program.PlayOnce(program.SndWis2);
  if (result == Results::Penalty) program.PlayOnce(program.SndWis1);
}

/// The sound with the card: this side's crowd boos the other side's successes and cheers its failures.
void PlayWithCard(const Program &program, std::int16_t result) {
  switch (result) {
  case Results::GoodKick:
  case Results::Touchdown:
  case Results::Bonus:
    program.PlayOnce(program.SndBoo);
    break;
  case Results::Penalty:
    program.PlayOnce(program.SndYeah);
    break;
  default:
    program.PlayOnce(program.SndYeah2);
    break;
  }
}

} // namespace

void frmSnapwedge::CheckMessages() {
  if (!Replaying && !QueuedFlicks.empty()) {
    const ReceivedShot shot = QueuedFlicks.front();
    QueuedFlicks.pop_front();
    ReplayFlick(shot);
    return;
  }
  program.MsgCount = program.DP->GetMessageCount(program.MyPlayerId);
  if (program.MsgCount <= 0) return;
  const std::string tag = ReceiveTag(program);
  // A replay below receives messages itself, so keep this one.
  const auto message = program.InMsg;
  if (message->GetKind() == DirectPlayMessage::Kind::ConnectionLost) OtherSideLeft();

  if (!TakeMessage(tag, *message)) ++DroppedMessages;
}

bool frmSnapwedge::TakeMessage(const std::string &tag, DirectPlayMessage &message) {
  if (tag == "Flick") {
    const auto shot = ReadShot(message);
    return shot && !program.MyTurn && TakeFlick(*shot);
  }
  if (tag == "Goal") {
    const auto shot = ReadShot(message);
    if (!shot || program.MyTurn || !KickMode || ReplayingKick || shot->Force <= 0.0f) return false;
    ReplayKick(*shot);
    return true;
  }
  if (tag == "MESSAGE") {
    const auto line = ReadChat(message);
    if (!line) return false;
    program.PlayOnce(program.SndWis1);
    Text1.Text = *line;
    return true;
  }
  if (tag == "Version") {
    const auto version = ReadVersion(message);
    if (!version) return false;
    Label5.Caption = "OV:" + version->Build + ":" + std::to_string(version->Number);
    return true;
  }
  if (tag == "Score") {
    const auto score = ReadScore(message, Round);
    if (!score) return false;
    // The sender's Home Team is this side's Away Team. A score never falls.
    AwayScore = std::max(AwayScore, score->Home);
    HomeScore = std::max(HomeScore, score->Away);
    PostScore();
    // The host sends a score with the number of the last round only when it can't score any more: after its
    // last good kick, or at the end of its last possession.
    if (!program.IsHost && score->Round == program.Rounds) OtherSideOver = True;
    return true;
  }
  if (tag == "RESULT") {
    const auto result = ReadResult(message);
    if (!result || (program.MyTurn && !ResultDue)) return false;
    ShowOtherResult(*result);
    return true;
  }
  if (tag == "OVER") {
    if (!NothingFollows(message)) return false;
    if (program.IsHost) OtherSideOver = True;
    return true;
  }
  if (tag == "END") {
    if (!NothingFollows(message)) return false;
    OtherSideLeft();
  }
  return true; // an unknown tag
}

bool frmSnapwedge::TakeFlick(const ReceivedShot &shot) {
  if (!Replaying) {
    ReplayFlick(shot);
    return true;
  }
  if (QueuedFlicks.size() >= AttemptsInPossession) return false;
  QueuedFlicks.push_back(shot);
  return true;
}

void frmSnapwedge::ReplayFlick(const ReceivedShot &shot) {
  ReceivedShot own = shot;
  Replaying = True;
  Force = shot.Force;
  Player = shot.Player;
  Flick(own.FrameX, own.FrameY, own.FrameZ, Force, own.X1, own.Y1, own.Z1, own.X2, own.Y2, own.Z2, Player);
  Replaying = False;
  if (!program.MyTurn) return;
  // The possession is over, so its queued flicks are void.
  DroppedMessages += static_cast<std::int32_t>(QueuedFlicks.size());
  QueuedFlicks.clear();
}

void frmSnapwedge::ReplayKick(const ReceivedShot &shot) {
  // The kick flies from this side's own aim. Of the received shot only the force matters, since "RESULT"
  // brings the verdict.
  ReplayingKick = True;
  Force = shot.Force;
  Player = shot.Player;
  GetFmain();
  KickFB(KickFrameX, KickFrameY, KickFrameZ, Force, KickX1, KickY1, KickZ1, KickX2, KickY2, KickZ2);
  ReplayingKick = False;
}

void frmSnapwedge::ShowOtherResult(std::int16_t MES) {
  Busy = True;
  ResultDue = False;
  ReleaseButtons(); // the card would swallow the release, and the meter would go on charging
  PlayBeforeCard(program, MES);
  const std::string hint = Hint;
  HintOtherResult(MES);
  PictureBox &card = Card(MES);
  card.Visible = true;
  machine.Repaint(*this);
  PlayWithCard(program, MES);
  CanIContinue();
  card.Visible = false;
  Hint = hint;
  RMCanvas1.SetFocus();
  HintWritten();
  Busy = False;
  // Ends the pause that waited for this card. The next shot may already be queued, and it must not begin
  // inside the replay that this result belongs to.
  FrameEnd = machine.timeGetTime();
}

void frmSnapwedge::CanIContinue() {
  for (;;) {
    program.MsgCount = program.DP->GetMessageCount(program.MyPlayerId);
    if (program.MsgCount > 0) {
      const std::string tag = ReceiveTag(program);
      if (program.InMsg->GetKind() == DirectPlayMessage::Kind::ConnectionLost) OtherSideLeft();
      if (NothingFollows(*program.InMsg)) {
        if (tag == "Continue") return;
        if (tag == "END") OtherSideLeft();
      }
      ++DroppedMessages; // while its card is up, the other side sends nothing else
      machine.Pump();
    } else {
      machine.WaitUntil(machine.ClockIn(NetworkPollMs));
    }
  }
}

void frmSnapwedge::AwaitOver() {
  while (!OtherSideOver) {
    CheckMessages();
    if (!OtherSideOver) machine.WaitUntil(machine.ClockIn(NetworkPollMs));
  }
}

void frmSnapwedge::OtherSideLeft() {
  program.PlayOnce(program.SndWis3);
  machine.ShowCursor(-1);
  EndLineWatch();
  HintLeft();
  machine.MsgBox({"Away Team Disconnected!", "Game Over:"});
  throw ProgramEnd{};
}

void frmSnapwedge::EndLineWatch() {
  LineWatch.reset();
  LineIsBroken = False;
  Caption = PlayCaption;
}

void frmSnapwedge::ShowLine() {
  const bool wasBroken = LineIsBroken != False;
  LineIsBroken = program.DP->Broken() ? True : False;
  if (wasBroken && !LineIsBroken) LineBackUntil = machine.ClockIn(LineBackMs);
  if (LineIsBroken || (LineBackUntil && machine.ClockReached(*LineBackUntil))) LineBackUntil.reset();
  Caption = PlayCaption;
  if (LineIsBroken) Caption += " - waiting for the other computer ...";
  if (LineBackUntil) Caption += " - the other computer is back";
  ShowHint();
}

void frmSnapwedge::Text2_KeyPress(std::int16_t KeyCode) {
  if (KeyCode == KeyCodes::Enter) SendText();
}
