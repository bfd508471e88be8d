#pragma once

// The files of windows: images and documents.

#include <QPixmap>
#include <QString>
#include <QWidget>

#include <filesystem>
#include <string>

class DesktopMachine;

/// Loads an image of the game for the pixel density of the widget's screen.
/// @throws FileError  if it can't be read; names it and says why
QPixmap LoadPicture(DesktopMachine &machine, const QWidget &shownOn, const std::string &name);

/// Checks that such an image is loadable, without decoding it.
/// @param directory  of the game
/// @param density    of the screen, device pixels per design pixel
/// @param place      the size that it must fill, design pixels
/// @throws FileError
void CheckPicture(const std::filesystem::path &directory, const std::string &name, double density,
                  const QSize &place);

/// The text in an image, for screen readers.
/// @throws FileError
QString LoadPictureText(const std::filesystem::path &directory, const std::string &picture);

/// Checks that this text is loadable.
/// @throws FileError
void CheckPictureText(const std::filesystem::path &directory, const std::string &picture);

/// Checks that a document is complete text.
/// @throws FileError
void CheckDocument(const std::filesystem::path &file);
