#pragma once

#include <QString>

#include "core/state.h"

namespace zrn {

// Whether the lamps may be out of date: the link is down, or this connection's start-up
// exchange has not completed. The lamp colours stay what the alarm decided; only the drawing
// says they are stale.
bool ReportsStale(const State& s);

// A keep-alive unanswered this long is named in the status bar (the watchdog's 168 s stays).
inline constexpr int kNoReplyNoticeSeconds = 10;

// Part of every poll tick, before its keep-alive is sent: notes since when the lamps are stale,
// since when a keep-alive waits for its answer, and since when each watched output is silent;
// rewrites the silent-for texts of the panels that changed.
void WatchTick(State& s);

// The status bar: the link state with since when it is stale ("No link since hh:mm:ss", the
// address named) or how long the switcher has not answered ("No reply for N s").
QString StatusLine(const State& s);

// "45 s", "3 min 05 s", "2 h 05 min": the silent-for of a tool tip.
QString DurationText(qint64 seconds);
// "3:05", "2:05:09", "3 d 4 h": the silent-for line of a large-view panel.
QString CompactDuration(qint64 seconds);

}  // namespace zrn
