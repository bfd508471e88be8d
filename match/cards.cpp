// Result cards and score lines.

#include "match/frm_snapwedge.h"
#include "match/results.h"

#include <string>

namespace {

/// The crowd's reaction to a result. It favours side A: it cheers side A's successes and boos its failures,
/// and the reverse for side B.
void PlayResult(const Program &program, std::int16_t result) {
  const bool ours = program.MyTurn != False;
  switch (result) {
  case Results::GoodKick:
  case Results::Bonus:
    if (ours) program.PlayOnce(program.SndYeah);
    break;
  case Results::MissedKick:
    program.PlayOnce(ours ? program.SndBoo : program.SndYeah2);
    break;
  case Results::Touchdown:
    program.PlayOnce(ours ? program.SndYeah2 : program.SndBoo);
    program.PlayOnce(program.SndWis2);
    break;
  case Results::Turnover:
  case Results::Short:
    if (!ours) program.PlayOnce(program.SndYeah2);
    break;
  case Results::Penalty:
    if (!ours) program.PlayOnce(program.SndYeah);
    program.PlayOnce(program.SndWis1);
    break;
  default:
    break;
  }
}

} // namespace

PictureBox &frmSnapwedge::Card(std::int16_t MES) {
  PictureBox *cards[] = {&Picture1, &Picture2, &Picture3, &Picture4, &Picture5, &Picture6, &Picture7};
  return *cards[MES - Results::First];
}

void frmSnapwedge::ShowMessage(std::int16_t &MES) {
  const bool network = program.GameMode == "INET";
  TurnColor();
  if (network && !program.MyTurn) {
    ResultDue = True;
    MyDelay2();
    return;
  }
  HintResult(MES);
  Busy = True;
  PlayResult(program, MES);
  if (!network && !program.MessagesOn) {
    MyDelayNoCard();
    return;
  }
  PictureBox &card = Card(MES);
  card.Visible = true;
  if (network) SendResult(MES);
  machine.Repaint(*this);
  MyDelay();
  if (network) SendContinue();
  card.Visible = false;
  RMCanvas1.SetFocus();
  HintWritten();
  Busy = False;
}

Flag frmSnapwedge::AnyPictures() {
  for (std::int16_t result = Results::First; result <= Results::Last; ++result) {
    if (Card(result).Visible) return True;
  }
  return False;
}

void frmSnapwedge::PostScore() {
  lblPlayer1.Caption = "Home Team Score: " + std::to_string(HomeScore);
  lblPlayer2.Caption = "Away Team Score: " + std::to_string(AwayScore);
  ShowRound();
  CountScores();
}

void frmSnapwedge::ShowRound() {
  Label1.Caption = "Round: " + std::to_string(Round) + " of " + std::to_string(program.Rounds);
}
