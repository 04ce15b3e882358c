#include "shows/show_activity.h"

#include <algorithm>

#include "core/failure.h"
#include "schedule/event_time.h"
#include "shows/show_panels.h"
#include "shows/silence_monitors.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kNotSet = QStringLiteral("24:00:00");

int ShowsInTable(const State& s) {
  return std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()));
}

struct DateParts {
  int year = 0;
  int month = 0;
  int day = 0;
  auto operator<=>(const DateParts&) const = default;
};

int NumberAt(const QString& text, int from, int length) {
  bool ok = false;
  const int value = text.mid(from, length).trimmed().toInt(&ok);
  if (!ok) {
    throw Failure::TypeMismatch();
  }
  return value;
}

// "MM/dd/yyyy", read by position.
DateParts SplitDate(const QString& text) {
  DateParts parts;
  parts.month = NumberAt(text, 0, 2);
  parts.day = NumberAt(text, 3, 2);
  parts.year = NumberAt(text, 6, 4);
  return parts;
}

// The tests in their order; the first that fails decides.
bool OnAir(State& s, int index, int today, int now) {
  const ShowRecord& show = s.Shows[index];
  if ((show.Days & (1 << today)) == 0) {
    return false;
  }
  if (show.StartTime == kNotSet || show.EndTime == kNotSet) {
    return false;
  }
  // Both bounds count; an end before the start never passes, so no show spans midnight.
  if (EventTimeSeconds(show.StartTime) > now || EventTimeSeconds(show.EndTime) < now) {
    return false;
  }
  return CheckDate(s, index);
}

bool SameList(const State& s, const std::vector<qint16>& candidates) {
  const int listed = ActiveShowsListed(s);
  return listed == static_cast<int>(candidates.size()) &&
         std::equal(candidates.begin(), candidates.end(), s.ActiveShows.begin());
}

}  // namespace

bool CheckDate(State& s, int show) {
  bool within = true;
  Trap(s, QStringLiteral("Error checking show date"), QStringLiteral("Timer Error"), [&] {
    const ShowRecord& rec = At(s.Shows, show);
    const QDate date = Now(s).date();
    const DateParts today{date.year(), date.month(), date.day()};
    if (today < SplitDate(rec.StartDate)) {
      within = false;
      return;
    }
    within = !(today > SplitDate(rec.EndDate));
  });
  return within;
}

void GetActiveShows(State& s) {
  const int shows = ShowsInTable(s);
  const int today = DayNow(s);
  const int now = SecondsNow(s);
  std::vector<qint16> candidates;
  int need = 0;
  for (int i = 0; i < shows; ++i) {
    ShowRecord& show = s.Shows[i];
    show.WasActive = show.ActivityState;
    bool onAir = false;
    // One show with a time that cannot be read stays off air without holding up the others.
    Trap(s, QStringLiteral("Error determining active shows"), QStringLiteral("Timer Error"),
         [&] { onAir = OnAir(s, i, today, now); });
    show.ActivityState = onAir ? 1 : 0;
    if (onAir) {
      candidates.push_back(static_cast<qint16>(i));
      need += 1 + std::max<int>(show.StudioCount, 0);
    }
  }

  const bool listChanged = !SameList(s, candidates);
  bool transitions = false;
  // Ends first, so the outputs they give back are there for the shows that start.
  for (int i = 0; i < shows; ++i) {
    ShowRecord& show = s.Shows[i];
    if (show.WasActive != 0 && show.ActivityState == 0) {
      FreeSilenceOuts(s, i);
      show.AlarmCanceled = false;
      show.AlarmLogged = false;
      transitions = true;
    }
  }
  if (listChanged) {
    s.ActiveShows = candidates;
    s.ActiveShowCount = static_cast<qint16>(candidates.size());
  }
  for (int i = 0; i < shows; ++i) {
    ShowRecord& show = s.Shows[i];
    if (show.WasActive == 0 && show.ActivityState != 0) {
      // Its cancel was cleared when it last ended (or carried over by an edit of the table).
      CreateSilenceMonitors(s, i);
      transitions = true;
    }
  }
  // After the starts, so an output handed from a show that ended to one that started on the
  // same source is not parked between them.
  SendPendingParks(s);
  if (listChanged || transitions) {
    UpdateShows(s);
  }
  s.RequiredSilenceOutputs =
      static_cast<qint16>(std::clamp<int>(need, s.RequiredSilenceOutputs, 32767));
}

void EndActiveShows(State& s) {
  // Every show that might hold an output, listed or not: release skips unassigned fields.
  for (int i = 0; i < static_cast<int>(s.Shows.size()); ++i) {
    FreeSilenceOuts(s, i);
    ShowRecord& show = s.Shows[i];
    show.ActivityState = 0;
    show.WasActive = 0;
    show.AlarmCanceled = false;
    show.AlarmLogged = false;
  }
  s.ActiveShows.clear();
  s.ActiveShowCount = 0;
  UpdateShows(s);
}

int ActiveShowPosition(const State& s, int show) {
  if (show < 0 || show >= ShowsInTable(s)) {
    return -1;
  }
  const int listed = ActiveShowsListed(s);
  for (int p = 0; p < listed; ++p) {
    if (s.ActiveShows[p] == show) {
      return p;
    }
  }
  return -1;
}

}  // namespace zrn
