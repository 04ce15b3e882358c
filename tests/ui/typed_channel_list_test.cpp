#include <QComboBox>
#include <QDialog>
#include <QPushButton>
#include <functional>
#include <memory>

#include "ui/channel_pair_dialog.h"
#include "ui/schedule_dialog.h"
#include "ui/setup_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/silence_detect_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// One dialog with a channel list, as the operator meets it.
struct ListCase {
  const char* name;
  std::function<std::unique_ptr<QDialog>(State&)> make;
  // The list, by the caption beside it or, without one, by what it shows on opening.
  QString list;
  // Clicked to unlock the list.
  QString unlock;
  // A channel typed, and the item the list then shows.
  QString typed;
  QString chosen;
  // Another channel, taken by leaving the list, and its item.
  QString left;
  QString leftShown;
  // A number the list has no item for.
  QString beyond;
  bool undefinedKey;
  // Clicked to keep the edit, and what was kept of the channel.
  QStringList confirm;
  std::function<int(const State&)> stored;
  int typedStored;
  int leftStored;
};

void PrintTo(const ListCase& c, std::ostream* os) {
  *os << c.name;
}

ScheduledEvent MorningEvent() {
  ScheduledEvent event;
  event.Time = QStringLiteral("06:00:00");
  event.Active = true;
  event.Days = 0x7F;
  event.Connect = true;
  event.Source = 3;
  return event;
}

const ListCase kCases[] = {
    {"Setup",
     [](State& s) { return std::make_unique<SetupDialog>(s, SetupEditors{}); },
     "Monitor Destination",
     "Edit",
     "150",
     "[0150] TX 150",
     "7",
     "[0007] TX 7",
     "257",
     true,
     {"OK"},
     [](const State& s) { return static_cast<int>(s.Outputs.at(0).Output); },
     150,
     7},
    {"ScheduleEditor",
     [](State& s) { return std::make_unique<ScheduleDialog>(s); },
     "[0003] Mic 3",
     "Edit",
     "5",
     "[0005] Mic 5",
     "12",
     "[0012] Mic 12",
     "257",
     false,
     {"Save"},
     [](const State& s) { return static_cast<int>(s.Outputs.at(0).Events.at(0).Source); },
     5,
     12},
    {"SilenceDetect",
     [](State& s) { return std::make_unique<SilenceDetectDialog>(s, 5); },
     "Device",
     "Edit",
     "4",
     "Relay D [0004]",
     "1",
     "Relay A [0001]",
     "5",
     true,
     {"Send"},
     [](const State& s) { return static_cast<int>(s.SilenceStatus.at(5).Device); },
     3,
     0},
    {"ChannelPairEditor",
     [](State& s) { return std::make_unique<ChannelPairDialog>(s); },
     "Left Channel",
     "Edit",
     "12",
     "[0012] TX 12",
     "200",
     "[0200] TX 200",
     "257",
     true,
     {"Save", "OK"},
     [](const State& s) { return static_cast<int>(s.EditShows.at(0).OutputLeft.at(0)); },
     11,
     199},
    {"ShowEditor",
     [](State& s) { return std::make_unique<ShowsDialog>(s); },
     "Downlink Source",
     "Edit the current show",
     "6",
     "[0006] Mic 6",
     "16",
     "[0016] Mic 16",
     "257",
     false,
     {"OK"},
     [](const State& s) { return static_cast<int>(s.Shows.at(0).DownlinkSource); },
     5,
     15},
};

// 256 inputs and outputs; output 3 is watched with one event routing input 3, output 6 has a
// relay as silence alarm device, and one show takes input 3 as its downlink.
class TypedChannelListTest : public test::DialogTest,
                             public ::testing::WithParamInterface<ListCase> {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    NameChannels(256);
    s.Outputs.resize(1);
    s.Outputs[0].Output = 3;
    s.Outputs[0].Events = {MorningEvent()};
    s.Outputs[0].EventCount = 1;
    s.OutputCount = 1;
    s.SelectedOutput = 0;
    s.SilenceStatus[5].Mode = 0x10A;
    s.SilenceStatus[5].Device = 1;
    OneShow();
    s.Shows[0].DownlinkSource = 2;
    s.EditShows = s.Shows;
  }

  // Opens the case's dialog, unlocks its list and clicks into it.
  QComboBox* OpenAtTheList() {
    dialog = GetParam().make(s);
    person.Open(*dialog);
    person.Click(GetParam().unlock);
    auto* list = qobject_cast<QComboBox*>(person.Find(GetParam().list));
    EXPECT_NE(list, nullptr);
    person.Click(list);
    EXPECT_EQ(QApplication::focusWidget(), list);
    return list;
  }
  void Confirm() {
    for (const QString& caption : GetParam().confirm) {
      person.Click(caption);
    }
  }
};

TEST_P(TypedChannelListTest, TypedNumberAndEnterChooseTheChannelAndEscapeTakesBackTyping) {
  const ListCase& c = GetParam();
  QComboBox* list = OpenAtTheList();
  ASSERT_NE(list, nullptr);

  person.Type(c.typed);
  EXPECT_EQ(list->currentText(), c.typed) << "the digits collect in the list";
  person.Press(Qt::Key_Return);
  EXPECT_EQ(list->currentText(), c.chosen);
  EXPECT_TRUE(dialog->isVisible()) << "Enter belongs to the list";
  EXPECT_FALSE(s.DialogAccepted);

  person.Type(QStringLiteral("9x"));
  EXPECT_EQ(list->currentText(), QStringLiteral("9")) << "letters are no channel";
  person.Press(Qt::Key_Escape);
  EXPECT_EQ(list->currentText(), c.chosen);
  EXPECT_TRUE(dialog->isVisible()) << "Escape belongs to the list";

  person.Type(c.beyond);
  person.Press(Qt::Key_Return);
  EXPECT_EQ(list->currentText(), c.chosen) << "no channel " << c.beyond.toStdString();
  person.Type(QStringLiteral("16384"));
  EXPECT_EQ(list->currentText(), c.chosen) << "16384 is no channel";

  if (c.undefinedKey) {
    person.Type(QStringLiteral("u"));
    EXPECT_EQ(list->currentText(), QStringLiteral("Undefined"));
    // Setup has nothing to configure for an undefined output.
    for (const QPushButton* button : dialog->findChildren<QPushButton*>()) {
      if (button->text() == QStringLiteral("Configure Silence Detect")) {
        EXPECT_FALSE(button->isEnabled());
      }
    }
    person.Type(c.typed);
    person.Press(Qt::Key_Enter);
    EXPECT_EQ(list->currentText(), c.chosen);
  }

  Confirm();
  EXPECT_EQ(c.stored(s), c.typedStored);
}

TEST_P(TypedChannelListTest, LeavingTheListTakesTheTypedNumber) {
  const ListCase& c = GetParam();
  QComboBox* list = OpenAtTheList();
  ASSERT_NE(list, nullptr);
  person.Type(c.left);
  person.Press(Qt::Key_Tab);
  EXPECT_NE(QApplication::focusWidget(), list);
  EXPECT_EQ(list->currentText(), c.leftShown);
  Confirm();
  EXPECT_EQ(c.stored(s), c.leftStored);
}

INSTANTIATE_TEST_SUITE_P(EveryDialog, TypedChannelListTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<ListCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
}  // namespace zrn
