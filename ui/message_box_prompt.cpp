#include "ui/message_box_prompt.h"

#include <QMessageBox>

namespace zrn {

void MessageBoxPrompt::Inform(const QString& title, const QString& text) {
  QMessageBox::critical(parent_, title, text, QMessageBox::Ok);
}

Prompt::Answer MessageBoxPrompt::Ask(const QString& title, const QString& text, bool withCancel) {
  QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No;
  if (withCancel) {
    buttons |= QMessageBox::Cancel;
  }
  switch (QMessageBox::critical(parent_, title, text, buttons, QMessageBox::Yes)) {
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::No:
      return Answer::No;
    default:
      // Closing the box without an answer changes nothing.
      return withCancel ? Answer::Cancel : Answer::No;
  }
}

}  // namespace zrn
