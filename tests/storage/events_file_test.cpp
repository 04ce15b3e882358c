#include "storage/events_file.h"

#include <tuple>

#include "storage_fixture.h"

namespace zrn {
namespace {

const QString kFile = QStringLiteral("ZRNEvents.dat");

ScheduledEvent Event(const QString& time, int days = 31, bool active = true, int display = 0,
                     bool connect = false, int source = kNone, const QString& label = {}) {
  return {time,    active, static_cast<qint16>(display), static_cast<qint16>(days),
          connect, label,  static_cast<qint16>(source)};
}

// An output's events, every field of each as one string, so a whole schedule compares at once.
QStringList Schedule(const OutputEntry& output) {
  QStringList out;
  for (int i = 0; i < output.EventCount; ++i) {
    const ScheduledEvent& e = output.Events[i];
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 '%7'")
               .arg(e.Time)
               .arg(e.Days)
               .arg(int{e.Active})
               .arg(e.DisplayOption)
               .arg(int{e.Connect})
               .arg(e.Source)
               .arg(e.Label);
  }
  return out;
}

class EventsFile : public test::StorageTest {
 protected:
  void UseOutputs(int count) {
    s.Outputs.assign(count, OutputEntry{});
    s.PanelsLoaded = static_cast<qint16>(count);
  }
  void SetEvents(int output, std::vector<ScheduledEvent> events) {
    s.Outputs[output].EventCount = static_cast<qint16>(events.size());
    events.emplace_back();  // the spare element a schedule keeps
    s.Outputs[output].Events = std::move(events);
  }
};

TEST_F(EventsFile, WorkedExampleIsByteExactAndFlagsAreNormalised) {
  SetEvents(0, {Event("06:30:00")});
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kFile), QByteArray::fromHex("01000100") + QByteArray(1, '\0') + "06:30:00" +
                                QByteArray::fromHex("1FFF0000FF3F") + QByteArray(12, ' '));

  SetEvents(0, {});
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kFile), QByteArray::fromHex("01000000"));

  // Any flag not zero reads true and is written back as 255: days 1, active 1, display 2,
  // connect 7, source 5.
  WriteAll(kFile, QByteArray::fromHex("01000100") + QByteArray(1, '\0') + "07:00:00" +
                      QByteArray::fromHex("010102070500") + "Breakfast   ");
  ASSERT_TRUE(ReadEvents(s));
  ASSERT_EQ(s.Outputs[0].EventCount, 1);
  const ScheduledEvent& e = s.Outputs[0].Events[0];
  // Trailing blanks of the label are kept.
  EXPECT_EQ(std::tuple(e.Active, e.Connect, e.Days, e.DisplayOption, e.Source, e.Label),
            std::tuple(true, true, 1, 2, 5, QStringLiteral("Breakfast   ")));
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kFile).mid(4 + 9, 6), QByteArray::fromHex("01FF02FF0500"));
}

// Each output's events come back sorted by time, equal times in file order, with every field and
// the label padded to 12; the file, not the configuration, decides the counts and the panels.
TEST_F(EventsFile, ReadingSortsByTimeAndLetsTheFileDecideTheCounts) {
  UseOutputs(3);
  SetEvents(0, {Event("06:00:00", 31, true, 0, true, 3)});
  ASSERT_TRUE(ReadEvents(s)) << "no file: every output empty, without an error";
  EXPECT_EQ(std::tuple(s.Outputs[0].EventCount, s.Outputs[0].Events[0].Source, Files().size()),
            std::tuple(0, kNone, 0));

  SetEvents(0, {Event("12:00:00", 127, false, 1, true, 256, QStringLiteral("Caf\u00e9 Matin")),
                Event("08:00:00", 2, true, 0, false, kNone, "A"), Event("00:00:00"),
                Event("08:00:00", 2, true, 0, false, kNone, "B")});
  SetEvents(1, {Event("10:00:00")});
  ASSERT_TRUE(SaveEvents(s));
  s.PanelsLoaded = 1;
  s.Outputs[1].EventCount = 3;
  SetEvents(2, {Event("01:00:00", 1, true, 0, true, 44)});
  ASSERT_TRUE(ReadEvents(s));
  EXPECT_EQ(Schedule(s.Outputs[0]), (QStringList{"00:00:00 31 1 0 0 16383 '            '",
                                                 "08:00:00 2 1 0 0 16383 'A           '",
                                                 "08:00:00 2 1 0 0 16383 'B           '",
                                                 "12:00:00 127 0 1 1 256 'Caf\u00e9 Matin  '"}));
  EXPECT_EQ(s.Outputs[1].EventCount, 1);
  EXPECT_EQ(std::tuple(s.Outputs[2].EventCount, s.Outputs[2].Events[0].Source),
            std::tuple(0, kNone))
      << "an output without events has no route";
}

// Every cut of a good file is an error, and so is a count promising records that are not there
// or an output beyond the table (randomly damaged files are the fuzz target's).
TEST_F(EventsFile, EveryCutOfAGoodFileIsAnErrorAndCountsAreNeverTrusted) {
  UseOutputs(2);
  SetEvents(0, {Event("06:30:00"), Event("18:00:00", 96, false, 2, true, 7, "Late")});
  SetEvents(1, {Event("12:00:00")});
  ASSERT_TRUE(SaveEvents(s));
  const QByteArray whole = ReadAll(kFile);
  QList<QByteArray> damaged{QByteArray::fromHex("0100307500000000000000")};  // 30000 records
  for (int length = 0; length < whole.size(); ++length) {
    damaged << whole.left(length);
  }
  for (const QByteArray& file : damaged) {
    ForgetErrors(kFile);
    WriteAll(kFile, file);
    EXPECT_FALSE(ReadEvents(s)) << file.size();
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading Events"),
                             QStringLiteral("Error #  62 - Input past end of file")))
        << file.size();
  }

  // An output the table does not hold stops the reading; events already given out stay, the
  // counts are not corrected, and the file is set aside.
  ForgetErrors(kFile);
  WriteAll(kFile, whole);
  UseOutputs(1);
  s.Outputs[0].EventCount = 4;
  EXPECT_FALSE(ReadEvents(s));
  EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading Events"),
                           QStringLiteral("Error #  9 - Subscript out of range")));
  EXPECT_EQ(std::tuple(s.Outputs[0].Events[0].Time, s.Outputs[0].EventCount),
            std::tuple(QStringLiteral("06:30:00"), 4));
  EXPECT_EQ(ReadAll(kFile), whole);
  EXPECT_EQ(Files().filter(QStringLiteral("ZRNEvents.dat.bad-")).size(), 1);

  ForgetErrors(kFile);
  WriteAll(kFile, QByteArray::fromHex("0100FFFF"));
  EXPECT_TRUE(ReadEvents(s)) << "a negative count reads no records";
  EXPECT_EQ(s.Outputs[0].EventCount, 0);
}

// Saving also stays within the tables: a count beyond an output's events and more panels than
// outputs write what there is.
TEST_F(EventsFile, UnstorableEventsAreSkippedAndLogged) {
  UseOutputs(258);
  s.PanelsLoaded = 300;
  s.Outputs[1].Events = {Event("05:00:00"), Event("06:00:00")};
  s.Outputs[1].EventCount = 9;
  SetEvents(0, {Event("06:00:00"), Event("6:30"),
                Event("07:00:00", 31, true, 2, false, kNone, QStringLiteral("Thirteen chrs")),
                Event("08:00:00", 300), Event("09:00:00", 31, true, -1), Event("10:00:00")});
  SetEvents(256, {Event("11:00:00")});
  SetEvents(257, {Event("11:00:00")});
  ASSERT_TRUE(SaveEvents(s));

  // The count is what was written.
  const QByteArray saved = ReadAll(kFile);
  EXPECT_EQ(saved.left(4), QByteArray::fromHex("01000400"));
  EXPECT_EQ(saved.mid(4 + 27, 27), QByteArray::fromHex("00") + "10:00:00" +
                                       QByteArray::fromHex("1FFF0000FF3F") + QByteArray(12, ' '));

  for (const char* text :
       {"Event 1 of output 0 not saved: time \"6:30\"", "Event 2 of output 0 not saved: label",
        "Event 3 of output 0 not saved: days 300",
        "Event 4 of output 0 not saved: display option -1",
        "Event 0 of output 256 not saved: output index 256", "Event 0 of output 257 not saved"}) {
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Saving Events"), QString::fromUtf8(text)))
        << text;
  }
}

}  // namespace
}  // namespace zrn
