#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <vector>

#include "core/state.h"

namespace zrn {

// The show editor's working copy: the first ShowCount shows of the live table.
std::vector<ShowRecord> ShowsForEditing(const State& s);

// Position of a downlink source in the list ("Undefined", then input n + 1 for input n); 0 for
// none and for an input the switcher does not have.
int DownlinkPosition(const State& s, int source);
qint16 DownlinkOfPosition(int position);

// One row per show output: its left, right and cue output names joined by ", ", a channel that
// is not defined (or not known) reading "Not Defined".
QStringList ShowOutputRows(const State& s, const ShowRecord& show);
// The same for the studio sources, with input names.
QStringList ShowStudioRows(const State& s, const ShowRecord& show);
// "08:00:00 - 09:30:00" per ignore window.
QStringList IgnoreWindowRows(const ShowRecord& show);
// Key of row i of those lists: "Ch.0002".
QString ShowRowKey(int index);

// "MM/dd/yyyy", as the shows file keeps dates.
QDate ShowDate(const QString& text);
QString ShowDateText(const QDate& date);

// What the editor's title, time, day and date fields hold.
struct ShowFields {
  QString name;
  QString startTime;
  QString endTime;
  int days = 0;
  // Invalid: the picker was not changed, the stored date stays.
  QDate startDate;
  QDate endDate;
};

// Index of the first show whose end date lies before its start date; -1 when none does.
int FirstShowEndingBeforeItStarts(const std::vector<ShowRecord>& shows);

// Writes the fields into the show. A time field that does not read as a time keeps the stored
// time, so the file never receives a malformed one.
void StoreShowFields(ShowRecord& show, const ShowFields& fields);

// Takes a show off air in the record itself: no activity, no borrowed output, no alarm.
void ClearShowRunState(ShowRecord& show);

// Makes an edited show table live without stranding a borrowed output: every show on air is
// ended first (outputs parked and given back), the new table starts with every show off air,
// and the silence-output index is rebuilt; the next poll tick starts what is on air.
void ReplaceShows(State& s, std::vector<ShowRecord> shows);

}  // namespace zrn
