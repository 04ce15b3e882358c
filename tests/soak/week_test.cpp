// A week of the monitor on a fast clock: every 500 ms poll tick of a simulated week (about 1.2
// million ticks) against a scripted switcher on the wire, with the clock stepped forward and
// back every day. ZRN_SOAK_DAYS sets the number of days (default 1, Sunday into Monday;
// scripts/soak runs 7).

#include <gtest/gtest.h>
#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <map>

#include "monitor/monitor.h"
#include "storage/config_file.h"
#include "storage/events_file.h"
#include "support/fake_link.h"
#include "wire_switcher.h"

#if defined(__SANITIZE_ADDRESS__)
#define ZRN_SOAK_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZRN_SOAK_ASAN 1
#endif
#endif

namespace zrn::test {
namespace {

constexpr int kWatched = 16;
constexpr qint16 kWeekdays = 0x1F, kWeekend = 0x60, kEveryDay = 0x7F;
// A Sunday, so the first day already runs from the weekend into Monday. The run is whole days
// from there, so every time of day comes once a day.
const QDateTime kStart(QDate(2026, 11, 15), QTime(7, 0));
const int kDays = std::max(1, qEnvironmentVariableIntValue("ZRN_SOAK_DAYS"));

// The schedule of every watched output. Two events a minute apart at noon and at 18:00, one
// inside the daily four-minute step, the first of the weekday morning inside the two-second
// one; the weekday evening events spread over several minutes.
struct Planned {
  QTime time;
  qint16 days;
  bool active;
  int route;  // 0 none, 1 the output's own input, 2 its spare input
};
std::vector<Planned> PlanFor(int i) {
  return {{QTime(6, 0), kWeekdays, true, 1},  {QTime(7, 30), kWeekend, true, 1},
          {QTime(12, 0), kEveryDay, true, 2}, {QTime(12, 1), kEveryDay, false, 0},
          {QTime(14, 2), kEveryDay, true, 0}, {QTime(18, 0), kEveryDay, false, 0},
          {QTime(18, 1), kEveryDay, true, 0}, {QTime(22, 0).addSecs(7 * i), kWeekdays, false, 0},
          {QTime(23, 0), kWeekend, false, 0}};
}

// Every day, a tick that would reach `at` reaches `to` instead: two seconds forward over the
// first weekday event, four minutes forward over the 14:02 event, one minute back after the
// 18:00 pair has run.
struct Step {
  QTime at, to;
};
const Step kSteps[] = {{QTime(6, 0), QTime(6, 0, 2)},
                       {QTime(14, 0), QTime(14, 4)},
                       {QTime(18, 1, 30), QTime(18, 0, 30)}};

// The stamp an event's report line must carry: its own second, or where a step landed.
QTime ReportTime(QTime at) {
  for (const Step& step : kSteps) {
    if (step.at < step.to && step.at <= at && at < step.to) {
      return step.to;
    }
  }
  return at;
}

// What the monitor's tables hold, the resident size and the open file descriptors.
struct Footprint {
  qint64 entries = 0, residentBytes = 0, descriptors = 0;
};

Footprint Measure(const State& s) {
  // The message list is left out: it fills up to MaxDisplay rows, at its own pace.
  Footprint f;
  f.entries = s.ReceiveBuffer.size() + s.SilenceGraceUntil.size() + s.requests.RequestList.size() +
              s.panels.outputs.size() + s.OutputNames.size() + s.InputNames.size() +
              s.RelayNames.size() + s.SortedOutputNames.size() + s.CrosspointMap.size() +
              s.SilenceStatus.size() + s.RelayStates.size();
  for (const OutputEntry& o : s.Outputs) {
    // An event's last run is kept from its first run on: growth only past one per event.
    f.entries += o.Events.size() + std::max(o.LastRun.size(), o.Events.size());
  }
  QFile statm(QStringLiteral("/proc/self/statm"));
  if (statm.open(QIODevice::ReadOnly)) {
    f.residentBytes = statm.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
  }
  f.descriptors =
      QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size();
  return f;
}

class Soak : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir_.isValid());
    State setup;
    setup.AppPath = dir_.path() + QLatin1Char('/');
    setup.MaxLogFileSize = 1;  // KiB: the activity log rotates many times a day
    setup.AlarmRelay = 1;
    setup.OutputCount = setup.PanelsLoaded = kWatched;
    setup.Outputs.assign(kWatched, OutputEntry());
    for (int i = 0; i < kWatched; ++i) {
      OutputEntry& o = setup.Outputs[i];
      o.Output = static_cast<qint16>(i + 1);
      o.Events.clear();
      for (const Planned& p : PlanFor(i)) {
        ScheduledEvent& e = o.Events.emplace_back();
        e.Time = p.time.toString(QStringLiteral("HH:mm:ss"));
        e.Days = p.days;
        e.Active = p.active;
        e.DisplayOption = 2;
        e.Label = QStringLiteral("Event %1").arg(o.Events.size() - 1).leftJustified(12);
        e.Connect = p.route != 0;
        e.Source = static_cast<qint16>(p.route == 2 ? i + 65 : i + 1);
      }
      o.EventCount = static_cast<qint16>(o.Events.size());
    }
    ASSERT_TRUE(WriteConfiguration(setup) && SaveEvents(setup));

    clock_.Set(kStart);
    monitor_.state().link = &link_;
    monitor_.Start();
    switcher_.Serve(0);
    ASSERT_TRUE(monitor_.state().linkState.ExchangeComplete);
  }

  QTemporaryDir dir_;
  ManualClock clock_;
  FakeLink link_;
  Monitor monitor_{dir_.path(), &clock_};
  WireSwitcher switcher_{monitor_.state(), link_};
};

// Outputs 1-4 lose their own inputs from 10:10 to 10:20; output 1 its spare input (routed at noon)
// from 15:00 to 15:05: two alarm episodes a day, five silences.
TEST_F(Soak, OutputModeWeek) {
  // Poll ticks over the whole run, with the clock steps and the audio cues of every day. The
  // footprint is taken every half day, so a one-day run compares two.
  std::vector<Footprint> footprints;
  std::map<const Step*, QDate> stepped;
  qint64 ms = 0;
  for (int half = 1; half <= 2 * kDays; ++half) {
    while (clock_.Now() < kStart.addSecs(half * 43200)) {
      QDateTime next = clock_.Now().addMSecs(500);
      for (const Step& step : kSteps) {
        if (next.time() == step.at && stepped[&step] != next.date()) {
          stepped[&step] = next.date();
          next.setTime(step.to);
        }
      }
      clock_.Set(next);
      const QTime at = next.time();
      if (at == QTime(10, 10) || at == QTime(10, 20)) {
        for (int input : {0, 1, 2, 3}) {
          switcher_.SetInputAudio(input, at == QTime(10, 20));
        }
      } else if (at == QTime(15, 0) || at == QTime(15, 5)) {
        switcher_.SetInputAudio(64, at == QTime(15, 5));
      }
      monitor_.Poll();
      switcher_.Serve(ms += 500);
    }
    footprints.push_back(Measure(monitor_.state()));
  }

  // Every occurrence within the run ran once, at its second or where a step landed it, and
  // nothing else ran.
  const QString format = QStringLiteral("ddd yyyy-MM-dd HH:mm:ss");
  QStringList due;
  for (QDate date = kStart.date(); date <= kStart.addDays(kDays).date(); date = date.addDays(1)) {
    for (int i = 0; i < kWatched; ++i) {
      const std::vector<Planned> plan = PlanFor(i);
      for (int j = 0; j < static_cast<int>(plan.size()); ++j) {
        const QDateTime at(date, plan[j].time);
        if ((plan[j].days & (1 << (date.dayOfWeek() - 1))) != 0 && at >= kStart &&
            at < kStart.addDays(kDays)) {
          due << QStringLiteral("%1 [%2] Event %3")
                     .arg(QDateTime(date, ReportTime(plan[j].time)).toString(format))
                     .arg(i + 1, 4, 10, QLatin1Char('0'))
                     .arg(j);
        }
      }
    }
  }
  // The activity log and all its rotated copies, read together: each starts with its header and
  // a rotated one was full. The log rotated many times, several times within one minute.
  const QStringList files =
      QDir(dir_.path()).entryList({QStringLiteral("EventLog*.txt")}, QDir::Files);
  EXPECT_GT(files.size(), 15 * kDays + 1);
  EXPECT_GT(files.filter(QStringLiteral(" (")).size(), 0);
  const QRegularExpression report(QStringLiteral(R"(^Event (\d) +\[(\d{4})\] Monitoring)"));
  QStringList ran;
  std::map<QString, int> count;  // of each message, after the output it names if any
  for (const QString& name : files) {
    QFile file(dir_.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    if (name != QLatin1String("EventLog.txt")) {
      EXPECT_GE(file.size(), 1024) << name.toStdString() << " was rotated before it was full";
    }
    const QStringList text = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
    EXPECT_EQ(text.value(7), QStringLiteral("ZRN Pennaro Logfile")) << name.toStdString();
    for (const QString& line : text.mid(12)) {
      const QDateTime stamp =
          QLocale(QLocale::English, QLocale::UnitedStates)
              .toDateTime(line.left(28), QStringLiteral("ddd, MMM dd, yyyy - HH:mm:ss"));
      EXPECT_TRUE(stamp.isValid() || line.isEmpty()) << line.toStdString();
      const QString message = line.mid(55);
      const QRegularExpressionMatch m = report.match(message);
      if (m.hasMatch()) {
        ran << QStringLiteral("%1 [%2] Event %3")
                   .arg(stamp.toString(format), m.captured(2), m.captured(1));
      }
      ++count[message.section(QLatin1Char(']'), -1).trimmed()];
    }
  }
  due.sort();
  ran.sort();
  EXPECT_EQ(ran.join(u'\n').toStdString(), due.join(u'\n').toStdString());
  EXPECT_EQ(count["Silence Alarm Status ON!"], 5 * kDays);
  EXPECT_EQ(count["Silence Alarm Status OFF!"], 5 * kDays);
  EXPECT_EQ(count["Loss Alarm Report On"], 2 * kDays);
  EXPECT_EQ(count["Loss Alarm Report Off"], 2 * kDays);

  // Each alarm episode latched and released the relay once, and the monitor shows it released
  // at the end. No error was trapped, and the switcher kept the first connection all week.
  const State& s = monitor_.state();
  EXPECT_EQ(std::pair(switcher_.latches, switcher_.releases), std::pair(2 * kDays, 2 * kDays));
  EXPECT_EQ(s.RelayStates.at(0), 0);
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampGrey);
  EXPECT_FALSE(QFile::exists(dir_.filePath(QStringLiteral("Errorlog.txt"))));
  EXPECT_EQ(link_.opens, 1);

  // No growth: from the first half day's end to the last one's the tables hold as many
  // entries, no descriptor stays open and the resident size stays within the allocator's slack.
  const Footprint& first = footprints.front();
  const Footprint& last = footprints.back();
  EXPECT_EQ(last.entries, first.entries);
  EXPECT_LE(s.MessageRows.size(), s.MaxDisplay);
  EXPECT_LE(last.descriptors, first.descriptors);
#ifndef ZRN_SOAK_ASAN  // the sanitizer's quarantine holds freed memory on purpose
  EXPECT_LE(last.residentBytes - first.residentBytes, 4 << 20)
      << "resident " << first.residentBytes << " -> " << last.residentBytes;
#endif
}

}  // namespace
}  // namespace zrn::test
