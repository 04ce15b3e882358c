#include <QDir>
#include <functional>

#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/shows_file.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::FileSizeLimit;
using test::ReadOnlyFolder;
using test::TempStateTest;

struct DataFile {
  const char* name;
  // Tells the operator's text for a failure through its second argument.
  std::function<bool(State&, QString*)> save;
  // Changes what the next save would write.
  std::function<void(State&)> change;
};

const DataFile kDataFiles[] = {
    {"zrnconfig.ini", WriteConfiguration,
     [](State& s) { s.ServerAddress = QStringLiteral("10.20.30.40"); }},
    {"ZRNEvents.dat", SaveEvents,
     [](State& s) {
       ScheduledEvent event;
       event.Time = QStringLiteral("06:30:00");
       s.Outputs[0].Events.assign(3, event);
       s.Outputs[0].EventCount = 2;
     }},
    {"ZRNShows.dat", SaveShows,
     [](State& s) {
       s.Shows = {MakeNewShow(), MakeNewShow()};
       s.ShowCount = 2;
     }},
};

class FailedSaves : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.Shows = {MakeNewShow()};
    s.ShowCount = 1;
    s.Outputs[0].Events[0].Time = QStringLiteral("18:00:00");
    s.Outputs[0].EventCount = 1;
  }
};

TEST_F(FailedSaves, ReadOnlyFolderLeavesEveryFileByteIdentical) {
  for (const DataFile& file : kDataFiles) {
    ASSERT_TRUE(file.save(s, nullptr)) << file.name;
    const QByteArray before = ReadAll(QLatin1String(file.name));
    ASSERT_FALSE(before.isEmpty());
    QString failure;
    file.change(s);
    {
      ReadOnlyFolder readOnly(dir.path());
      if (!readOnly.Active()) {
        GTEST_SKIP() << "no way to make a folder read-only for this user";
      }
      EXPECT_FALSE(file.save(s, &failure)) << file.name;
    }
    EXPECT_EQ(ReadAll(QLatin1String(file.name)), before) << file.name;
    // The operator is told which file and why, in the system's words.
    EXPECT_TRUE(failure.startsWith(QDir::toNativeSeparators(PathOf(QLatin1String(file.name))) +
                                   QStringLiteral(" could not be saved: ")))
        << failure.toStdString();
    EXPECT_FALSE(failure.contains(QStringLiteral("unknown error"))) << failure.toStdString();
  }
}

TEST_F(FailedSaves, FullDiskLeavesEveryFileByteIdentical) {
  for (const DataFile& file : kDataFiles) {
    ASSERT_TRUE(file.save(s, nullptr)) << file.name;
    const QByteArray before = ReadAll(QLatin1String(file.name));
    file.change(s);
    bool saved = true;
    QString failure;
    {
      FileSizeLimit limit(16);
      saved = file.save(s, &failure);
    }
    EXPECT_TRUE(failure.contains(QLatin1String(file.name))) << failure.toStdString();
    EXPECT_FALSE(saved) << file.name;
    EXPECT_EQ(ReadAll(QLatin1String(file.name)), before) << file.name;
  }
  // Only the data files and the error log remain: no temporary file is left behind.
  EXPECT_EQ(Files(),
            (QStringList{QStringLiteral("Errorlog.txt"), QStringLiteral("ZRNEvents.dat"),
                         QStringLiteral("ZRNShows.dat"), QStringLiteral("zrnconfig.ini")}));
}

}  // namespace
}  // namespace zrn
