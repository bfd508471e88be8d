#pragma once

// Inhibits screen blanking while it lives, if the desktop supports it. In a network match there is no input
// during the other player's turn.

#include <QDBusMessage>
#include <QObject>

#include <optional>

class ScreenAwake : public QObject {
public:
  ScreenAwake();
  ~ScreenAwake() override;

private:
  /// Sends a request and passes its answer on; an error goes to `refused`.
  template <class Answered, class Refused>
  void Ask(const QDBusMessage &request, Answered answered, Refused refused);
  void AskPortal();

  std::optional<QDBusMessage> uninhibit_; ///< request that ends the inhibition; set once it is granted
};
