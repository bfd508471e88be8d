// The scale of the windows for screens of different sizes.

#include "platform/desktop/display.h"
#include "platform/desktop/window_scale.h"

#include <QByteArray>
#include <QProcess>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

TEST(WindowScaleTest, ThePlayWindowTakesUpToNineTenthsOfTheFreeArea) {
  const struct {
    const char *screen;
    QSizeF freeArea;
    double ownFactor, scale;
  } rows[] = {
      {"the smallest in use", {1024, 768}, 1, 1},
      {"smaller than the window", {640, 480}, 1, 1},
      {"1280 by 800", {1280, 800}, 1, 1},
      {"a cheap laptop", {1366, 768}, 1, 1},
      {"1600 by 900, where the window would fit without its frame", {1600, 800}, 1, 1},
      {"1600 by 900 without panels", {1600, 900}, 1, 1.5},
      {"full HD", {1920, 1080}, 1, 1.5},
      {"full HD with a panel", {1920, 1032}, 1, 1.5},
      {"full HD on its side", {1080, 1920}, 1, 1.5},
      {"1440 rows", {2560, 1440}, 1, 2.5},
      {"4K with a panel", {3840, 2112}, 1, 3.5},
      {"4K at twice the size", {3840, 2160}, 2, 3.5},
      {"the desktop's own factor is the larger one", {1920, 1080}, 2, 2},
      {"and need not be one of ours", {1366, 768}, 1.3, 1.3},
      {"unless the window wouldn't fit", {1366, 768}, 2, 1.25},
      {"at all", {800, 600}, 4, 1},
      {"though ours may exceed it", {1920, 1080}, 1.25, 1.5},
  };
  for (const auto &row : rows) EXPECT_EQ(WindowScale(row.freeArea, row.ownFactor), row.scale) << row.screen;
}

TEST(WindowScaleTest, AChoiceOfTheUserStaysUnlessNoWindowCouldBeSeenWithIt) {
  const struct {
    const char *name, *value;
    bool stays;
  } rows[] = {
      {"QT_SCALE_FACTOR", "1.5", true},
      {"QT_SCALE_FACTOR", "0", false},
      {"QT_SCALE_FACTOR", "-1", false},
      {"QT_SCALE_FACTOR", "nan", false},
      {"QT_SCALE_FACTOR", "inf", false},
      {"QT_SCALE_FACTOR", "100", false},
      {"QT_SCALE_FACTOR", "1e9", false},
      {"QT_SCALE_FACTOR", "large", false},
      {"QT_SCREEN_SCALE_FACTORS", "2", true},
      {"QT_SCREEN_SCALE_FACTORS", "DP-1=2;1.5;", true},
      {"QT_SCREEN_SCALE_FACTORS", "2;0", false},
      {"QT_SCREEN_SCALE_FACTORS", "DP-1=100", false},
      {"QT_FONT_DPI", "144", true},
      {"QT_FONT_DPI", "5000", false},
      {"QT_FONT_DPI", "1", false},
  };
  for (const auto &row : rows) {
    for (const char *name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI"}) qunsetenv(name);
    qputenv(row.name, row.value);
    testing::internal::CaptureStderr();
    ChooseDisplay();
    EXPECT_EQ(qgetenv(row.name) == row.value, row.stays) << row.name << '=' << row.value;
    EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), row.stays) << row.name << '=' << row.value;
  }
}

TEST(WindowScaleTest, TheDisplayOfTheCommandLineReplacesThatOfTheEnvironment) {
  const QByteArray before = qgetenv("DISPLAY");
  for (const char *option : {"-display", "--display"}) {
    char name[] = "game", last[] = "-display", display[] = ":4242";
    std::string given = option;
    char *arguments[] = {name, given.data(), display, last, nullptr};
    qputenv("DISPLAY", before);
    TakeDisplayOption(4, arguments);
    EXPECT_EQ(qgetenv("DISPLAY"), ":4242") << option;
  }
  EXPECT_FALSE(QueryX());
  qputenv("DISPLAY", before);
}

TEST(WindowScaleTest, AnAbsurdScaleOfTheDesktopIsIgnoredForWindowsAndFonts) {
  ASSERT_TRUE(QueryX()) << "no X display";
  const struct {
    const char *dpi, *fontDpi;
    bool reported;
  } rows[] = {{"96", "", false},    {"9600", "96", true}, {"1e9", "96", true}, {"1", "96", true},
              {"large", "", false}, {"0", "", false},     {"-5", "", false},   {"nan", "", false}};
  for (const auto &row : rows) {
    QProcess::execute("xprop", {"-root", "-f", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER",
                                QByteArray("Xft.dpi:\t") + row.dpi + "\n"});
    for (const char *name : {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI"}) qunsetenv(name);
    qputenv("QT_QPA_PLATFORM", "xcb");
    testing::internal::CaptureStderr();
    ChooseDisplay();
    EXPECT_NE(testing::internal::GetCapturedStderr().empty(), row.reported) << row.dpi;
    EXPECT_LE(qgetenv("QT_SCREEN_SCALE_FACTORS").toDouble(), 4.0) << row.dpi;
    EXPECT_EQ(qgetenv("QT_FONT_DPI"), row.fontDpi) << row.dpi;
  }
  QProcess::execute("xprop", {"-root", "-remove", "RESOURCE_MANAGER"});
}

TEST(WindowScaleTest, ACompositorThatNeverAnswersIsGivenUp) {
  const std::string path = testing::TempDir() + "silent-compositor-" + std::to_string(getpid());
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  const int silent = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(silent, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
  ASSERT_EQ(listen(silent, 1), 0);
  setenv("WAYLAND_DISPLAY", path.c_str(), 1); // of this process alone
  EXPECT_FALSE(QueryWayland());
  unsetenv("WAYLAND_DISPLAY");
  unlink(path.c_str());
  close(silent);
}
