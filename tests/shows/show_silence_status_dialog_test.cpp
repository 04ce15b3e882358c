#include <QLabel>

#include "show_fixture.h"
#include "shows/show_status.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "ui/show_silence_status_dialog.h"

namespace zrn::test {
namespace {

// "Morning" on air: downlink input 5 watched on output 10; studio A (inputs 20/21) watched on
// output 11; studio B (30/31) without a monitor, none being left; a studio row with no left
// channel. Its outputs: 40/41 and 50/51, no cue.
class ShowStatusWindow : public ShowsTest {
 protected:
  void SetUp() override {
    ShowsTest::SetUp();
    s.prompt = &prompt;
    SetSilenceOuts({10, 11});
    const int show = AddShow(QStringLiteral("Morning"), 5, {20, 30, kNone});
    ShowRecord& rec = s.Shows[show];
    rec.StudioRight = {ShowChannel{21}, ShowChannel{31}, ShowChannel{22}};
    rec.OutputCount = 2;
    rec.OutputLeft = {40, 50};
    rec.OutputRight = {41, 51};
    rec.OutputCue = {kNone, kNone};
    s.InputNames[20] = QStringLiteral("Studio A");
    s.InputNames[30] = QStringLiteral("Studio B");
    s.InputNames[31] = QStringLiteral("Studio B R");
    ShowsPass(s);
    Report(10, 0);
    Report(11, 0);
    Wire();
  }
  void Open() {
    dialog = std::make_unique<ShowSilenceStatusDialog>(s, 0);
    person.Open(*dialog);
  }
  // A studio's box, found by the studio's name.
  QAbstractButton* Box(const char* caption) const {
    return qobject_cast<QAbstractButton*>(person.Find(QLatin1String(caption)));
  }
  void Click(const char* caption) const { person.Click(QLatin1String(caption)); }
  static Rgb TextColour(const QWidget* widget) {
    const QColor c = widget->palette().color(QPalette::WindowText);
    return {c.red(), c.green(), c.blue()};
  }
  QStringList TakeLines() const { return Activity().filter(QStringLiteral("Show Source Change")); }

  ScriptedPrompt prompt;
  Person person;
  std::unique_ptr<ShowSilenceStatusDialog> dialog;
};

// One box at a time, each pitched 320 twips below the last; undefined channels are never sent.
TEST_F(ShowStatusWindow, TakeSendsTheChosenSourceInOutputOrder) {
  Open();
  EXPECT_TRUE(s.ShowStatusOpen);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Show Silence Status"));
  EXPECT_EQ(Box("Studio B")->y() - Box("Studio A")->y(), 21);
  EXPECT_EQ(Box("Not specified")->y() - Box("Studio A")->y(), 43);
  QAbstractButton* unspecified = Box("Not specified");  // the row without a left channel
  EXPECT_FALSE(unspecified->isEnabled());
  QTest::mouseClick(unspecified, Qt::LeftButton, {}, QPoint(8, unspecified->height() / 2));
  EXPECT_FALSE(unspecified->isChecked());
  Click("Take Selected");
  Click("Studio A");
  Click("Studio B");
  EXPECT_FALSE(Box("Studio A")->isChecked());
  Click("Take Selected");
  EXPECT_EQ(Wire(), Bytes({0xFE, 0x04, 0x00, 0x1E, 0x00, 0x28, 0x00, 0x4A, 0xFF,     // 31 to 41
                           0xFE, 0x04, 0x00, 0x1F, 0x00, 0x29, 0x00, 0x4C, 0xFF,     // 32 to 42
                           0xFE, 0x04, 0x00, 0x1E, 0x00, 0x32, 0x00, 0x54, 0xFF,     // 31 to 51
                           0xFE, 0x04, 0x00, 0x1F, 0x00, 0x33, 0x00, 0x56, 0xFF}));  // 32 to 52
  EXPECT_EQ(TakeLines(),
            (QStringList{"Show Source Change - Morning: Studio B [0031] to Out 0041 [0041]",
                         "Show Source Change - Morning: Studio B R [0032] to Out 0042 [0042]",
                         "Show Source Change - Morning: Studio B [0031] to Out 0051 [0051]",
                         "Show Source Change - Morning: Studio B R [0032] to Out 0052 [0052]"}));
  EXPECT_TRUE(dialog->isVisible()) << "the window stays open";
  EXPECT_EQ(prompt.informed, QStringList{QStringLiteral("No Studio Source Selected")});
  EXPECT_EQ(prompt.titles, QStringList{QStringLiteral("Selection Error")});

  // Studio right 21 undefined (never input 16384), output 50's left undefined, cues on 41 and 24.
  ShowRecord& rec = s.Shows[0];
  rec.StudioRight[0].Channel = kNone;
  rec.OutputLeft[1] = kNone;
  rec.OutputCue = {60, kNone};
  rec.StudioCue[0].Channel = 23;
  Click("Studio A");
  Click("Take Selected");
  EXPECT_EQ(Wire(), Bytes({0xFE, 0x04, 0x00, 0x14, 0x00, 0x28, 0x00, 0x40, 0xFF,     // 21 to 41
                           0xFE, 0x04, 0x00, 0x17, 0x00, 0x3C, 0x00, 0x57, 0xFF}));  // 24 to 61
  EXPECT_EQ(TakeLines().size(), 6);
  EXPECT_TRUE(TakeCommands(s, 0, 2).empty());
  EXPECT_FALSE(CanTakeStudioSource(s, 0, 3));
  EXPECT_FALSE(CanTakeStudioSource(s, 4, 0));

  // On a dead link nothing is sent and nothing is logged as done.
  CloseSwitcherLink(s);
  EXPECT_EQ(TakeStudioSource(s, 0, 0), 0);
  EXPECT_EQ(TakeLines().size(), 6);
  EXPECT_EQ(ErrorLines().filter("Error sending show source change").size(), 1);
}

TEST_F(ShowStatusWindow, ColoursFollowTheMonitorsAndTheWindowClosesWithItsShow) {
  Open();
  const QLabel* title = dialog->findChild<QLabel*>(QStringLiteral("lblShow"));
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(title->text(), QStringLiteral("Morning"));
  // What the downlink's and studio A's detectors report; the colours of the title and box A.
  const std::tuple<quint8, quint8, Rgb, Rgb> cases[] = {{0, 0, kLampGreen, kLampGreen},
                                                        {1, 0, kLampRed, kLampGreen},
                                                        {0, 1, kLampGreen, kLampRed},
                                                        {2, 3, kLampGrey, kLampGrey}};
  for (const auto& [downlink, studioA, titleColour, boxA] : cases) {
    Report(10, downlink);
    Report(11, studioA);
    dialog->Refresh();
    EXPECT_EQ(TextColour(title), titleColour) << int(downlink);
    EXPECT_EQ(TextColour(Box("Studio A")), boxA) << int(studioA);
    EXPECT_EQ(TextColour(Box("Studio B")), kLampGrey) << "no monitor";
  }

  // Re-routed monitors are grey until their detectors report again.
  ResendShowMonitors(s);
  Report(10, 1);
  dialog->Refresh();
  EXPECT_EQ(TextColour(title), kLampRed);
  EXPECT_EQ(TextColour(Box("Studio A")), kLampGrey);

  // A click on a show panel selects the show standing there.
  AddShow(QStringLiteral("Evening"), 6);
  ShowsPass(s);
  ASSERT_EQ(s.ActiveShows, (std::vector<qint16>{0, 1}));
  EXPECT_TRUE(SelectShowPanel(s, 1));
  EXPECT_EQ(s.SelectedShow, 1);
  EXPECT_FALSE(SelectShowPanel(s, 2));
  EXPECT_FALSE(SelectShowPanel(s, -1));
  EXPECT_EQ(s.SelectedShow, 1);

  // The window closes with its button, or with its show.
  Click("Close");
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_FALSE(s.ShowStatusOpen);

  ShowSilenceStatusDialog modal(s, 0);
  QTimer::singleShot(0, &modal, [&] {
    At(QTime(14, 0, 1));
    ShowsPass(s);
    modal.Refresh();
  });
  EXPECT_EQ(modal.exec(), QDialog::Rejected);
  EXPECT_FALSE(s.ShowStatusOpen);

  // Opened for a show that is no longer on air, it closes at once.
  ShowSilenceStatusDialog late(s, 0);
  EXPECT_EQ(late.exec(), QDialog::Rejected);
  EXPECT_FALSE(s.ShowStatusOpen);
}

}  // namespace
}  // namespace zrn::test
