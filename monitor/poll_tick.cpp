#include "monitor/poll_tick.h"

#include "monitor/link_watch.h"
#include "monitor/loss_alarm.h"
#include "monitor/panel_update.h"
#include "schedule/due_events.h"
#include "shows/shows_pass.h"
#include "storage/logs.h"
#include "switcher/link.h"
#include "switcher/startup_exchange.h"

namespace zrn {

int MinuteOfWeek(const QTime& time, int day) {
  return day * 1440 + time.hour() * 60 + time.minute();
}

void RefreshClock(State& s) {
  const QDateTime now = Now(s);
  const QTime t = now.time();
  s.CurrentTime = QTime(t.hour(), t.minute(), t.second());
  s.Today = static_cast<qint16>(now.date().dayOfWeek() - 1);
}

void PollTick(State& s) {
  PollState& poll = s.poll;
  ++poll.PollTick;
  BeginRelayTick(s);
  WatchTick(s);

  const bool hadTime = s.CurrentTime.isValid();
  const int minuteBefore = hadTime ? MinuteOfWeek(s.CurrentTime, s.Today) : 0;
  RefreshClock(s);
  const int minuteNow = MinuteOfWeek(s.CurrentTime, s.Today);
  if (hadTime && minuteNow != minuteBefore) {
    FollowClockJump(s, minuteBefore, minuteNow);
  }

  RunDueEvents(s, minuteNow);
  if (s.OutputsDirty) {
    s.OutputsDirty = false;
    UpdateOutputs(s);
  }

  if (!s.Connected) {
    ConnectToSwitcher(s);
  }

  // Three polls in every five ticks; a switcher that stays silent through them all is dropped,
  // and the next tick starts a new connection.
  if (poll.PollTick > 2 && s.Connected) {
    if (s.linkState.NoResponseCount > kMaxUnansweredPolls) {
      WriteErrorLog(s, QStringLiteral("Disconnecting - No Response from Server"), QString());
      CloseSwitcherLink(s);
    } else {
      SendToSwitcher(s, QByteArray(1, static_cast<char>(0xF5)));
      ++s.linkState.NoResponseCount;
    }
  }
  if (poll.PollTick > 4) {
    poll.PollTick = 0;
  }

  LossAlarmTick(s);

  // Until the switcher has answered every start-up request, nothing builds on its state.
  if (RepeatOutstandingRequests(s)) {
    return;
  }
  ShowsPass(s);
}

}  // namespace zrn
