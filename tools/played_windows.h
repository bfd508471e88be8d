#pragma once

// Pictures of the play window out of real matches: played on the headless machine, shown on the real one.

#include "platform/desktop/desktop_machine.h"

#include <QImage>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// Plays what a match can come to and takes a picture of the window at each station, in the density of the
/// screen.
/// @param game  the directory of the game
std::vector<std::pair<std::string, QImage>> PlayWindows(DesktopMachine &screen,
                                                        const std::filesystem::path &game);
