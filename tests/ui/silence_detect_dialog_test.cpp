#include "ui/silence_detect_dialog.h"
#include "switcher/link.h"
#include "ui/broadcast_style.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

const QStringList kLists = {"Silence Threshold", "Detect Time", "Return Time", "PeakThreshold",
                            "Hold Time"};

// The silence detection of output 6, as the switcher reported it; one opto named "Door".
class SilenceDetectDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    ApplyBroadcastStyle(*qApp);
    OnConnected(s);
    s.OptoNames = {QStringLiteral("Door")};
    s.SwitcherOptoCount = 1;
  }
  void Open(const SilenceStatusEntry& entry) {
    s.SilenceStatus[5] = entry;
    DialogTest::Open<SilenceDetectDialog>(5);
  }
};

TEST_F(SilenceDetectDialogTest, ShowsTheReportedConfigurationUntilEditAndSendsOnlyOnALiveLink) {
  Open({0, 265, 824, 8, 5, kNone, kNone, 0});
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Silence Detect for TX 6 [0006]"));
  for (const char* option : {"Msg Only", "On", "Silence Detect Enabled", "Follows"}) {
    EXPECT_TRUE(Checked(QLatin1String(option))) << option;
  }
  EXPECT_FALSE(Checked(QStringLiteral("Peak Detect Enabled")));
  EXPECT_FALSE(Seen(QStringLiteral("Device")));
  // Which item stands for which code is tabled with the rules.
  EXPECT_EQ(Shown(QStringLiteral("Silence Threshold")), QStringLiteral("-20 dB"));
  EXPECT_EQ(Shown(QStringLiteral("Return Time")), QStringLiteral("5 Seconds"));
  for (const QString& list : kLists) {
    EXPECT_FALSE(Enabled(list)) << list.toStdString();
  }

  // Each detection's lists follow its box.
  person.Click(QStringLiteral("Edit"));
  person.Click(QStringLiteral("Opto"));
  auto* devices = qobject_cast<QComboBox*>(person.Find(QStringLiteral("Device")));
  ASSERT_NE(devices, nullptr);
  EXPECT_EQ(devices->itemText(1), QStringLiteral("Door[ 0001]"));
  EXPECT_FALSE(Enabled(QStringLiteral("PeakThreshold")));
  person.Click(QStringLiteral("Peak Detect Enabled"));
  EXPECT_TRUE(Enabled(QStringLiteral("Hold Time")));
  person.Click(QStringLiteral("Silence Detect Enabled"));
  EXPECT_FALSE(Enabled(QStringLiteral("Detect Time")));
  EXPECT_TRUE(link.wire.isEmpty()) << "nothing goes out before Send";

  // A new status of the same output is shown at once.
  s.SilenceStatus[5].Status = 3;
  auto* shown = static_cast<SilenceDetectDialog*>(dialog.get());
  shown->UpdateSilenceDetectConfig(kNone);
  EXPECT_EQ(shown->Output(), 5);
  EXPECT_TRUE(Seen(QStringLiteral("Channel is Silent.  Peak Detected")));

  // Send stores, sends and logs only what went out.
  Open({1, 0x38A, 700, 10, 3, 1, 1100, 2});
  person.Click(QStringLiteral("Edit"));
  for (const QString& list : kLists) {
    person.Pick(list, 0);
  }
  person.Pick(QStringLiteral("Device"), 0);
  for (const char* option :
       {"None", "Off", "Follows", "Silence Detect Enabled", "Peak Detect Enabled"}) {
    person.Click(QLatin1String(option));
  }
  const QString sent = QStringLiteral(" - TX 6 [0006] Silence Detect Configuration Sent - User");
  person.Click(QStringLiteral("Send"));

  EXPECT_EQ(link.wire, QByteArray::fromHex("cb000100050000007f7f7f7f000000007f7f000000ff"));
  // Only the switcher changes the status (1).
  const SilenceStatusEntry& e = s.SilenceStatus[5];
  EXPECT_EQ((QList<int>{e.Status, e.Mode, e.DetectTime, e.ReturnTime, e.Device, e.PeakThreshold,
                        e.HoldTime}),
            (QList<int>{1, 0, 0, 0, kNone, kNone, 0}));
  EXPECT_TRUE(s.MessageRows.value(s.MessageRows.size() - 1).endsWith(sent));

  // On a dead link nothing is sent, logged or kept.
  OnClosed(s);
  link.wire.clear();
  person.Click(QStringLiteral("Edit"));
  person.Click(QStringLiteral("Silence Detect Enabled"));
  person.Pick(QStringLiteral("Detect Time"), 30);
  person.Click(QStringLiteral("Send"));
  EXPECT_TRUE(link.wire.isEmpty());
  EXPECT_EQ(s.MessageRows.filter(sent).size(), 1);
  EXPECT_EQ(s.SilenceStatus[5].DetectTime, 0) << "the table keeps what the switcher has";
  EXPECT_EQ(prompt.titles, QStringList{"Send Error"});
  EXPECT_TRUE(Seen(QStringLiteral("Send"))) << "ready to try again";
}

}  // namespace
}  // namespace zrn
