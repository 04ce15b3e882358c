#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "core/state.h"
#include "e2e/sim_process.h"
#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/shows_file.h"

namespace zrn {
namespace {

// The demo folder scripts/run seeds, read back by the program's own readers: what a first look
// at the demo shows must be in it.
class DemoSeed : public ::testing::Test {
 protected:
  void Seed(const char* mode) {
    ASSERT_TRUE(dir.isValid());
    QProcess seed;
    seed.start(QStringLiteral("bash"),
               {QStringLiteral(ZRN_TEST_DATA_DIR "/../../scripts/seed-demo"), dir.path(),
                QLatin1String(mode)});
    ASSERT_TRUE(seed.waitForFinished(10000));
    ASSERT_EQ(seed.exitCode(), 0) << seed.readAllStandardError().toStdString();
    s.AppPath = dir.path() + QLatin1Char('/');
    QString problem;
    ASSERT_TRUE(ReadConfiguration(s, &problem)) << problem.toStdString();
    s.PanelsLoaded = s.OutputCount;
    ASSERT_TRUE(ReadEvents(s));
    ASSERT_TRUE(ReadShows(s));
    QFile file(dir.filePath(QStringLiteral("scenario.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    scenario = QString::fromUtf8(file.readAll());
  }

  QTemporaryDir dir;
  State s;
  QString scenario;
};

TEST_F(DemoSeed, OutputModeShowsLabelsSourcesAndEventsWithinMinutes) {
  Seed("output");
  EXPECT_EQ(s.ProgramMode, 0);
  int custom = 0;
  int sourceNames = 0;
  int soon = 0;
  const QTime now = QTime::currentTime();
  for (int i = 0; i < s.OutputCount; ++i) {
    const OutputEntry& output = s.Outputs[static_cast<size_t>(i)];
    if (output.DisplayOption == 2) {
      ++custom;
      EXPECT_NE(output.CustomLabel, QStringLiteral("None")) << "output " << output.Output;
    }
    // The simulator routes input n to output n, so these show a routed source's name.
    sourceNames += output.DisplayOption == 1 ? 1 : 0;
    for (int e = 0; e < output.EventCount; ++e) {
      const QTime at = QTime::fromString(output.Events[static_cast<size_t>(e)].Time, "hh:mm:ss");
      const int ahead = (now.secsTo(at) + 86400) % 86400;
      soon += ahead <= 5 * 60 ? 1 : 0;
    }
  }
  EXPECT_GE(custom, 3);
  EXPECT_GE(sourceNames, 3);
  EXPECT_GE(soon, 3) << "scheduled events in the next five minutes";
  // Some watched input falls silent within the first half minute.
  EXPECT_TRUE(scenario.contains(QRegularExpression(QStringLiteral("^every ([1-2]?[0-9]|30) input "
                                                                  "\\d+ toggle$"),
                                                   QRegularExpression::MultilineOption)));
}

TEST_F(DemoSeed, ShowModeSilencesTheDownlinkWithinTheFirstMinute) {
  Seed("show");
  EXPECT_EQ(s.ProgramMode, 1);
  ASSERT_GE(s.Shows.size(), 1u);
  const ShowRecord& show = s.Shows[0];
  ASSERT_NE(show.DownlinkSource, kNone);
  const QRegularExpressionMatch silent =
      QRegularExpression(QStringLiteral("^at (\\d+) input %1 silent$").arg(show.DownlinkSource + 1),
                         QRegularExpression::MultilineOption)
          .match(scenario);
  ASSERT_TRUE(silent.hasMatch()) << scenario.toStdString();
  EXPECT_LT(silent.captured(1).toInt() + std::max(show.DetectTime1, show.DetectTime2), 60);

  // The simulator loads the scenario (it checks every line when loading).
  test::SimProcess sim(test::FreePort(), {QStringLiteral("--scenario"),
                                          dir.filePath(QStringLiteral("scenario.txt"))});
  EXPECT_TRUE(sim.Start());
}

}  // namespace
}  // namespace zrn
