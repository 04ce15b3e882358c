#pragma once

#include <QString>
#include <optional>

class QKeyEvent;
class QLineEdit;

namespace zrn {

// A time-of-day field as the operator types into it.
struct TimeFieldEdit {
  QString text;
  int cursor = 0;
  int selectionStart = 0;
  int selectionLength = 0;
};

// The field after one typed character, '\b' standing for Backspace; nothing when the key is
// refused. Only digits go in; the colons follow the second and fourth digit by themselves, and
// a full field takes no more unless part of it is selected. Backspace at the end takes the last
// digit together with a colon that only followed it.
std::optional<TimeFieldEdit> TypeTimeKey(const TimeFieldEdit& field, QChar key);

// The entered text as "hh:mm:ss" when it is a time of day ("24:00:00" is none); nothing else.
std::optional<QString> EnteredTime(const QString& text);

// Applies a key press to a time field by the rules above. False for the keys it leaves to the
// caller or to the field itself: Enter, Escape, Tab, the caret keys, shortcuts.
bool TimeFieldKeyPress(QLineEdit* field, const QKeyEvent* key);

// The field's text box limits for a time: 8 characters, room for them all.
void PrepareTimeField(QLineEdit* field);

}  // namespace zrn
