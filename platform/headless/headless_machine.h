#pragma once

// A machine for tests and tools. Its clock is virtual and jumps to the next thing that happens, its pointer
// and keys are scripted, its windows are only data, its sounds are a list of what was asked.

#include "platform/machine.h"

#include <map>
#include <set>

class HeadlessMachine : public Machine {
public:
  /// @param gameDirectory  where the models and textures lie
  explicit HeadlessMachine(std::filesystem::path gameDirectory) : gameDirectory_(std::move(gameDirectory)) {}

  // What a script does. Everything that a user does is put on the queue and reaches the game in its next
  // pump.

  /// Runs `action` in the first pump at or after that moment of the virtual clock. It may press and move
  /// things, and may throw, which ends the program under test.
  void At(std::int32_t moment, std::function<void()> action);
  void After(std::int32_t milliseconds, std::function<void()> action) {
    At(ClockIn(milliseconds), std::move(action));
  }

  /// Called at every pump before events are delivered: a player who watches and acts. What it does to the
  /// game itself happens on the game's own stack.
  std::function<void()> Player;

  void MoveMouse(int dx, int dy);
  void PressMouse(std::int16_t button);
  void ReleaseMouse(std::int16_t button);
  void PressKey(std::int16_t keyCode);
  void ReleaseKey(std::int16_t keyCode);
  void
  Type(const std::string &text); ///< into the text box that has the focus, a key a character; '\r' is Enter
  void Press(CommandButton &button);
  void Tick(CheckBox &box);
  void Select(ListBox &list, int row);
  void ClickOn(Window &window);
  void CloseBox(Window &window);

  /// Another program gets the keyboard.
  void LoseFocus();

  /// A visible control by its window's and its own name; null if there is none.
  Control *Find(const std::string &window, const std::string &control);
  Window *FindWindow(const std::string &name);

  // What can be seen of the game.

  std::vector<MessageBox> Boxes; ///< every box that was shown
  std::vector<std::string>
      Sounds;                  ///< every sound operation: "play yeah.daw", "loop crowd.daw", "stop theme.daw"
  std::vector<Window *> Shown; ///< windows on the screen, the topmost last
  Control *Focus = nullptr;    ///< control that has the keyboard
  bool CursorShown = true;
  long Draws = 0; ///< pictures drawn of any canvas
  long Repaints = 0;
  std::int32_t PointerX = 500, PointerY = 300;
  std::function<void()> OnRepaint;      ///< sees every window as it is repainted
  std::function<void(Canvas &)> OnDraw; ///< sees every picture as it is drawn

  // What goes wrong, or differs from machine to machine.

  bool NoSoundDevice = false;
  std::set<std::string> BrokenSounds; ///< files that can't be read
  std::set<std::string> BrokenPlays;  ///< files whose buffer fails to play
  int Bpp = 16;
  std::int32_t DrawMs = 0;     ///< virtual time that a picture takes: a slow computer
  std::int32_t BoxMs = 500;    ///< virtual time after which somebody presses OK
  std::function<void()> OnBox; ///< called when a box has come up
  std::function<std::shared_ptr<DirectPlay4>()> MakeDirectPlay; ///< empty: the computer has no network
  std::unique_ptr<Sockets> SocketsLibrary;                      ///< empty: `WinSock` fails
  std::uint32_t Seed = 1;                                       ///< of the random numbers

  /// When something comes from the network, if that is known: the clock doesn't jump past it, and a sleep
  /// ends at once for what has come already.
  std::function<std::optional<std::int32_t>()> NextArrival;

  /// Replaces the clock's jump, for several machines on one clock: returns when the clock has moved on. Gets
  /// the moment at which this machine has something to do at the latest.
  std::function<void(std::int32_t wake)> Sleeper;
  bool Drawing = false; ///< the time of a picture passes: nothing from the network wakes the machine

  /// The virtual clock, ms. Only a `Sleeper` and a test that wants another start write it.
  std::int32_t Now() const { return static_cast<std::int32_t>(now_); }
  void SetNow(std::int32_t now);

  std::int32_t timeGetTime() override { return Now(); }
  void Show(Window &window) override;
  void Hide(Window &window) override;
  void CheckFiles(const Window &) override {} // it reads none
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
  /// The window that a control stands on, if it is on the screen.
  Window *WindowOf(const Control &control);
  void PostTo(const Control &control, std::function<void()> call);
  Canvas *ActiveCanvas();

  /// A value of the clock as the moment nearest to now that has it.
  std::int64_t Unwrapped(std::int32_t moment) const;

  std::filesystem::path gameDirectory_;
  std::int64_t now_ = 0; ///< the clock without its wrap
  std::multimap<std::int64_t, std::function<void()>> script_;
  std::optional<std::mt19937> seeds_;
};
