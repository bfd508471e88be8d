#include "platform/desktop/accessible.h"

#include "platform/desktop/accessible_line.h"
#include "platform/desktop/painted_views.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QComboBox>

namespace {

constexpr const char *RoleProperty = "accessibleRole";

QAccessible::Role RoleOf(const QObject &object) {
  const QVariant role = object.property(RoleProperty);
  return role.isValid() ? static_cast<QAccessible::Role>(role.toInt()) : QAccessible::Client;
}

/// A window. Its children don't include decoration.
class AccessibleWindow : public QAccessibleWidget {
public:
  explicit AccessibleWindow(QWidget *window) : QAccessibleWidget(window, RoleOf(*window)) {}

  /// A window with an owner is a dialog. Screen readers read all of a dialog when it opens.
  QAccessible::Role role() const override {
    return widget()->windowType() == Qt::Dialog ? QAccessible::Dialog : QAccessible::Window;
  }
  int childCount() const override { return static_cast<int>(Children().size()); }
  QAccessibleInterface *child(int index) const override {
    return QAccessible::queryAccessibleInterface(Children().value(index));
  }
  int indexOfChild(const QAccessibleInterface *child) const override {
    return child ? static_cast<int>(Children().indexOf(child->object())) : -1;
  }

private:
  QObjectList Children() const {
    QObjectList children;
    for (QObject *object : widget()->children()) {
      const auto *child = qobject_cast<QWidget *>(object);
      if (child && !child->isWindow() && RoleOf(*child) != QAccessible::NoRole) children += object;
    }
    return children;
  }
};

class AccessibleMeter : public QAccessibleWidget, public QAccessibleValueInterface {
public:
  explicit AccessibleMeter(MeterWidget *meter)
      : QAccessibleWidget(meter, QAccessible::ProgressBar), meter_(*meter) {}

  void *interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  QVariant currentValue() const override { return meter_.Percent(); }
  QVariant minimumValue() const override { return 0; }
  QVariant maximumValue() const override { return 100; }
  QVariant minimumStepSize() const override { return 1; }
  void setCurrentValue(const QVariant &) override {} // read-only

private:
  const MeterWidget &meter_;
};

/// A drop-down list. If it has a label, screen readers say its name without its value, so the name includes
/// the value.
class AccessibleDropDown : public QAccessibleWidget {
public:
  explicit AccessibleDropDown(QComboBox *box) : QAccessibleWidget(box, QAccessible::ComboBox), box_(*box) {}

  QString text(QAccessible::Text which) const override {
    if (which == QAccessible::Value) return box_.currentText();
    const QString text = QAccessibleWidget::text(which);
    return which == QAccessible::Name ? text + ' ' + box_.currentText() : text;
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = state.expandable = true;
    state.expanded = box_.view()->isVisible();
    return state;
  }
  QStringList actionNames() const override { return {showMenuAction(), setFocusAction()}; }
  void doAction(const QString &action) override {
    if (action == showMenuAction()) {
      box_.showPopup();
    } else {
      QAccessibleWidget::doAction(action);
    }
  }

private:
  QComboBox &box_;
};

/// An announcement. Its parent is the application instead of the window, because screen readers first say
/// where a notification belongs, and in a dialog also read all labels, one of which has the same text.
class AccessibleAnnouncement : public QAccessibleWidget {
public:
  explicit AccessibleAnnouncement(Announcer *announcer)
      : QAccessibleWidget(announcer, QAccessible::Notification) {}
  QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(qApp); }
};

QAccessibleInterface *MakeInterface(const QString &, QObject *object) {
  if (auto *line = qobject_cast<QLineEdit *>(object)) return new AccessibleLine(line);
  auto *widget = qobject_cast<QWidget *>(object);
  if (!widget || !widget->property(RoleProperty).isValid()) return nullptr;
  if (widget->isWindow()) return new AccessibleWindow(widget);
  if (auto *box = qobject_cast<QComboBox *>(widget)) return new AccessibleDropDown(box);
  if (auto *meter = dynamic_cast<MeterWidget *>(widget)) return new AccessibleMeter(meter);
  if (auto *announcer = dynamic_cast<Announcer *>(widget)) return new AccessibleAnnouncement(announcer);
  return new QAccessibleWidget(widget, RoleOf(*widget));
}

} // namespace

void InstallAccessibility() { QAccessible::installFactory(MakeInterface); }

void SetAccessibleRole(QWidget &widget, QAccessible::Role role) { widget.setProperty(RoleProperty, role); }

PictureText::PictureText(QWidget &parent, const QString &text) : QWidget(&parent) {
  SetAccessibleRole(*this, QAccessible::StaticText);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAccessibleName(text);
}

Announcer::Announcer(QWidget &parent) : QWidget(&parent) {
  SetAccessibleRole(*this, QAccessible::NoRole); // a control of the window has the same text
  setAttribute(Qt::WA_TransparentForMouseEvents);
  resize(1, 1);
  hide();
}

void Announcer::Say(const QString &text) {
  hide();
  setAccessibleName(text);
  show();
}
