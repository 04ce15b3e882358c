#pragma once

class QKeyEvent;
class QLineEdit;

namespace zrn {

// Applies a key press to a time field by the typing rules of TypeTimeKey. False for the keys it
// leaves to the caller or to the field itself: Enter, Escape, Tab, the caret keys, shortcuts.
bool TimeFieldKeyPress(QLineEdit* field, const QKeyEvent* key);

// The field's text box limits for a time: 8 characters, room for them all.
void PrepareTimeField(QLineEdit* field);

}  // namespace zrn
