#pragma once

// A machine for tests and tools. Its clock is virtual and jumps to the next event, its pointer and keys are
// scripted, its windows are only data, its sounds are a log, and its random numbers come from a seed. Nothing
// is drawn; scene, models and rules are real. wire.h simulates the network.

#include "platform/machine.h"

#include <map>
#include <set>

class HeadlessMachine : public Machine {
public:
  /// @param gameDirectory  where the models and textures lie
  explicit HeadlessMachine(std::filesystem::path gameDirectory) : gameDirectory_(std::move(gameDirectory)) {}

  // Input. Everything that a user does goes into the event queue and reaches the game in its next pump.

  /// Runs `action` in the first pump at or after `moment` of the virtual clock. It may call anything below,
  /// and may throw, which ends the program under test.
  void At(std::int32_t moment, std::function<void()> action);
  void After(std::int32_t milliseconds, std::function<void()> action) {
    At(ClockIn(milliseconds), std::move(action));
  }

  /// Called at every pump before events are delivered: a player who watches and acts. Runs on the game's own
  /// stack.
  std::function<void()> Player;

  void MoveMouse(int dx, int dy);
  void PressMouse(std::int16_t button);
  void ReleaseMouse(std::int16_t button);
  void PressKey(std::int16_t keyCode);
  void ReleaseKey(std::int16_t keyCode);
  void Type(const std::string &text); ///< into the focused text box, one key per character; '\r' is Enter
  void Press(CommandButton &button);
  void Tick(CheckBox &box);
  void Select(ListBox &list, int row);
  void ClickOn(Window &window);
  void CloseBox(Window &window);

  /// Another program takes the keyboard.
  void LoseFocus();

  /// A visible control by the names of its window and itself; null if there is none.
  Control *Find(const std::string &window, const std::string &control);
  Window *FindWindow(const std::string &name);

  // Output.

  std::vector<MessageBox> Boxes; ///< every box shown so far
  /// Every sound operation so far: "play yeah.daw", "loop crowd.daw", "stop theme.daw".
  std::vector<std::string> Sounds;
  std::vector<Window *> Shown; ///< windows on the screen, the topmost last
  Control *Focus = nullptr;    ///< the control with the keyboard focus
  bool CursorShown = true;
  long Draws = 0; ///< frames drawn, of any canvas
  long Repaints = 0;
  std::int32_t PointerX = 500, PointerY = 300;
  std::function<void()> OnRepaint;      ///< called at each repaint
  std::function<void(Canvas &)> OnDraw; ///< called at each drawn frame

  // Faults and properties of the computer.

  bool NoSoundDevice = false;
  std::set<std::string> BrokenSounds; ///< files that can't be read
  std::set<std::string> BrokenPlays;  ///< files whose buffer fails to play
  int Bpp = 16;
  std::int32_t DrawMs = 0;     ///< virtual time to draw a frame: a slow computer
  std::int32_t ShowMs = 0;     ///< the same to open a window
  std::int32_t BoxMs = 500;    ///< virtual time after which OK is pressed
  std::function<void()> OnBox; ///< called when a box is shown
  std::function<std::shared_ptr<DirectPlay4>()> MakeDirectPlay; ///< empty: the computer has no network
  std::unique_ptr<Sockets> SocketsLibrary;                      ///< empty: `WinSock` fails
  std::uint32_t Seed = 1;                                       ///< of the random numbers

  /// When the next data arrives from the network, if known. The clock doesn't jump past it, and a sleep
  /// returns at once for data that has already arrived.
  std::function<std::optional<std::int32_t>()> NextArrival;

  /// Replaces the clock's jump, for several machines on one clock: returns when the clock has advanced.
  /// `wake` is when this machine must run again at the latest.
  std::function<void(std::int32_t wake)> Sleeper;
  bool Drawing = false; ///< a frame is being drawn: the network doesn't wake the machine

  /// The virtual clock, ms. Set only by a `Sleeper` and by tests that start at another time.
  std::int32_t Now() const { return static_cast<std::int32_t>(now_); }
  void SetNow(std::int32_t now);

  std::int32_t timeGetTime() override { return Now(); }
  void Show(Window &window) override;
  void Hide(Window &window) override;
  void CheckFiles(const Window &) override {} // reads no files
  void Repaint(Window &window) override;
  void SetFocus(Control &control) override { Focus = &control; }
  void DrawCanvas(Canvas &canvas) override;
  void MsgBox(const MessageBox &box) override;
  void mouse_event(std::int32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::int32_t extra) override;
  void GetCursorPos(std::int32_t &x, std::int32_t &y) override;
  void ShowCursor(std::int32_t show) override { CursorShown = show != 0; }
  std::filesystem::path AppPath() const override { return gameDirectory_; }
  std::unique_ptr<DirectX7> CreateDirectX() override;
  Sockets &WinSock() override;

protected:
  void Collect() override;
  void Sleep(std::optional<std::int32_t> deadline) override;
  std::uint32_t RandomSeed() override;

private:
  /// The shown window that holds a control.
  Window *WindowOf(const Control &control);
  void PostTo(const Control &control, std::function<void()> call);
  Canvas *ActiveCanvas();

  /// The unwrapped time nearest to now with this clock value.
  std::int64_t Unwrapped(std::int32_t moment) const;

  std::filesystem::path gameDirectory_;
  std::int64_t now_ = 0; ///< the unwrapped clock
  std::multimap<std::int64_t, std::function<void()>> script_;
  std::optional<std::mt19937> seeds_;
};
