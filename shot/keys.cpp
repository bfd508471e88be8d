// The keys of the play window. They work whenever the canvas has the keyboard, also during a flight or a
// card.

#include "match/frm_snapwedge.h"

void frmSnapwedge::RMCanvas1_KeyDown(std::int16_t KeyCode, std::int16_t /*Shift*/) {
  switch (KeyCode) {
  case KeyCodes::Escape:
    Quit();
  case KeyCodes::Tilde:
    if (program.GameMode == "INET") {
      machine.SetFocus(Text2);
      HintWriting();
      // On many keyboards "~" needs Shift, whose release then goes to the text box.
      ShiftDown = False;
    }
    break;
  case KeyCodes::Shift:
    ShiftDown = True;
    break;
  case KeyCodes::S:
    ToggleStadium();
    break;
  default:
    break;
  }
}

void frmSnapwedge::RMCanvas1_KeyUp(std::int16_t KeyCode, std::int16_t /*Shift*/) {
  if (KeyCode == KeyCodes::Shift) ShiftDown = False;
}

void frmSnapwedge::Quit() {
  if (program.GameMode == "INET") SendEnd();
  program.PlayOnce(program.SndWis3);
  machine.ShowCursor(-1);
  throw ProgramEnd{};
}
