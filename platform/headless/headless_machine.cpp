#include "platform/headless/headless_machine.h"

#include "platform/headless/headless_sound.h"

#include <algorithm>

namespace {

constexpr std::int32_t ScreenWidth = 1024;
constexpr std::int32_t ScreenHeight = 768;
constexpr std::int32_t WatchMs = 10;        ///< interval of `Player` while nothing else happens
constexpr std::int32_t PointerGrid = 65536; ///< steps of the absolute pointer grid on an axis

} // namespace

// The clock and the pump.

void HeadlessMachine::At(std::int32_t moment, std::function<void()> action) {
  script_.emplace(Unwrapped(moment), std::move(action));
}

std::int64_t HeadlessMachine::Unwrapped(std::int32_t moment) const { return now_ + Elapsed(Now(), moment); }

void HeadlessMachine::SetNow(std::int32_t now) { now_ = Unwrapped(now); }

void HeadlessMachine::Collect() {
  while (!script_.empty() && script_.begin()->first <= now_) {
    const auto action = std::move(script_.begin()->second);
    script_.erase(script_.begin());
    action();
  }
  if (Player) Player();
}

void HeadlessMachine::Sleep(std::optional<std::int32_t> deadline) {
  std::optional<std::int64_t> wake;
  const auto earlier = [&](std::int64_t moment) { wake = wake ? std::min(*wake, moment) : moment; };
  if (deadline) earlier(Unwrapped(*deadline));
  if (!script_.empty()) earlier(script_.begin()->first);
  if (NextArrival) {
    if (const auto arrival = NextArrival()) earlier(Unwrapped(*arrival));
  }
  if (!wake && Player) earlier(now_ + WatchMs); // the player may act at any time
  if (!wake) throw std::logic_error("the program waits for an event, and none is scheduled");
  if (Sleeper) {
    Sleeper(static_cast<std::int32_t>(*wake));
  } else {
    now_ = std::max(now_, *wake);
  }
}

std::uint32_t HeadlessMachine::RandomSeed() {
  if (!seeds_) seeds_.emplace(Seed);
  return static_cast<std::uint32_t>((*seeds_)());
}

// Windows.

void HeadlessMachine::Show(Window &window) {
  if (window.Visible) return;
  window.Visible = true;
  Shown.push_back(&window);
  for (Control *control : window.Controls) {
    if (dynamic_cast<Canvas *>(control)) Focus = control;
  }
  now_ += ShowMs;
}

void HeadlessMachine::Hide(Window &window) {
  window.Visible = false;
  std::erase(Shown, &window);
  DropEvents(window);
  if (Focus && std::ranges::find(window.Controls, Focus) != window.Controls.end()) Focus = nullptr;
}

void HeadlessMachine::Repaint(Window &) {
  ++Repaints;
  if (OnRepaint) OnRepaint();
}

void HeadlessMachine::DrawCanvas(Canvas &canvas) {
  ++Draws;
  if (OnDraw) OnDraw(canvas);
  if (DrawMs == 0) return;
  const std::int32_t end = ClockIn(DrawMs);
  if (!Sleeper) now_ += DrawMs;
  Drawing = true;
  while (Sleeper && !ClockReached(end)) Sleeper(end);
  Drawing = false;
}

void HeadlessMachine::MsgBox(const MessageBox &box) {
  Boxes.push_back(box);
  if (OnBox) OnBox();
  Window window;
  window.Name = "MsgBox";
  window.Caption = box.Title;
  const auto up = std::make_shared<bool>(true);
  After(BoxMs, [this, &window, shown = std::weak_ptr(up)] {
    if (!shown.expired() && window.Visible) Hide(window);
  });
  ShowModal(window);
}

Window *HeadlessMachine::WindowOf(const Control &control) {
  for (Window *window : Shown) {
    if (std::ranges::find(window->Controls, &control) != window->Controls.end()) return window;
  }
  return nullptr;
}

Window *HeadlessMachine::FindWindow(const std::string &name) {
  const auto found = std::ranges::find_if(Shown, [&](const Window *window) { return window->Name == name; });
  return found == Shown.end() ? nullptr : *found;
}

Control *HeadlessMachine::Find(const std::string &window, const std::string &control) {
  const Window *owner = FindWindow(window);
  if (!owner) return nullptr;
  const auto found =
      std::ranges::find_if(owner->Controls, [&](const Control *each) { return each->Name == control; });
  return found == owner->Controls.end() || !(*found)->Visible ? nullptr : *found;
}

// Input.

void HeadlessMachine::PostTo(const Control &control, std::function<void()> call) {
  if (Window *window = WindowOf(control)) Post(*window, std::move(call));
}

Canvas *HeadlessMachine::ActiveCanvas() {
  if (Shown.empty()) return nullptr;
  for (Control *control : Shown.back()->Controls) {
    if (auto *canvas = dynamic_cast<Canvas *>(control)) return canvas;
  }
  return nullptr;
}

void HeadlessMachine::MoveMouse(int dx, int dy) {
  PointerX += dx;
  PointerY += dy;
}

void HeadlessMachine::PressMouse(std::int16_t button) {
  if (Canvas *canvas = ActiveCanvas()) {
    PostTo(*canvas, [canvas, button] {
      if (canvas->MouseDown) canvas->MouseDown(button, 0, 0.0f, 0.0f);
    });
  }
}

void HeadlessMachine::ReleaseMouse(std::int16_t button) {
  if (Canvas *canvas = ActiveCanvas()) {
    PostTo(*canvas, [canvas, button] {
      if (canvas->MouseUp) canvas->MouseUp(button, 0, 0.0f, 0.0f);
    });
  }
}

void HeadlessMachine::PressKey(std::int16_t keyCode) {
  if (auto *canvas = dynamic_cast<Canvas *>(Focus)) {
    PostTo(*canvas, [canvas, keyCode] {
      if (canvas->KeyDown) canvas->KeyDown(keyCode, 0);
    });
  } else if (keyCode == KeyCodes::Escape && !Shown.empty()) {
    Window &window = *Shown.back();
    Post(window, [&window] {
      if (window.Escape) window.Escape();
    });
  }
}

void HeadlessMachine::ReleaseKey(std::int16_t keyCode) {
  if (auto *canvas = dynamic_cast<Canvas *>(Focus)) {
    PostTo(*canvas, [canvas, keyCode] {
      if (canvas->KeyUp) canvas->KeyUp(keyCode, 0);
    });
  }
}

void HeadlessMachine::Type(const std::string &text) {
  auto *box = dynamic_cast<TextBox *>(Focus);
  if (!box) return;
  for (const char letter : text) {
    PostTo(*box, [this, box, letter] {
      if (Focus != box || !box->Enabled || box->Locked) return;
      if (letter != '\r') {
        box->Text += letter;
      } else if (box->KeyPress) {
        box->KeyPress(KeyCodes::Enter);
      }
    });
  }
}

void HeadlessMachine::Press(CommandButton &button) {
  PostTo(button, [&button] {
    if (button.Enabled && button.Visible && button.Click) button.Click();
  });
}

void HeadlessMachine::Tick(CheckBox &box) {
  PostTo(box, [&box] {
    box.Value = box.Value == 0 ? 1 : 0;
    if (box.Click) box.Click();
  });
}

void HeadlessMachine::Select(ListBox &list, int row) {
  PostTo(list, [&list, row] {
    list.ListIndex = row;
    if (list.Click) list.Click();
  });
}

void HeadlessMachine::ClickOn(Window &window) {
  Post(window, [&window] {
    if (window.Click) window.Click();
  });
}

void HeadlessMachine::CloseBox(Window &window) {
  Post(
      window, [this, &window] { CloseByUser(*this, window); }, Delivery::CloseBox);
}

void HeadlessMachine::LoseFocus() {
  if (Shown.empty()) return;
  Window &window = *Shown.back();
  const auto deactivate = [&window] {
    if (window.Deactivate) window.Deactivate();
  };
  Post(window, deactivate, Delivery::UnderModal);
}

// The pointer.

void HeadlessMachine::mouse_event(std::int32_t, std::int32_t dx, std::int32_t dy, std::int32_t,
                                  std::int32_t) {
  PointerX = dx * ScreenWidth / PointerGrid;
  PointerY = dy * ScreenHeight / PointerGrid;
}

void HeadlessMachine::GetCursorPos(std::int32_t &x, std::int32_t &y) {
  x = PointerX;
  y = PointerY;
}

// The rest.

std::unique_ptr<DirectX7> HeadlessMachine::CreateDirectX() {
  return std::make_unique<HeadlessDirectX>(*this);
}

Sockets &HeadlessMachine::WinSock() {
  if (!SocketsLibrary) throw std::runtime_error("no sockets library");
  return *SocketsLibrary;
}
