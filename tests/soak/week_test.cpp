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
#include "storage/shows_file.h"
#include "support/fake_link.h"
#include "support/on_air.h"
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

// Audio leaving (false) or coming back to a switcher input at a time of day.
struct Cue {
  QTime at;
  int input;
  bool audio;
};

struct Line {
  QDateTime stamp;
  QString message;
};

// What the monitor's tables hold, the resident size and the open file descriptors.
struct Footprint {
  qint64 entries = 0;
  qint64 residentBytes = 0;
  qint64 descriptors = 0;
};

Footprint Measure(const State& s) {
  // The message list is left out: it fills up to MaxDisplay rows, at its own pace.
  Footprint f;
  f.entries = s.ReceiveBuffer.size() + s.SilenceGraceUntil.size() + s.ActiveShows.size() +
              s.requests.RequestList.size() + s.SilenceOuts.size() + s.panels.outputs.size() +
              s.panels.shows.size() + s.OutputNames.size() + s.InputNames.size() +
              s.RelayNames.size() + s.SortedOutputNames.size() + s.CrosspointMap.size() +
              s.SilenceStatus.size() + s.RelayStates.size();
  for (const OutputEntry& o : s.Outputs) {
    // An event's last run is kept from its first run on: growth only past one per event.
    f.entries += o.Events.size() + std::max(o.LastRun.size(), o.Events.size());
  }
  for (const ShowRecord& show : s.Shows) {
    f.entries += show.StudioLeft.size() + show.IgnoreWindows.size() + show.OutputLeft.size();
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
  void TearDown() override {
    if (HasFailure()) {
      dir_.setAutoRemove(false);
      std::fprintf(stderr, "kept soak folder %s\n", qPrintable(dir_.path()));
    }
  }

  // Writes the configuration, events and shows files, then starts the monitor from them on
  // the fake link, served by the scripted switcher.
  void StartUp(qint16 programMode, const std::vector<ShowRecord>& shows) {
    ASSERT_TRUE(dir_.isValid());
    State setup;
    setup.AppPath = dir_.path() + QLatin1Char('/');
    setup.MaxLogFileSize = 1;  // KiB: the activity log rotates many times a day
    setup.AlarmRelay = 1;
    setup.ProgramMode = programMode;
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
    setup.Shows = shows;
    setup.ShowCount = static_cast<qint16>(shows.size());
    for (qint16 out : {200, 201, 202, 203}) {
      setup.SilenceOuts.push_back(SilenceOut{.Output = out});
    }
    setup.SilenceOutCount = static_cast<qint16>(setup.SilenceOuts.size());
    ASSERT_TRUE(WriteConfiguration(setup) && SaveEvents(setup) && SaveShows(setup));

    clock_.Set(kStart);
    monitor_.state().link = &link_;
    monitor_.Start();
    switcher_.Serve(0);
    ASSERT_TRUE(s().linkState.ExchangeComplete);
  }

  // Poll ticks over the whole run, with the clock steps and the audio cues of every day; `each`
  // runs after every tick. The footprint is taken every half day, so a one-day run compares
  // two.
  template <class Each>
  void Run(const std::vector<Cue>& cues, Each&& each) {
    std::map<const Step*, QDate> stepped;
    qint64 ms = 0;
    for (int half = 1; half <= 2 * kDays; ++half) {
      const QDateTime end = kStart.addSecs(half * 43200);
      while (clock_.Now() < end) {
        QDateTime next = clock_.Now().addMSecs(500);
        for (const Step& step : kSteps) {
          if (next.time() == step.at && stepped[&step] != next.date()) {
            stepped[&step] = next.date();
            next.setTime(step.to);
          }
        }
        clock_.Set(next);
        for (const Cue& cue : cues) {
          if (next.time() == cue.at) {
            switcher_.SetInputAudio(cue.input, cue.audio);
          }
        }
        monitor_.Poll();
        switcher_.Serve(ms += 500);
        each(next);
      }
      footprints_.push_back(Measure(s()));
    }
  }

  // Every line of the activity log and of its rotated copies. Each file must start with its
  // header, and a rotated one must have been full.
  std::vector<Line> ActivityLines() {
    std::vector<Line> lines;
    const QStringList files =
        QDir(dir_.path()).entryList({QStringLiteral("EventLog*.txt")}, QDir::Files);
    for (const QString& name : files) {
      QFile file(dir_.filePath(name));
      EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
      if (name != QLatin1String("EventLog.txt")) {
        EXPECT_GE(file.size(), 1024) << name.toStdString() << " was rotated before it was full";
      }
      const QStringList text = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
      EXPECT_EQ(text.value(7), QStringLiteral("ZRN Pennaro Logfile")) << name.toStdString();
      for (const QString& line : text.mid(12)) {
        if (!line.isEmpty()) {
          const QDateTime stamp =
              QLocale(QLocale::English, QLocale::UnitedStates)
                  .toDateTime(line.left(28), QStringLiteral("ddd, MMM dd, yyyy - HH:mm:ss"));
          EXPECT_TRUE(stamp.isValid()) << line.toStdString();
          lines.push_back({stamp, line.mid(55)});
        }
      }
    }
    rotatedFiles_ = files.size() - 1;
    sameMinuteRotations_ = files.filter(QStringLiteral(" (")).size();
    return lines;
  }

  // Each alarm episode latched and released the relay once, with one line each way, and the
  // relay is released at the end, as reported and as drawn. No error was trapped, the switcher
  // kept the first connection all week, and the run leaves no growth behind: from the first
  // half day's end to the last one's the tables hold as many entries, no descriptor stays open
  // and the resident size stays within the allocator's slack.
  void ExpectCleanRun(const std::vector<Line>& lines, int episodes) {
    for (const char* report : {"Loss Alarm Report On", "Loss Alarm Report Off"}) {
      EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                              [&](const Line& l) { return l.message == QLatin1String(report); }),
                episodes)
          << report;
    }
    EXPECT_EQ(switcher_.latches, episodes);
    EXPECT_EQ(switcher_.releases, episodes);
    EXPECT_EQ(switcher_.state().relays[0], 0);
    EXPECT_EQ(s().RelayStates.at(0), 0);
    EXPECT_EQ(s().panels.window.alarmLampColour, kLampGrey);
    QFile errors(dir_.filePath(QStringLiteral("Errorlog.txt")));
    EXPECT_FALSE(errors.open(QIODevice::ReadOnly)) << errors.readAll().toStdString();
    EXPECT_EQ(link_.opens, 1);

    const Footprint& first = footprints_.front();
    const Footprint& last = footprints_.back();
    EXPECT_EQ(last.entries, first.entries);
    EXPECT_LE(s().MessageRows.size(), s().MaxDisplay);
    EXPECT_LE(last.descriptors, first.descriptors);
#ifndef ZRN_SOAK_ASAN  // the sanitizer's quarantine holds freed memory on purpose
    EXPECT_LE(last.residentBytes - first.residentBytes, 4 << 20)
        << "resident " << first.residentBytes << " -> " << last.residentBytes;
#endif
  }

  State& s() {
    return monitor_.state();
  }

  QTemporaryDir dir_;
  ManualClock clock_;
  FakeLink link_;
  Monitor monitor_{dir_.path(), &clock_};
  WireSwitcher switcher_{monitor_.state(), link_};
  std::vector<Footprint> footprints_;
  qsizetype rotatedFiles_ = 0;
  qsizetype sameMinuteRotations_ = 0;
};

TEST_F(Soak, OutputModeWeek) {
  StartUp(0, {});
  // Outputs 1-4 lose their own inputs in the morning; output 1 its spare input (routed at
  // noon) in the afternoon: two alarm episodes a day, five silences.
  std::vector<Cue> cues = {{QTime(15, 0), 64, false}, {QTime(15, 5), 64, true}};
  for (int input : {0, 1, 2, 3}) {
    cues.push_back({QTime(10, 10), input, false});
    cues.push_back({QTime(10, 20), input, true});
  }
  Run(cues, [](const QDateTime&) {});

  // Every occurrence within the run ran once, at its second or where a step landed it, and
  // nothing else ran (the activity log and all its rotated copies read together).
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
  const std::vector<Line> lines = ActivityLines();
  const QRegularExpression report(QStringLiteral(R"(^Event (\d) +\[(\d{4})\] Monitoring)"));
  QStringList ran;
  int on = 0, off = 0;
  for (const Line& line : lines) {
    const QRegularExpressionMatch m = report.match(line.message);
    if (m.hasMatch()) {
      ran << QStringLiteral("%1 [%2] Event %3")
                 .arg(line.stamp.toString(format), m.captured(2), m.captured(1));
    }
    on += line.message.endsWith(QStringLiteral("] Silence Alarm Status ON!")) ? 1 : 0;
    off += line.message.endsWith(QStringLiteral("] Silence Alarm Status OFF!")) ? 1 : 0;
  }
  due.sort();
  ran.sort();
  EXPECT_EQ(ran.join(u'\n').toStdString(), due.join(u'\n').toStdString());
  // Each silence is reported once each way.
  EXPECT_EQ(on, 5 * kDays);
  EXPECT_EQ(off, 5 * kDays);

  // The log rotated many times, several times within one minute, and kept every copy (the
  // counts above come from all of them).
  EXPECT_GT(rotatedFiles_, 15 * kDays);
  EXPECT_GT(sameMinuteRotations_, 0);
  ExpectCleanRun(lines, 2 * kDays);
}

TEST_F(Soak, ShowModeWeek) {
  // Two shows a day on the same downlink (input 12), overlapping from 09:00 to 10:00; the
  // later one ignores silence from 10:30 to 10:45.
  ShowRecord morning = MakeNewShow();
  morning.Name = QStringLiteral("Morning");
  PutOnAir(morning, QStringLiteral("08:00:00"), QStringLiteral("10:00:00"), 12);
  morning.StudioLeft[0].Channel = 13;
  ShowRecord late = morning;
  late.Name = QStringLiteral("Late Morning");
  PutOnAir(late, QStringLiteral("09:00:00"), QStringLiteral("11:00:00"), 12);
  late.StudioLeft[0].Channel = 14;
  late.IgnoreCount = 1;
  late.IgnoreWindows = {IgnoreWindow{QStringLiteral("10:30:00"), QStringLiteral("10:45:00")}};
  StartUp(1, {morning, late});

  // Input 12 also feeds watched output 13, whose monitoring is on: in show mode that must not
  // alarm. The silences at 08:30 (one show) and 09:20 (both) alarm once each; the one inside
  // the ignore window does not.
  const std::vector<Cue> cues = {{QTime(8, 30), 12, false},  {QTime(8, 35), 12, true},
                                 {QTime(9, 20), 12, false},  {QTime(9, 25), 12, true},
                                 {QTime(10, 35), 12, false}, {QTime(10, 40), 12, true}};
  // Each show goes on and off air once a day, at its times.
  QStringList transitions, expected;
  std::vector<quint8> was(2, 0);
  Run(cues, [&](const QDateTime& now) {
    for (int i = 0; i < 2; ++i) {
      if (s().Shows[i].ActivityState != was[i]) {
        was[i] = s().Shows[i].ActivityState;
        transitions << s().Shows[i].Name + (was[i] != 0 ? " on " : " off ") + now.toString();
      }
    }
  });
  for (int d = 0; d < kDays; ++d) {
    const QDate date = kStart.date().addDays(d);
    expected << "Morning on " + QDateTime(date, QTime(8, 0)).toString()
             << "Late Morning on " + QDateTime(date, QTime(9, 0)).toString()
             << "Morning off " + QDateTime(date, QTime(10, 0, 1)).toString()
             << "Late Morning off " + QDateTime(date, QTime(11, 0, 1)).toString();
  }
  EXPECT_EQ(transitions.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
  ExpectCleanRun(ActivityLines(), 2 * kDays);
}

}  // namespace
}  // namespace zrn::test
