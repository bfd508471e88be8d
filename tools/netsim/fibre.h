#pragma once

// A procedure with a stack of its own, that runs until it pauses and goes on where it paused.

#include <ucontext.h>

#include <exception>
#include <functional>
#include <memory>

class Fibre {
public:
  explicit Fibre(std::function<void()> body);
  Fibre(const Fibre &) = delete;
  Fibre &operator=(const Fibre &) = delete;

  /// Runs the body until its next pause or its end. Called from outside.
  /// @throws  what the body threw
  void Resume();

  /// Called from inside: gives control back to `Resume`.
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
  // What the sanitiser needs to know of the two stacks.
  void *insideFake_ = nullptr, *outsideFake_ = nullptr;
  const void *outsideStack_ = nullptr;
  std::size_t outsideSize_ = 0;
};
