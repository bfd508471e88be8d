#pragma once

// Keeps the desktop from blanking its screen as long as it lives, where the desktop lets a program ask for
// that. A network match is waited through without a touch of mouse or keys.

#include <QDBusMessage>
#include <QObject>

#include <optional>

class ScreenAwake : public QObject {
public:
  ScreenAwake();
  ~ScreenAwake() override;

private:
  /// Sends a request and hands its answer on; an error goes to `refused`.
  template <class Answered, class Refused>
  void Ask(const QDBusMessage &request, Answered answered, Refused refused);
  void AskPortal();

  std::optional<QDBusMessage> takeBack_; ///< what ends it, once it has been granted
};
