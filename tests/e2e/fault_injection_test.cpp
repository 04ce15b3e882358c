#include <array>
#include <cstdio>
#include <random>

#include "e2e/sim_process.h"
#include "monitor/monitor.h"
#include "support/bytes.h"

namespace zrn {
namespace {

// Outputs 1..4 are watched; inputs and outputs 1..8 are changed at random.
constexpr int kWatched = 4;
constexpr int kStirred = 8;

// What each cycle does besides the kill; in turn, so a short run still meets every kind.
enum class Fault { kKillOnly, kDrop, kMute, kGarbage, kCount };

// ZRN_FAULT_CYCLES and ZRN_FAULT_SEED lengthen or repeat a run.
unsigned Setting(const char* name, unsigned fallback) {
  bool ok = false;
  const unsigned value = qEnvironmentVariable(name).toUInt(&ok);
  return ok && value > 0 ? value : fallback;
}

// "1,5" of the 1-based numbers for which pick is true, "-" for none, as the status line has it.
template <class Pick>
QString List(int count, Pick pick) {
  QStringList out;
  for (int i = 0; i < count; ++i) {
    if (pick(i)) {
      out << QString::number(i + 1);
    }
  }
  return out.isEmpty() ? QStringLiteral("-") : out.join(u',');
}

// The monitor in this process against the simulator in its own, which is killed and started
// again on the same port every cycle, with other faults mixed in.
class FaultInjection : public test::SimFixture {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(StartSim(kSimOptions));
    ASSERT_NO_FATAL_FAILURE(Launch(QStringLiteral("Output"), kWatched, &clock));
    const State& s = monitor->state();
    ASSERT_EQ(s.OutputNames.value(255), QStringLiteral("OUT 256 "));
    names = s.InputNames + s.OutputNames + s.OptoNames + s.RelayNames;
  }

  // Silence and its end are reported at once, so every alarm can be waited for.
  inline static const QStringList kSimOptions{"--detect", "0", "--return", "0"};

  // Reconnects at once instead of at the next tick of the poll timer.
  void Reconnect() {
    ASSERT_TRUE(QTest::qWaitFor([&] { return !monitor->state().Connected; }, 5000));
    monitor->Poll();
  }

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

  // The simulator's status as "routes / relays on / silent outputs".
  QString SimView() {
    const QMap<QString, QString> status = sim->StatusFields();
    return status.value(QStringLiteral("routes")) + QStringLiteral(" / ") +
           status.value(QStringLiteral("relays_on")) + QStringLiteral(" / ") +
           status.value(QStringLiteral("silent_outputs"));
  }

  // The monitor's tables in the same form.
  QString MonitorView() const {
    const State& s = monitor->state();
    QStringList routes;
    for (int o = 0; o < 16 && o < static_cast<int>(s.CrosspointMap.size()); ++o) {
      const CrosspointEntry& entry = s.CrosspointMap[static_cast<size_t>(o)];
      routes << QStringLiteral("%1:%2").arg(o + 1).arg(
          entry.SourceCount == 0 ? QStringLiteral("-") : QString::number(entry.Sources[0] + 1));
    }
    const QString relays = List(static_cast<int>(s.RelayStates.size()),
                                [&](int r) { return s.RelayStates[static_cast<size_t>(r)] == 1; });
    const QString silent = List(static_cast<int>(s.SilenceStatus.size()), [&](int o) {
      return (s.SilenceStatus[static_cast<size_t>(o)].Status & 1) != 0;
    });
    return routes.join(u',') + QStringLiteral(" / ") + relays + QStringLiteral(" / ") + silent;
  }

  // Names, route map, relays and silence as the simulator has them.
  void ExpectInStep() {
    QString simView;
    const bool same = QTest::qWaitFor(
        [&] {
          simView = SimView();
          return monitor->state().linkState.ExchangeComplete && simView == MonitorView();
        },
        10000);
    ASSERT_TRUE(same) << "simulator: " << simView.toStdString()
                      << "\nmonitor:   " << MonitorView().toStdString();
    const State& s = monitor->state();
    ASSERT_EQ(names, s.InputNames + s.OutputNames + s.OptoNames + s.RelayNames);
  }

  int Pick(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

  QStringList SilentOutputs() { return sim->Status(QStringLiteral("silent_outputs")).split(u','); }

  // A few random changes on the simulator; counts the alarms they cause on watched outputs.
  void Stir(int changes, std::array<int, kWatched>* alarms) {
    QStringList before = SilentOutputs();
    for (int i = 0; i < changes; ++i) {
      const int kind = Pick(10);
      // Relay 1 is the alarm relay, which the monitor drives itself. Inputs are mostly those of
      // watched outputs, mostly falling silent.
      const QString command =
          kind < 3 ? QStringLiteral("route %1 %2")
                         .arg(Pick(6) == 0 ? QStringLiteral("none")
                                           : QString::number(1 + Pick(kStirred)))
                         .arg(1 + Pick(kStirred))
          : kind < 5 ? QStringLiteral("relay %1 %2").arg(2 + Pick(15)).arg(Pick(2) ? "on" : "off")
                     : QStringLiteral("input %1 %2")
                           .arg(1 + Pick(Pick(3) ? kWatched : kStirred))
                           .arg(Pick(3) ? "silent" : "audio");
      ASSERT_TRUE(sim->Command(command).startsWith(QStringLiteral("ok"))) << command.toStdString();
      const QStringList after = SilentOutputs();
      for (int o = 0; o < kWatched && alarms != nullptr; ++o) {
        const QString output = QString::number(o + 1);
        (*alarms)[o] += after.contains(output) && !before.contains(output) ? 1 : 0;
      }
      before = after;
    }
  }

  // Stray bytes, messages of a type nobody handles and reports cut short, strung together at
  // random: too short to change any table.
  QString Garbage() {
    static const char* const kPieces[] = {"12",    "34 05", "9A 01 7F FF", "C3 FF", "CB 0A",
                                          "F6 01", "F7 28", "FC 14 03",    "FF",    "F1"};
    QStringList pieces;
    for (int n = 1 + Pick(6); n > 0; --n) {
      pieces << QLatin1String(kPieces[Pick(static_cast<int>(std::size(kPieces)))]);
    }
    return pieces.join(u' ');
  }

  void Cycle(Fault fault) {
    State& s = monitor->state();
    // A minute per cycle keeps one cycle's error lines apart from the last one's.
    clock.AdvanceSeconds(61);
    std::array<int, kWatched> alarms = AlarmLines();

    if (fault == Fault::kDrop) {
      ASSERT_TRUE(sim->Command(QStringLiteral("drop")).startsWith(QStringLiteral("ok dropped 1")));
      ASSERT_NO_FATAL_FAILURE(Reconnect());
      ASSERT_TRUE(WaitForExchange());
    } else if (fault == Fault::kMute) {
      // 201 unanswered polls at the timer's pace would take nearly three minutes; polled here as
      // fast as the loop goes. Answers to polls sent before the mute may still start the count
      // afresh.
      const QString dropped = QStringLiteral("Disconnecting - No Response from Server");
      const int before = ErrorLines(dropped);
      ASSERT_EQ(sim->Command(QStringLiteral("mute on")), QStringLiteral("ok mute on"));
      for (int tick = 0; tick < 2000 && s.Connected; ++tick) {
        monitor->Poll();
        QCoreApplication::processEvents();
      }
      ASSERT_FALSE(s.Connected) << "the watchdog did not drop a switcher that stopped answering: "
                                << s.linkState.NoResponseCount << " polls unanswered";
      EXPECT_EQ(ErrorLines(dropped), before + 1);
      sim->Command(QStringLiteral("mute off"));
      monitor->Poll();
      ASSERT_TRUE(WaitForExchange());
    } else if (fault == Fault::kGarbage) {
      for (int burst = 1 + Pick(3); burst > 0; --burst) {
        ASSERT_TRUE(
            sim->Command(QStringLiteral("send ") + Garbage()).startsWith(QStringLiteral("ok")));
        ASSERT_NO_FATAL_FAILURE(Stir(1, &alarms));
      }
    }

    // The monitor follows every change after the fault, and reports every alarm.
    ASSERT_NO_FATAL_FAILURE(Stir(1 + Pick(4), &alarms));
    ASSERT_NO_FATAL_FAILURE(ExpectInStep());
    const bool logged = QTest::qWaitFor([&] { return AlarmLines() == alarms; }, 5000);
    EXPECT_TRUE(logged) << "alarms on outputs 1-4: " << ::testing::PrintToString(AlarmLines())
                        << " logged, " << ::testing::PrintToString(alarms) << " caused";

    // Killed at a random moment: just after more changes, or in the middle of a new exchange.
    ASSERT_NO_FATAL_FAILURE(Stir(Pick(3), nullptr));
    if (Pick(4) == 0) {
      sim->Command(QStringLiteral("drop"));
      ASSERT_NO_FATAL_FAILURE(Reconnect());
    }
    QTest::qWait(Pick(60));
    sim->Kill();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));

    // A new switcher on the same port: the monitor takes all its state afresh.
    ASSERT_NO_FATAL_FAILURE(StartSim(kSimOptions));
    monitor->Poll();
    ASSERT_TRUE(WaitForExchange()) << "no complete exchange with the restarted simulator";
    ASSERT_NO_FATAL_FAILURE(ExpectInStep());
  }

  QStringList names;
  std::mt19937 random;
};

TEST_F(FaultInjection, MonitorFollowsTheSwitcherThroughKillsAndBrokenStreams) {
  const unsigned seed = Setting("ZRN_FAULT_SEED", std::random_device{}());
  const unsigned cycles = Setting("ZRN_FAULT_CYCLES", 120);
  std::printf(
      "fault injection: %u cycles, seed %u (ZRN_FAULT_SEED and ZRN_FAULT_CYCLES repeat it)\n",
      cycles, seed);
  std::fflush(stdout);
  random.seed(seed);
  for (unsigned n = 0; n < cycles; ++n) {
    const auto fault = static_cast<Fault>(n % static_cast<unsigned>(Fault::kCount));
    SCOPED_TRACE(QStringLiteral("cycle %1 (fault %2: kill only, drop, mute, garbage), seed %3")
                     .arg(n)
                     .arg(static_cast<int>(fault))
                     .arg(seed)
                     .toStdString());
    ASSERT_NO_FATAL_FAILURE(Cycle(fault));
  }
  // Every fault above is one the program traps for what it is; none may surface as a failure
  // of the program itself.
  const QString errors = Log("Errorlog.txt");
  EXPECT_FALSE(errors.contains(QStringLiteral("Error # "))) << errors.toStdString();
}

// A report cut short with nothing after it but keep-alive answers: the answers are taken at
// once, so a quiet switcher that answers every poll is not dropped three minutes later.
TEST_F(FaultInjection, AReportCutShortHoldsUpNoKeepAliveAnswer) {
  State& s = monitor->state();
  ASSERT_NO_FATAL_FAILURE(ExpectInStep());
  ASSERT_TRUE(sim->Command(QStringLiteral("send F6 01")).startsWith(QStringLiteral("ok")));
  const QString cut = QStringLiteral("Incomplete Message F6");
  // Held until a byte after it shows it cut short, such as the answer to a poll in flight.
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        return s.ReceiveBuffer.startsWith(test::Bytes({0xF6, 0x01})) || ErrorLines(cut) > 0;
      },
      5000));
  // Five ticks send three polls.
  for (int tick = 0; tick < 5; ++tick) {
    monitor->Poll();
  }
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return s.linkState.NoResponseCount == 0 && s.ReceiveBuffer.isEmpty(); }, 5000))
      << s.linkState.NoResponseCount
      << " polls unanswered, waiting: " << s.ReceiveBuffer.toHex(' ').toStdString();
  EXPECT_EQ(ErrorLines(cut), 1);
}

}  // namespace
}  // namespace zrn
