#include "monitor/poll_tick.h"

#include "monitor/link_watch.h"
#include "monitor/panel_update.h"

#include "schedule/event_scheduler.h"
#include "schedule/schedule_fixture.h"
#include "support/fake_link.h"
#include "support/switcher_bytes.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "switcher/startup_exchange.h"

namespace zrn {
namespace {

using test::Bytes;
using test::Event;
using test::kEveryDay;

// The poll timer on a fake clock and a connected fake link whose exchange has not completed;
// watched output 7.
class PollTimer : public test::ScheduleTest {
 protected:
  void SetUp() override {
    ScheduleTest::SetUp();
    s.linkState.ExchangeComplete = false;
    s.Outputs[0].Output = 7;
  }
  void TickAt(const QDateTime& when) {
    clock.Set(when);
    PollTick(s);
  }
  void Tick(int times = 1) {
    for (int i = 0; i < times; ++i) {
      TickAt(clock.Now().addMSecs(500));
    }
  }
};

// The tick reads the clock and hands a jump to the scheduler (whose own tests cover which jumps
// recompute); a first tick with no earlier time is no jump.
TEST_F(PollTimer, TheTickHandsAClockJumpToTheScheduler) {
  SetEvents({Event("10:00:00", kEveryDay), Event("10:30:00", kEveryDay)});
  s.Outputs[0].NextEvent = 1;  // stale on purpose: a recomputation makes it 0
  TickAt(At(2, "09:00:00"));
  EXPECT_EQ(s.Outputs[0].NextEvent, 1);
  TickAt(At(2, "09:10:00"));
  EXPECT_EQ(s.Outputs[0].NextEvent, 0);
}

TEST_F(PollTimer, UnansweredRequestsAreRepeatedEvery61TicksAndNamedAfterFive) {
  OnDataAvailable(s, test::kTypeRequest);
  const QByteArray requests = test::kStartupMessages.mid(5);  // the info and advanced requests
  std::vector<int> repeatedAt;
  auto run = [&](int from, int to) {
    for (int tick = from; tick <= to; ++tick) {
      link.wire.clear();
      Tick();
      OnDataAvailable(s, Bytes({0xF4}));  // the switcher answers polls, not requests
      if (link.wire.contains(static_cast<char>(0xF2))) {
        repeatedAt.push_back(tick);
      }
    }
  };
  run(1, 62);
  EXPECT_EQ(repeatedAt, (std::vector<int>{1, 62}));
  EXPECT_TRUE(link.wire.endsWith(requests));

  // Only what is still outstanding is asked again.
  OnDataAvailable(s, test::StartupAnswers()[0]);
  run(63, 123);
  EXPECT_TRUE(link.wire.endsWith(Bytes({0xF2, 0x00, 0x06, 0x04, 0x18, 0x00, 0x00, 0x00, 0x00, 0x00,
                                        0x00, 0x00, 0x00, 0x00, 0x00, 0x22, 0xFF}) +
                                 requests.mid(17)));

  run(124, 400);
  EXPECT_EQ(repeatedAt, (std::vector<int>{1, 62, 123, 184, 245, 306, 367}));
  const QString unanswered = QStringLiteral(
      "No answer from switcher: Input Names, Output Names, Relay States, Opto Names, Relay Names, "
      "Silence Detect Configuration, Silence Detect Status");
  EXPECT_EQ(Reports(), QStringList{unanswered}) << "named once, after the fifth repeat";
  EXPECT_EQ(s.StatusBarText, unanswered);

  for (const QByteArray& answer : test::StartupAnswers().mid(1)) {
    OnDataAvailable(s, answer);
  }
  EXPECT_EQ(s.StatusBarText, QStringLiteral("Server Module Connected"));
  run(401, 500);
  EXPECT_EQ(repeatedAt.size(), 7u) << "nothing is repeated once all is answered";
}

// Requests cannot be answered on a dead link: they are neither repeated nor named, and the
// status bar keeps saying the link is down. A route that fell due meanwhile is sent once the
// exchange on the new connection completes.
TEST_F(PollTimer, ADeadLinkIsNotAskedAndTheRouteHeldBackIsSentAfterTheExchange) {
  ScheduledEvent route = Event("10:00:00", kEveryDay);
  route.Connect = true;
  route.Source = 12;
  SetEvents({route});
  OnDataAvailable(s, test::kTypeRequest);
  OnClosed(s);
  TickAt(At(2, "09:59:59"));
  GetNextEvent(s, kNone);
  link.wire.clear();
  Tick(500);
  EXPECT_EQ(link.wire, QByteArray());
  EXPECT_TRUE(Reports().filter(QStringLiteral("No answer")).isEmpty());
  EXPECT_TRUE(s.StatusBarText.startsWith(QStringLiteral("Server Module Not Connected")));

  OnConnected(s);
  OnDataAvailable(s, test::kTypeRequest);
  EXPECT_EQ(link.wire, test::kStartupMessages) << "nothing is sent before the exchange completes";
  for (const QByteArray& answer : test::StartupAnswers()) {
    OnDataAvailable(s, answer);
  }
  const QByteArray routed = Bytes({0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF});
  EXPECT_EQ(link.wire, test::kStartupMessages + test::kRelayStatesRequest + routed);
  EXPECT_TRUE(InSilenceGrace(s, 6)) << "the new source's silence is not yet known";
  link.wire.clear();
  Tick();
  EXPECT_FALSE(link.wire.contains(static_cast<char>(0xFE))) << "sent once";
}

// A switcher that stops answering: the status bar counts the seconds from 10 s after the first
// unanswered keep-alive, an answer ends the count at the next tick, and after 201 unanswered
// polls the link is dropped.
TEST_F(PollTimer, ASilentSwitcherIsCountedInTheStatusBarAndDroppedAfter201Polls) {
  s.linkState.ExchangeComplete = true;
  TickAt(At(2, "10:00:00"));
  // The first keep-alive goes out on the third tick (10:00:01).
  const struct {
    const char* at;
    const char* line;
  } unanswered[] = {
      {"10:00:10", "Server Module Connected"},
      {"10:00:12", "No reply for 10 s from 127.0.0.1:1250 - Server Module Connected"},
      {"10:01:00", "No reply for 58 s from 127.0.0.1:1250 - Server Module Connected"},
  };
  for (const auto& c : unanswered) {
    while (clock.Now() < At(2, c.at)) {
      Tick();
    }
    EXPECT_EQ(StatusLine(s), QString::fromLatin1(c.line)) << c.at;
  }
  Tick(4);  // to the end of a five-tick round
  OnDataAvailable(s, Bytes({0xF4}));
  link.wire.clear();
  Tick();
  EXPECT_EQ(StatusLine(s), QStringLiteral("Server Module Connected"))
      << "the answer ends the count";
  int ticks = 1;
  for (; s.Connected && ticks < 1000; ++ticks) {
    Tick();
  }
  EXPECT_EQ(link.wire, QByteArray(201, static_cast<char>(0xF5)));
  EXPECT_EQ(ticks, 338) << "three polls in every five ticks, dropped at the next poll";
  Tick(20);
  EXPECT_EQ(link.opens, 20) << "a new attempt on every tick";
}

TEST(DurationTexts, ToolTipAndPanelForms) {
  const struct {
    qint64 seconds;
    const char *toolTip, *panel;
  } cases[] = {
      {0, "0 s", "0:00"},
      {59, "59 s", "0:59"},
      {185, "3 min 05 s", "3:05"},
      {3600, "1 h 00 min", "1:00:00"},
      {7509, "2 h 05 min", "2:05:09"},
      {273600, "76 h 00 min", "3 d 4 h"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DurationText(c.seconds), QString::fromLatin1(c.toolTip)) << c.seconds;
    EXPECT_EQ(CompactDuration(c.seconds), QString::fromLatin1(c.panel)) << c.seconds;
  }
}

}  // namespace
}  // namespace zrn
