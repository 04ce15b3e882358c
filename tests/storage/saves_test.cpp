// No data file is ever lost: a failed or killed save leaves the whole old or the whole new file.
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QRegularExpression>
#include <atomic>
#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <thread>

#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/shows_file.h"
#include "storage_fixture.h"

namespace zrn {
namespace {

// Content n of each data file; contents differ in length as well as in values, so a file cut
// short, or mixed from two saves, matches none of them.
struct DataFile {
  const char* name;
  void (*fill)(State&, int);
  bool (*save)(State&, QString*);
  bool (*read)(State&);
};

void Outputs(State& s, int count) {
  s.OutputCount = s.PanelsLoaded = static_cast<qint16>(count);
  s.Outputs.assign(static_cast<size_t>(count), OutputEntry{});
}

const DataFile kFiles[] = {
    {"zrnconfig.ini",
     [](State& s, int n) {
       Outputs(s, 1 + n % 5);
       s.Outputs.back().CustomLabel = QStringLiteral("Run %1").arg(n);
     },
     WriteConfiguration, [](State& s) { return ReadConfiguration(s); }},
    {"ZRNEvents.dat",
     [](State& s, int n) {
       Outputs(s, 2);
       const QString time = QTime(0, 0).addSecs(n * 7).toString(QStringLiteral("hh:mm:ss"));
       for (OutputEntry& output : s.Outputs) {
         output.EventCount = static_cast<qint16>(1 + n % 4);
         output.Events.assign(1 + n % 4,
                              {time, false, 0, 0, false, QStringLiteral("Run %1").arg(n)});
       }
     },
     SaveEvents,
     [](State& s) {
       Outputs(s, 2);
       return ReadEvents(s);
     }},
    {"ZRNShows.dat",
     [](State& s, int n) {
       s.Shows.assign(static_cast<size_t>(1 + n % 3), MakeNewShow());
       s.ShowCount = static_cast<qint16>(s.Shows.size());
       s.Shows[0].Name = QStringLiteral("Show %1 ").arg(n) + QString(n % 40, u'x');
     },
     SaveShows, ReadShows},
};

class Saves : public test::StorageTest {
 protected:
  // The exact bytes of content n, saved into a folder of its own.
  const QByteArray& Content(const DataFile& file, int n) {
    auto [it, added] = contents_[file.name].try_emplace(n);
    if (added) {
      State scratch = Fresh();
      scratch.AppPath = scratchDir_.path() + QLatin1Char('/');
      file.fill(scratch, n);
      file.save(scratch, nullptr);
      QFile saved(scratch.AppPath + QLatin1String(file.name));
      it->second = saved.open(QIODevice::ReadOnly) ? saved.readAll() : QByteArray();
    }
    return it->second;
  }

  QTemporaryDir scratchDir_;
  std::map<std::string, std::map<int, QByteArray>> contents_;
};

// A folder that cannot be written and a disk that is full: the operator is told which file and
// why in the system's words, and the file on disk stays byte for byte as it was.
TEST_F(Saves, AFailedSaveLeavesTheFileByteIdentical) {
  for (const bool fullDisk : {false, true}) {
    for (const DataFile& file : kFiles) {
      SCOPED_TRACE(std::string(file.name) + (fullDisk ? " on a full disk" : " read-only"));
      file.fill(s, 1);
      ASSERT_TRUE(file.save(s, nullptr));
      file.fill(s, 2);
      QString failure;
      {
        std::optional<test::FileSizeLimit> limit;
        std::optional<test::ReadOnlyFolder> readOnly;
        if (fullDisk) {
          limit.emplace(16);
        } else if (!readOnly.emplace(dir.path()).Active()) {
          continue;  // nothing keeps this user from writing there
        }
        EXPECT_FALSE(file.save(s, &failure));
      }
      EXPECT_EQ(ReadAll(QLatin1String(file.name)), Content(file, 1));
      EXPECT_TRUE(failure.startsWith(QDir::toNativeSeparators(PathOf(QLatin1String(file.name))) +
                                     QStringLiteral(" could not be saved: ")) &&
                  !failure.contains(QStringLiteral("unknown error")))
          << failure.toStdString();
    }
  }
  // No temporary file is left behind.
  EXPECT_EQ(Files(),
            (QStringList{"Errorlog.txt", "ZRNEvents.dat", "ZRNShows.dat", "zrnconfig.ini"}));
}

// A child process saves content 1, 2, 3 ... and is killed at a random moment.
TEST_F(Saves, AKilledSaveLeavesTheWholeOldOrTheWholeNewContent) {
  const unsigned seed = qEnvironmentVariableIsSet("ZRN_KILLED_SAVE_SEED")
                            ? qEnvironmentVariable("ZRN_KILLED_SAVE_SEED").toUInt()
                            : std::random_device{}();
  std::printf("killed-save seed %u (ZRN_KILLED_SAVE_SEED repeats it)\n", seed);
  std::mt19937 random(seed);
  // The round the child has begun, shared with it.
  void* shared = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  auto* started = new (shared) std::atomic<int>(0);

  for (const DataFile& file : kFiles) {
    SCOPED_TRACE(file.name);
    // Kills are spread over about three saves' time, so many land inside one.
    QElapsedTimer timer;
    timer.start();
    for (int n = 5; n >= 0; --n) {
      file.fill(s, n);
      ASSERT_TRUE(file.save(s, nullptr));
    }
    const auto saveMicros = static_cast<unsigned>(std::max<qint64>(timer.nsecsElapsed() / 6000, 1));
    int onDisk = 0;
    for (int kill = 0; kill < 60; ++kill) {
      started->store(onDisk);
      const pid_t child = fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        for (int n = onDisk + 1;; ++n) {
          file.fill(s, n);
          started->store(n);
          if (!file.save(s, nullptr)) {
            _exit(1);
          }
        }
      }
      const int rounds = onDisk + static_cast<int>(random() % 3);
      timer.restart();
      while (started->load() < rounds && timer.elapsed() < 10000) {
        std::this_thread::yield();
      }
      std::this_thread::sleep_for(std::chrono::microseconds(random() % (3 * saveMicros)));
      ::kill(child, SIGKILL);
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFSIGNALED(status)) << "the save loop stopped by itself: a save failed";
      // The round under way had either been committed or left the one before it whole.
      const int last = started->load();
      const QByteArray now = ReadAll(QLatin1String(file.name));
      onDisk = now == Content(file, last) ? last : last - 1;
      ASSERT_EQ(now, Content(file, onDisk)) << "kill " << kill << " during round " << last;
      State fresh = Fresh();
      ASSERT_TRUE(file.read(fresh)) << "kill " << kill;
    }
  }
  munmap(shared, sizeof(std::atomic<int>));

  // A kill between linking the finished temporary file and renaming it leaves it behind. Nothing
  // reads it: the next start reads every file without a word and its next saves go through.
  QStringList expected = Files().filter(
      QRegularExpression(QStringLiteral("^(zrnconfig\\.ini|ZRN\\w+\\.dat)\\.\\w{6}$")));
  for (const DataFile& file : kFiles) {
    State next = Fresh();
    EXPECT_TRUE(file.read(next) && file.save(next, nullptr)) << file.name;
  }
  EXPECT_TRUE(ErrorLines().isEmpty()) << ErrorLines().join(u'\n').toStdString();
  expected += QStringList{"ZRNEvents.dat", "ZRNShows.dat", "zrnconfig.ini"};
  expected.sort();
  EXPECT_EQ(Files(), expected) << "nothing else is left";
}

}  // namespace
}  // namespace zrn
