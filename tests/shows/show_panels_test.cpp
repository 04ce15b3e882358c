#include "shows/show_panels.h"
#include "support/temp_state.h"

namespace zrn::test {
namespace {

// Show mode with a table of shows named "Show A", "Show B" ...
class ShowPanels : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.ProgramMode = 1;
    s.Shows.clear();
    for (int i = 0; i < 30; ++i) {
      ShowRecord show;
      show.Name = QStringLiteral("Show %1").arg(QChar('A' + i));
      show.OutputCount = 1;
      show.OutputLeft = {static_cast<qint16>(i)};
      show.DownlinkSource = static_cast<qint16>(i);
      s.Shows.push_back(show);
      s.InputNames[i] = QStringLiteral("Sat %1").arg(i + 1);
    }
    s.ShowCount = 30;
  }
  void Activate(int count) {
    s.ActiveShows.clear();
    for (int i = 0; i < count; ++i) {
      s.ActiveShows.push_back(static_cast<qint16>(i));
    }
    s.ActiveShowCount = static_cast<qint16>(count);
    UpdateShows(s);
  }
  const ShowPanelModel& Panel(int i) const { return s.panels.shows.at(i); }
};

// Six a row, 1840 apart, rows 1680 apart, on past the fourth row; a shrinking list keeps the
// panels that stay where they were.
TEST_F(ShowPanels, FramesFollowTheGridAsTheListGrowsAndShrinks) {
  const struct {
    int active, panel;
    Rect frame;
  } cases[] = {
      {3, 0, {1080, 240, 1740, 1680}},    {3, 2, {4760, 240, 1740, 1680}},
      {7, 6, {1080, 1920, 1740, 1680}},   {2, 1, {2920, 240, 1740, 1680}},
      {26, 25, {2920, 6960, 1740, 1680}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.active << " on air, panel " << c.panel);
    Activate(c.active);
    ASSERT_EQ(s.panels.shows.size(), static_cast<size_t>(c.active));
    EXPECT_EQ(Panel(c.panel).frame, c.frame);
    EXPECT_TRUE(Panel(c.panel).visible);
    EXPECT_EQ(Panel(c.panel).nameText, QStringLiteral("Show %1").arg(QChar('A' + c.panel)));
  }

  Activate(0);
  EXPECT_EQ(s.ShowPanelsLoaded, 0);
  ASSERT_EQ(s.panels.shows.size(), 1u);
  EXPECT_FALSE(Panel(0).visible);

  // The name moves left as the number before it grows a digit.
  LoadShowStatus(s, 10);
  EXPECT_EQ(Panel(9).nameText, QStringLiteral("Show 10"));
  EXPECT_EQ(Panel(9).name.left, 80);
  EXPECT_EQ(Panel(8).name.left, 120);
}

// A bad list entry costs only its panel, and a count beyond the list is held to the list.
TEST_F(ShowPanels, OutputAndSourceTexts) {
  s.OutputNames[1] = QStringLiteral("OUT2");
  s.Shows[0].OutputCount = 2;
  s.Shows[0].OutputLeft = {kNone, 1};
  s.Shows[1].OutputCount = 0;  // no outputs at all
  s.Shows[2].OutputCount = 3;
  s.Shows[2].OutputLeft = {0, 300, 1};
  s.Shows[2].DownlinkSource = kNone;
  s.Shows[3].OutputCount = 4;  // more than the show holds
  s.Shows[3].DownlinkSource = 400;
  s.ActiveShows = {0, 1, 57, 2, 3};
  s.ActiveShowCount = 9;
  UpdateShows(s);
  EXPECT_EQ(s.ShowPanelsLoaded, 5);
  QStringList texts;
  for (const ShowPanelModel& panel : s.panels.shows) {
    texts << panel.nameText + " | " + panel.outputsText + " | " + panel.sourceText;
  }
  EXPECT_EQ(texts, (QStringList{"Show A | Not Defined, OUT2 | Sat 1",
                                "Show B | Not Defined | Sat 2", " | Not Defined | Not Defined",
                                "Show C | Out 0001, Not Defined, OUT2 | Not Defined",
                                "Show D | Out 0004 | Not Defined"}));
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Show Status")));
}

}  // namespace
}  // namespace zrn::test
