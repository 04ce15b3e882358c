#include <algorithm>
#include <array>
#include <random>

#include "e2e/sim_process.h"
#include "monitor/monitor.h"

namespace zrn {
namespace {

constexpr int kWatched = 4;

// What can happen to the switcher, picked at random. Control lines: relay 1 is the alarm relay,
// which the monitor drives itself; inputs are mostly those of watched outputs. Faults: "kill"
// (and start a new one on the same port, at once or in the middle of a new exchange), "drop"
// and "garbage".
const char* const kEvents[] = {
    "route 6 1",      "route 1 2",      "route none 3",   "route 8 4",      "route 2 7",
    "relay 2 on",     "relay 7 on",     "relay 2 off",    "relay 7 off",    "input 1 silent",
    "input 2 silent", "input 3 silent", "input 4 silent", "input 6 silent", "input 8 silent",
    "input 1 audio",  "input 2 audio",  "input 3 audio",  "input 4 audio",  "input 6 audio",
    "kill",           "drop",           "garbage"};

// Stray bytes, a message of a type nobody handles, reports cut short, a map too short and one
// with a wrong checksum: none of them may change a table.
const char* const kGarbage =
    "send 12 34 9A 01 7F FF CB 0A F6 01 05 FF F1 C3 FF F7 28 F6 01 01 00 02 00 00 00 00 00 FF "
    "FC 14 03 FF";

// ZRN_FAULT_STEPS and ZRN_FAULT_SEED lengthen or repeat a run.
unsigned Setting(const char* name, unsigned fallback) {
  bool ok = false;
  const unsigned value = qEnvironmentVariable(name).toUInt(&ok);
  return ok && value > 0 ? value : fallback;
}

// The 1-based numbers of the entries on() holds for, as "1,5", or "-" for none.
template <class Table, class On>
QString List(const Table& table, On on) {
  QStringList out;
  for (size_t i = 0; i < table.size(); ++i) {
    if (on(table[i])) {
      out << QString::number(i + 1);
    }
  }
  return out.isEmpty() ? QStringLiteral("-") : out.join(u',');
}

// The monitor in this process against the simulator in its own, through random changes and
// faults; after each the monitor must hold what the simulator holds and have logged every alarm.
class FaultInjection : public test::SimFixture {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(StartSim(kSimOptions));
    ASSERT_NO_FATAL_FAILURE(Launch(QStringLiteral("Output"), kWatched, &clock));
  }

  // Silence and its end are reported at once, so every alarm can be waited for.
  inline static const QStringList kSimOptions{"--detect", "0", "--return", "0"};

  std::array<int, kWatched> AlarmLines() const {
    std::array<int, kWatched> lines{};
    for (int o = 0; o < kWatched; ++o) {
      lines[o] = static_cast<int>(Log().count(
          QStringLiteral("[%1] Silence Alarm Status ON!").arg(o + 1, 4, 10, QChar(u'0'))));
    }
    return lines;
  }

  int ErrorLines(const QString& text) const {
    return static_cast<int>(Log("Errorlog.txt").count(text));
  }

  // Relays on, silent outputs and routes of outputs 1..16 in the simulator's status form.
  QStringList MonitorView() const {
    const State& s = monitor->state();
    QStringList routes;
    for (int o = 0; o < 16 && o < static_cast<int>(s.CrosspointMap.size()); ++o) {
      const CrosspointEntry& entry = s.CrosspointMap[static_cast<size_t>(o)];
      routes << QStringLiteral("%1:%2").arg(o + 1).arg(
          entry.SourceCount == 0 ? QStringLiteral("-") : QString::number(entry.Sources[0] + 1));
    }
    return {"relays_on=" + List(s.RelayStates, [](qint16 on) { return on == 1; }),
            "silent_outputs=" + List(s.SilenceStatus, [](const auto& e) { return e.Status & 1; }),
            "routes=" + routes.join(u',')};
  }

  // Route map, relays, silence and names as the simulator has them.
  void ExpectInStep() {
    QString status;
    const bool same = QTest::qWaitFor(
        [&] {
          status = sim->Command(QStringLiteral("status")) + QLatin1Char(' ');
          return monitor->state().linkState.ExchangeComplete &&
                 std::ranges::all_of(MonitorView(), [&](const QString& field) {
                   return status.contains(QLatin1Char(' ') + field + QLatin1Char(' '));
                 });
        },
        10000);
    ASSERT_TRUE(same) << "simulator: " << status.toStdString()
                      << "\nmonitor:   " << MonitorView().join(u' ').toStdString();
    ASSERT_EQ(monitor->state().OutputNames.value(255), QStringLiteral("OUT 256 ")) << "names whole";
  }

  // Reconnects at once instead of at the next tick of the poll timer.
  void Reconnect() {
    ASSERT_TRUE(QTest::qWaitFor([&] { return !monitor->state().Connected; }, 5000));
    monitor->Poll();
  }

  void Apply(const QString& event) {
    std::array<int, kWatched> alarms = AlarmLines();
    if (event == QLatin1String("kill")) {
      if (random() % 2 == 0) {
        sim->Command(QStringLiteral("drop"));
        ASSERT_NO_FATAL_FAILURE(Reconnect());
      }
      QTest::qWait(static_cast<int>(random() % 60));
      sim->Kill();
      ASSERT_TRUE(QTest::qWaitFor([&] { return !monitor->state().Connected; }, 5000));
      ASSERT_NO_FATAL_FAILURE(StartSim(kSimOptions));
      monitor->Poll();
    } else if (event == QLatin1String("drop")) {
      ASSERT_TRUE(sim->Command(QStringLiteral("drop")).startsWith(QStringLiteral("ok dropped 1")));
      ASSERT_NO_FATAL_FAILURE(Reconnect());
    } else {
      const QStringList before = sim->Status(QStringLiteral("silent_outputs")).split(u',');
      const QString line = event == QLatin1String("garbage") ? QLatin1String(kGarbage) : event;
      ASSERT_TRUE(sim->Command(line).startsWith(QStringLiteral("ok")));
      const QStringList after = sim->Status(QStringLiteral("silent_outputs")).split(u',');
      for (int o = 0; o < kWatched; ++o) {
        const QString output = QString::number(o + 1);
        alarms[o] += after.contains(output) && !before.contains(output) ? 1 : 0;
      }
    }
    ASSERT_TRUE(WaitForExchange()) << "no complete exchange after the event";
    ASSERT_NO_FATAL_FAILURE(ExpectInStep());
    const bool logged = QTest::qWaitFor([&] { return AlarmLines() == alarms; }, 5000);
    EXPECT_TRUE(logged) << "alarms on outputs 1-4: " << ::testing::PrintToString(AlarmLines())
                        << " logged, " << ::testing::PrintToString(alarms) << " caused";
  }

  std::mt19937 random;
};

TEST_F(FaultInjection, MonitorFollowsTheSwitcherThroughACutReportKillsAndBrokenStreams) {
  const unsigned seed = Setting("ZRN_FAULT_SEED", std::random_device{}());
  const unsigned steps = Setting("ZRN_FAULT_STEPS", 1500);
  State& s = monitor->state();

  // A report cut short with nothing after it but keep-alive answers: the answers are taken at
  // once, so a quiet switcher that answers every poll is not dropped three minutes later.
  const QString cut = QStringLiteral("Incomplete Message F6");
  ASSERT_TRUE(sim->Command(QStringLiteral("send F6 01")).startsWith(QStringLiteral("ok")));
  // Held until a byte after it shows it cut short, such as the answer to a poll in flight.
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return s.ReceiveBuffer.startsWith("\xF6\x01") || ErrorLines(cut) > 0; }, 5000));
  // Five ticks send three polls.
  for (int tick = 0; tick < 5; ++tick) {
    monitor->Poll();
  }
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return s.linkState.NoResponseCount == 0 && s.ReceiveBuffer.isEmpty(); }, 5000))
      << s.linkState.NoResponseCount
      << " polls unanswered, waiting: " << s.ReceiveBuffer.toHex(' ').toStdString();
  EXPECT_EQ(ErrorLines(cut), 1);

  random.seed(seed);
  for (unsigned n = 0; n < steps; ++n) {
    const QString event = QLatin1String(kEvents[random() % std::size(kEvents)]);
    SCOPED_TRACE(QStringLiteral("step %1: %2, seed %3").arg(n).arg(event).arg(seed).toStdString());
    // A minute per step keeps one step's error lines apart from the last one's.
    clock.AdvanceSeconds(61);
    ASSERT_NO_FATAL_FAILURE(Apply(event));
  }
  // Every fault above is one the program traps for what it is; none may surface as a failure
  // of the program itself.
  const QString errors = Log("Errorlog.txt");
  EXPECT_FALSE(errors.contains(QStringLiteral("Error # ")))
      << "seed " << seed << errors.toStdString();
}

}  // namespace
}  // namespace zrn
