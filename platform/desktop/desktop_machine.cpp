#include "platform/desktop/desktop_machine.h"

#include "platform/desktop/accessible.h"
#include "platform/desktop/desktop_direct_x.h"
#include "platform/desktop/display.h"
#include "platform/desktop/end_signals.h"
#include "platform/desktop/files.h"
#include "platform/desktop/open_al_sound.h"
#include "platform/desktop/opengl_test.h"
#include "platform/desktop/plain_box.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/desktop/screen_awake.h"
#include "platform/desktop/window_view.h"
#include "platform/network_times.h"
#include "scene/graph/rm_canvas.h"

#include <QGridLayout>
#include <QIcon>
#include <QMessageBox>
#include <QPalette>
#include <QPixmapCache>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>

namespace {

/// Replaces Qt's long messages about an unusable display, and its abort.
void RefuseDisplay(QtMsgType type, const QMessageLogContext &, const QString &) {
  if (type != QtFatalMsg) return;
  std::cerr << "Snapwedge can't continue: no display is available:";
  for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    std::cerr << ' ' << name << "=\"" << qgetenv(name).toStdString() << '"';
  }
  std::cerr << std::endl;
  std::_Exit(1);
}

// Qt's cache holds painted buttons. The default is 10 MiB.
constexpr int PixmapCacheSize = 1024; ///< KiB

// Freed blocks of at least this size, such as images and textures, go back to the system. By default the C
// library raises its threshold whenever a large block is freed. Later blocks then lie in its heap and leave
// holes.
constexpr int LargeBlock = 256 * 1024; ///< bytes

/// A sound server that has to be started first takes about a second.
constexpr std::chrono::seconds SoundOpensWithin{2};

/// Whether the screen has too few colours for Qt, which then paints nothing.
bool ScreenStaysDark() { return QGuiApplication::primaryScreen()->depth() < 15; }

/// The toolkit's grey for disabled text on a button is too pale. All buttons share one palette: Qt keeps the
/// keys of its cache even when the images are gone, and they contain the palette.
void DarkenDisabledText() {
  QPalette palette = QApplication::palette();
  const QColor text = palette.color(QPalette::Active, QPalette::ButtonText),
               back = palette.color(QPalette::Active, QPalette::Button);
  palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                   QColor((text.red() + back.red()) / 2, (text.green() + back.green()) / 2,
                          (text.blue() + back.blue()) / 2));
  palette.setResolveMask(0); // with its own colours marked, each button would get a copy
  QApplication::setPalette(palette, "QPushButton");
}

/// Darkens it again when the desktop changes its colours.
class PaletteWatch : public QObject {
public:
  using QObject::QObject;
  bool eventFilter(QObject *, QEvent *event) override {
    if (event->type() == QEvent::ApplicationPaletteChange && seen_ != QApplication::palette().cacheKey()) {
      seen_ = QApplication::palette().cacheKey();
      DarkenDisabledText();
    }
    return false;
  }

private:
  qint64 seen_ = QApplication::palette().cacheKey();
};

} // namespace

DesktopMachine::DesktopMachine(int &argc, char **argv) : nextWake_(timeGetTime()) {
  mallopt(M_MMAP_THRESHOLD, LargeBlock);
  TakeDisplayOption(argc, argv);
  ChooseDisplay();
  // Compression would merge motion events, and the offsets have to add up to the motion of the hand.
  QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
  const QtMessageHandler before = qInstallMessageHandler(RefuseDisplay);
  application_ = std::make_unique<QApplication>(argc, argv);
  if (!ScreenStaysDark()) qInstallMessageHandler(before);
  application_->setLayoutDirection(Qt::LeftToRight); // the windows' layout is fixed, whatever -reverse says
  InstallAccessibility();
  QPixmapCache::setCacheLimit(PixmapCacheSize);
  DarkenDisabledText();
  application_->installEventFilter(new PaletteWatch(application_.get()));
  application_->setQuitOnLastWindowClosed(false);
  application_->setApplicationDisplayName({});
  application_->setDesktopFileName("org.snapwedge.Snapwedge");
  application_->setWindowIcon(
      QIcon(QString::fromStdString((DesktopMachine::AppPath() / "pictures" / "icon.png").string())));
  endSignals_ = std::make_unique<EndSignals>([this] {
    Post(
        signalled_, [this] { EndBySignal(); }, Delivery::UnderModal);
  });
}

DesktopMachine::~DesktopMachine() {
  pointer_.Release();
  openGLTest_.kill();
  openGLTest_.waitForFinished();
  // The thread uses libraries that the end of the process unloads.
  if (sound_.valid()) sound_.wait_for(SoundOpensWithin);
}

void DesktopMachine::EndBySignal() {
  while (!views_.empty()) {
    Window &top = views_.back()->Model();
    if (top.QueryClose) top.QueryClose();
    Hide(top);
  }
  throw ProgramEnd{};
}

void DesktopMachine::TryOpenGL() {
  QObject::connect(&openGLTest_, &QProcess::finished, [this](int status, QProcess::ExitStatus exit) {
    // A crash isn't conclusive. If OpenGL doesn't work, the match will say so.
    if (exit != QProcess::NormalExit || status == EXIT_SUCCESS || views_.empty()) return;
    const std::string why = openGLTest_.readAllStandardOutput().toStdString();
    Post(
        views_.front()->Model(), [why] { throw RendererError(why); }, Delivery::UnderModal);
  });
  // The launch window comes first.
  constexpr int AfterFirstPaintMs = 500;
  QObject::connect(&openGLTestDelay_, &QTimer::timeout, [this] {
    malloc_trim(0); // returns the memory used for reading and checking the files
    openGLTest_.start(QCoreApplication::applicationFilePath(), {OpenGLTestOption});
  });
  openGLTestDelay_.setSingleShot(true);
  openGLTestDelay_.start(AfterFirstPaintMs);
}

std::shared_ptr<DirectSound> DesktopMachine::TakeSound() {
  if (!sound_.valid()) return OpenDefaultSound();
  auto sound = std::move(sound_);
  if (sound.wait_for(SoundOpensWithin) != std::future_status::ready)
    throw SoundError("the sound device doesn't answer");
  return sound.get();
}

std::int32_t DesktopMachine::timeGetTime() {
  using namespace std::chrono;
  const auto now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(now));
}

std::uint32_t DesktopMachine::RandomSeed() {
  // Nanoseconds, hashed, so that seeds in quick succession are unrelated.
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  const auto stirred = static_cast<std::uint64_t>(now) * 0x9E3779B97F4A7C15ULL;
  return static_cast<std::uint32_t>(stirred >> 32);
}

std::filesystem::path DesktopMachine::AppPath() const {
  // Found once, because an upgrade during a match replaces the file.
  static const auto directory = std::filesystem::weakly_canonical("/proc/self/exe").parent_path();
  return directory;
}

// The pump.

void DesktopMachine::Sync() {
  WindowView *active = nullptr;
  for (const auto &view : views_) {
    view->Sync();
    if (view->Settled()) active = view.get();
  }
  const bool awake =
      std::ranges::any_of(views_, [](const auto &view) { return view->Model().KeepsScreenAwake; });
  if (awake != (screenAwake_ != nullptr)) screenAwake_ = awake ? std::make_unique<ScreenAwake>() : nullptr;
  const bool held = active && active->Model().CapturesPointer && Receives(active->Model());
  pointer_.Hold(held ? active->AnyCanvas() : nullptr);
}

void DesktopMachine::Collect() {
  leaving_.clear();
  Sync();
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void DesktopMachine::Sleep(std::optional<std::int32_t> deadline) {
  leaving_.clear();
  Sync();
  // Data ends at most one sleep per network polling interval, so that a flood doesn't keep the processor
  // busy.
  const bool watching = ClockReached(nextWake_);
  SetWatching(watching);
  std::int32_t milliseconds = deadline ? std::max(Elapsed(timeGetTime(), *deadline), 0) : -1;
  if (HasPolls() || !watching)
    milliseconds = deadline ? std::min(milliseconds, NetworkPollMs) : NetworkPollMs;
  QTimer timer;
  timer.setTimerType(Qt::PreciseTimer);
  timer.setSingleShot(true);
  bool over = false;
  QObject::connect(&timer, &QTimer::timeout, [&over] { over = true; });
  if (milliseconds >= 0) timer.start(milliseconds);
  dataCame_ = false; // data that hasn't been read is reported again
  while (!HasEvents() && !over && !dataCame_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  if (!watching) {
    SetWatching(true);
    QCoreApplication::processEvents(); // reports data that has arrived meanwhile
  }
  nextWake_ = dataCame_ ? ClockIn(NetworkPollMs) : timeGetTime();
}

void DesktopMachine::SetWatching(bool on) {
  std::erase_if(watches_, [](const auto &watch) { return watch.expired(); });
  for (const auto &watch : watches_) watch.lock()->setEnabled(on);
}

std::shared_ptr<void> DesktopMachine::Watch(int socket) {
  auto notifier = std::make_shared<QSocketNotifier>(socket, QSocketNotifier::Read);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { dataCame_ = true; });
  watches_.push_back(notifier);
  return notifier;
}

// Windows.

WindowView *DesktopMachine::ViewOf(const Window &window) const {
  for (const auto &view : views_) {
    if (&view->Model() == &window) return view.get();
  }
  return nullptr;
}

void DesktopMachine::Show(Window &window) {
  if (window.Visible) return;
  WindowView *owner = views_.empty() ? nullptr : views_.back().get();
  views_.push_back(std::make_unique<WindowView>(*this, window));
  window.Visible = true;
  WindowView &view = *views_.back();
  if (!modal_.empty() && modal_.back() == &window) {
    view.setWindowModality(Qt::ApplicationModal);
    // The play window is independent of the launch window; any other window is owned by the one that opened
    // it.
    if (owner && !window.CapturesPointer) view.SetOwner(*owner);
  }
  view.Sync();
  // The first frame takes long to draw. Drawn before the window opens, it spares the player a black canvas.
  for (Control *control : window.Controls) {
    if (auto *canvas = dynamic_cast<RMCanvas *>(control); canvas && canvas->SceneFrame) DrawCanvas(*canvas);
  }
  view.Open();
  leaving_.clear(); // before Qt's events, because the records of these windows may no longer exist
  AwaitFirstPaint(view);
}

void DesktopMachine::AwaitFirstPaint(const WindowView &view) {
  constexpr int PatienceMs = 500; // a window on another workspace isn't painted
  QTimer patience;
  patience.setSingleShot(true);
  patience.start(PatienceMs);
  while (!view.Painted() && patience.isActive())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  QCoreApplication::processEvents(); // sends what has been painted to the display
}

void DesktopMachine::Hide(Window &window) {
  window.Visible = false;
  DropEvents(window);
  pointer_.Hold(nullptr);
  const auto view = std::ranges::find_if(views_, [&](const auto &each) { return &each->Model() == &window; });
  if (view == views_.end()) return;
  // A window that is replaced closes only after the new one has opened.
  leaving_.push_back(std::move(*view));
  views_.erase(view);
}

void DesktopMachine::CheckFiles(const Window &window) {
  constexpr QSize IconSize(128, 128); // minimum
  const auto directory = AppPath();
  const double density = QGuiApplication::primaryScreen()->devicePixelRatio();
  CheckPicture(directory, "icon", 1.0, IconSize);
  if (!window.Picture.empty()) {
    CheckPicture(directory, window.Picture, density, {window.Width, window.Height});
    CheckPictureText(directory, window.Picture);
  }
  for (const PictureFile &file : window.BackPictureFiles)
    CheckPicture(directory, file.Name, density, {file.Width, file.Height});
  for (const Control *control : window.Controls) {
    if (const auto *picture = dynamic_cast<const PictureBox *>(control)) {
      CheckPicture(directory, picture->Picture, density, {picture->Place.Width, picture->Place.Height});
      CheckPictureText(directory, picture->Picture);
    }
    if (const auto *document = dynamic_cast<const RichTextBox *>(control)) {
      CheckDocument(directory / document->Document);
    }
  }
}

void DesktopMachine::Repaint(Window &window) {
  if (WindowView *view = ViewOf(window)) {
    view->Sync();
    view->repaint();
  }
}

void DesktopMachine::SetFocus(Control &control) {
  for (const auto &view : views_) view->SetFocusTo(control);
}

void DesktopMachine::DrawCanvas(Canvas &canvas) {
  const auto shown = std::ranges::find_if(views_, [&](const auto &view) { return view->FindCanvas(canvas); });
  if (shown == views_.end()) return; // the window isn't open yet
  CanvasView &view = *(*shown)->FindCanvas(canvas);
  if (!renderer_) renderer_ = std::make_unique<Renderer>();
  const QSize pixels = view.size() * view.devicePixelRatioF();
  if (!renderer_->Draw(static_cast<const RMCanvas &>(canvas), pixels)) return;
  // A card that was hidden must not cover the next frame.
  (*shown)->Sync();
  view.ShowFrame(renderer_->Frame());
}

void DesktopMachine::MsgBox(const MessageBox &box) {
  if (ScreenStaysDark()) std::cerr << box.Title << ' ' << box.Text << std::endl;
  // The record represents the box among the modal windows, so that no other window gets events.
  Window record;
  const ModalScope scope(*this, record);
  leaving_.clear(); // none of these windows may own the box
  pointer_.Release();
  bool answered = false;
  const auto answer = [&] {
    answered = true;
    Post(record, [] {});
  };
  if (PlainBox::Needed()) {
    PlainBox plain(box, answer);
    plain.show();
    plain.requestActivate();
    while (!answered && !ModalsEnd()) Wait();
    return;
  }
  QWidget *parent = QApplication::activeWindow(); // outlives the box, which alone gets events
  QMessageBox shown(box.Critical ? QMessageBox::Critical : QMessageBox::NoIcon,
                    QString::fromStdString(box.Title), QString::fromStdString(box.Text), QMessageBox::Ok,
                    parent);
  shown.setFont(FontOf({.Bold = false}));
  shown.button(QMessageBox::Ok)->setIcon({});
  shown.setTextFormat(Qt::PlainText);
  // Qt makes a box as wide as its text, whatever the title, which window managers write larger.
  constexpr int TitleButtons = 120; // pixels
  const int title = shown.fontMetrics().horizontalAdvance(shown.windowTitle()) * 3 / 2;
  if (auto *grid = qobject_cast<QGridLayout *>(shown.layout()))
    grid->addItem(new QSpacerItem(title + TitleButtons, 0), grid->rowCount(), 0, 1, grid->columnCount());
  shown.setWindowModality(Qt::ApplicationModal);
  QObject::connect(&shown, &QMessageBox::finished, answer);
  shown.show();
  shown.raise();
  shown.activateWindow();
  while (!answered && !ModalsEnd()) Wait();
}

// The pointer.

void DesktopMachine::mouse_event(std::int32_t, std::int32_t dx, std::int32_t dy, std::int32_t, std::int32_t) {
  pointer_.MoveHome(dx, dy);
}

void DesktopMachine::GetCursorPos(std::int32_t &x, std::int32_t &y) {
  const QPoint place = pointer_.Place();
  x = place.x();
  y = place.y();
}

void DesktopMachine::ShowCursor(std::int32_t show) { pointer_.SetHidden(show == 0); }

std::unique_ptr<DirectX7> DesktopMachine::CreateDirectX() { return std::make_unique<DesktopDirectX>(*this); }
