#pragma once

// The signals that ask the program to end: SIGHUP, SIGINT and SIGTERM.

#include <QSocketNotifier>

#include <functional>
#include <memory>

/// While it lives, the first of each of these signals calls `end` from Qt's event loop. Another one of the
/// same kind ends the process at once. A signal that is ignored from the start stays ignored, as under
/// `nohup`. One object at a time.
class EndSignals {
public:
  explicit EndSignals(std::function<void()> end);
  ~EndSignals();
  EndSignals(const EndSignals &) = delete;
  EndSignals &operator=(const EndSignals &) = delete;

private:
  std::function<void()> end_;
  int readEnd_ = -1; ///< of a pair of sockets, since a signal handler may do little more than write
  std::unique_ptr<QSocketNotifier> notifier_;
};
