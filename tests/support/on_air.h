#pragma once

#include <QString>

#include "core/state.h"

namespace zrn::test {

// Puts a show on air every day of 2026 from start to end, fed by the downlink input.
inline void PutOnAir(ShowRecord& show, const QString& start, const QString& end, qint16 downlink) {
  show.StartTime = start;
  show.EndTime = end;
  show.StartDate = QStringLiteral("01/01/2026");
  show.EndDate = QStringLiteral("12/31/2026");
  show.Days = 0x7F;
  show.DownlinkSource = downlink;
}

}  // namespace zrn::test
