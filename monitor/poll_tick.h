#pragma once

#include <QTime>

#include "core/state.h"

namespace zrn {

// Polls sent without an answer after which the link is dropped.
inline constexpr int kMaxUnansweredPolls = 200;

// Minute of the week (Monday 00:00 = 0) of a time of day on a day (0 Monday).
int MinuteOfWeek(const QTime& time, int day);

// Reads the clock into CurrentTime (whole seconds) and Today (0 Monday ... 6 Sunday).
void RefreshClock(State& s);

// One pass of the poll timer: clock and clock jumps, due scheduled events, reconnect, the
// keep-alive poll with its watchdog, the loss alarm's tick, and the repeat of start-up requests
// the switcher has not answered (every 61 ticks).
void PollTick(State& s);

}  // namespace zrn
