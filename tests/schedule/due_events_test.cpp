#include "schedule_fixture.h"

#include "storage/logs.h"
#include "support/bytes.h"

namespace zrn::test {
namespace {

using test::Bytes;

using DueEvents = ScheduleTest;

const QString kOn = QStringLiteral("Studio A [0012] Monitoring enabled.");
const QString kOff = QStringLiteral("Studio A [0012] Monitoring disabled.");

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
  ScheduledEvent e = Event("10:00:00", kEveryDay, true);
  e.DisplayOption = 2;
  e.Label = QStringLiteral("Late Show   ");
  e.Connect = true;
  e.Source = 5;
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
  EXPECT_EQ(s.Outputs[0].CustomLabel, QStringLiteral("Late Show   "));
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
  ScheduledEvent none = Event("10:00:00", kEveryDay);
  none.Connect = true;
  none.Source = kNone;
  ScheduledEvent zero = none, twelve = none;
  zero.Time = QStringLiteral("10:10:00");
  zero.Source = 0;
  twelve.Time = QStringLiteral("10:20:00");
  twelve.Source = 12;
  SetEvents({none, zero, twelve});
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
      {"ten minutes forward", 3410, 3420, true},
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

TEST_F(DueEvents, OneBadEntryDoesNotStopTheOthers) {
  s.Outputs.resize(3);
  s.OutputCount = 3;
  s.PanelsLoaded = 3;
  for (int o = 0; o < 3; ++o) {
    s.Outputs[static_cast<size_t>(o)].Output = static_cast<qint16>(o + 1);
    SetEvents({Event("10:00:00", kEveryDay)}, o);
  }
  StartAt(2, "09:59:59");
  s.Outputs[0].NextEvent = 4;
  s.Outputs[1].Events[0].Time = QStringLiteral("ten");
  Ticks(2);
  EXPECT_EQ(Reports(), (QStringList{QStringLiteral("Out 0001 [0001] Monitoring enabled."),
                                    QStringLiteral("Out 0003 [0003] Monitoring enabled.")}))
      << "the first is looked up afresh in time";
  EXPECT_EQ(s.Outputs[1].NextEvent, kNone) << "its only event cannot be read";
  EXPECT_FALSE(ErrorLines().isEmpty());
  EXPECT_EQ(ErrorLines().filter(QStringLiteral("Error determining next event")), ErrorLines());
}

}  // namespace
}  // namespace zrn::test
