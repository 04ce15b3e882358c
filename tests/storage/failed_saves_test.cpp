#include <QDir>
#include <cstdio>
#include <functional>

#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/shows_file.h"
#include "storage_fixture.h"

namespace zrn {
namespace {

using test::FileSizeLimit;
using test::ReadOnlyFolder;

struct DataFile {
  const char* name;
  bool (*save)(State&, QString*);
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

class FailedSaves : public test::StorageTest {};

// A folder that cannot be written and a disk that is full: the save fails, the operator is told
// which file and why in the system's words, and the file on disk stays byte for byte as it was.
TEST_F(FailedSaves, LeaveEveryFileByteIdentical) {
  s.Shows = {MakeNewShow()};
  s.ShowCount = 1;
  s.Outputs[0].Events[0].Time = QStringLiteral("18:00:00");
  s.Outputs[0].EventCount = 1;
  for (const bool fullDisk : {false, true}) {
    for (const DataFile& file : kDataFiles) {
      SCOPED_TRACE(std::string(file.name) + (fullDisk ? " on a full disk" : " read-only"));
      ASSERT_TRUE(file.save(s, nullptr));
      const QByteArray before = ReadAll(QLatin1String(file.name));
      ASSERT_FALSE(before.isEmpty());
      file.change(s);
      QString failure;
      bool saved = true;
      if (fullDisk) {
        FileSizeLimit limit(16);
        saved = file.save(s, &failure);
      } else {
        ReadOnlyFolder readOnly(dir.path());
        if (!readOnly.Active()) {
          std::printf("no way to make a folder read-only for this user\n");
          continue;
        }
        saved = file.save(s, &failure);
      }
      EXPECT_FALSE(saved);
      EXPECT_EQ(ReadAll(QLatin1String(file.name)), before);
      EXPECT_TRUE(failure.startsWith(QDir::toNativeSeparators(PathOf(QLatin1String(file.name))) +
                                     QStringLiteral(" could not be saved: ")))
          << failure.toStdString();
      EXPECT_FALSE(failure.contains(QStringLiteral("unknown error"))) << failure.toStdString();
    }
  }
  // Only the data files and the error log remain: no temporary file is left behind.
  EXPECT_EQ(Files(),
            (QStringList{"Errorlog.txt", "ZRNEvents.dat", "ZRNShows.dat", "zrnconfig.ini"}));
}

}  // namespace
}  // namespace zrn
