#include "platform/desktop/router/home_router.h"

#include "platform/desktop/router/router_protocol.h"
#include "platform/network_times.h"
#include "platform/session/protocol.h"

#include <arpa/inet.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using Milliseconds = std::chrono::milliseconds;

struct Range {
  std::uint32_t network;
  int bits;
};

/// IPv4 addresses that aren't reachable from the Internet: a router with one is behind another router.
constexpr Range Private[] = {{0x00000000, 8},  {0x0A000000, 8},  {0x64400000, 10}, {0x7F000000, 8},
                             {0xA9FE0000, 16}, {0xAC100000, 12}, {0xC0A80000, 16}, {0xE0000000, 3}};

bool IsPublic(const std::string &address) {
  in_addr bytes{};
  if (inet_pton(AF_INET, address.c_str(), &bytes) != 1) return false;
  const std::uint32_t value = ntohl(bytes.s_addr);
  for (const Range &range : Private) {
    if ((value ^ range.network) >> (32 - range.bits) == 0) return false;
  }
  return true;
}

/// An open mapping.
struct Opened {
  std::uint16_t inside;
  std::uint16_t outside;
  RouterProtocol *by;
};

} // namespace

struct HomeRouter::State {
  std::mutex mutex;
  std::condition_variable changed;
  // Guarded by the mutex.
  std::uint16_t wanted = 0; ///< port to open; 0 for none
  std::uint64_t handle = 0; ///< of the `OpenedPort` that wants it
  bool running = false;     ///< the thread has been started
  bool ending = false;      ///< the program is exiting
  bool looked = false;      ///< the first search for a router is over
  bool asking = false;      ///< a mapping exists, or may exist
  std::string address;      ///< public; empty if unknown

  bool Wants(std::uint16_t port) {
    const std::lock_guard lock(mutex);
    return wanted == port;
  }
};

/// The thread: makes the router match the wanted state, step by step.
class HomeRouter::Worker {
public:
  explicit Worker(std::shared_ptr<State> state) : state_(std::move(state)) {}

  void Run() {
    std::unique_lock lock(state_->mutex);
    while (!state_->ending || opened_) {
      const std::uint16_t wanted = state_->wanted;
      lock.unlock();
      if (opened_ && opened_->inside != wanted) Close();
      if (wanted != 0) Open(wanted);
      lock.lock();
      state_->looked = state_->looked || wanted != 0;
      state_->asking = opened_.has_value();
      state_->changed.notify_all();
      const auto other = [&] { return state_->wanted != wanted || (state_->ending && wanted == 0); };
      if (wanted == 0) {
        state_->changed.wait(lock, other);
      } else {
        state_->changed.wait_for(lock, Milliseconds(opened_ ? RouterRenewMs : RouterRetryMs), other);
      }
    }
  }

private:
  void Close() {
    opened_->by->Close(opened_->inside, opened_->outside);
    opened_.reset();
  }

  /// Opens or renews. A mapping that can't be renewed is lost, unless it isn't wanted any more: then it must
  /// still be closed.
  void Open(std::uint16_t port) {
    if (opened_) {
      if (OpenBy(*opened_->by, port, opened_->outside) || !state_->Wants(port)) return;
      opened_.reset();
    }
    for (const auto &protocol : protocols_) {
      if (OpenBy(*protocol, port, port)) return;
    }
  }

  bool OpenBy(RouterProtocol &protocol, std::uint16_t port, std::uint16_t first) {
    const auto wanted = [&] { return state_->Wants(port); };
    const auto address = protocol.Find(wanted);
    if (!address) return false;
    {
      const std::lock_guard lock(state_->mutex);
      if (state_->wanted != port) return false;
      state_->address = IsPublic(*address) ? *address : "";
      state_->asking = true;
    }
    // With two hosts behind one router the port may be taken. A joiner tries each of these ports.
    std::uint16_t outside = first;
    for (int i = 0; i < session::PortCount && wanted(); ++i) {
      if (protocol.Open(port, outside)) {
        opened_ = {port, outside, &protocol};
        return true;
      }
      const int next = outside + 1 - session::DefaultPort;
      outside = static_cast<std::uint16_t>(session::DefaultPort + next % session::PortCount);
    }
    return false;
  }

  std::shared_ptr<State> state_;
  std::array<std::unique_ptr<RouterProtocol>, 2> protocols_{MakeNatPmp(), MakeUpnp()};
  std::optional<Opened> opened_;
};

namespace {

/// Blocks signals for the new thread, which inherits the mask: a closed connection must not kill the game
/// with SIGPIPE.
class SignalsBlocked {
public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked &) = delete;
  SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
  sigset_t before_{};
};

} // namespace

class HomeRouter::OpenedPort : public session::RouterPort {
public:
  OpenedPort(std::shared_ptr<State> state, std::uint64_t handle)
      : state_(std::move(state)), handle_(handle) {}

  ~OpenedPort() override {
    const std::lock_guard lock(state_->mutex);
    if (state_->handle != handle_) return;
    state_->wanted = 0;
    state_->changed.notify_all();
  }

private:
  std::shared_ptr<State> state_;
  std::uint64_t handle_;
};

HomeRouter::HomeRouter() : state_(std::make_shared<State>()) {}

HomeRouter::~HomeRouter() {
  std::unique_lock lock(state_->mutex);
  state_->wanted = 0;
  state_->ending = true;
  state_->changed.notify_all();
  state_->changed.wait_for(lock, Milliseconds(RouterFarewellMs), [&] { return !state_->asking; });
}

std::unique_ptr<session::RouterPort> HomeRouter::Open(std::uint16_t port) {
  const std::lock_guard lock(state_->mutex);
  state_->wanted = port;
  const std::uint64_t handle = ++state_->handle;
  state_->changed.notify_all();
  if (!state_->running) {
    try {
      const SignalsBlocked blocked;
      std::thread([state = state_] { Worker(state).Run(); }).detach();
      state_->running = true;
    } catch (const std::system_error &) {
      state_->looked = true; // no thread available: no port
    }
  }
  return std::make_unique<OpenedPort>(state_, handle);
}

std::optional<std::string> HomeRouter::PublicAddress() {
  std::unique_lock lock(state_->mutex);
  if (state_->wanted != 0) {
    state_->changed.wait_for(lock, Milliseconds(RouterFirstAnswerMs),
                             [&] { return state_->looked || !state_->address.empty(); });
  }
  if (state_->address.empty()) return std::nullopt;
  return state_->address;
}
