#pragma once

// A headless machine with an accelerated clock and a real network.

#include "platform/desktop/asio/asio_network.h"
#include "platform/headless/headless_machine.h"

#include <chrono>
#include <filesystem>
#include <thread>

class QuickMachine : public HeadlessMachine {
public:
  /// @param game   directory of the assets
  /// @param speed  virtual time per real time
  QuickMachine(const std::filesystem::path &game, int speed) : HeadlessMachine(game) {
    MakeDirectPlay = [this] { return CreateAsioDirectPlay(*this); };
    Sleeper = [this, speed](std::int32_t) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      const auto since = std::chrono::steady_clock::now() - begun_;
      const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
      SetNow(static_cast<std::int32_t>(speed * elapsed));
    };
  }

private:
  std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};
