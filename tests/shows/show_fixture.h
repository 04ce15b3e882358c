#pragma once

#include <QByteArray>
#include <QStringList>
#include <utility>

#include "monitor/loss_alarm.h"
#include "monitor/poll_tick.h"
#include "shows/shows_pass.h"
#include "support/fake_link.h"
#include "support/switcher_bytes.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "switcher/name_tables.h"

namespace zrn::test {

// Show mode on a live link whose exchange is complete: silence-detect outputs 10, 11 and 12
// free to borrow, relay 3 of four as the alarm relay, every detector reporting audio, Monday
// 16 November 2026 at 12:15:00.
class ShowsTest : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    OnConnected(s);
    s.linkState.ExchangeComplete = true;
    s.ProgramMode = 1;
    s.SwitcherRelayCount = 4;
    s.RelayStates.assign(4, 0);
    s.AlarmRelay = 3;
    SetSilenceOuts({10, 11, 12});
    s.Shows.clear();
    s.ShowCount = 0;
    At(QTime(12, 15, 0));
    link.wire.clear();
  }

  void SetSilenceOuts(std::initializer_list<int> outputs) {
    s.SilenceOuts.clear();
    for (int o : outputs) {
      SilenceOut entry;
      entry.Output = static_cast<qint16>(o);
      s.SilenceOuts.push_back(entry);
    }
    s.SilenceOutCount = static_cast<qint16>(s.SilenceOuts.size());
    UpdateSilenceOutTable(s);
  }

  // A show on air every day of 2026 from start to end, with its studio sources' left channels.
  int AddShow(const QString& name, qint16 downlink, std::vector<qint16> studios = {},
              const QString& start = QStringLiteral("12:00:00"),
              const QString& end = QStringLiteral("14:00:00")) {
    ShowRecord show;
    show.Name = name;
    show.StartTime = start;
    show.EndTime = end;
    show.StartDate = QStringLiteral("01/01/2026");
    show.EndDate = QStringLiteral("12/31/2026");
    show.Days = 127;
    show.DownlinkSource = downlink;
    show.OutputCount = 1;
    show.OutputLeft = {kNone};
    show.OutputRight = {kNone};
    show.OutputCue = {kNone};
    show.StudioCount = static_cast<qint16>(studios.size());
    for (qint16 channel : studios) {
      show.StudioLeft.push_back(ShowChannel{channel, kNone, 0});
      show.StudioRight.push_back(ShowChannel{});
      show.StudioCue.push_back(ShowChannel{});
    }
    show.DetectTime1 = 8;
    show.DetectTime2 = 5;
    show.DetectLevel = 824;
    s.Shows.push_back(show);
    s.ShowCount = static_cast<qint16>(s.Shows.size());
    return s.ShowCount - 1;
  }

  // Sets the clock to time on day and reads it as the poll timer does.
  void At(const QTime& time, const QDate& day = QDate(2026, 11, 16)) {
    clock.Set(QDateTime(day, time));
    RefreshClock(s);
  }
  // The alarm side of a poll tick, then the show pass.
  void Tick() {
    BeginRelayTick(s);
    LossAlarmTick(s);
    ShowsPass(s);
  }
  // The switcher reports a new status for output, which ends the output's grace.
  void Report(int output, quint8 status) {
    s.SilenceStatus[output].Status = status;
    EndSilenceGrace(s, output);
  }
  void ReportRelay(qint16 state) {
    s.RelayStates[2] = state;
    RelayStatesReported(s);
  }
  QByteArray Wire() { return std::exchange(link.wire, QByteArray()); }
  // Messages of the activity log after its header, without their stamps.
  QStringList Activity() const {
    QStringList out;
    const QStringList lines =
        QString::fromUtf8(ReadAll(QStringLiteral("EventLog.txt"))).split(QStringLiteral("\r\n"));
    for (const QString& line : lines.mid(lines.indexOf(QString(80, QLatin1Char('-'))) + 1)) {
      if (!line.isEmpty() && !line.contains(QStringLiteral("Server Module"))) {
        out << line.mid(55);
      }
    }
    return out;
  }
  Rgb Indicator(int panel) const { return s.panels.shows.at(panel).indicatorColour; }

  FakeLink link;
};

// Literal frames used across the show tests.
inline const QByteArray kLatch3 = Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF});
inline const QByteArray kRelease3 = Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x02, 0x00, 0x42, 0xFF});
// Input 5 routed to output 10, input 7 to output 11 (0-based), and output 10 parked.
inline const QByteArray kRoute5To10 = Bytes({0xFE, 0x04, 0x00, 0x05, 0x00, 0x0A, 0x00, 0x13, 0xFF});
inline const QByteArray kRoute7To11 = Bytes({0xFE, 0x04, 0x00, 0x07, 0x00, 0x0B, 0x00, 0x16, 0xFF});
inline const QByteArray kPark10 = Bytes({0xFE, 0x00, 0x00, 0x7F, 0x7F, 0x0A, 0x00, 0x08, 0xFF});
inline const QByteArray kPark11 = Bytes({0xFE, 0x00, 0x00, 0x7F, 0x7F, 0x0B, 0x00, 0x09, 0xFF});
// Show detector settings (mode 265, level 824, 8 s, 5 s) on outputs 10 and 11.
inline const QByteArray kConfig10 =
    Bytes({0xCB, 0x00, 0x01, 0x00, 0x0A, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
           0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x67, 0xFF});
inline const QByteArray kConfig11 =
    Bytes({0xCB, 0x00, 0x01, 0x00, 0x0B, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
           0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x68, 0xFF});

}  // namespace zrn::test
