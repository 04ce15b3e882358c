#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <stdexcept>

#include "support/bytes.h"
#include "support/fake_link.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "switcher/silence_detect_rules.h"
#include "ui/broadcast_style.h"
#include "ui/silence_detect_dialog.h"

namespace zrn {
namespace {

using test::FakeLink;
using test::ScriptedPrompt;

using test::Bytes;

class SilenceDetectDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    ApplyBroadcastStyle(*qApp);
    s.prompt = &prompt;
    s.link = &link;
    OnConnected(s);
    s.OutputNames[5] = QStringLiteral("Studio");
    s.RelayNames = {QStringLiteral("Relay A"), QStringLiteral("Relay B"), QStringLiteral("Relay C"),
                    QStringLiteral("Relay D")};
    s.SwitcherRelayCount = 4;
    s.OptoNames = {QStringLiteral("Door")};
    s.SwitcherOptoCount = 1;
  }
  void Open(const SilenceStatusEntry& entry) {
    s.SilenceStatus[5] = entry;
    dialog = std::make_unique<SilenceDetectDialog>(s, 5);
    person.Open(*dialog);
  }
  template <class T>
  T* Child(const QString& name) const {
    T* child = dialog->findChild<T*>(name);
    if (child == nullptr) {
      throw std::runtime_error("no control " + name.toStdString());
    }
    return child;
  }
  QComboBox* List(int i) const { return Child<QComboBox>(QStringLiteral("cmbDetect%1").arg(i)); }
  QRadioButton* Option(const char* name) const { return Child<QRadioButton>(name); }
  QCheckBox* Detect(int i) const { return Child<QCheckBox>(QStringLiteral("chkDetect%1").arg(i)); }
  void ClickEditOrSend() { QTest::mouseClick(dialog->EditButton(), Qt::LeftButton); }

  FakeLink link;
  ScriptedPrompt prompt;
  test::Person person;
  std::unique_ptr<SilenceDetectDialog> dialog;
};

TEST_F(SilenceDetectDialogTest, ShowsTheReportedConfigurationReadOnly) {
  Open({0, 265, 824, 8, 5, kNone, kNone, 0});
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Silence Detect for Studio [0006]"));
  EXPECT_TRUE(Option("OptDeviceType1")->isChecked());
  EXPECT_TRUE(Option("OptAction1")->isChecked());
  EXPECT_TRUE(Option("OptAssoc0")->isChecked());
  EXPECT_TRUE(Detect(0)->isChecked());
  EXPECT_FALSE(Detect(1)->isChecked());
  EXPECT_FALSE(Child<QGroupBox>(QStringLiteral("frDetect5"))->isVisible());
  EXPECT_EQ(List(1)->currentIndex(), 41);
  EXPECT_EQ(List(1)->currentText(), QStringLiteral("-20 dB"));
  EXPECT_EQ(List(1)->itemText(1), QStringLiteral("20 dB"));
  EXPECT_EQ(List(1)->count(), 73);
  EXPECT_EQ(List(1)->itemText(72), QStringLiteral("-51 dB"));
  EXPECT_EQ(List(4)->currentText(), QStringLiteral("Undefined"));
  EXPECT_EQ(List(2)->currentText(), QStringLiteral("8 Seconds"));
  EXPECT_EQ(List(3)->count(), 501);

  // Read-only until Edit; then each detection's lists follow its box.
  for (int i = 0; i < 6; ++i) {
    EXPECT_FALSE(List(i)->isEnabled()) << i;
  }
  EXPECT_FALSE(Detect(0)->isEnabled());
  EXPECT_EQ(dialog->EditButton()->text(), QStringLiteral("&Edit"));
  ClickEditOrSend();
  EXPECT_EQ(dialog->EditButton()->text(), QStringLiteral("Send"));
  EXPECT_TRUE(List(1)->isEnabled());
  EXPECT_TRUE(List(3)->isEnabled());
  EXPECT_FALSE(List(4)->isEnabled());
  QTest::mouseClick(Detect(1), Qt::LeftButton);
  EXPECT_TRUE(List(4)->isEnabled());
  EXPECT_TRUE(List(5)->isEnabled());
  QTest::mouseClick(Detect(0), Qt::LeftButton);
  EXPECT_FALSE(List(2)->isEnabled());
  EXPECT_TRUE(link.wire.isEmpty()) << "nothing goes out before Send";

  // The status texts, refreshed for the same output.
  const QLabel* status = Child<QLabel>(QStringLiteral("lblDetect5"));
  EXPECT_EQ(status->text(), QString());
  for (const auto& [bits, text] :
       std::initializer_list<std::pair<int, const char*>>{{1, "Channel is Silent.  "},
                                                          {3, "Channel is Silent.  Peak Detected"},
                                                          {2, "Peak Detected"},
                                                          {0, ""}}) {
    s.SilenceStatus[5].Status = static_cast<quint8>(bits);
    dialog->UpdateSilenceDetectConfig(kNone);
    EXPECT_EQ(status->text(), QLatin1String(text));
  }
  EXPECT_EQ(dialog->Output(), 5);
}

TEST_F(SilenceDetectDialogTest, SendStoresSendsAndLogsOnlyWhatWentOut) {
  Open({1, 0x38A, 700, 10, 3, 1, 1100, 2});
  ClickEditOrSend();
  for (int i = 0; i < 6; ++i) {
    List(i)->setCurrentIndex(0);
  }
  QTest::mouseClick(Option("OptDeviceType0"), Qt::LeftButton);
  QTest::mouseClick(Option("OptAction0"), Qt::LeftButton);
  QTest::mouseClick(Option("OptAssoc0"), Qt::LeftButton);
  QTest::mouseClick(Detect(0), Qt::LeftButton);
  QTest::mouseClick(Detect(1), Qt::LeftButton);
  const qsizetype rows = s.MessageRows.size();
  ClickEditOrSend();

  EXPECT_EQ(link.wire, Bytes({0xCB, 0x00, 0x01, 0x00, 0x05, 0x00, 0x00, 0x00, 0x7F, 0x7F, 0x7F,
                              0x7F, 0x00, 0x00, 0x00, 0x00, 0x7F, 0x7F, 0x00, 0x00, 0x00, 0xFF}));
  const SilenceStatusEntry& stored = s.SilenceStatus[5];
  EXPECT_EQ(stored.Mode, 0);
  EXPECT_EQ(stored.SilenceThreshold, kNone);
  EXPECT_EQ(stored.PeakThreshold, kNone);
  EXPECT_EQ(stored.Device, kNone);
  EXPECT_EQ(stored.DetectTime + stored.ReturnTime + stored.HoldTime, 0);
  EXPECT_EQ(stored.Status, 1) << "only the switcher changes the status";
  ASSERT_EQ(s.MessageRows.size(), rows + 1);
  EXPECT_TRUE(s.MessageRows.last().endsWith(
      QStringLiteral(" - Studio [0006] Silence Detect Configuration Sent - User")));
  EXPECT_EQ(dialog->EditButton()->text(), QStringLiteral("&Edit"));

  // On a dead link nothing is sent, logged or kept.
  OnClosed(s);
  link.wire.clear();
  const qsizetype rowsBefore = s.MessageRows.size();
  ClickEditOrSend();
  List(2)->setCurrentIndex(30);
  ClickEditOrSend();
  EXPECT_TRUE(link.wire.isEmpty());
  EXPECT_EQ(s.MessageRows.size(), rowsBefore);
  EXPECT_EQ(s.SilenceStatus[5].DetectTime, 0);
  EXPECT_EQ(prompt.titles, QStringList{"Send Error"});
  EXPECT_EQ(dialog->EditButton()->text(), QStringLiteral("Send")) << "ready to try again";
}

TEST_F(SilenceDetectDialogTest, DeviceListFollowsTheDeviceType) {
  Open({0, 0x10A, 824, 8, 5, 1, kNone, 0});
  EXPECT_TRUE(Child<QGroupBox>(QStringLiteral("frDetect5"))->isVisible());
  EXPECT_EQ(List(0)->count(), 5);
  EXPECT_EQ(List(0)->currentText(), QStringLiteral("Relay B [0002]"));
  ClickEditOrSend();

  QTest::mouseClick(Option("OptDeviceType3"), Qt::LeftButton);
  EXPECT_EQ(List(0)->itemText(1), QStringLiteral("Door[ 0001]"));

  const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/../screenshots");
  QDir().mkpath(folder);
  QTest::mouseClick(Option("OptDeviceType2"), Qt::LeftButton);
  List(0)->setCurrentIndex(3);
  EXPECT_TRUE(dialog->grab().save(folder + QStringLiteral("/silence_detect_dialog.png")));
}

TEST(SilenceDetectRules, ListPositionsAndDevices) {
  EXPECT_EQ(ThresholdPosition(824), 41);
  EXPECT_EQ(ThresholdPosition(kNone), 0);
  EXPECT_EQ(ThresholdPosition(825), 0);
  EXPECT_EQ(ThresholdCode(1), 1224);
  EXPECT_EQ(ThresholdCode(72), 514);
  EXPECT_EQ(ThresholdCode(0), kNone);
  EXPECT_EQ(TimePosition(900), 500);
  const DetectMode mode = SplitMode(0x38B);
  EXPECT_EQ(mode.deviceType, 3);
  EXPECT_TRUE(mode.actionOn && mode.followsPeak && mode.silenceEnabled && mode.peakEnabled);
  EXPECT_EQ(ComposeMode(mode), 0x38B);

  // A relay the switcher has not reported stays selectable rather than being dropped.
  State s;
  s.RelayNames = {QStringLiteral("Alarm")};
  s.SwitcherRelayCount = 1;
  const std::vector<DeviceItem> items = DeviceListItems(s, 2, 9);
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[1].text, QStringLiteral("Alarm [0001]"));
  EXPECT_EQ(items[2].text, QStringLiteral("Uknown [0010]"));
  EXPECT_EQ(DevicePosition(items, 9), 2);
  EXPECT_EQ(DeviceListItems(s, 1, 0).size(), 1u);
}

}  // namespace
}  // namespace zrn
