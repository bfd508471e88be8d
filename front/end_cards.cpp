// The front page that a match ends with.

#include "front/check_files.h"
#include "front/picture_window.h"
#include "match/frm_snapwedge.h"
#include "platform/files.h"
#include "scene/scene_files.h"

namespace {

PictureWindow Home(Machine &machine) { return {machine, "frmHome", "Home Team Wins!!", 4500, 3465}; }

PictureWindow Away(Machine &machine) { return {machine, "frmAway", "Away Team Wins!!", 4500, 3465}; }

PictureWindow Tie(Machine &machine) { return {machine, "frmTie", "It's All Tied Up!", 4470, 3390}; }

/// A page that has gone bad during the match doesn't take the result with it.
void ShowPage(Machine &machine, PictureWindow &&page) {
  try {
    machine.ShowModal(page);
  } catch (const FileError &error) {
    throw FileError(page.Caption + "\n\n" + error.what());
  }
}

} // namespace

void frmSnapwedge::ShowHome() { ShowPage(machine, Home(machine)); }

void frmSnapwedge::ShowAway() { ShowPage(machine, Away(machine)); }

void frmSnapwedge::ShowTie() { ShowPage(machine, Tie(machine)); }

void CheckMatchFiles(Machine &machine, Program &program) {
  CheckSceneFiles(machine.AppPath());
  machine.CheckFiles(frmSnapwedge(machine, program));
  machine.CheckFiles(Home(machine));
  machine.CheckFiles(Away(machine));
  machine.CheckFiles(Tie(machine));
}
