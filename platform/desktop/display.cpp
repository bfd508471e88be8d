#include "platform/desktop/display.h"

#include "platform/desktop/window_scale.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <iostream>

namespace {

// Qt takes any number from these variables, even one that leaves no visible window.
constexpr double LeastFactor = 0.5, MostFactor = 8.0;
constexpr struct Setting {
  const char *name;
  double least, most;
} Settings[] = {{"QT_SCALE_FACTOR", LeastFactor, MostFactor},
                {"QT_SCREEN_SCALE_FACTORS", LeastFactor, MostFactor},
                {"QT_FONT_DPI", 96 * LeastFactor, 96 * MostFactor}};

bool IsSet(const char *name) { return !qEnvironmentVariableIsEmpty(name); }

/// Whether a value is a number in range, or a list of such, with or without names of screens: "DP-1=2;1.5".
bool IsUsable(const QByteArray &value, const Setting &setting) {
  return std::ranges::all_of(value.split(';'), [&](const QByteArray &each) {
    const double number = each.mid(each.lastIndexOf('=') + 1).toDouble();
    return each.isEmpty() || (number >= setting.least && number <= setting.most);
  });
}

void DropUnusableSettings() {
  for (const Setting &setting : Settings) {
    const QByteArray value = qgetenv(setting.name);
    if (value.isEmpty() || IsUsable(value, setting)) continue;
    std::cerr << "Snapwedge ignores " << setting.name << "=\"" << value.toStdString() << "\": must be from "
              << setting.least << " to " << setting.most << std::endl;
    qunsetenv(setting.name);
  }
}

/// Qt derives the size of fonts from the desktop's factor, whatever the scale of the windows.
void DropUnusableFactor(DisplayFacts &display) {
  if (display.ownFactor >= LeastFactor && display.ownFactor <= MostFactor) return;
  std::cerr << "Snapwedge ignores the desktop's scale of " << display.ownFactor << ": must be from "
            << LeastFactor << " to " << MostFactor << std::endl;
  display.ownFactor = 1.0;
  if (!IsSet("QT_FONT_DPI")) qputenv("QT_FONT_DPI", "96");
}

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
    return chosen.startsWith("wayland") ? QueryWayland() : chosen.startsWith("xcb") ? QueryX() : std::nullopt;
  }
  const auto wayland = IsSet("WAYLAND_DISPLAY") && QtKnowsWayland() ? QueryWayland() : std::nullopt;
  const auto x = wayland && wayland->holdsPointer ? std::nullopt : QueryX();
  if (x) {
    qputenv(Choice, "xcb");
    return x;
  }
  if (wayland) qputenv(Choice, "wayland");
  return wayland;
}

} // namespace

void TakeDisplayOption(int argc, char **argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    const QByteArray option = argv[i];
    if (option == "-display" || option == "--display") qputenv("DISPLAY", argv[i + 1]);
  }
}

void ChooseDisplay() {
  DropUnusableSettings();
  auto display = ChoosePlatform();
  if (!display) return;
  DropUnusableFactor(*display);
  if (IsSet("QT_SCALE_FACTOR") || IsSet("QT_SCREEN_SCALE_FACTORS")) return;
  const double scale = WindowScale(display->freeArea.size(), std::max(display->ownFactor, 1.0));
  if (display->scalesItself) {
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale / display->ownFactor));
  } else {
    // Replaces the own factor of every screen, so that the windows have the same size on all of them.
    qputenv("QT_SCREEN_SCALE_FACTORS", QByteArrayList(display->screens, QByteArray::number(scale)).join(';'));
  }
}
