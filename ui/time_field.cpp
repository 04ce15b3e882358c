#include "ui/time_field.h"

#include <QKeyEvent>
#include <QLineEdit>

#include "schedule/time_entry.h"

namespace zrn {

bool TimeFieldKeyPress(QLineEdit* field, const QKeyEvent* key) {
  QChar typed;
  if (key->key() == Qt::Key_Backspace) {
    typed = QLatin1Char('\b');
  } else if (key->text().size() == 1 && key->text()[0].isPrint() &&
             (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0) {
    typed = key->text()[0];
  } else {
    return false;
  }
  TimeFieldEdit edit{field->text(), field->cursorPosition(), field->selectionStart(),
                     static_cast<int>(field->selectedText().size())};
  if (const std::optional<TimeFieldEdit> next = TypeTimeKey(edit, typed)) {
    field->setText(next->text);
    field->setCursorPosition(next->cursor);
  }
  // A refused key is swallowed: nothing but digits goes into a time.
  return true;
}

void PrepareTimeField(QLineEdit* field) {
  field->setMaxLength(kTimeFieldLength);
  field->setFixedWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")) + 24);
  field->setAlignment(Qt::AlignCenter);
}

}  // namespace zrn
