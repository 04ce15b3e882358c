#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <cctype>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <utility>

#include "monitor/loss_alarm.h"
#include "monitor/panel_update.h"
#include "support/bytes.h"
#include "support/connected_state.h"

namespace zrn::test {

// The loss alarm's reports in the activity log.
inline const QString kOn = QStringLiteral("Loss Alarm Report On");
inline const QString kOff = QStringLiteral("Loss Alarm Report Off");
inline const QString kCanceled = QStringLiteral("Loss Alarm Report Canceled");

// A line of steps (see Steps) and the activity log lines it is to leave.
struct Scenario {
  const char* name;
  const char* steps;
  QStringList log;
};
inline void PrintTo(const Scenario& scenario, std::ostream* os) {
  *os << scenario.name;
}

// "a scenario's name" -> "AScenariosName", for parameterised test names.
inline std::string ScenarioName(const testing::TestParamInfo<Scenario>& info) {
  std::string name;
  for (const char* c = info.param.name; *c; ++c) {
    if (std::isalnum(static_cast<unsigned char>(*c))) {
      name += name.empty() || c[-1] == ' ' ? char(std::toupper(*c)) : *c;
    }
  }
  return name;
}

// Relays 3 and 2 latched and released: the frames the alarm tests watch for.
inline const QByteArray kLatch3 = Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF});
inline const QByteArray kRelease3 = Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x02, 0x00, 0x42, 0xFF});
inline const QByteArray kLatch2 = Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x01, 0x00, 0x45, 0xFF});
inline const QByteArray kRelease2 = Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x01, 0x00, 0x41, 0xFF});

// A state on a fake link that is connected and whose exchange is complete, relay 3 of four as
// the alarm relay, nothing sent yet.
class LinkedStateTest : public ConnectedStateTest {
 protected:
  void SetUp() override {
    ConnectedStateTest::SetUp();
    s.linkState.ExchangeComplete = true;
    s.SwitcherRelayCount = 4;
    s.RelayStates.assign(4, 0);
    s.AlarmRelay = 3;
    link.wire.clear();
  }
  // Switcher outputs 1..count watched, monitored, their detectors in mode and reporting audio.
  void Watch(int count, qint16 mode) {
    s.Outputs.assign(static_cast<size_t>(count), OutputEntry());
    s.OutputCount = static_cast<qint16>(count);
    for (int i = 0; i < count; ++i) {
      s.Outputs[i].Output = static_cast<qint16>(i + 1);
      s.Outputs[i].MonitoringEnabled = true;
      s.SilenceStatus[i].Mode = mode;
    }
    UpdateOutputs(s);
  }
  // What was sent since the last look.
  QByteArray Wire() { return std::exchange(link.wire, QByteArray()); }
  // Messages of the activity log after its header, without their stamps, those containing what.
  QStringList Activity(const QString& what = QString()) const {
    QStringList out;
    const QStringList lines =
        QString::fromUtf8(ReadAll(QStringLiteral("EventLog.txt"))).split(QStringLiteral("\r\n"));
    for (const QString& line : lines.mid(lines.indexOf(QString(80, QLatin1Char('-'))) + 1)) {
      if (!line.isEmpty() && !line.contains(QStringLiteral("Server Module")) &&
          line.contains(what)) {
        out << line.mid(55);
      }
    }
    return out;
  }

  // A poll tick as far as the relay is concerned.
  virtual void Tick() {
    BeginRelayTick(s);
    LossAlarmTick(s);
  }
  // Steps a test adds of its own.
  virtual bool MoreSteps(char /*step*/, const QString& /*rest*/) { return false; }
  // The outputs named by their digits report a status, in one pass.
  void Silence(const QString& outputs, quint8 status) {
    for (QChar o : outputs) {
      s.SilenceStatus[o.digitValue()].Status = status;
    }
    UpdateStatus(s);
  }
  Rgb Lamp(QChar which) const {
    return which == QLatin1Char('w')   ? s.panels.window.alarmLampColour
           : which == QLatin1Char('i') ? s.panels.shows.at(0).indicatorColour
                                       : s.panels.outputs[which.digitValue()].lamp;
  }

  // A scenario is a line of steps; lower-case steps act, '=', '#' and 'w' look:
  //   s<o...> a<o...>      outputs o report silence / audio in one pass
  //   p<o...> P<o...>      silence with a peak / a peak
  //   f<mode> q<req4> h<m> output 0's detector mode, the detector requests outstanding (both in
  //                        hex), the program mode (1: shows)
  //   r<0|1> r<4 states>   the switcher reports relay 3 / every relay
  //   t[n]                 n poll ticks (one by default); b, u, l: the tick's relay start, a lamp
  //                        pass, the tick's relay decision, each alone
  //   c  k<o>  n<o>        Cancel clicked; output o acknowledged, accepted / refused
  //   d<o> m<o>            monitoring of output o switched off / on
  //   x  o  e              link closed / connected / exchange completed
  //   A<relay|->           the alarm relay chosen in the setup
  //   g<o>  +<seconds>     output o routed anew (grace); the clock moves on
  //   _                    forget what was sent
  //   =<frames>            exactly this was sent since the last look, named in frames
  //   #<o|w|i><r|y|g|c|->  lamp of output o, the window's alarm lamp or the first show's
  //                        indicator: red, yellow, green, cyan, grey
  //   w<0|1>               the lamp pass wants the relay or not
  // Runs a scenario, a line of steps separated by spaces.
  void Steps(const char* line) {
    const QStringList steps = QString::fromLatin1(line).split(QLatin1Char(' '));
    for (int i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE(testing::Message() << "step " << i + 1 << " '" << qPrintable(steps[i]) << "'");
      Step(steps[i]);
    }
  }
  void Step(const QString& step) {
    const QString rest = step.mid(1);
    const int n = rest.toInt();
    const QHash<QChar, Rgb> lamps = {
        {'r', kLampRed}, {'y', kLampYellow}, {'g', kLampGreen}, {'c', kLampCyan}, {'-', kLampGrey}};
    const std::map<char, std::function<void()>> steps = {
        {'s', [&] { Silence(rest, 1); }},
        {'a', [&] { Silence(rest, 0); }},
        {'p', [&] { Silence(rest, 3); }},
        {'P', [&] { Silence(rest, 2); }},
        {'f', [&] { s.SilenceStatus[0].Mode = static_cast<qint16>(rest.toInt(nullptr, 16)); }},
        {'q', [&] { s.requests.Req4 = static_cast<quint8>(rest.toInt(nullptr, 16)); }},
        {'h', [&] { s.ProgramMode = static_cast<qint16>(n); }},
        {'r',
         [&] {
           for (int i = 0; i < rest.size(); ++i) {
             s.RelayStates[rest.size() == 1 ? 2 : i] = static_cast<qint16>(rest[i].digitValue());
           }
           RelayStatesReported(s);
         }},
        {'t',
         [&] {
           for (int i = 0; i < std::max(n, 1); ++i) {
             Tick();
           }
         }},
        {'b', [&] { BeginRelayTick(s); }},
        {'u', [&] { UpdateOutputs(s); }},
        {'l', [&] { LossAlarmTick(s); }},
        {'c', [&] { cmdCancel_Click(s); }},
        {'k', [&] { EXPECT_TRUE(AcknowledgeLossAlarm(s, n)); }},
        {'n', [&] { EXPECT_FALSE(AcknowledgeLossAlarm(s, n)); }},
        {'d', [&] { s.Outputs[n].MonitoringEnabled = false; }},
        {'m', [&] { s.Outputs[n].MonitoringEnabled = true; }},
        {'x', [&] { OnClosed(s); }},
        {'o', [&] { OnConnected(s); }},
        {'e', [&] { s.linkState.ExchangeComplete = true; }},
        {'A', [&] { s.AlarmRelay = rest == QLatin1String("-") ? kNone : static_cast<qint16>(n); }},
        {'g', [&] { StartSilenceGrace(s, n, 7); }},
        {'+', [&] { clock.AdvanceSeconds(n); }},
        {'_', [&] { Wire(); }},
        {'=', [&] { EXPECT_EQ(Wire(), frames.value(rest, "?")); }},
        {'#', [&] { EXPECT_EQ(Lamp(rest[0]), lamps.value(rest[1])); }},
        {'w', [&] { EXPECT_EQ(AlarmRelayWanted(s), n == 1); }},
    };
    const auto action = steps.find(step[0].toLatin1());
    if (action != steps.end()) {
      action->second();
    } else {
      EXPECT_TRUE(MoreSteps(step[0].toLatin1(), rest)) << "unknown step";
    }
  }

  // Relay 3 latched, released, nothing, relay 3 released and 2 latched, relay 2 released.
  QHash<QString, QByteArray> frames = {
      {"L", kLatch3}, {"R", kRelease3}, {"-", {}}, {"RL2", kRelease3 + kLatch2}, {"R2", kRelease2}};
};

}  // namespace zrn::test
