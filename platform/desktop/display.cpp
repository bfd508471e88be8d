#include "platform/desktop/display.h"

#include "platform/desktop/window_scale.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace {

bool IsSet(const char *name) { return !qEnvironmentVariableIsEmpty(name); }

/// Whether Qt's Wayland plugin is installed.
bool QtKnowsWayland() {
  const auto paths = QCoreApplication::libraryPaths();
  return std::ranges::any_of(paths, [](const QString &path) {
    return !QDir(path + "/platforms").entryList({"libqwayland-*.so"}, QDir::Files).isEmpty();
  });
}

/// Chooses the platform for Qt and queries its display.
std::optional<DisplayFacts> ChoosePlatform() {
  constexpr const char *Choice = "QT_QPA_PLATFORM";
  if (IsSet(Choice)) {
    const QByteArray chosen = qgetenv(Choice);
    return chosen.startsWith("wayland") ? AskWayland() : chosen.startsWith("xcb") ? AskX() : std::nullopt;
  }
  const auto wayland = IsSet("WAYLAND_DISPLAY") && QtKnowsWayland() ? AskWayland() : std::nullopt;
  const auto x = wayland && wayland->holdsPointer ? std::nullopt : AskX();
  if (x) {
    qputenv(Choice, "xcb");
    return x;
  }
  if (wayland) qputenv(Choice, "wayland");
  return wayland;
}

} // namespace

void ChooseDisplay() {
  const auto display = ChoosePlatform();
  if (!display || IsSet("QT_SCALE_FACTOR") || IsSet("QT_SCREEN_SCALE_FACTORS")) return;
  const double scale = WindowScale(display->freeArea.size(), display->ownFactor);
  if (display->scalesItself) {
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale / display->ownFactor));
  } else {
    // Replaces the own factor of every screen, so that the windows have the same size on all of them.
    qputenv("QT_SCREEN_SCALE_FACTORS", QByteArrayList(display->screens, QByteArray::number(scale)).join(';'));
  }
}
