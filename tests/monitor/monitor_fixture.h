#pragma once

#include <QByteArray>
#include <QStringList>
#include <utility>

#include "monitor/loss_alarm.h"
#include "monitor/panel_update.h"
#include "support/bytes.h"
#include "support/fake_link.h"
#include "support/temp_state.h"
#include "switcher/link.h"

namespace zrn::test {

// Relay 3 latched and released: the frames every alarm test watches for.
inline const QByteArray kLatch3 = Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF});
inline const QByteArray kRelease3 = Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x02, 0x00, 0x42, 0xFF});

// A state on a fake link that is connected and whose exchange is complete, relay 3 of four as
// the alarm relay, nothing sent yet.
class LinkedStateTest : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    OnConnected(s);
    s.linkState.ExchangeComplete = true;
    s.SwitcherRelayCount = 4;
    s.RelayStates.assign(4, 0);
    s.AlarmRelay = 3;
    s.MessageRows.clear();
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
  // The switcher reports relay 3.
  void ReportRelay(qint16 state) {
    s.RelayStates[2] = state;
    RelayStatesReported(s);
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

  FakeLink link;
};

}  // namespace zrn::test
