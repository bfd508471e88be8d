// Inhibiting screen blanking during a network match, on a private message bus.

#include "tests/desktop_kit.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace {

constexpr uint Cookie = 4711;
constexpr const char *Handle = "/org/freedesktop/portal/desktop/request/1";

/// A mock desktop: records requests, and answers with a cookie or a handle.
class Desktop : public QDBusVirtualObject {
public:
  explicit Desktop(const QDBusConnection &bus) : bus_(bus) {
    bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
  }
  ~Desktop() override { bus_.unregisterObject("/", QDBusConnection::UnregisterTree); }

  QString introspect(const QString &) const override { return {}; }
  bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override {
    const auto said = message.arguments();
    if (message.member() == "Inhibit") {
      const bool portal = message.interface() == "org.freedesktop.portal.Inhibit";
      log += portal ? QString("portal inhibits %1").arg(said.value(1).toUInt()) : QString("saver inhibits");
      bus.send(message.createReply(portal ? QVariant::fromValue(QDBusObjectPath(Handle)) : QVariant(Cookie)));
    } else if (message.member() == "UnInhibit") {
      log += QString("saver lets go %1").arg(said.value(0).toUInt());
      bus.send(message.createReply());
    } else if (message.member() == "Close") {
      log += QString("portal closes ") + message.path();
      bus.send(message.createReply());
    } else {
      return false;
    }
    return true;
  }

  QStringList log;

private:
  QDBusConnection bus_;
};

class ScreenAwakeTest : public testing::Test {
protected:
  /// A process connects to one bus only.
  static void SetUpTestSuite() {
    static QTemporaryDir directory;
    static QProcess daemon;
    const QString address = "unix:path=" + directory.filePath("bus");
    std::atexit([] {
      daemon.kill();
      daemon.waitForFinished();
    });
    daemon.start("dbus-daemon",
                 {"--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address});
    ASSERT_TRUE(daemon.waitForReadyRead()) << "dbus-daemon is missing";
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    machine = &GameMachine::Get();
  }

  static bool PumpUntil(const std::function<bool()> &reached) {
    const std::int32_t end = machine->ClockIn(5000);
    while (!reached() && !machine->ClockReached(end)) machine->WaitUntil(machine->ClockIn(10));
    return reached();
  }

  static inline DesktopMachine *machine = nullptr;
};

TEST_F(ScreenAwakeTest, StaysAwakeWhileAWindowAsksForIt) {
  struct Row {
    const char *service;
    QStringList log;
  };
  for (const Row &row :
       {Row{"org.freedesktop.ScreenSaver", {"saver inhibits", "saver lets go 4711"}},
        Row{"org.freedesktop.portal.Desktop", {"portal inhibits 8", QString("portal closes ") + Handle}}}) {
    SCOPED_TRACE(row.service);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "desktop");
    ASSERT_TRUE(bus.registerService(row.service));
    Desktop desktop(bus);
    Window quiet, awake;
    awake.KeepsScreenAwake = true;
    machine->Show(quiet);
    PumpFor(*machine, 100);
    EXPECT_EQ(desktop.log, QStringList());
    machine->Show(awake);
    EXPECT_TRUE(PumpUntil([&] { return desktop.log.size() == 1; }));
    PumpFor(*machine, 100);
    machine->Hide(awake);
    EXPECT_TRUE(PumpUntil([&] { return desktop.log.size() == 2; }));
    EXPECT_EQ(desktop.log, row.log);
    machine->Hide(quiet);
    bus.unregisterService(row.service);
    QDBusConnection::disconnectFromBus("desktop");
  }
}

TEST_F(ScreenAwakeTest, ADesktopWithoutTheInterfaceIsNoFault) {
  Window awake;
  awake.KeepsScreenAwake = true;
  machine->Show(awake);
  PumpFor(*machine, 200);
  machine->Hide(awake);
  PumpFor(*machine, 50);
}

} // namespace
