#include "storage/config_file.h"

#include <QFile>
#include <QFileInfo>
#include <tuple>

#include "storage_fixture.h"

namespace zrn {
namespace {

const QString kIni = QStringLiteral("zrnconfig.ini");

// Of each output: output, display option, label, event count, events held, monitored.
using Read = std::tuple<int, int, std::string, int, int, bool>;
std::vector<Read> Fields(const State& t) {
  std::vector<Read> out;
  for (const OutputEntry& e : t.Outputs) {
    out.emplace_back(e.Output, e.DisplayOption, e.CustomLabel.toStdString(), e.EventCount,
                     static_cast<int>(e.Events.size()), e.MonitoringEnabled);
  }
  return out;
}

class ConfigFileTest : public test::StorageTest {
 protected:
  // Writes the lines, given apart by '|', with CRLF ends as the file and reads it into t.
  bool Load(State& t, const char* lines, QString* problem = nullptr) {
    WriteAll(kIni, QByteArray(lines).replace('|', "\r\n") + "\r\n");
    return ReadConfiguration(t, problem);
  }
};

// Each row starts from the same state as start-up might leave it: a key the file does not hold
// keeps its value, an absent file gives the defaults (but for the view and the mode).
TEST_F(ConfigFileTest, ScalarValuesFollowTheirRules) {
  using Scalars = std::tuple<std::string, int, int, int, int, int, int>;
  const struct {
    const char* lines;  // none: no file
    Scalars read;
  } cases[] = {
      {nullptr, {"127.0.0.1", 1250, 5000, 100, kNone, 1, 1}},
      {"[CONFIGURATION]|Server IP Address=|Server IP Port=12 51|Maximum Log File Size=0|"
       "Maximum Display=0|Alarm Relay=0|Default View=Large|Program Mode=Show",
       {"127.0.0.1", 1251, 0, 125, kNone, 1, 1}},
      // Blank lines, leading blanks, a quoted entry, a value cut at its width, halves rounding
      // to even, and keys and words that are case-sensitive.
      {"|   |  Server IP Address=192.168.100.200-abcdefghijklmnop|Server IP Port=-80|"
       "\"Alarm Relay=2.5\" ignored|Default View=large|Program Mode=Output|Maximum Display=33.5",
       {"192.168.100.200-abcdefghi", 1250, 777, 34, 2, 0, 0}},
      {"Maximum Log File Size=-3|Server IP Port=99999", {"10.0.0.9", 99999, 5000, 3, 4, 1, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.lines == nullptr ? "no file" : c.lines);
    State t = Fresh();
    std::tie(t.ServerAddress, t.ServerPort, t.MaxLogFileSize, t.MaxDisplay, t.AlarmRelay,
             t.DefaultViewLarge, t.ProgramMode) = std::tuple("10.0.0.9", 9, 777, 3, 4, 1, 1);
    t.Outputs.assign(3, OutputEntry{});
    QFile::remove(PathOf(kIni));
    ASSERT_TRUE(c.lines == nullptr ? ReadConfiguration(t) : Load(t, c.lines));
    EXPECT_EQ(Scalars(t.ServerAddress.toStdString(), t.ServerPort, t.MaxLogFileSize, t.MaxDisplay,
                      t.AlarmRelay, t.DefaultViewLarge, t.ProgramMode),
              c.read);
    if (c.lines == nullptr) {
      EXPECT_EQ(std::tuple(Fields(t), t.OutputCount, Files()),
                std::tuple(std::vector<Read>{{1, 0, "None", 0, 1, true}}, 1, QStringList()))
          << "nothing created, nothing logged";
    }
  }
}

TEST_F(ConfigFileTest, SectionsFillTheOutputsTable) {
  // No count gives the full table of unwatched outputs.
  State zero = Fresh();
  ASSERT_TRUE(Load(zero, "Output Count=0"));
  EXPECT_EQ(std::tuple(zero.OutputCount, Fields(zero)),
            std::tuple(64, std::vector<Read>(64, {kNone, 0, "None", 0, 1, false})));
  EXPECT_EQ(std::tuple(zero.Outputs[63].NextEvent, zero.Outputs[63].HoldOffTicks),
            std::tuple(kNone, 0));

  // Output 1 complete; 2 in another order, so only the first and last slots match; in 3 a
  // comma cuts the label and the rest takes the Event Count slot; 4 lacks Display Options, so
  // the next section header is used up.
  State t = Fresh();
  ASSERT_TRUE(Load(t,
                   "Output Count=5|"
                   "[OUTPUT1]|Output=12|Display Options=2|Custom Label=  Studio|Event Count=4|"
                   "[OUTPUT2]|Output=5|Custom Label=Y|Display Options=1|Event Count=1|"
                   "[OUTPUT3]|Output=0|Display Options=1|Custom Label=A,B|Event Count=3|"
                   "[OUTPUT4]|Output=7|Custom Label=Lost|Event Count=2|"
                   "[OUTPUT5]|Output=9|Display Options=1|Custom Label=Z|Event Count=1"));
  EXPECT_EQ(Fields(t), (std::vector<Read>{{12, 2, "  Studio", 4, 4, true},
                                          {5, 0, "None", 1, 1, true},
                                          {kNone, 1, "A", 0, 1, false},
                                          {7, 0, "None", 0, 1, true},
                                          {kNone, 0, "None", 0, 1, false}}));
}

// The exact layout (CRLF ends, non-ASCII as single bytes, kept in tests/data), and every field
// read back as written: trailing blanks as events leave them, an unset output and relay.
TEST_F(ConfigFileTest, WritesTheExactLayoutAndReadsItBack) {
  std::tie(s.ServerAddress, s.ServerPort, s.MaxLogFileSize, s.MaxDisplay, s.DefaultViewLarge,
           s.ProgramMode, s.OutputCount) = std::tuple("10.1.2.3", 1251, 0, 250, 1, 1, 3);
  s.Outputs.assign(3, OutputEntry{});
  std::tie(s.Outputs[0].Output, s.Outputs[0].DisplayOption, s.Outputs[0].EventCount) =
      std::tuple(12, 2, 3);
  std::tie(s.Outputs[2].Output, s.Outputs[2].DisplayOption, s.Outputs[2].EventCount) =
      std::tuple(100, 1, 2);
  s.Outputs[0].CustomLabel = QStringLiteral("Caf\u00e9 ");
  s.Outputs[2].CustomLabel = QStringLiteral("Z\u00fcrich \u00bd");
  ASSERT_TRUE(WriteConfiguration(s));
  QFile golden(QStringLiteral(ZRN_TEST_DATA_DIR "/zrnconfig-written.ini"));
  ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
  EXPECT_EQ(ReadAll(kIni), golden.readAll());

  State back = Fresh();
  ASSERT_TRUE(ReadConfiguration(back));
  const auto scalars = [](const State& t) {
    return std::tuple(t.ServerAddress, t.ServerPort, t.MaxLogFileSize, t.MaxDisplay, t.AlarmRelay,
                      t.DefaultViewLarge, t.ProgramMode, t.OutputCount);
  };
  EXPECT_EQ(scalars(back), scalars(s));
  EXPECT_EQ(Fields(back), (std::vector<Read>{{12, 2, "Caf\u00e9 ", 3, 3, true},
                                             {kNone, 0, "None", 0, 1, false},
                                             {100, 1, "Z\u00fcrich \u00bd", 2, 2, true}}));
}

TEST_F(ConfigFileTest, DamagedAndUnreadableFilesAreLoggedAndSetAside) {
  const QByteArray overflow =
      "[CONFIGURATION]\r\nServer IP Port=2001\r\nAlarm Relay=99999\r\nMaximum Display=7\r\n";
  WriteAll(kIni, overflow);
  QString problem;
  EXPECT_FALSE(ReadConfiguration(s, &problem));
  EXPECT_EQ(problem,
            "Configuration not read: zrnconfig.ini is damaged at \"Alarm Relay=99999\" "
            "(Overflow); set aside as zrnconfig.ini.bad-20261116-154252");
  // Read up to the error, never after it; the table stays consistent all the same.
  EXPECT_EQ(std::tuple(s.ServerPort, s.MaxDisplay, s.Outputs[0].MonitoringEnabled),
            std::tuple(2001, 100, true));
  EXPECT_EQ(ErrorLines().value(0).mid(24),
            "Error Reading ini file              Error #  6 - Overflow");
  EXPECT_EQ(std::tuple(Files(), ReadAll("zrnconfig.ini.bad-20261116-154252")),
            std::tuple(QStringList{"Errorlog.txt", "zrnconfig.ini.bad-20261116-154252"}, overflow));

  const struct {
    const char* lines;
    QString error, at;  // at: where the operator is told the reading stopped
  } cases[] = {
      {"Output Count=2|[OUTPUT3]", "Error #  9 - Subscript out of range", "[OUTPUT3]"},
      {"Output Count=2|[OUTPUT0]", "Error #  9 - Subscript out of range", "[OUTPUT0]"},
      {"Output Count=1|[OUTPUT1]|Output=4|Display Options=0",
       "Error #  62 - Input past end of file", "[OUTPUT1]"},
      // More events than the events file could ever hold.
      {"Output Count=2|[OUTPUT1]|Output=1|Display Options=0|Custom Label=X|Event Count=20000|"
       "[OUTPUT2]|Output=2|Display Options=0|Custom Label=Y|Event Count=20000",
       "Error #  6 - Overflow", "Event Count=20000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.error.toStdString());
    clock.AdvanceSeconds(61);
    State t = Fresh();
    EXPECT_FALSE(Load(t, c.lines, &problem));
    EXPECT_TRUE(ErrorLines().join('\n').contains(c.error));
    EXPECT_TRUE(problem.contains(QStringLiteral("damaged at \"%1\"").arg(c.at)))
        << problem.toStdString();
    EXPECT_FALSE(QFileInfo::exists(PathOf(kIni)));
  }
  EXPECT_EQ(Files().filter(".bad-").size(), 5);

  // A file the program may not open is unreadable, not damaged, and is set aside all the same.
  clock.AdvanceSeconds(61);
  WriteAll(kIni, "[CONFIGURATION]\r\nServer IP Port=2001\r\n");
  QFile::setPermissions(PathOf(kIni), QFileDevice::WriteOwner);
  if (QFile file(PathOf(kIni)); file.open(QIODevice::ReadOnly)) {
    // Permissions do not bind this user: a folder in the file's place cannot be opened either.
    file.close();
    ASSERT_TRUE(QFile::remove(PathOf(kIni)));
    ASSERT_TRUE(QDir().mkdir(PathOf(kIni)));
  }
  State t = Fresh();
  EXPECT_FALSE(ReadConfiguration(t, &problem));
  EXPECT_TRUE(problem.startsWith("Configuration not read: zrnconfig.ini is unreadable (") &&
              problem.endsWith("); set aside as zrnconfig.ini.bad-20261116-154757"))
      << problem.toStdString();
  EXPECT_TRUE(ErrorLines().join('\n').contains("Unreadable file kept as zrnconfig.ini.bad-"));
  EXPECT_EQ(t.ServerPort, 1250) << "nothing of it was read";
}

TEST(NormalizeServerAddress, ClampsAndDropsLeadingZeros) {
  const struct {
    const char *in, *out;  // "unchanged": refused
  } cases[] = {{"192.168.001.010", "192.168.1.10"},
               {"300.-5.1.2", "255.0.1.2"},
               {"1.2.3.4.5", "1.2.3.4"},
               {" 10 .x.2.5.", "10.0.2.5"},
               {"1.2.3.99999999999999999999999", "1.2.3.255"},
               {"1.2.3", "unchanged"},
               {"1.2.3.", "unchanged"},
               {"localhost", "unchanged"}};
  for (const auto& c : cases) {
    QString normalized = "unchanged";
    EXPECT_EQ(NormalizeServerAddress(c.in, &normalized), QLatin1String(c.out) != "unchanged")
        << c.in;
    EXPECT_EQ(normalized, c.out) << c.in;
  }
}

}  // namespace
}  // namespace zrn
