#pragma once

#include <QString>
#include <tuple>

class QDialog;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace zrn {

// A push button as the dialogs make them: named for the tests and the operator's habits, with
// its tool tip. It never becomes the default by focus: Enter belongs to the fields and lists.
QPushButton* Button(const QString& name, const QString& caption, const QString& tip = QString());

// A text field that takes only what pattern matches, at most maxLength characters.
QLineEdit* NumberField(const QString& name, const QString& pattern, int maxLength);

// A caption whose mnemonic moves to buddy.
QLabel* Caption(const QString& text, QWidget* buddy);

// The |<, <, > and >| buttons of a dialog that steps through records; what names the record
// in their tool tips ("Moves to first <what>").
using NavigationRow = std::tuple<QPushButton*, QPushButton*, QPushButton*, QPushButton*>;
NavigationRow NavigationButtons(const QString& what);

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
