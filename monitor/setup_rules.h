#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "core/channel_texts.h"
#include "core/state.h"

namespace zrn {

// Setup keeps between one and this many watched outputs; the events file numbers its outputs
// in one byte.
inline constexpr int kMaxWatchedOutputs = 256;

// The output choice: "Undefined", then item k for switcher output k.
QStringList OutputChoiceItems(const State& s);
// The item that shows a watched output's channel: the channel itself, or "Undefined" (0) for
// none and for a channel the switcher does not have.
int OutputChoiceIndex(const State& s, int output);

// The alarm relay choice: "Undefined" (kNone), one item per reported relay, and a configured
// relay the switcher has not reported as an item of its own, so OK keeps it.
struct RelayChoices {
  QStringList items;
  std::vector<qint16> relays;
  int current = 0;
};
RelayChoices MakeRelayChoices(const State& s);

// The numeric value of a digits-only field: its leading digits, 0 when there are none,
// saturating far beyond any valid value.
qint64 FieldNumber(const QString& text);

// What OK takes over from the upper part of the dialog, as the operator left it.
struct SetupSettings {
  QString address;
  QString port;
  QString maxLogSize;
  QString maxDisplay;
  qint16 alarmRelay = kNone;
  bool largeView = false;
  qint16 programMode = 0;
};

// A field OK refuses, with the message the operator is shown.
struct SetupRefusal {
  enum class Field { Address, Port, MaxDisplay };
  Field field;
  QString title;
  QString text;
};

// One watched output as Setup edits it: its place in Outputs when the dialog copied the table
// (-1 for an entry added since), the entry as it was then, and as edited.
struct SetupEntry {
  int origin = -1;
  OutputEntry original;
  OutputEntry edited;
};

std::vector<SetupEntry> CopySetupEntries(const State& s);
// A fresh entry: no output, the output's name as label, "None" as custom label, no events.
SetupEntry NewSetupEntry();
// The operator chose a channel (kNone for "Undefined"): a real one is monitored.
void ChooseEntryOutput(SetupEntry& entry, qint16 output);

// Makes the edited list the watched outputs. Only what the operator changed comes from the
// copy; the schedule and what the poll timer may have changed meanwhile (alarm, monitoring,
// next event) stay with the live entry. A new channel starts with no acknowledged alarm.
void ApplySetupEntries(State& s, const std::vector<SetupEntry>& entries);

// Where each entry of the list will stand once applied, in terms of an earlier table:
// before[i] names the earlier place of today's live entry i; the result does the same for the
// entries as listed (-1 for an entry added since).
std::vector<int> FollowSetupEntries(const std::vector<int>& before,
                                    const std::vector<SetupEntry>& entries);

// Cancel after the list went live: the watched outputs as they were when Setup opened
// (opened, count), with each live entry's run-time state (alarm, next event, last runs) kept
// where liveOrigin traces it back to its opening place.
void RestoreOpenedEntries(State& s, const std::vector<OutputEntry>& opened, qint16 count,
                          const std::vector<int>& liveOrigin);

// OK: checks the address, the port and the display length first and applies nothing unless
// all pass. Then takes over the entries and every setting; a new address or port drops the
// link so the next poll tick connects with them, and a new program mode rebuilds the view and
// recomputes every next event.
std::optional<SetupRefusal> ApplySetup(State& s, const SetupSettings& settings,
                                       const std::vector<SetupEntry>& entries);

}  // namespace zrn
