#include "monitor/startup.h"
#include "schedule/schedule_fixture.h"
#include "storage/events_file.h"
#include "support/fake_link.h"
#include "support/monitor_config.h"
#include "support/temp_state.h"
#include "switcher/link.h"

namespace zrn {
namespace {

using test::kEveryDay;

class Startup : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    clock.Set(QDateTime(QDate(2026, 11, 18), QTime(12, 0, 0)));  // a Wednesday
  }
  test::FakeLink link;
};

// Closed on a live link, the log says the monitor closed, not that the switcher was lost.
TEST_F(Startup, RestartInsideAnOffPeriodStaysOffAndClosingIsNoOutage) {
  ASSERT_TRUE(test::WriteMonitorConfig(dir.path(), {.watched = 2, .first = 5}));
  // Monitoring of output 5 is switched off every day at 06:00 and on again at 20:00.
  State writer;
  writer.AppPath = s.AppPath;
  writer.clock = &clock;
  writer.Outputs.resize(2);
  writer.PanelsLoaded = 2;
  writer.Outputs[0].Events = {test::Event("06:00:00", kEveryDay, false),
                              test::Event("20:00:00", kEveryDay)};
  writer.Outputs[0].EventCount = 2;
  ASSERT_TRUE(SaveEvents(writer));

  Form_Load(s, dir.path());
  EXPECT_FALSE(s.Outputs[0].MonitoringEnabled);
  EXPECT_TRUE(s.Outputs[1].MonitoringEnabled);
  EXPECT_EQ(s.Outputs[0].NextEvent, 1) << "20:00 is next";
  EXPECT_EQ(s.panels.outputs[0].lamp, kLampGrey);

  OnConnected(s);
  Form_Unload(s);
  const QString log = QString::fromUtf8(ReadAll(QStringLiteral("EventLog.txt")));
  EXPECT_TRUE(log.endsWith(QStringLiteral("Monitor Closed\r\n")));
  EXPECT_FALSE(log.contains(QStringLiteral("Server Module Not Connected")));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

}  // namespace
}  // namespace zrn
