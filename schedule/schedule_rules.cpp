#include "schedule/schedule_rules.h"

#include <QTime>
#include <algorithm>

#include "core/channel_texts.h"

namespace zrn {

namespace {

const QString kUnknown = QStringLiteral("Uknown");

QString NameAt(const QStringList& names, int count, int channel) {
  const int known = std::min<int>(count, static_cast<int>(names.size()));
  return channel >= 1 && channel <= known ? names[channel - 1] : kUnknown;
}

bool TwoDigitsAtMost(const QString& text, int from, int most) {
  bool ok = false;
  const int value = text.mid(from, 2).toInt(&ok);
  return ok && text[from].isDigit() && text[from + 1].isDigit() && value <= most;
}

}  // namespace

QString NormaliseEventTime(const QString& text) {
  static const QStringList formats = {QStringLiteral("H:mm:ss"), QStringLiteral("H:mm"),
                                      QStringLiteral("h:mm:ss AP"), QStringLiteral("h:mm AP")};
  QString candidate = text.trimmed();
  // The time box adds the colons by itself, so "06:30:" is what "0630" leaves behind.
  if (candidate.endsWith(QLatin1Char(':'))) {
    candidate.chop(1);
  }
  for (const QString& format : formats) {
    const QTime parsed = QTime::fromString(candidate, format);
    if (parsed.isValid()) {
      return parsed.toString(QStringLiteral("HH:mm:ss"));
    }
  }
  return text;
}

bool IsValidEventTime(const QString& text) {
  return text.size() == 8 && text[2] == QLatin1Char(':') && text[5] == QLatin1Char(':') &&
         TwoDigitsAtMost(text, 0, 23) && TwoDigitsAtMost(text, 3, 59) &&
         TwoDigitsAtMost(text, 6, 59);
}

std::optional<FieldError> CheckEventFields(const EventFields& fields) {
  if (!IsValidEventTime(NormaliseEventTime(fields.time))) {
    return FieldError{QStringLiteral("Time Error"),
                      QStringLiteral("Invalid Time entered.  Please enter as HH:MM:SS")};
  }
  // An event on no day never runs, so saving it would only look like a schedule.
  if ((fields.days & 0x7F) == 0) {
    return FieldError{QStringLiteral("Day Error"),
                      QStringLiteral("No day is ticked in Day Options.  Please tick at least "
                                     "one day.")};
  }
  // The label can become the output's custom label, and a comma would cut it in the
  // configuration file.
  if (fields.label.contains(QLatin1Char(','))) {
    return FieldError{QStringLiteral("Label Error"),
                      QStringLiteral("A custom label cannot contain a comma.  Please re-enter.")};
  }
  if (fields.label.size() > kMaxEventLabel) {
    return FieldError{
        QStringLiteral("Label Error"),
        QStringLiteral("A custom label has at most 12 characters.  Please re-enter.")};
  }
  if (fields.connect && fields.sourcePosition <= 0) {
    return FieldError{QStringLiteral("Source Error"),
                      QStringLiteral("Take Source to Dest needs a source.  Please select one.")};
  }
  return std::nullopt;
}

ScheduledEvent EventFromFields(const EventFields& fields) {
  ScheduledEvent event;
  event.Time = NormaliseEventTime(fields.time);
  event.Active = fields.active;
  event.DisplayOption = static_cast<qint16>(fields.displayOption);
  event.Label = fields.label;
  event.Connect = fields.connect;
  event.Source = fields.connect && fields.sourcePosition > 0 && fields.sourcePosition < kNone
                     ? static_cast<qint16>(fields.sourcePosition)
                     : kNone;
  event.Days = static_cast<qint16>(fields.days & 0x7F);
  return event;
}

EventFields FieldsOfEvent(const ScheduledEvent& event) {
  EventFields fields;
  fields.time = event.Time;
  fields.active = event.Active;
  fields.displayOption = event.DisplayOption;
  fields.days = event.Days & 0x7F;
  // The events file pads labels to 12 characters; the blanks are not the operator's.
  QString label = event.Label;
  while (label.endsWith(QLatin1Char(' '))) {
    label.chop(1);
  }
  fields.label = label;
  fields.connect = event.Connect;
  fields.sourcePosition = event.Source >= 1 && event.Source < kNone ? event.Source : 0;
  return fields;
}

ScheduledEvent BlankEvent() {
  ScheduledEvent event;
  event.Time = QStringLiteral("24:00:00");
  return event;
}

QString DaysText(int days) {
  static const char* const kNames[] = {"Mo", "Tu", "We", "Th", "Fr", "Sa", "Su"};
  QString text;
  for (int d = 0; d < 7; ++d) {
    if ((days & (1 << d)) != 0) {
      text += QLatin1String(kNames[d]);
    }
  }
  return text;
}

QString EventRowKey(int index) {
  return QStringLiteral("Ch.") + ChannelDigits(index);
}

QStringList EventRowTexts(const State& s, const ScheduledEvent& event) {
  const int source = event.Source;
  const QString sourceText = source < 1 || source == kNone
                                 ? QStringLiteral("None")
                                 : QLatin1Char('[') + ChannelDigits(source) + QStringLiteral("] ") +
                                       NameAt(s.InputNames, s.SwitcherInputCount, source);
  return {event.Time, event.Active ? QStringLiteral("Active") : QStringLiteral("Inactive"),
          sourceText, DaysText(event.Days)};
}

QString ScheduleTitle(const State& s, const OutputEntry& output) {
  return QStringLiteral("Scheduling for [") + ChannelDigits(output.Output) + QLatin1Char(']') +
         NameAt(s.OutputNames, s.SwitcherOutputCount, output.Output);
}

QStringList SourceListTexts(const State& s) {
  QStringList texts{QStringLiteral("Undefined")};
  const int inputs = std::clamp<int>(s.SwitcherInputCount, 0, kNone - 1);
  texts.reserve(inputs + 1);
  for (int n = 1; n <= inputs; ++n) {
    texts << QLatin1Char('[') + ChannelDigits(n) + QStringLiteral("] ") +
                 NameAt(s.InputNames, inputs, n);
  }
  return texts;
}

}  // namespace zrn
