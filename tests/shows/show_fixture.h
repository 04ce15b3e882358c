#pragma once

#include "monitor/monitor_fixture.h"
#include "monitor/poll_tick.h"
#include "shows/show_activity.h"
#include "shows/show_editor_rules.h"
#include "shows/shows_pass.h"
#include "support/fake_link.h"
#include "support/on_air.h"
#include "support/person.h"
#include "support/switcher_bytes.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "switcher/name_tables.h"

namespace zrn::test {

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
// The same on output 10 with level 804.
inline const QByteArray kConfig10Level804 =
    Bytes({0xCB, 0x00, 0x01, 0x00, 0x0A, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x24,
           0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x53, 0xFF});

// Show mode on a live link whose exchange is complete: silence-detect outputs 10, 11 and 12
// free to borrow, relay 3 of four as the alarm relay, every detector reporting audio, Monday
// 16 November 2026 at 12:15:00.
class ShowsTest : public LinkedStateTest {
 protected:
  void SetUp() override {
    LinkedStateTest::SetUp();
    s.ProgramMode = 1;
    SetSilenceOuts({10, 11, 12});
    At(QTime(12, 15, 0));
    frames[QStringLiteral("C10")] = kRoute5To10 + kConfig10;
    frames[QStringLiteral("C10L")] = kRoute5To10 + kConfig10 + kLatch3;
    frames[QStringLiteral("P10")] = kPark10;
    frames[QStringLiteral("C10C11")] = kRoute5To10 + kConfig10 + kRoute7To11 + kConfig11;
    frames[QStringLiteral("P10P11")] = kPark10 + kPark11;
    frames[QStringLiteral("S10")] = kConfig10Level804;
  }

  void SetSilenceOuts(std::initializer_list<int> outputs) {
    s.SilenceOuts.clear();
    for (int o : outputs) {
      s.SilenceOuts.push_back({.Output = static_cast<qint16>(o)});
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
    PutOnAir(show, start, end, downlink);
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
  void Tick() override {
    LinkedStateTest::Tick();
    ShowsPass(s);
  }
  // The switcher reports a new status for output, which ends the output's grace.
  void Report(int output, quint8 status) {
    s.SilenceStatus[output].Status = status;
    EndSilenceGrace(s, output);
  }
  Rgb Indicator(int panel) const { return s.panels.shows.at(panel).indicatorColour; }

  // Show steps besides the alarm steps:
  //   H<name>/<downlink>/<end>[/<start>[/<studio>]]  a show on air, from 12:00:00 unless given
  //   N                    "Morning" on air, its monitor past its grace
  //   D<status> E<status>  output 10 / 11 reports       @<time>  the clock is set and read
  //   ><n>                 n times a second passes and a tick runs
  //   G  Q                 the shows looked up / the shows pass
  //   W  V<n>              switcher output 1 watched / detector requests outstanding (h<mode>:
  //                        the loss alarm's step sets the program mode)
  //   K                    the new exchange finds input 5 on output 10
  //   X  Y                 the link drops / is back, exchange complete, the monitors sent again
  //   R  I<o>              the monitors sent again / output o waits for its detector's report
  //   J  L<level>          the second show's indicator is green / the last show's detect level
  //   U  Z                 Show Setup confirmed unchanged / with no shows
  //   =C10 =C10L =P10      output 10 routed and set (and relay 3 latched) / parked
  bool MoreSteps(char step, const QString& rest) override {
    const QStringList show = rest.split(QLatin1Char('/'));
    const std::map<char, std::function<void()>> steps = {
        {'H',
         [&] {
           const std::vector<qint16> studio(show.size() > 4,
                                            static_cast<qint16>(show.value(4).toInt()));
           AddShow(show[0], static_cast<qint16>(show[1].toInt()), studio,
                   show.value(3, QStringLiteral("12:00:00")), show[2]);
         }},
        {'N', [&] { Steps("HMorning/5/14:00:00 t D0 t _"); }},
        {'D', [&] { Report(10, static_cast<quint8>(rest.toInt())); }},
        {'E', [&] { Report(11, static_cast<quint8>(rest.toInt())); }},
        {'@', [&] { At(QTime::fromString(rest, QStringLiteral("HH:mm:ss"))); }},
        {'>',
         [&] {
           for (int i = 0; i < rest.toInt(); ++i) {
             clock.AdvanceSeconds(1);
             RefreshClock(s);
             Tick();
           }
         }},
        {'G', [&] { GetActiveShows(s); }},
        {'Q', [&] { ShowsPass(s); }},
        {'W', [&] { Watch(1, 0x109); }},
        {'V', [&] { s.requests.Req3 = static_cast<quint8>(rest.toInt()); }},
        {'K',
         [&] {
           s.CrosspointMap[10].SourceCount = 1;
           s.CrosspointMap[10].Sources[0] = 5;
         }},
        {'X', [&] { CloseSwitcherLink(s); }},
        {'Y',
         [&] {
           OnConnected(s);
           s.linkState.ExchangeComplete = true;
           ResendShowMonitors(s);
         }},
        {'R', [&] { ResendShowMonitors(s); }},
        {'I', [&] { EXPECT_TRUE(InSilenceGrace(s, rest.toInt())); }},
        {'J', [&] { EXPECT_EQ(Indicator(1), kLampGreen); }},
        {'L', [&] { s.Shows.back().DetectLevel = static_cast<qint16>(rest.toInt()); }},
        {'U', [&] { ReplaceShows(s, s.Shows); }},
        {'Z', [&] { ReplaceShows(s, {}); }},
    };
    const auto action = steps.find(step);
    if (action == steps.end()) {
      return false;
    }
    action->second();
    return true;
  }
};

}  // namespace zrn::test
