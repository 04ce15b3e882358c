#include "shows/ignore_window_rules.h"

#include <algorithm>

#include "schedule/time_entry.h"

namespace zrn {

namespace {

// The number the leading digits of text make; 0 when there are none.
int LeadingNumber(const QString& text) {
  int value = 0;
  for (QChar c : text) {
    if (!c.isDigit() || c.unicode() > 0x7F || value > 9999) {
      break;
    }
    value = value * 10 + (c.unicode() - '0');
  }
  return value;
}

}  // namespace

QString IgnoreTimeError(const QString& text, bool start) {
  const QString which =
      start ? QStringLiteral("Invalid start time.  ") : QStringLiteral("Invalid end time.  ");
  if (LeadingNumber(text.left(2)) > 23) {
    return which + QStringLiteral("Hours must be less than 24");
  }
  if (LeadingNumber(text.mid(3, 2)) > 59) {
    return which + QStringLiteral("Minutes must be less than 60");
  }
  if (LeadingNumber(text.mid(6)) > 59) {
    return which + QStringLiteral("Seconds must be less than 60");
  }
  // Half-typed or pasted text would make a row the shows file cannot read back.
  if (!EnteredTime(text)) {
    return which + QStringLiteral("Please enter as HH:MM:SS");
  }
  return {};
}

QString IgnoreRowText(const IgnoreWindow& window) {
  return window.StartTime + QStringLiteral(" - ") + window.EndTime;
}

QString IgnoreRowKey(int index) {
  return QStringLiteral("Huh") + QString::number(index);
}

std::vector<IgnoreWindow> ShowIgnoreWindows(const ShowRecord& show) {
  const int count =
      std::clamp<int>(show.IgnoreCount, 0, static_cast<int>(show.IgnoreWindows.size()));
  return {show.IgnoreWindows.begin(), show.IgnoreWindows.begin() + count};
}

void StoreIgnoreWindows(ShowRecord& show, const std::vector<IgnoreWindow>& windows) {
  const std::size_t n = std::min<std::size_t>(windows.size(), 32767);
  show.IgnoreWindows.assign(windows.begin(), windows.begin() + static_cast<std::ptrdiff_t>(n));
  if (show.IgnoreWindows.empty()) {
    show.IgnoreWindows.resize(1);
  }
  show.IgnoreCount = static_cast<qint16>(n);
}

}  // namespace zrn
