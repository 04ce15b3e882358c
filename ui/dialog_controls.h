#pragma once

#include <QPushButton>
#include <QString>

class QDialog;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QWidget;

namespace zrn {

// A push button as every dialog makes it, with its object name and tool tip. It never becomes
// the default by taking the focus: Enter belongs to the fields and lists.
QPushButton* Button(const QString& name, const QString& caption, const QString& tip = QString());

// The same, with what a click does.
template <typename Receiver, typename Slot>
QPushButton* Button(const QString& name, const QString& caption, const QString& tip,
                    Receiver* receiver, Slot onClick) {
  QPushButton* button = Button(name, caption, tip);
  QObject::connect(button, &QPushButton::clicked, receiver, onClick);
  return button;
}

// A text field that takes only what pattern matches, at most maxLength characters.
QLineEdit* NumberField(const QString& name, const QString& pattern, int maxLength);

// A caption whose mnemonic moves to buddy.
QLabel* Caption(const QString& text, QWidget* buddy);

struct CloseRowOptions {
  QString okTip;
  QString cancelTip;
  // Enter anywhere in the dialog presses OK.
  bool okIsDefault = false;
  // Cancel goes through the dialog's own reject(); otherwise it closes without asking, as the
  // button says what it does.
  bool cancelRunsReject = false;
};

// The OK and Cancel buttons ("cmdOk", "cmdCancel") at the bottom right, wired to the dialog.
QHBoxLayout* CloseRow(QDialog* dialog, const CloseRowOptions& options = {});

}  // namespace zrn
