#include <gtest/gtest.h>

#include "schedule/schedule_rules.h"
#include "schedule/time_entry.h"
#include "shows/ignore_window_rules.h"
#include "support/person.h"
#include "switcher/silence_detect_rules.h"

namespace zrn {
namespace {

// Types keys one by one at the caret, as the operator would; '\b' is Backspace.
QString Typed(const QString& keys) {
  TimeFieldEdit field{QString(), 0, 0, 0};
  for (QChar key : keys) {
    if (const std::optional<TimeFieldEdit> next = TypeTimeKey(field, key)) {
      field = *next;
    }
  }
  return field.text;
}

TEST(TimeEntry, ColonsComeByThemselvesAndBackspaceTakesTheDigitBeforeOne) {
  const struct {
    const char* keys;
    const char* shown;
  } cases[] = {
      {"12", "12:"},
      {"123045", "12:30:45"},
      {"1230456", "12:30:45"} /* full */,
      {"1a2:3", "12:3"} /* digits only */,
      {"12\b", "1"},
      {"\b\b", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Typed(QLatin1String(c.keys)), QLatin1String(c.shown)) << c.keys;
  }
  EXPECT_FALSE(TypeTimeKey({QStringLiteral("12:"), 3, 0, 0}, QLatin1Char(':')));
  // A selection in a full field is replaced by the digit typed over it.
  const TimeFieldEdit over = TypeTimeKey({QStringLiteral("12:30:45"), 8, 3, 2}, QLatin1Char('5'))
                                 .value_or(TimeFieldEdit{});
  EXPECT_EQ(std::pair(over.text, over.cursor), std::pair(QStringLiteral("12:5:45"), 4));
}

// What each time field makes of a text: the show editor's times of day, the schedule's event
// times and the ignore windows' messages, which name the first fault.
TEST(TimeEntry, EachFieldReadsTimesByItsOwnRule) {
  const struct {
    const char* text;
    const char* entered;     // "" when refused
    const char* normalised;  // the event time as stored
    bool validEvent;
    const char* ignoreError;  // as a start time
  } cases[] = {
      {"12:30:45", "12:30:45", "12:30:45", true, ""},
      {"12:30:", "12:30:00", "12:30:00", false, ""},
      {"6:30", "", "06:30:00", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"6:30 PM", "", "18:30:00", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"24:00:00", "", "24:00:00", false, "Invalid start time.  Hours must be less than 24"},
      {"12:60:00", "", "12:60:00", false, "Invalid start time.  Minutes must be less than 60"},
      {"12:00:60", "", "12:00:60", false, "Invalid start time.  Seconds must be less than 60"},
      {"12:3", "", "12:3", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"1:00:000", "", "1:00:000", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"ab:cd:ef", "", "ab:cd:ef", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"+1:00:00", "", "+1:00:00", false, "Invalid start time.  Please enter as HH:MM:SS"},
      {"", "", "", false, "Invalid start time.  Please enter as HH:MM:SS"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const QString text = QLatin1String(c.text);
    EXPECT_EQ(EnteredTime(text).value_or(QString()), QLatin1String(c.entered));
    EXPECT_EQ(NormaliseEventTime(text), QLatin1String(c.normalised));
    EXPECT_EQ(IsValidEventTime(text), c.validEvent);
    EXPECT_EQ(IgnoreTimeError(text, true), QLatin1String(c.ignoreError));
  }
  EXPECT_EQ(IgnoreTimeError(QStringLiteral("23:59:60"), false),
            QStringLiteral("Invalid end time.  Seconds must be less than 60"));
}

ScheduledEvent Event(qint16 source) {
  return {QStringLiteral("01:00:00"), false, 0, 0, source != kNone, QString(), source};
}

TEST(ScheduleRules, RowTextsAndFields) {
  State s;
  s.InputNames = {QStringLiteral("Sat 1")};
  EXPECT_EQ(EventRowTexts(s, Event(1)), (QStringList{"01:00:00", "Inactive", "[0001] Sat 1", ""}));
  EXPECT_EQ(EventRowTexts(s, Event(2))[2], QStringLiteral("[0002] Uknown"));

  // The events file pads labels to 12 characters; the editor shows them without the blanks
  // and refuses longer ones.
  ScheduledEvent padded = Event(1);
  padded.Label = QStringLiteral("News        ");
  padded.Days = 1;
  EventFields fields = FieldsOfEvent(padded);
  EXPECT_EQ(fields.label, QStringLiteral("News"));
  EXPECT_EQ(EventFromFields(fields).Time, QStringLiteral("01:00:00"));
  EXPECT_FALSE(CheckEventFields(fields).has_value());
  fields.label = QStringLiteral("ThirteenChars");
  EXPECT_EQ(CheckEventFields(fields).value_or(FieldError{}).title, QStringLiteral("Label Error"));
}

TEST(SilenceDetectRules, ListPositionsAndDevices) {
  const struct {
    int code, position;
  } thresholds[] = {{824, 41}, {kNone, 0}, {825, 0}, {1224, 1}, {514, 72}};
  for (const auto& t : thresholds) {
    EXPECT_EQ(ThresholdPosition(t.code), t.position) << t.code;
    if (t.code != 825) {
      EXPECT_EQ(ThresholdCode(t.position), t.code) << t.position;
    }
  }
  EXPECT_EQ(ThresholdListTexts().value(1), QStringLiteral("20 dB"));
  EXPECT_EQ(ThresholdListTexts().value(72), QStringLiteral("-51 dB"));
  EXPECT_EQ(TimePosition(900), 500);
  const DetectMode mode = SplitMode(0x38B);
  EXPECT_EQ(mode.deviceType, 3);
  EXPECT_TRUE(mode.actionOn && mode.followsPeak && mode.silenceEnabled && mode.peakEnabled);
  EXPECT_EQ(ComposeMode(mode), 0x38B);

  // A relay the switcher has not reported stays selectable rather than being dropped.
  State s;
  s.RelayNames = {QStringLiteral("Alarm")};
  s.SwitcherRelayCount = 1;
  const std::vector<DeviceItem> items = DeviceListItems(s, 2, 9);
  EXPECT_EQ(items.at(2).text, QStringLiteral("Uknown [0010]"));
  EXPECT_EQ(DevicePosition(items, 9), 2);
  EXPECT_EQ(DeviceListItems(s, 1, 0).size(), 1u);
}

}  // namespace
}  // namespace zrn
