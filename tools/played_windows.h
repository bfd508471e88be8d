#pragma once

// Screenshots of the play window from real matches: played on the headless machine, shown on the desktop one.

#include "platform/desktop/desktop_machine.h"

#include <QImage>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// Plays through the situations of a match and takes a screenshot of the window in each, at the screen's
/// pixel density.
/// @param game  directory of the game
std::vector<std::pair<std::string, QImage>> PlayWindows(DesktopMachine &screen,
                                                        const std::filesystem::path &game);
