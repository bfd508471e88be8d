#pragma once

// The machine: everything that the game needs from the computer. There are two implementations, the desktop
// and the headless one, and the game can't tell which it runs on. Not thread-safe: one thread makes all
// calls.

#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/direct_x.h"
#include "platform/sockets.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// Thrown to end the program, from any depth of the stack; caught in `RunProgram`.
struct ProgramEnd {};

/// A modal box with a text, a title and an OK button.
struct MessageBox {
  std::string Text;
  std::string Title;
  bool Critical = false; ///< shows the critical icon
};

class Machine {
public:
  Machine() = default;
  Machine(const Machine &) = delete;
  Machine &operator=(const Machine &) = delete;
  virtual ~Machine() = default;

  // The clock.

  /// Milliseconds since an arbitrary moment; wraps round (platform/clock.h).
  virtual std::int32_t timeGetTime() = 0;

  /// Whether the clock has reached `end`.
  bool ClockReached(std::int32_t end) { return Elapsed(end, timeGetTime()) >= 0; }

  /// The clock's value `milliseconds` from now.
  std::int32_t ClockIn(std::int32_t milliseconds) { return ClockAfter(timeGetTime(), milliseconds); }

  // The pump.

  /// Delivers all pending window events to their handlers, and returns. Handlers run inside this call; they
  /// may pump again and may throw.
  void Pump();

  /// Sleeps until an event comes, data arrives from the network or the clock reaches `deadline`, then pumps.
  /// Doesn't sleep if the deadline has passed. May return early: call it in a loop that tests the condition.
  void WaitUntil(std::int32_t deadline);

  /// The same without a deadline.
  void Wait();

  // Windows.

  /// Opens a window; does nothing if it is open.
  virtual void Show(Window &window) = 0;

  /// Closes a window and drops its pending events.
  virtual void Hide(Window &window) = 0;

  /// While it lives, only this window, and those opened over it, get events.
  class ModalScope {
  public:
    ModalScope(Machine &machine, Window &window) : machine_(machine), window_(window) {
      machine_.modal_.push_back(&window_);
    }
    ~ModalScope() { std::erase(machine_.modal_, &window_); }
    ModalScope(const ModalScope &) = delete;
    ModalScope &operator=(const ModalScope &) = delete;

  private:
    Machine &machine_;
    Window &window_;
  };

  /// While it lives, no window gets input, but a close box still works.
  class InputOff {
  public:
    explicit InputOff(Machine &machine) : machine_(machine) { ++machine_.inputOff_; }
    ~InputOff() { --machine_.inputOff_; }
    InputOff(const InputOff &) = delete;
    InputOff &operator=(const InputOff &) = delete;

  private:
    Machine &machine_;
  };

  /// While it lives, every modal window and box closes by itself once `happened` returns true, so that an
  /// open box doesn't delay the game. Called after each pump of a modal wait.
  class CloseModalsWhen {
  public:
    CloseModalsWhen(Machine &machine, std::function<bool()> happened)
        : machine_(machine), before_(std::exchange(machine.modalsEnd_, std::move(happened))) {}
    ~CloseModalsWhen() { machine_.modalsEnd_ = std::move(before_); }
    CloseModalsWhen(const CloseModalsWhen &) = delete;
    CloseModalsWhen &operator=(const CloseModalsWhen &) = delete;

  private:
    Machine &machine_;
    std::function<bool()> before_;
  };

  /// Opens a window and pumps until it is closed. No other window gets events meanwhile.
  /// @param opened  called once the window is on the screen, before its first event
  void ShowModal(Window &window, const std::function<void()> &opened = {});

  /// Checks, before they are needed, that the files which a window shows are readable.
  /// @throws FileError  that names the file and says why
  virtual void CheckFiles(const Window &window) = 0;

  /// Updates the screen from all properties of a window, at once.
  virtual void Repaint(Window &window) = 0;

  /// Gives a control the keyboard focus.
  virtual void SetFocus(Control &control) = 0;

  /// Draws the scene of a canvas. Skipped if nothing visible has changed.
  virtual void DrawCanvas(Canvas &canvas) = 0;

  /// Shows a box and pumps until the user answers it.
  virtual void MsgBox(const MessageBox &box) = 0;

  // The pointer.

  /// Moves the pointer to (dx, dy) on a grid of 0 to 65535 on each axis of the screen. The other arguments
  /// are ignored. Causes no button event.
  virtual void mouse_event(std::int32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                           std::int32_t extra) = 0;

  /// The pointer's position, screen pixels.
  virtual void GetCursorPos(std::int32_t &x, std::int32_t &y) = 0;

  /// 0 hides the pointer, -1 shows it.
  virtual void ShowCursor(std::int32_t show) = 0;

  // Random numbers.

  /// Seeds the generator from the clock.
  void Randomize() { generator_.seed(RandomSeed()); }

  /// A random number, uniform in [0, 1).
  float Rnd();

  // The rest.

  /// The directory of the game's files.
  virtual std::filesystem::path AppPath() const = 0;

  /// The root object of sound, network and display.
  virtual std::unique_ptr<DirectX7> CreateDirectX() = 0;

  /// The sockets library, for finding the computer's own address.
  virtual Sockets &WinSock() = 0;

  /// Registers a function to run at every pump, such as the network's. It runs before the events are
  /// delivered and must not call the game. Destroying the returned handle unregisters it.
  [[nodiscard]] std::shared_ptr<void> OnPump(std::function<void()> poll);

  /// What the player last entered in the search dialog, for the next search.
  std::string SearchedHost;

protected:
  /// Puts the pending events of the platform into the queue. Must not call handlers of the game.
  virtual void Collect() = 0;

  /// Sleeps until there is something to collect or the clock reaches `deadline`, if there is one. May return
  /// early.
  virtual void Sleep(std::optional<std::int32_t> deadline) = 0;

  /// A seed that differs from call to call.
  virtual std::uint32_t RandomSeed() = 0;

  enum class Delivery {
    OnTop,     ///< dropped if another window is modal, or input is off, at delivery: user input
    CloseBox,  ///< dropped if another window is modal
    UnderModal ///< always delivered: changes of the window itself
  };

  /// Queues a call of one of `window`'s handlers. It is dropped if the window is closed before delivery.
  void Post(Window &window, std::function<void()> call, Delivery delivery = Delivery::OnTop);

  /// Drops the pending events of a closing window. Every `Hide` calls it.
  void DropEvents(Window &window);

  /// Whether this window gets events: it is the topmost modal window, or none is modal.
  bool Receives(const Window &window) const { return modal_.empty() || modal_.back() == &window; }

  /// Whether modal windows must close now.
  bool ModalsEnd() const { return modalsEnd_ && modalsEnd_(); }

  /// Whether any function runs at every pump.
  bool HasPolls() const { return !polls_.empty(); }

  /// Whether any event is pending.
  bool HasEvents() const { return !events_.empty(); }

  /// Open modal windows, the topmost last.
  std::vector<Window *> modal_;

private:
  struct Event {
    Window *window;
    std::function<void()> call;
    Delivery delivery;
  };

  void RunPolls();
  bool Delivers(const Event &event) const;

  std::function<bool()> modalsEnd_;
  std::deque<Event> events_;
  std::vector<std::weak_ptr<std::function<void()>>> polls_;
  std::mt19937 generator_;
  int inputOff_ = 0; ///< nested
};

/// The action of a window's close box: its handler, or else `Hide`.
void CloseByUser(Machine &machine, Window &window);
