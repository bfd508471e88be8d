#pragma once

// What a screen reader finds in the game's windows. Qt knows the toolkit's own widgets; this adds the game's:
// windows, the view of the table, the meter, the words of pictures, and what is said by itself.

#include <QAccessible>
#include <QString>
#include <QWidget>

/// Makes the roles below count. To be called once, when the application stands.
void InstallAccessibility();

/// Gives a widget of the game its role. One with `QAccessible::NoRole` is decoration: in a window that has a
/// role nobody is told of it.
void SetAccessibleRole(QWidget &widget, QAccessible::Role role);

/// The words of a picture that is painted on its parent. It shows nothing of its own.
class PictureWords : public QWidget {
public:
  PictureWords(QWidget &parent, const QString &words);
};

/// Says something that happens beside the control that has the keyboard. Screen readers read out a
/// notification as it comes up, wherever the keyboard is. It shows nothing.
class Announcer : public QWidget {
public:
  explicit Announcer(QWidget &parent);
  void Say(const QString &words);
};
