#include "history/alarm_history.h"

#include <QTableWidget>

#include "history/next_day.h"
#include "monitor/loss_alarm.h"
#include "monitor/menu_commands.h"
#include "monitor/monitor.h"
#include "monitor/panel_update.h"
#include "schedule/schedule_fixture.h"
#include "storage/logs.h"
#include "window/alarm_history_window.h"
#include "window/next_day_window.h"

namespace zrn {

void PrintTo(const AlarmEvent& e, std::ostream* os) {
  *os << e.when.toString(Qt::ISODate).toStdString() << " " << e.subject.toStdString() << " "
      << KindText(e.kind).toStdString();
}

namespace {

using test::Event;
using test::kEveryDay;

// Watched output 12, "Studio A", on a live fake link, with relay 1 for the alarm; the activity
// log rotates every kilobyte.
class AlarmHistoryTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.MaxLogFileSize = 1;
    s.link = &link;
    s.activityListener = [this](const QDateTime& when, const QString& message) {
      live.Record(when, message);
    };
    s.OutputNames[11] = QStringLiteral("Studio A");
    s.Outputs[0].Output = 12;
    s.Outputs[0].MonitoringEnabled = true;
    s.SilenceStatus[11].Mode = 0x109;
    s.AlarmRelay = 1;
    s.SwitcherRelayCount = 1;
    s.RelayStates.assign(1, 0);
  }
  static QDateTime At(const char* time) {
    return QDateTime(QDate(2026, 11, 17), QTime::fromString(QString::fromLatin1(time)));
  }
  void Silence(quint8 status) {
    s.SilenceStatus[11].Status = status;
    DisplayMessage(s,
                   QString("Studio A [0012] Silence Alarm Status %1!").arg(status ? "ON" : "OFF"));
    UpdateStatus(s);
  }
  void Message(const char* text) { DisplayMessage(s, QString::fromLatin1(text)); }

  test::FakeLink link;
  AlarmHistory live;
};

TEST_F(AlarmHistoryTest, ReadBackAcrossRotationsEqualsWhatWasRecordedLive) {
  using enum AlarmKind;
  const QString studio = QStringLiteral("Studio A [0012]");
  const QString drive = QStringLiteral("Drive Time");
  // Each step at its time, the event it leaves and how long the state it began lasted.
  const std::tuple<const char*, std::function<void()>, QString, AlarmKind, qint64> steps[] = {
      {"08:00:00", [&] { Silence(1); }, studio, Silent, 150},
      {"08:02:30", [&] { ASSERT_TRUE(AcknowledgeLossAlarm(s, 0)); }, studio, Acknowledged, 150},
      {"08:05:00", [&] { Silence(0); }, studio, AudioBack, -1},
      {"09:00:00", [&] { mnuEnable_Click(s); }, studio, MonitoringOff, 1800},
      {"09:30:00", [&] { mnuEnable_Click(s); }, studio, MonitoringOn, -1},
      {"10:00:00", [&] { Silence(1); }, studio, Silent, 7200},  // still silent at noon
      {"10:00:20", [&] { cmdCancel_Click(s); }, {}, Cancelled, -1},
      {"10:10:00", [&] { CloseSwitcherLink(s); }, {}, NoLink, 45},
      {"10:10:45", [&] { OnConnected(s); }, {}, LinkBack, -1},
      {"11:00:00", [&] { Message("Drive Time Silence Alarm Status ON!"); }, drive, Silent, 60},
      {"11:01:00", [&] { Message("Drive Time Silence Alarm Status OFF!"); }, drive, AudioBack, -1},
  };
  // A day and more before the end: left out of both.
  clock.Set(At("06:00:00").addDays(-1));
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  Silence(1);
  Silence(0);
  std::deque<AlarmEvent> expected;
  std::vector<qint64> lasted;
  for (const auto& [at, act, subject, kind, seconds] : steps) {
    clock.Set(At(at));
    act();
    expected.push_back({At(at), subject, kind});
    lasted.push_back(seconds);
  }
  clock.Set(At("12:00:00"));

  const QStringList rotated = Files().filter(QStringLiteral("EventLog "));
  ASSERT_GE(rotated.size(), 2) << "the log was rotated in the middle";
  AlarmHistory read;
  EXPECT_EQ(read.ReadBack(s.AppPath, clock.Now()), rotated.size() + 1);
  live.Forget(clock.Now());
  EXPECT_EQ(live.Events(), expected);
  EXPECT_EQ(read.Events(), expected);
  EXPECT_EQ(read.Durations(clock.Now()), lasted);

  EXPECT_EQ(Timeline(read, clock.Now(), QStringLiteral("0012")).at(0).spans,
            (std::vector<TimelineSpan>{
                {At("08:00:00"), At("08:02:30"), TimelineState::Silent},
                {At("08:02:30"), At("08:05:00"), TimelineState::Acknowledged},
                {At("09:00:00"), At("09:30:00"), TimelineState::MonitoringOff},
                {At("10:00:00"), At("10:00:20"), TimelineState::Silent},
                {At("10:00:20"), At("12:00:00"), TimelineState::Cancelled},
            }));
  EXPECT_EQ(Timeline(read, clock.Now())[0].spans,
            (std::vector<TimelineSpan>{{At("10:10:00"), At("10:10:45"), TimelineState::NoLink}}));

  // The operator narrows the table by output and by kind, as typed into the window.
  Monitor monitor(QString(), &clock);
  AlarmHistoryWindow window(monitor, read);
  test::Person person;
  person.Open(window);
  ASSERT_EQ(window.Table()->rowCount(), 11);
  EXPECT_EQ(window.Table()->findItems(QStringLiteral("no link"), Qt::MatchExactly).size(), 1);
  person.Click(QStringLiteral("Output:"));
  person.Type(QStringLiteral("0012"));
  EXPECT_EQ(window.Table()->rowCount(), 6);
  EXPECT_EQ(window.TimelineView()->Rows().size(), 1u);
  person.Press(Qt::Key_Tab);
  person.Type(QStringLiteral("ack"));
  ASSERT_EQ(window.Table()->rowCount(), 1);
  QString failure;
  ASSERT_TRUE(window.ExportTo(PathOf(QStringLiteral("h.csv")), &failure)) << qPrintable(failure);
  EXPECT_EQ(ReadAll(QStringLiteral("h.csv")),
            QByteArray("Time,Output or show,What happened,Seconds\r\n"
                       "2026-11-17 08:02:30,Studio A [0012],acknowledged,150\r\n"));

  // The open list of the next day follows a schedule edited meanwhile.
  State& edited = monitor.state();
  edited.Outputs[0].Events = {Event("13:00:00", kEveryDay)};
  edited.Outputs[0].EventCount = 1;
  NextDayWindow next(monitor);
  next.show();
  edited.Outputs[0].Events.push_back(Event("08:30:00", kEveryDay, false));
  edited.Outputs[0].EventCount = 2;
  emit monitor.changed();
  ASSERT_EQ(next.Table()->rowCount(), 2);
  EXPECT_EQ(next.Table()->item(0, 0)->text(), QStringLiteral("13:00:00"));
  EXPECT_EQ(next.Table()->item(1, 0)->text(), QStringLiteral("Wed 08:30:00"));
  EXPECT_EQ(next.Table()->item(1, 2)->text(), QStringLiteral("off"));

  // Bounded, and what is a day old is forgotten.
  for (std::size_t i = 0; i < AlarmHistory::kMaxEvents + 10; ++i) {
    live.Record(At("12:00:00"), QStringLiteral("Loss Alarm Report Canceled"));
  }
  EXPECT_EQ(live.Events().size(), AlarmHistory::kMaxEvents);
  live.Record(At("12:00:00").addSecs(AlarmHistory::kKeptSeconds + 1), "Server Module Connected");
  EXPECT_EQ(live.Events().size(), 1u);
}

constexpr qint16 kMonday = 1, kSaturday = 32, kSunday = 64;

using NextDay = test::ScheduleTest;

// Watched outputs 12 "Studio A", 13 and 14 on a live link, and a fourth without events: the list
// worked out at noon on Sunday is what the scheduler then runs, tick by tick, until noon on
// Monday, across midnight and into the next week.
TEST_F(NextDay, EqualsWhatTheSchedulerRunsOverTheDay) {
  s.Outputs.resize(4);
  s.OutputCount = 4;
  s.PanelsLoaded = 4;
  for (int o = 1; o < 4; ++o) {
    s.Outputs[o].Output = static_cast<qint16>(12 + o);
  }
  const auto Ran = [](const QDateTime& when, int output, int event) {
    return when.toLocalTime().toString(Qt::ISODate) +
           QStringLiteral(" %1/%2").arg(output).arg(event);
  };
  ScheduledEvent night = Event("00:00:30", kMonday);
  night.Connect = true;
  night.Source = 5;
  night.DisplayOption = 2;
  night.Label = QStringLiteral("Night, late ");
  SetEvents({Event("06:00:00", kEveryDay), Event("18:00:00", kEveryDay, false)}, 0);
  SetEvents({night, Event("23:59:50", kSunday, false)}, 1);
  SetEvents({Event("09:00:00", kSaturday), Event("11:59:59", kSunday), Event("12:00:00", kMonday),
             Event("18:00:00", kSunday, false)},
            2);
  StartAt(6, "12:00:00");

  const std::vector<UpcomingEvent> listed = NextDayEvents(s, clock.Now());
  QStringList expected;
  for (const UpcomingEvent& e : listed) {
    expected << Ran(e.when, e.output, e.event);
  }
  // Fields with a comma are quoted.
  EXPECT_EQ(UpcomingCsv(listed), QStringLiteral("Time,Output,Monitoring,Label,Source\r\n"
                                                "2026-11-22 18:00:00,0012,off,Studio A,\r\n"
                                                "2026-11-22 18:00:00,0014,off,Out 0014,\r\n"
                                                "2026-11-22 23:59:50,0013,off,Out 0013,\r\n"
                                                "2026-11-23 00:00:30,0013,on,\"Night, late \","
                                                "Sat 1 [0005]\r\n"
                                                "2026-11-23 06:00:00,0012,on,Studio A,\r\n"
                                                "2026-11-23 12:00:00,0014,on,Out 0014,\r\n"));

  Ticks(2 * 86400);  // until noon on Monday
  // Within a day each event runs at most once, so its last run is its only one.
  QStringList ran;
  for (int i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < s.Outputs[i].LastRun.size(); ++j) {
      if (s.Outputs[i].LastRun[j].isValid()) {
        ran << Ran(s.Outputs[i].LastRun[j], i, static_cast<int>(j));
      }
    }
  }
  EXPECT_EQ(s.MessageRows.size(), ran.size()) << "one report per run";
  ran.sort();  // by time, then output
  EXPECT_EQ(ran, expected);
}

}  // namespace
}  // namespace zrn
