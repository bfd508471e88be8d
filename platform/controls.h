#pragma once

// Controls as data. A control is a record of properties and handlers: the game only writes properties, and
// the machine copies the changes to the screen. User input comes back as calls of the handlers, from inside a
// pump.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct Color {
  std::uint8_t Red = 0;
  std::uint8_t Green = 0;
  std::uint8_t Blue = 0;
  bool operator==(const Color &) const = default;
};

/// Position and size in the client area of the window, logical pixels. For a `Line`, Width and Height are the
/// differences from its start point to its end point.
struct Rectangle {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool operator==(const Rectangle &) const = default;
};

/// A twip is a twentieth of a point; a logical pixel is fifteen twips.
constexpr int TwipsPerPixel = 15;

/// A rectangle given in twips, rounded to pixels edge by edge, so that adjacent controls stay adjacent.
constexpr Rectangle FromTwips(int left, int top, int width, int height) {
  const auto pixels = [](int twips) { return (twips + TwipsPerPixel / 2) / TwipsPerPixel; };
  return {pixels(left), pixels(top), pixels(left + width) - pixels(left), pixels(top + height) - pixels(top)};
}

struct Typeface {
  std::string Name = "MS Sans Serif";
  float Points = 8.25f;
  bool Bold = true;
  bool operator==(const Typeface &) const = default;
};

enum class Align { Left, Center, Right };

/// What every control has. The machine identifies a control by its address while its window exists, so it
/// can't be copied or moved.
struct Control {
  Control() = default;
  Control(const Control &) = delete;
  Control &operator=(const Control &) = delete;
  virtual ~Control() = default;

  std::string Name; ///< the name in the code, for scripts and tests
  /// For screen readers, if the control has neither text nor a label before it.
  std::string AccessibleName;
  bool Announced = false; ///< screen readers read its text when it appears or changes
  Rectangle Place;
  bool Visible = true;
  bool Enabled = true;
  Typeface Font;
  Color ForeColor;
  bool HasBackColor = false; ///< false: transparent for a label, the toolkit's default for others
  Color BackColor;
};

struct Label : Control {
  std::string Caption;
  Align Alignment = Align::Left;
  bool WordWrap = false;
  bool Border = false;
};

struct TextBox : Control {
  std::string Text;
  int SelStart = 0;    ///< first selected character; both are read when the box gets the focus
  int SelLength = 0;   ///< number of selected characters
  int MaxLength = 0;   ///< 0: no limit
  bool Locked = false; ///< read-only
  std::function<void(std::int16_t KeyCode)> KeyPress; ///< Enter was pressed; no other key is reported
};

struct CommandButton : Control {
  std::string Caption;
  bool Default = false; ///< Enter anywhere in the window presses it
  bool Cancel = false;  ///< Esc anywhere in the window presses it
  std::function<void()> Click;
};

struct CheckBox : Control {
  std::int16_t Value = 0; ///< 1 ticked, 0 not
  std::function<void()> Click;
};

struct ListBox : Control {
  std::vector<std::string> List;
  int ListIndex = -1;    ///< selected row from 0, -1 for none
  std::string EmptyText; ///< shown while the list has no rows
  std::function<void()> Click;
};

/// A drop-down list; its text can't be edited.
struct ComboBox : Control {
  std::vector<std::string> List;
  int ListIndex = -1;
  std::function<void()> Click;
};

struct PictureBox : Control {
  std::string Picture; ///< file in the game's "pictures" directory, without ".png"
};

struct ProgressBar : Control {
  float Min = 0.0f;
  float Max = 100.0f;
  float Value = 0.0f;
  bool Vertical = false;

  /// A step of the scale beside a vertical bar.
  struct Mark {
    float Value = 0.0f;
    std::string Text;    ///< right of the step; empty for a tick without text
    bool Strong = false; ///< a limit: its tick crosses the bar
    bool operator==(const Mark &) const = default;
  };
  std::vector<Mark> Scale;
  int ScaleWidth = 0;         ///< space for the scale to the right of `Place`, logical pixels
  std::optional<float> Ghost; ///< the last released value, marked on the bar and the scale
  float CapFrom = 100.0f;     ///< from here to `Max` the bar has a red cap; `Max` for none
  bool CapLit = false;
};

/// Shows a document that can be scrolled but not edited or selected.
struct RichTextBox : Control {
  std::string Document; ///< HTML file in the directory of the game
  std::function<void()> GotFocus;
};

struct Line : Control {};

/// An empty rectangle with a thin border.
struct Shape : Control {};

/// The rectangle in which a scene is drawn. Buttons: 1 left, 2 right. Key codes are those of `KeyCodes`. X
/// and Y are the pointer's position in logical pixels from the control's corner.
struct Canvas : Control {
  std::function<void()> GotFocus; ///< the keyboard came without a press that `MouseDown` reports
  std::function<void(std::int16_t KeyCode, std::int16_t Shift)> KeyDown;
  std::function<void(std::int16_t KeyCode, std::int16_t Shift)> KeyUp;
  std::function<void(std::int16_t Button, std::int16_t Shift, float X, float Y)> MouseDown;
  std::function<void(std::int16_t Button, std::int16_t Shift, float X, float Y)> MouseUp;
};

/// An image on a window's background, behind its controls, that can follow the state of the game.
struct BackPicture {
  std::string Picture; ///< file in the game's "pictures" directory, without ".png"
  int Left = 0;        ///< in the client area, logical pixels
  int Top = 0;
  bool Visible = false;
  /// The file may hold a row of images of equal width: how many, and which one is shown.
  int Columns = 1;
  int Column = 0;
  bool operator==(const BackPicture &) const = default;
};

/// A file of the game's "pictures" directory and its required size.
struct PictureFile {
  std::string Name; ///< without ".png"
  int Width = 0;    ///< logical pixels
  int Height = 0;
};

/// The key codes that the game uses. Other keys have other codes.
namespace KeyCodes {
constexpr std::int16_t Enter = 13;
constexpr std::int16_t Shift = 16;
constexpr std::int16_t Escape = 27;
constexpr std::int16_t S = 83;
constexpr std::int16_t Tilde = 192; ///< the key left of "1", and any key that types "~" or "`"
} // namespace KeyCodes

/// A window of the desktop: title bar, fixed size, no minimise or maximise box, centred on the screen.
struct Window {
  Window() = default;
  Window(const Window &) = delete;
  Window &operator=(const Window &) = delete;
  virtual ~Window() = default;

  std::string Name;
  std::string Caption;
  int Width = 0; ///< client area, logical pixels
  int Height = 0;
  /// Background: file in the game's "pictures" directory, without ".png"; empty for none.
  std::string Picture;
  bool HasBackColor = false;
  Color BackColor;
  std::vector<const BackPicture *> BackPictures; ///< a later one lies over an earlier one
  std::vector<PictureFile> BackPictureFiles;     ///< every file that they can show
  /// In the order of Tab; a later one lies over an earlier one. A label directly before a text box, a check
  /// box or a list names it.
  std::vector<Control *> Controls;
  bool Visible = false;          ///< written only by the machine's `Show` and `Hide`
  bool CapturesPointer = false;  ///< while it is active, the pointer is hidden and captured
  bool KeepsScreenAwake = false; ///< while it is open, the screen isn't blanked

  std::function<void()> Click;      ///< a click outside the controls
  std::function<void()> Escape;     ///< Esc, unless a button or a canvas handles it
  std::function<void()> QueryClose; ///< the close box; without a handler the window hides
  std::function<void()> Deactivate; ///< another window or a box has taken the keyboard
};
