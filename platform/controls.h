#pragma once

// Controls as data. A control is a record of plain properties and handlers: the game writes a property and
// that is all, and whatever stands behind the machine carries the change to the screen. What the user does
// comes back as a call of the control's handler, made from inside a pump.

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

/// Where a control stands in the client area of its window, in logical pixels. For a `Line`, Width and Height
/// are the differences from its start point to its end point.
struct Rectangle {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool operator==(const Rectangle &) const = default;
};

/// One twip is a twentieth of a point; fifteen make a logical pixel.
constexpr int TwipsPerPixel = 15;

/// A place given in twips, rounded to whole pixels edge by edge, so that controls which touch still touch.
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

/// What every control has. A control is known by its address from the first showing of its window to the
/// window's end, so it can't be copied or moved.
struct Control {
  Control() = default;
  Control(const Control &) = delete;
  Control &operator=(const Control &) = delete;
  virtual ~Control() = default;

  std::string Name; ///< as in the code, for scripts and tests
  /// What a screen reader calls a control that has neither words of its own nor a label before it.
  std::string AccessibleName;
  bool Announced = false; ///< a screen reader says its words as soon as it comes up or they change
  Rectangle Place;
  bool Visible = true;
  bool Enabled = true;
  Typeface Font;
  Color ForeColor;
  bool HasBackColor =
      false; ///< false: the window's background shows through a label, the toolkit's own elsewhere
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
  int SelStart = 0;    ///< first selected character; the machine reads both when the box gets the focus
  int SelLength = 0;   ///< characters selected
  int MaxLength = 0;   ///< 0: no limit
  bool Locked = false; ///< shows text that the user can't change
  std::function<void(std::int16_t KeyCode)> KeyPress;
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
  int ListIndex = -1; ///< selected row from 0, -1 for none
  std::function<void()> Click;
};

/// A drop-down list without a text of its own.
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
    std::string Text;    ///< right of the step; empty for a stroke alone
    bool Strong = false; ///< a limit: its stroke crosses the bar
    bool operator==(const Mark &) const = default;
  };
  std::vector<Mark> Scale;
  int ScaleWidth = 0;         ///< room for the scale, right of the bar's place, logical pixels
  std::optional<float> Ghost; ///< a value to remember: marked on the bar and on the scale
  float CapFrom = 100.0f;     ///< from here to `Max` the bar has a red cap; `Max` for none
  bool CapLit = false;
};

/// Shows a document that can be scrolled but not changed or selected.
struct RichTextBox : Control {
  std::string Document; ///< HTML file in the directory of the game
  std::function<void()> GotFocus;
};

struct Line : Control {};

/// An empty rectangle with a thin border.
struct Shape : Control {};

/// The rectangle in which a scene is drawn. Buttons: 1 left, 2 right. Key codes are those of `KeyCodes`. The
/// place of the pointer is told in logical pixels from the control's corner.
struct Canvas : Control {
  std::function<void(std::int16_t KeyCode, std::int16_t Shift)> KeyDown;
  std::function<void(std::int16_t KeyCode, std::int16_t Shift)> KeyUp;
  std::function<void(std::int16_t Button, std::int16_t Shift, float X, float Y)> MouseDown;
  std::function<void(std::int16_t Button, std::int16_t Shift, float X, float Y)> MouseUp;
};

/// A picture that lies on a window's background, behind its controls, and may follow the state of the game.
struct BackPicture {
  std::string Picture; ///< file in the game's "pictures" directory, without ".png"
  int Left = 0;        ///< in the client area, logical pixels
  int Top = 0;
  bool Visible = false;
  /// A picture may be a row of several of one width: how many, and which of them shows.
  int Columns = 1;
  int Column = 0;
  bool operator==(const BackPicture &) const = default;
};

/// A file of the game's "pictures" directory and the size that it must have.
struct PictureFile {
  std::string Name; ///< without ".png"
  int Width = 0;    ///< logical pixels
  int Height = 0;
};

/// The key codes that the game knows; every other key has a code that none of these equals.
namespace KeyCodes {
constexpr std::int16_t Enter = 13;
constexpr std::int16_t Shift = 16;
constexpr std::int16_t Escape = 27;
constexpr std::int16_t S = 83;
constexpr std::int16_t Tilde = 192; ///< the key left of "1", and any key that types "~" or "`"
} // namespace KeyCodes

/// A window of the desktop: title bar, fixed size, no minimise or maximise box, opened in the middle of the
/// screen.
struct Window {
  Window() = default;
  Window(const Window &) = delete;
  Window &operator=(const Window &) = delete;
  virtual ~Window() = default;

  std::string Name;
  std::string Caption;
  int Width = 0; ///< client area, logical pixels
  int Height = 0;
  std::string
      Picture; ///< background: file in the game's "pictures" directory, without ".png"; empty for none
  bool HasBackColor = false;
  Color BackColor;
  std::vector<const BackPicture *> BackPictures; ///< a later one lies over an earlier one
  std::vector<PictureFile> BackPictureFiles;     ///< all that they may come to show
  /// In the order of Tab; a later one lies over an earlier one. A label right before a text box, a check box
  /// or a list is what that is called.
  std::vector<Control *> Controls;
  bool Visible = false;         ///< written by the machine's `Show` and `Hide` and by nobody else
  bool CapturesPointer = false; ///< while it is the active window, the pointer is hidden and held at its home
  bool KeepsScreenAwake = false; ///< while it is open, the desktop doesn't blank its screen

  std::function<void()> Click;      ///< a click where no control stands
  std::function<void()> Escape;     ///< Esc, where neither a button nor a canvas takes it
  std::function<void()> QueryClose; ///< the close box; without a handler the window hides
  std::function<void()> Deactivate; ///< the window has lost the keyboard to another window or a box
};
