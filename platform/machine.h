#pragma once

// The machine: everything that the game asks of the computer that it runs on. Two kinds stand behind it, the
// desktop and the headless one, and the game can't tell which. One thread calls all of it.

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

/// Ends the program from wherever the stack stands, by unwinding it to `main`.
struct ProgramEnd {
  int Status = 0; ///< exit status of the process
};

/// A small modal window with a text, a title and an OK button.
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

  /// Milliseconds since some moment, as a signed number that may wrap round.
  virtual std::int32_t timeGetTime() = 0;

  /// Whether the clock has reached `end`; holds across the wrap of the clock for spans below 24 days.
  bool ClockReached(std::int32_t end) { return Elapsed(end, timeGetTime()) >= 0; }

  /// The clock's value in so many milliseconds, wrapped.
  std::int32_t ClockIn(std::int32_t milliseconds) { return ClockAfter(timeGetTime(), milliseconds); }

  // The pump.

  /// Delivers every window event that waits to its handler, and returns. Handlers run inside this call; they
  /// may pump again and may throw.
  void Pump();

  /// Gives the processor up until an event comes, something arrives from the network or the clock reaches
  /// `deadline`, then pumps. Returns at once, having pumped, if the deadline has passed. To be called in a
  /// loop that looks at what it waits for.
  void WaitUntil(std::int32_t deadline);

  /// The same without a deadline.
  void Wait();

  // Windows.

  /// Puts a window on the screen; on a window that is there it changes nothing.
  virtual void Show(Window &window) = 0;

  /// Takes a window off the screen and forgets it: none of its events is delivered any more.
  virtual void Hide(Window &window) = 0;

  /// While it lives, no window but this one, and those that it puts over itself, gets events.
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

  /// While it lives, every modal window and box goes off the screen by itself as soon as `happened` is true:
  /// what the user reads doesn't hold up what happens meanwhile. Asked after each pump of a modal wait.
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

  /// Shows a window and pumps until it has gone again. No other window gets events in that time.
  void ShowModal(Window &window);

  /// Makes sure that the files which a window shows can be read, before they are needed.
  /// @throws FileError  that names the file and says why
  virtual void CheckFiles(const Window &window) = 0;

  /// Brings all properties of a window to the screen at once.
  virtual void Repaint(Window &window) = 0;

  /// Gives a control the keyboard.
  virtual void SetFocus(Control &control) = 0;

  /// Draws the scene behind a canvas and returns. Skipped where nothing that shows has changed.
  virtual void DrawCanvas(Canvas &canvas) = 0;

  /// Shows a box and pumps until the user has answered it.
  virtual void MsgBox(const MessageBox &box) = 0;

  // The pointer.

  /// Puts the pointer at (dx, dy) of a grid of 0 to 65535 on each axis of the screen. The other arguments
  /// aren't looked at. No button event comes of it.
  virtual void mouse_event(std::int32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                           std::int32_t extra) = 0;

  /// The pointer's place in pixels of the screen.
  virtual void GetCursorPos(std::int32_t &x, std::int32_t &y) = 0;

  /// 0 hides the pointer, -1 shows it.
  virtual void ShowCursor(std::int32_t show) = 0;

  // Random numbers.

  /// Seeds the generator from the clock.
  void Randomize() { generator_.seed(RandomSeed()); }

  /// The next number of a uniform distribution from 0 to below 1.
  float Rnd();

  // The rest.

  /// The directory in which the game's files lie.
  virtual std::filesystem::path AppPath() const = 0;

  /// The root object of sound, network and display.
  virtual std::unique_ptr<DirectX7> CreateDirectX() = 0;

  /// The sockets library by which the computer's own address is found.
  virtual Sockets &WinSock() = 0;

  /// Something that must run whenever the machine pumps, the network above all. Called before the events of a
  /// pump are delivered; must not call the game. Runs until the returned handle is destroyed.
  [[nodiscard]] std::shared_ptr<void> OnPump(std::function<void()> poll);

  /// What the player entered last as the place to search for a session, for the next search.
  std::string SearchedHost;

protected:
  /// Lets the platform put what waits on the queue. Must not call handlers of the game.
  virtual void Collect() = 0;

  /// Sleeps until there is something to collect or the clock reaches `deadline` (never, if there is none).
  /// Returning early is allowed.
  virtual void Sleep(std::optional<std::int32_t> deadline) = 0;

  /// A seed that differs from call to call.
  virtual std::uint32_t RandomSeed() = 0;

  enum class Delivery {
    OnTop, ///< dropped if a modal window lies over the window by then: what the user does there doesn't count
    UnderModal ///< delivered all the same: what happens to the window by itself
  };

  /// Puts a call of one of `window`'s handlers on the queue. It is dropped if the window has gone by the time
  /// of its delivery.
  void Post(Window &window, std::function<void()> call, Delivery delivery = Delivery::OnTop);

  /// Drops the events of a window that goes. Every `Hide` calls it.
  void Forget(Window &window);

  /// Whether events of this window are delivered now: it is the topmost modal window, or there is none.
  bool Receives(const Window &window) const { return modal_.empty() || modal_.back() == &window; }

  /// Whether what is modal has to go now.
  bool ModalsEnd() const { return modalsEnd_ && modalsEnd_(); }

  /// Whether something wants to run at every pump.
  bool HasPolls() const { return !polls_.empty(); }

  /// Whether an event waits for delivery.
  bool HasEvents() const { return !events_.empty(); }

  /// Modal windows that are up, the topmost last.
  std::vector<Window *> modal_;

private:
  struct Event {
    Window *window;
    std::function<void()> call;
    Delivery delivery;
  };

  void RunPolls();

  std::function<bool()> modalsEnd_;
  std::deque<Event> events_;
  std::vector<std::weak_ptr<std::function<void()>>> polls_;
  std::mt19937 generator_;
};

/// What the close box of a window does: its own handler, or else hiding it.
void CloseByUser(Machine &machine, Window &window);
