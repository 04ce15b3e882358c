#include "schedule_fixture.h"

#include "storage/logs.h"
#include "support/bytes.h"

namespace zrn::test {
namespace {

using DueEvents = ScheduleTest;

const QString kOn = QStringLiteral("Studio A [0012] Monitoring enabled.");
const QString kOff = QStringLiteral("Studio A [0012] Monitoring disabled.");

ScheduledEvent Route(const char* time, qint16 source) {
  ScheduledEvent e = Event(time, kEveryDay);
  e.Connect = true;
  e.Source = source;
  return e;
}

// What runs, and at which second, as the clock moves: R<day>@<time> starts the program then,
// <day>@<time> is one tick then, +<n> is n ticks of 500 ms (a run holds off for 360).
TEST_F(DueEvents, RunOnTimeOnceAndLateByLessThanThreeMinutes) {
  const struct {
    const char* why;
    std::vector<ScheduledEvent> events;
    const char* clock;
    QStringList ran;  // time and report of each event run
  } cases[] = {
      {"at their second, once, and on from Sunday into Monday",
       {Event("06:00:00", kEveryDay, true), Event("18:00:00", kEveryDay, false)},
       "R2@17:59:58 +364 6@23:59:59 +4 7@05:59:59 +2",
       {"18:00:00 - " + kOff, "06:00:00 - " + kOn}},
      {"index 0 three seconds late, then after restarts 2:58 late but not 3:00",
       {Event("10:00:00", kEveryDay)},
       "R2@09:59:59 2@10:00:02 R3@10:02:58 +1 R4@10:03:00 +1",
       {"10:00:02 - " + kOn, "10:02:58 - " + kOn}},
      {"two events a minute apart both on time",
       {Event("10:00:00", kEveryDay, true), Event("10:01:00", kEveryDay, false)},
       "R2@09:59:58 +720",
       {"10:00:00 - " + kOn, "10:01:00 - " + kOff}},
      // 09:59:30 is left 3.5 minutes behind and is gone; the pair a minute apart runs late, in
      // order, and the schedule goes on.
      {"a five minute step forward",
       {Event("09:59:30", kEveryDay, true), Event("10:01:00", kEveryDay, false),
        Event("10:02:00", kEveryDay, true), Event("10:30:00", kEveryDay, false)},
       "R2@09:58:59 +1 2@10:03:00 +1 2@10:29:59 +2",
       {"10:03:00 - " + kOff, "10:03:00 - " + kOn, "10:30:00 - " + kOff}},
      {"set back an hour after both ran: neither runs again, and the next day both do",
       {Event("10:00:00", kEveryDay, true), Event("10:30:00", kEveryDay, false)},
       "R2@09:00:00 2@09:59:59 +2 2@10:29:59 +2 2@09:35:00 2@09:59:59 +8 2@10:29:59 +8 "
       "3@09:59:59 +2 3@10:29:59 +2",
       {"10:00:00 - " + kOn, "10:30:00 - " + kOff, "10:00:00 - " + kOn, "10:30:00 - " + kOff}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    s.MessageRows.clear();
    s.Outputs[0] = OutputEntry();
    s.Outputs[0].Output = 12;
    SetEvents(c.events);
    for (const QString& move : QString::fromLatin1(c.clock).split(QLatin1Char(' '))) {
      const QStringList at = move.mid(move.startsWith(QLatin1Char('R'))).split(QLatin1Char('@'));
      if (move.startsWith(QLatin1Char('+'))) {
        Ticks(move.mid(1).toInt());
      } else if (move.startsWith(QLatin1Char('R'))) {
        s.Outputs[0].HoldOffTicks = 0;
        StartAt(at[0].toInt(), qPrintable(at[1]));
      } else {
        TickAt(At(at[0].toInt(), qPrintable(at[1])));
      }
    }
    QStringList ran;
    for (const QString& row : s.MessageRows) {
      ran << row.section(QStringLiteral(" - "), 1);
    }
    EXPECT_EQ(ran, c.ran);
  }
}

// In show mode the shows own the outputs: the schedule leaves everything alone.
TEST_F(DueEvents, ReportLineNamesTheLabelAndTheNewSourceOutsideShowMode) {
  ScheduledEvent e = Route("10:00:00", 5);
  e.DisplayOption = 2;
  e.Label = QStringLiteral("Late Show   ");
  SetEvents({e});
  s.ProgramMode = 1;
  StartAt(2, "09:59:59");
  Ticks(10);
  EXPECT_EQ(s.Outputs[0].NextEvent, 0) << "the schedule moves on";
  EXPECT_FALSE(s.Outputs[0].MonitoringEnabled);
  EXPECT_TRUE(link.wire.isEmpty());
  EXPECT_TRUE(s.MessageRows.isEmpty());

  s.ProgramMode = 0;
  StartAt(2, "09:59:59");
  Ticks(2);
  const QString line =
      QStringLiteral("Late Show    [0012] Monitoring enabled. Source: Sat 1 [0005]");
  EXPECT_EQ(Reports(), QStringList{line});
  EXPECT_TRUE(QString::fromUtf8(ReadAll(QStringLiteral("EventLog.txt")))
                  .contains(ActivityStamp(At(2, "10:00:00")).leftJustified(55) + line + "\r\n"));
  // Input 5 to output 12, and the new source's silence counts as unknown for a while.
  EXPECT_EQ(link.wire, Bytes({0xFE, 0x04, 0x00, 0x04, 0x00, 0x0B, 0x00, 0x13, 0xFF}));
  EXPECT_TRUE(InSilenceGrace(s, 11));

  // The other display options; names outside their tables read "Uknown".
  OutputEntry o = s.Outputs[0];
  o.DisplayOption = 1;
  s.CrosspointMap[11].Sources[0] = 4;
  EXPECT_EQ(EventReportLine(s, o), QStringLiteral("Sat 1 [0012] Monitoring enabled."));
  s.CrosspointMap[11].Sources[0] = 999;
  EXPECT_EQ(EventReportLine(s, o), QStringLiteral("Uknown [0012] Monitoring enabled."));
  o.DisplayOption = 0;
  o.Output = 300;
  o.MonitoringEnabled = false;
  EXPECT_EQ(EventReportLine(s, o), QStringLiteral("Uknown [0300] Monitoring disabled."));
  o.DisplayOption = 7;
  EXPECT_EQ(EventReportLine(s, o), QStringLiteral(" [0300] Monitoring disabled."));
}

TEST_F(DueEvents, RoutesNeedASourceAndALiveLink) {
  s.InputNames[11] = QStringLiteral("Line 12");
  SetEvents({Route("10:00:00", kNone), Route("10:10:00", 0), Route("10:20:00", 12)});
  StartAt(2, "09:59:59");
  Ticks(2);
  TickAt(At(2, "10:09:59"));
  Ticks(2);
  EXPECT_TRUE(link.wire.isEmpty());
  EXPECT_EQ(Reports(), QStringList(2, kOn)) << "no source named";

  // Link down: the route is held; it is sent once the next exchange completes.
  OnClosed(s);
  TickAt(At(2, "10:19:59"));
  Ticks(2);
  EXPECT_EQ(Reports().last(),
            kOn + " Source: Line 12 [0012] (held until the switcher is connected)");
  EXPECT_EQ(s.Outputs[0].PendingRouteSource, 12);
  EXPECT_FALSE(InSilenceGrace(s, 11));
}

TEST_F(DueEvents, ClocksMovedByThreeMinutesOrMoreRecomputeTheNextEvents) {
  SetEvents({Event("10:00:00", kEveryDay, true)});
  StartAt(2, "09:00:00");
  // Minutes of the week before and after a tick; Wednesday 09:00 is minute 3420.
  const struct {
    const char* why;
    int before, now;
    bool recomputes;
  } jumps[] = {
      {"three minutes forward", 3417, 3420, true},
      {"two minutes forward is ordinary progress", 3418, 3420, false},
      {"one minute back", 3421, 3420, true},
      {"Sunday night into Monday", 10079, 0, false},
  };
  for (const auto& j : jumps) {
    s.Outputs[0].NextEvent = 1;  // stale on purpose: a recomputation makes it 0
    FollowClockJump(s, j.before, j.now);
    EXPECT_EQ(s.Outputs[0].NextEvent == 0, j.recomputes) << j.why;
  }
}

TEST_F(DueEvents, NextIsTheNearestFollowingOccurrenceRoundTheWeek) {
  const std::vector<ScheduledEvent> twice = {Event("06:00:00", kEveryDay),
                                             Event("18:00:00", kEveryDay)};
  const std::vector<ScheduledEvent> tueFri = {Event("09:00:00", kTuesday),
                                              Event("08:00:00", kFriday)};
  const std::vector<ScheduledEvent> noDay = {Event("06:00:00", 0), Event("07:00:00", 0x80)};
  const struct {
    const char* why;
    std::vector<ScheduledEvent> events;
    int day;
    const char* time;
    int next;
  } cases[] = {
      {"an event at the current second is not next", twice, 2, "18:00:00", 0},
      {"Sunday evening continues into Monday", twice, 6, "18:00:00", 0},
      {"Friday at its second: next Tuesday's", tueFri, 4, "08:00:00", 0},
      {"no day bit among the seven", noDay, 2, "12:00:00", kNone},
      {"earliest wins whatever the order", {twice[1], twice[0]}, 2, "19:00:00", 1},
  };
  for (const auto& c : cases) {
    SetEvents(c.events);
    StartAt(c.day, c.time);
    EXPECT_EQ(s.Outputs[0].NextEvent, c.next) << c.why;
  }
}

// Outputs 1 to 3 on loaded panels, the fourth beyond them; each entry's fault costs only itself.
TEST_F(DueEvents, OneBadEntryDoesNotStopTheOthers) {
  s.Outputs.resize(4);
  s.OutputCount = 3;
  s.PanelsLoaded = 3;
  for (int o = 0; o < 4; ++o) {
    s.Outputs[static_cast<size_t>(o)].Output = static_cast<qint16>(o + 1);
    SetEvents({Event("10:00:00", kEveryDay)}, o);
    s.Outputs[static_cast<size_t>(o)].NextEvent = 7;
  }
  // An unreadable time is left out; a count beyond the array uses the events that exist.
  SetEvents({Event("25:00:00", kEveryDay), Event("11:00:00", kEveryDay)}, 2);
  s.Outputs[2].EventCount = 5;
  StartAt(2, "09:59:59");
  EXPECT_EQ(s.Outputs[2].NextEvent, 1);
  EXPECT_EQ(s.Outputs[3].NextEvent, 7) << "beyond the loaded panels";
  s.Outputs[0].Events[0].Time = QStringLiteral("ten");
  s.Outputs[1].NextEvent = 4;
  Ticks(2);
  EXPECT_EQ(Reports(), QStringList{QStringLiteral("Out 0002 [0002] Monitoring enabled.")})
      << "the second is looked up afresh in time";
  EXPECT_EQ(s.Outputs[0].NextEvent, kNone) << "its only event cannot be read";
  GetNextEvent(s, 3);
  EXPECT_EQ(s.Outputs[3].NextEvent, 0);
  clock.AdvanceSeconds(61);  // past the minute in which a repeated error line is folded
  GetNextEvent(s, 40);
  EXPECT_EQ(ErrorLines().filter(QStringLiteral("Error determining next event")), ErrorLines());
  EXPECT_TRUE(ErrorLines().join('\n').contains(QStringLiteral("Type mismatch")));
  EXPECT_TRUE(ErrorLines().join('\n').contains(QStringLiteral("Subscript out of range")));
}

}  // namespace
}  // namespace zrn::test
