#include "platform/desktop/screen_awake.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QVariantMap>

namespace {

const QString Program = "Snapwedge", Reason = "A match is being played";

/// Without a session bus the library would start one.
bool HasBus() {
  return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
         QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

QDBusMessage ToScreenSaver(const QString &method) {
  constexpr auto Service = "org.freedesktop.ScreenSaver";
  return QDBusMessage::createMethodCall(Service, "/org/freedesktop/ScreenSaver", Service, method);
}

} // namespace

template <class Answered, class Refused>
void ScreenAwake::Ask(const QDBusMessage &request, Answered answered, Refused refused) {
  auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(request), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [=](QDBusPendingCallWatcher *ended) {
    ended->deleteLater();
    if (ended->isError()) {
      refused();
    } else {
      answered(ended->reply().arguments().value(0));
    }
  });
}

ScreenAwake::ScreenAwake() {
  if (!HasBus() || !QDBusConnection::sessionBus().isConnected()) return;
  QDBusMessage request = ToScreenSaver("Inhibit");
  request << Program << Reason;
  Ask(
      request,
      [this](const QVariant &cookie) {
        uninhibit_ = ToScreenSaver("UnInhibit");
        *uninhibit_ << cookie;
      },
      [this] { AskPortal(); });
}

void ScreenAwake::AskPortal() {
  constexpr auto Service = "org.freedesktop.portal.Desktop";
  QDBusMessage request = QDBusMessage::createMethodCall(Service, "/org/freedesktop/portal/desktop",
                                                        "org.freedesktop.portal.Inhibit", "Inhibit");
  constexpr uint Idle = 8;
  request << QString() << Idle << QVariantMap{{"reason", Reason}};
  Ask(
      request,
      [this](const QVariant &handle) {
        uninhibit_ = QDBusMessage::createMethodCall(Service, handle.value<QDBusObjectPath>().path(),
                                                    "org.freedesktop.portal.Request", "Close");
      },
      [] {}); // a desktop that offers neither may blank its screen
}

ScreenAwake::~ScreenAwake() {
  if (uninhibit_) QDBusConnection::sessionBus().send(*uninhibit_);
}
