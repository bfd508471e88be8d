// The front page that a match ends with.

#include "front/picture_window.h"
#include "match/frm_snapwedge.h"

void frmSnapwedge::ShowHome() {
  PictureWindow frmHome(machine, "frmHome", "Home Team Wins!!", 4500, 3465);
  machine.ShowModal(frmHome);
}

void frmSnapwedge::ShowAway() {
  PictureWindow frmAway(machine, "frmAway", "Away Team Wins!!", 4500, 3465);
  machine.ShowModal(frmAway);
}

void frmSnapwedge::ShowTie() {
  PictureWindow frmTie(machine, "frmTie", "It's All Tied Up!", 4470, 3390);
  machine.ShowModal(frmTie);
}
