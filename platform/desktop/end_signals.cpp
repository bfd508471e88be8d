#include "platform/desktop/end_signals.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace {

constexpr int Signals[] = {SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t writeEnd = -1;

void Report(int) {
  const int before = errno;
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(writeEnd, &byte, 1);
  errno = before;
}

void SetHandler(int number, void (*handler)(int)) {
  struct sigaction action {};
  sigaction(number, nullptr, &action);
  if (action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  sigaction(number, &action, nullptr);
}

} // namespace

EndSignals::EndSignals(std::function<void()> end) : end_(std::move(end)) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0)
    throw std::system_error(errno, std::generic_category(), "can't make a pair of sockets");
  readEnd_ = ends[0];
  writeEnd = ends[1];
  notifier_ = std::make_unique<QSocketNotifier>(readEnd_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
    std::array<char, 16> bytes{};
    if (read(readEnd_, bytes.data(), bytes.size()) > 0) end_();
  });
  for (const int number : Signals) SetHandler(number, Report);
}

EndSignals::~EndSignals() {
  for (const int number : Signals) SetHandler(number, SIG_DFL);
  notifier_.reset();
  close(readEnd_);
  close(writeEnd);
}
