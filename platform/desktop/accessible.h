#pragma once

// The game's windows for screen readers. Qt describes its own widgets; this describes the game's: windows,
// the view of the table, the meter, the text in pictures, and announcements.

#include <QAccessible>
#include <QString>
#include <QWidget>

/// Makes Qt use the roles below. Call once, after the application has been created.
void InstallAccessibility();

/// Sets the role of a widget. `QAccessible::NoRole` marks decoration, which screen readers don't find in a
/// window that has a role.
void SetAccessibleRole(QWidget &widget, QAccessible::Role role);

/// The text in the picture that the parent shows as its background. Paints nothing.
class PictureText : public QWidget {
public:
  PictureText(QWidget &parent, const QString &text);
};

/// Announces events outside the focused control. Screen readers read a notification when it appears,
/// whichever control has the focus. Paints nothing.
class Announcer : public QWidget {
public:
  explicit Announcer(QWidget &parent);
  void Say(const QString &text);
};
