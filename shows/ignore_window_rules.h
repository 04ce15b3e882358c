#pragma once

#include <QString>
#include <vector>

#include "core/state.h"

namespace zrn {

// The time a field shows after an entry it cannot read, and at Escape.
inline const QString kNoTime = QStringLiteral("24:00:00");

// Why Add refuses a start or end field, as the message box says it ("Invalid start time.  Hours
// must be less than 24"); empty when the field holds a time. Hours, minutes and seconds are
// read by position, as the operator sees them.
QString IgnoreTimeError(const QString& text, bool start);

// "08:00:00 - 09:30:00".
QString IgnoreRowText(const IgnoreWindow& window);
// Key of row i: "Huh" and the row number.
QString IgnoreRowKey(int index);

// The show's windows, as many as its count and array hold.
std::vector<IgnoreWindow> ShowIgnoreWindows(const ShowRecord& show);
// Makes the windows the show's; one blank element stays allocated when there are none.
void StoreIgnoreWindows(ShowRecord& show, const std::vector<IgnoreWindow>& windows);

}  // namespace zrn
