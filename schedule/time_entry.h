#pragma once

#include <QString>
#include <optional>

namespace zrn {

// The characters of "hh:mm:ss".
inline constexpr int kTimeFieldLength = 8;

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

}  // namespace zrn
