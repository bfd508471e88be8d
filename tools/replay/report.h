#pragma once

// The lines of JSON that the replay tool prints. Every number reads back as the same 32-bit float, and every
// line is flushed, so that a program can converse with the tool.

#include "match/frm_snapwedge.h"
#include "tools/replay/watcher.h"

#include <string>

/// What a shot was asked to be.
struct AskedShot {
  char Side = 'A';
  float Force = 0;
  float Turn = 0;  ///< radians
  int Attempt = 0; ///< 1 to 3, of a flick
  bool Computer = false;
};

void ReportFlick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen);
void ReportKick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen);
void ReportProbe(float x, float z, const std::string &surface); ///< `surface` is empty for nothing
void ReportNoKick();
void ReportOver(const frmSnapwedge &window, const std::string &card);
