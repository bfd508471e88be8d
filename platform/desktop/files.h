#pragma once

// The files that windows show: pictures and documents.

#include <QPixmap>
#include <QString>
#include <QWidget>

#include <filesystem>
#include <string>

class DesktopMachine;

/// A picture of the game at the density of that widget's screen.
/// @throws FileError  that names a picture which can't be read and says why
QPixmap LoadPicture(DesktopMachine &machine, const QWidget &shownOn, const std::string &name);

/// Makes sure that such a picture could be loaded, for much less than loading it costs.
/// @param directory  of the game
/// @param density    of the screen, pixels per pixel of the design
/// @param place      what it must fill, pixels of the design
/// @throws FileError
void CheckPicture(const std::filesystem::path &directory, const std::string &name, double density,
                  const QSize &place);

/// The words that stand in a picture, for who can't see it.
/// @throws FileError
QString LoadWords(const std::filesystem::path &directory, const std::string &picture);

/// Makes sure that they could be loaded.
/// @throws FileError
void CheckWords(const std::filesystem::path &directory, const std::string &picture);

/// Makes sure that a document is text with a beginning and an end.
/// @throws FileError
void CheckDocument(const std::filesystem::path &file);
