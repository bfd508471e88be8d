#pragma once

// The JSON output of the replay tool. Every number parses to the same 32-bit float, and every line is
// flushed, so that a program can use the tool interactively.

#include "match/frm_snapwedge.h"
#include "tools/replay/watcher.h"

#include <string>

/// The parameters of a shot.
struct AskedShot {
  char Side = 'A';
  float Force = 0;
  float Turn = 0;  ///< radians
  int Attempt = 0; ///< 1 to 3, for a flick
  bool Computer = false;
};

void ReportFlick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen);
void ReportKick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen);
void ReportProbe(float x, float z, const std::string &surface); ///< `surface` is empty if nothing is hit
void ReportNoKick();
void ReportOver(const frmSnapwedge &window, const std::string &card);
