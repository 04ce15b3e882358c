#include "shows/show_editor_rules.h"

#include <algorithm>

#include "core/channel_texts.h"
#include "schedule/time_entry.h"
#include "shows/ignore_window_rules.h"
#include "shows/show_activity.h"
#include "shows/shows_pass.h"
#include "switcher/name_tables.h"

namespace zrn {

namespace {

const QString kNotDefined = QStringLiteral("Not Defined");
const QString kDateFormat = QStringLiteral("MM/dd/yyyy");

QString ShowChannelName(const QStringList& names, int count, int channel) {
  const int known = std::min<int>(count, static_cast<int>(names.size()));
  return channel >= 0 && channel < known ? names[channel] : kNotDefined;
}

QString TripleText(const QStringList& names, int count, int left, int right, int cue) {
  return ShowChannelName(names, count, left) + QStringLiteral(", ") +
         ShowChannelName(names, count, right) + QStringLiteral(", ") +
         ShowChannelName(names, count, cue);
}

int Listed(int count, std::initializer_list<std::size_t> sizes) {
  return std::clamp<int>(count, 0, static_cast<int>(std::min(sizes)));
}

}  // namespace

std::vector<ShowRecord> ShowsForEditing(const State& s) {
  const int count = Listed(s.ShowCount, {s.Shows.size()});
  return {s.Shows.begin(), s.Shows.begin() + count};
}

int DownlinkPosition(const State& s, int source) {
  return source >= 0 && source < s.SwitcherInputCount && source != kNone ? source + 1 : 0;
}

qint16 DownlinkOfPosition(int position) {
  return position >= 1 && position <= kNone ? static_cast<qint16>(position - 1) : kNone;
}

QStringList ShowOutputRows(const State& s, const ShowRecord& show) {
  QStringList rows;
  const int count = Listed(
      show.OutputCount, {show.OutputLeft.size(), show.OutputRight.size(), show.OutputCue.size()});
  for (int j = 0; j < count; ++j) {
    rows << TripleText(s.OutputNames, s.SwitcherOutputCount, show.OutputLeft[j],
                       show.OutputRight[j], show.OutputCue[j]);
  }
  return rows;
}

QStringList ShowStudioRows(const State& s, const ShowRecord& show) {
  QStringList rows;
  const int count = Listed(
      show.StudioCount, {show.StudioLeft.size(), show.StudioRight.size(), show.StudioCue.size()});
  for (int j = 0; j < count; ++j) {
    rows << TripleText(s.InputNames, s.SwitcherInputCount, show.StudioLeft[j].Channel,
                       show.StudioRight[j].Channel, show.StudioCue[j].Channel);
  }
  return rows;
}

QStringList IgnoreWindowRows(const ShowRecord& show) {
  QStringList rows;
  const int count = Listed(show.IgnoreCount, {show.IgnoreWindows.size()});
  for (int j = 0; j < count; ++j) {
    rows << IgnoreRowText(show.IgnoreWindows[j]);
  }
  return rows;
}

QString ShowRowKey(int index) {
  return QStringLiteral("Ch.") + ChannelDigits(index);
}

QDate ShowDate(const QString& text) {
  return QDate::fromString(text, kDateFormat);
}

QString ShowDateText(const QDate& date) {
  return date.toString(kDateFormat);
}

int FirstShowEndingBeforeItStarts(const std::vector<ShowRecord>& shows) {
  for (std::size_t i = 0; i < shows.size(); ++i) {
    const QDate start = ShowDate(shows[i].StartDate);
    const QDate end = ShowDate(shows[i].EndDate);
    if (start.isValid() && end.isValid() && end < start) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

void StoreShowFields(ShowRecord& show, const ShowFields& fields) {
  show.Name = fields.name;
  if (const std::optional<QString> start = EnteredTime(fields.startTime)) {
    show.StartTime = *start;
  }
  if (const std::optional<QString> end = EnteredTime(fields.endTime)) {
    show.EndTime = *end;
  }
  show.Days = static_cast<qint16>(fields.days & 0x7F);
  if (fields.startDate.isValid()) {
    show.StartDate = ShowDateText(fields.startDate);
  }
  if (fields.endDate.isValid()) {
    show.EndDate = ShowDateText(fields.endDate);
  }
}

void ClearShowRunState(ShowRecord& show) {
  show.ActivityState = 0;
  show.WasActive = 0;
  show.DownlinkMonitor = kNone;
  show.DownlinkStatus = 0;
  show.Alarm = 0;
  show.AlarmCanceled = false;
  show.AlarmSuppressed = false;
  show.AlarmLogged = false;
  for (auto* studio : {&show.StudioLeft, &show.StudioRight, &show.StudioCue}) {
    for (ShowChannel& channel : *studio) {
      channel.Monitor = kNone;
      channel.Status = 0;
    }
  }
}

void ReplaceShows(State& s, std::vector<ShowRecord> shows) {
  // A show on air keeps its cancel and its logged alarm through the edit, found by its name.
  QStringList canceled;
  QStringList logged;
  for (const qint16 index : s.ActiveShows) {
    if (index >= 0 && index < static_cast<int>(s.Shows.size())) {
      const ShowRecord& show = s.Shows[index];
      if (show.AlarmCanceled) {
        canceled << show.Name;
      }
      if (show.AlarmLogged) {
        logged << show.Name;
      }
    }
  }
  EndActiveShows(s);
  // The copies still carry the run state of the moment the editor opened; the outputs they
  // name were given back just now.
  for (ShowRecord& show : shows) {
    ClearShowRunState(show);
    show.AlarmCanceled = canceled.contains(show.Name);
    show.AlarmLogged = logged.contains(show.Name);
  }
  s.ShowCount = static_cast<qint16>(std::min<std::size_t>(shows.size(), 32767));
  s.Shows = std::move(shows);
  UpdateSilenceOutTable(s);
  // What is on air starts again at once, taking over the outputs it had, so a live show alarm
  // is neither released nor re-raised by the edit.
  ShowsPass(s);
}

}  // namespace zrn
