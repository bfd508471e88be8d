#pragma once

// The desktop machine, on Qt. Qt's handlers only queue calls; the game runs from `Pump`, outside Qt's
// callbacks, and so may nest and throw.

#include "platform/desktop/pointer.h"
#include "platform/desktop/router/home_router.h"
#include "platform/desktop/sockets.h"
#include "platform/machine.h"

#include <QApplication>
#include <QProcess>
#include <QSocketNotifier>
#include <QTimer>

#include <future>
#include <memory>
#include <utility>
#include <vector>

class DirectSound;
class EndSignals;
class Renderer;
class ScreenAwake;
class WindowView;

class DesktopMachine : public Machine {
public:
  /// Prints an error and exits the process if there is no display.
  DesktopMachine(int &argc, char **argv);
  ~DesktopMachine() override;

  /// Tests in the background whether OpenGL works. If it doesn't, a later pump throws the error that
  /// `DrawCanvas` would.
  void TryOpenGL();

  /// Hands over a sound device that is being opened.
  void UseSound(std::future<std::shared_ptr<DirectSound>> sound) { sound_ = std::move(sound); }
  /// The device that was handed over, or one that is opened now. Call once.
  /// @throws SoundError  if there is none, or it doesn't answer within two seconds
  std::shared_ptr<DirectSound> TakeSound();

  std::int32_t timeGetTime() override;
  void Show(Window &window) override;
  void Hide(Window &window) override;
  void Repaint(Window &window) override;
  void SetFocus(Control &control) override;
  void CheckFiles(const Window &window) override;
  void DrawCanvas(Canvas &canvas) override;
  void MsgBox(const MessageBox &box) override;
  void mouse_event(std::int32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::int32_t extra) override;
  void GetCursorPos(std::int32_t &x, std::int32_t &y) override;
  void ShowCursor(std::int32_t show) override;
  std::filesystem::path AppPath() const override;
  std::unique_ptr<DirectX7> CreateDirectX() override;
  Sockets &WinSock() override { return sockets_; }

  HomeRouter &Router() { return router_; }

  /// While the result lives, data on the socket ends a sleep.
  virtual std::shared_ptr<void> Watch(int socket);

  // For the views of windows and controls.
  using Machine::Delivery;
  using Machine::Post;
  bool PointerHeld() const { return pointer_.Held(); }

protected:
  void Collect() override;
  void Sleep(std::optional<std::int32_t> deadline) override;
  std::uint32_t RandomSeed() override;

private:
  WindowView *ViewOf(const Window &window) const;
  /// Waits until an opened window is on the screen, because the game's next action may take long.
  static void AwaitFirstPaint(const WindowView &view);
  /// Copies changed properties to all widgets, and captures or releases the pointer.
  void Sync();
  /// Presses the close boxes of all windows, so that a match says farewell to the other computer, and ends
  /// the program.
  [[noreturn]] void EndBySignal();
  /// Whether data on the watched sockets ends a sleep.
  void SetWatching(bool on);

  std::future<std::shared_ptr<DirectSound>> sound_;
  std::unique_ptr<QApplication> application_;
  Pointer pointer_;
  HomeRouter router_;
  DesktopSockets sockets_{&router_};
  std::vector<std::unique_ptr<WindowView>> views_;
  /// Hidden by the game, but on the screen until the next pump.
  std::vector<std::unique_ptr<WindowView>> leaving_;
  std::unique_ptr<Renderer> renderer_;
  std::unique_ptr<ScreenAwake> screenAwake_;
  std::unique_ptr<EndSignals> endSignals_;
  Window signalled_; ///< placeholder for the whole program: signals are posted to it
  QProcess openGLTest_;
  QTimer openGLTestDelay_;
  std::vector<std::weak_ptr<QSocketNotifier>> watches_;
  bool dataCame_ = false; ///< on a watched socket, since the last sleep began
  std::int32_t nextWake_; ///< clock before which data doesn't end a sleep, ms
};
