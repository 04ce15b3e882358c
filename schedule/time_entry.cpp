#include "schedule/time_entry.h"

#include <algorithm>

#include "schedule/schedule_rules.h"

namespace zrn {

namespace {

bool ColonFollows(const QString& text) {
  return (text.size() == 2 || text.size() == 5) && text.back().isDigit();
}

}  // namespace

std::optional<TimeFieldEdit> TypeTimeKey(const TimeFieldEdit& field, QChar key) {
  TimeFieldEdit next = field;
  const bool selected = field.selectionLength > 0 && field.selectionStart >= 0 &&
                        field.selectionStart + field.selectionLength <= field.text.size();
  next.selectionLength = 0;
  next.cursor = std::clamp<int>(field.cursor, 0, static_cast<int>(field.text.size()));
  if (key == QLatin1Char('\b')) {
    if (selected) {
      next.text.remove(field.selectionStart, field.selectionLength);
      next.cursor = field.selectionStart;
    } else if (next.cursor == next.text.size() && !next.text.isEmpty()) {
      if (next.text.endsWith(QLatin1Char(':'))) {
        next.text.chop(1);
      }
      next.text.chop(1);
      next.cursor = static_cast<int>(next.text.size());
    } else if (next.cursor > 0) {
      next.text.remove(next.cursor - 1, 1);
      --next.cursor;
    }
    next.selectionStart = next.cursor;
    return next;
  }
  if (!key.isDigit() || key.unicode() > 0x7F) {
    return std::nullopt;
  }
  if (selected) {
    next.text.replace(field.selectionStart, field.selectionLength, key);
    next.cursor = field.selectionStart + 1;
  } else {
    if (field.text.size() >= kTimeFieldLength) {
      return std::nullopt;
    }
    next.text.insert(next.cursor, key);
    ++next.cursor;
  }
  if (next.cursor == next.text.size() && ColonFollows(next.text)) {
    next.text += QLatin1Char(':');
    ++next.cursor;
  }
  next.selectionStart = next.cursor;
  return next;
}

std::optional<QString> EnteredTime(const QString& text) {
  QString time = text.trimmed();
  // "12:30:" is what typing 1230 leaves: the seconds may go unsaid.
  if (time.size() == 6 && time.endsWith(QLatin1Char(':'))) {
    time += QStringLiteral("00");
  } else if (time.size() == 5) {
    time += QStringLiteral(":00");
  }
  if (!IsValidEventTime(time)) {
    return std::nullopt;
  }
  return time;
}

}  // namespace zrn
