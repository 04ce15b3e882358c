#include "monitor/menu_commands.h"

#include "support/bytes.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "ui/schedule_dialog.h"

namespace zrn {
namespace {

using test::Bytes;

class MenuCommands : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.OutputNames[5] = QStringLiteral("Studio");
    s.Outputs[0].Output = 6;
    s.SelectedOutput = 0;
    s.Today = 2;
    s.CurrentTime = QTime(12, 0, 0);
  }
  // The Configure Schedule command: the editor, then the saves when it was confirmed.
  void ConfigureSchedule(const std::function<void()>& operatorDoes) {
    s.DialogAccepted = false;
    ScheduleDialog dialog(s);
    person.Open(dialog);
    operatorDoes();
    EXPECT_FALSE(dialog.isVisible());
    ScheduleAccepted(s);
  }
  test::ScriptedPrompt prompt;
  test::Person person;
};

TEST_F(MenuCommands, EnableTogglesMonitoringWithAUserLine) {
  s.Outputs[0].MonitoringEnabled = false;
  EXPECT_EQ(EnableMenuCaption(s), QStringLiteral("Enable"));
  mnuEnable_Click(s);
  EXPECT_TRUE(s.MessageRows.value(0).endsWith(
      QStringLiteral(" - Studio [0006] Monitoring enabled - User")));
  EXPECT_EQ(EnableMenuCaption(s), QStringLiteral("Disable"));
  mnuEnable_Click(s);
  EXPECT_FALSE(s.Outputs[0].MonitoringEnabled);
  EXPECT_TRUE(QString::fromLatin1(ReadAll(QStringLiteral("EventLog.txt")))
                  .endsWith(QStringLiteral("Studio [0006] Monitoring disabled - User\r\n")));

  // No channel, or no such panel: nothing happens.
  s.Outputs[0].Output = kNone;
  mnuEnable_Click(s);
  s.SelectedOutput = 3;
  mnuEnable_Click(s);
  EXPECT_EQ(s.MessageRows.size(), 2);
  EXPECT_FALSE(s.Outputs[0].MonitoringEnabled);
  EXPECT_EQ(SelectedChannel(s), kNone);
}

TEST_F(MenuCommands, ConfigureScheduleSavesOnlyWhatWasConfirmed) {
  ConfigureSchedule([&] {
    person.Click(QStringLiteral("New Event"));  // the time box takes the focus
    person.Type(QStringLiteral("063000"));
    person.Click(QStringLiteral("Every Day"));
    person.Click(QStringLiteral("Saturday"));
    person.Click(QStringLiteral("Sunday"));
    person.Click(QStringLiteral("Active"));
    person.Click(QStringLiteral("Save"));
    person.Click(QStringLiteral("OK"));
  });
  EXPECT_EQ(ReadAll(QStringLiteral("ZRNEvents.dat")),
            Bytes({0x01, 0x00, 0x01, 0x00, 0x00, '0', '6', ':', '3', '0', ':', '0', '0', 0x1F, 0xFF,
                   0x00, 0x00, 0xFF, 0x3F}) +
                QByteArray(12, ' '));
  EXPECT_EQ(s.Outputs[0].NextEvent, 0);

  // A later look that changes nothing writes nothing.
  QFile::remove(PathOf(QStringLiteral("ZRNEvents.dat")));
  ConfigureSchedule([&] { person.Click(QStringLiteral("OK")); });
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNEvents.dat"))));
}

TEST_F(MenuCommands, AboutBoxLines) {
  s.ServerAddress = QStringLiteral("10.0.0.7");
  s.ServerPort = 1251;
  s.requests.Req2 = 130;
  s.requests.Req3 = 1;
  s.requests.Req4 = 192;
  EXPECT_EQ(AboutLines(s),
            (QStringList{"ZRN Pennaro", "Version: 02.00.0011 - 05/16/2025",
                         "Server:10.0.0.7 Port:1251", "Req1:0, Req2:130, Req3:1, Req4:192"}));
}

}  // namespace
}  // namespace zrn
