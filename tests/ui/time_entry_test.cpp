#include <gtest/gtest.h>

#include "schedule/time_entry.h"
#include "shows/ignore_window_rules.h"

namespace zrn {
namespace {

// Types keys one by one at the caret, as the operator would; '\b' is Backspace.
QString Typed(const QString& keys, QString start = QString()) {
  TimeFieldEdit field{start, static_cast<int>(start.size()), 0, 0};
  for (QChar key : keys) {
    if (const std::optional<TimeFieldEdit> next = TypeTimeKey(field, key)) {
      field = *next;
    }
  }
  return field.text;
}

TEST(TimeEntry, ColonsFollowTheSecondAndFourthDigit) {
  EXPECT_EQ(Typed(QStringLiteral("12")), QStringLiteral("12:"));
  EXPECT_EQ(Typed(QStringLiteral("1230")), QStringLiteral("12:30:"));
  EXPECT_EQ(Typed(QStringLiteral("123045")), QStringLiteral("12:30:45"));
  EXPECT_EQ(Typed(QStringLiteral("1230456")), QStringLiteral("12:30:45")) << "full field";
  EXPECT_EQ(Typed(QStringLiteral("1a2:3")), QStringLiteral("12:3")) << "only digits go in";
  EXPECT_FALSE(TypeTimeKey({QStringLiteral("12:"), 3, 0, 0}, QLatin1Char(':')));
}

TEST(TimeEntry, BackspaceTakesTheDigitBeforeAnAutomaticColon) {
  EXPECT_EQ(Typed(QStringLiteral("12\b")), QStringLiteral("1"));
  EXPECT_EQ(Typed(QStringLiteral("1230\b\b")), QStringLiteral("12:"));
  EXPECT_EQ(Typed(QStringLiteral("\b\b")), QString());
  // A selection in a full field is replaced by the digit typed over it.
  const std::optional<TimeFieldEdit> over =
      TypeTimeKey({QStringLiteral("12:30:45"), 8, 3, 2}, QLatin1Char('5'));
  ASSERT_TRUE(over);
  EXPECT_EQ(over->text, QStringLiteral("12:5:45"));
  EXPECT_EQ(over->cursor, 4);
}

TEST(TimeEntry, EnteredTimesAreTimesOfDay) {
  EXPECT_EQ(EnteredTime(QStringLiteral("12:30:45")), QStringLiteral("12:30:45"));
  EXPECT_EQ(EnteredTime(QStringLiteral("12:30:")), QStringLiteral("12:30:00"));
  for (const char* bad : {"25:00:00", "12:60:00", "12:00:60", "24:00:00", "12:3", "", "ab:cd:ef"}) {
    EXPECT_FALSE(EnteredTime(QLatin1String(bad))) << bad;
  }
}

TEST(TimeEntry, IgnoreWindowMessagesNameTheFirstFault) {
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("24:00:00"), true),
            QStringLiteral("Invalid start time.  Hours must be less than 24"));
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("23:75:99"), false),
            QStringLiteral("Invalid end time.  Minutes must be less than 60"));
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("23:59:60"), false),
            QStringLiteral("Invalid end time.  Seconds must be less than 60"));
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("12:3"), true),
            QStringLiteral("Invalid start time.  Please enter as HH:MM:SS"));
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("08:00:00"), true), QString());
}

}  // namespace
}  // namespace zrn
