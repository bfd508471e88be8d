#pragma once

// A function with its own stack that can be paused and resumed.

#include <ucontext.h>

#include <exception>
#include <functional>
#include <memory>

class Fibre {
public:
  explicit Fibre(std::function<void()> body);
  Fibre(const Fibre &) = delete;
  Fibre &operator=(const Fibre &) = delete;

  /// Runs the body until its next pause or its end. Called from outside the fibre.
  /// @throws  what the body threw
  void Resume();

  /// Returns control to `Resume`. Called from inside the fibre.
  void Pause();

  bool Done() const { return done_; }

private:
  static void Enter(unsigned high, unsigned low);
  void Run();

  std::function<void()> body_;
  std::unique_ptr<char[]> stack_;
  ucontext_t inside_{}, outside_{};
  std::exception_ptr error_;
  bool done_ = false;
  // For the sanitiser.
  void *insideFake_ = nullptr, *outsideFake_ = nullptr;
  const void *outsideStack_ = nullptr;
  std::size_t outsideSize_ = 0;
};
