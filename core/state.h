#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>
#include <vector>

#include "core/panel_models.h"
#include "core/ports.h"

namespace zrn {

// "None" for every channel, source, relay, event index and list position.
constexpr qint16 kNone = 16383;

struct ScheduledEvent {
  QString Time;
  bool Active = false;
  qint16 DisplayOption = 0;
  qint16 Days = 0;
  bool Connect = false;
  QString Label;
  qint16 Source = kNone;
};

struct OutputEntry {
  qint16 Output = kNone;
  qint16 AlarmState = 0;
  // Run-time: Cancel Alarm took this output's alarm off the relay until its silence changes.
  bool AlarmCanceled = false;
  qint16 DisplayOption = 0;
  QString CustomLabel = QStringLiteral("None");
  std::vector<ScheduledEvent> Events = std::vector<ScheduledEvent>(1);
  qint16 EventCount = 0;
  bool MonitoringEnabled = false;
  qint16 NextEvent = kNone;
  qint16 HoldOffTicks = 0;
  // The event index HoldOffTicks guards; kNone guards every event of the output.
  qint16 HoldOffEvent = kNone;
  // 1-based input of a scheduled route that could not be sent (link down); kNone = none.
  qint16 PendingRouteSource = kNone;
  // Per event index: local wall-clock date and time (no zone) it last ran, so a clock set back
  // does not run the same occurrence twice.
  std::vector<QDateTime> LastRun;
};

struct ShowChannel {
  qint16 Channel = kNone;
  qint16 Monitor = kNone;
  quint8 Status = 0;
  bool operator==(const ShowChannel&) const = default;
};

struct IgnoreWindow {
  QString StartTime;
  QString EndTime;
  bool operator==(const IgnoreWindow&) const = default;
};

struct ShowRecord {
  QString Name;
  QString StartTime;
  QString EndTime;
  QString StartDate;
  QString EndDate;
  qint16 Days = 0;
  qint16 DownlinkSource = kNone;
  qint16 DownlinkMonitor = kNone;
  quint8 DownlinkStatus = 0;
  qint16 OutputCount = 0;
  std::vector<qint16> OutputLeft;
  std::vector<qint16> OutputRight;
  std::vector<qint16> OutputCue;
  qint16 StudioCount = 0;
  std::vector<ShowChannel> StudioLeft;
  std::vector<ShowChannel> StudioRight;
  std::vector<ShowChannel> StudioCue;
  qint16 IgnoreCount = 0;
  std::vector<IgnoreWindow> IgnoreWindows = std::vector<IgnoreWindow>(1);
  qint16 DetectTime1 = 0;
  qint16 DetectTime2 = 0;
  qint16 DetectLevel = 0;
  quint8 ActivityState = 0;
  quint8 WasActive = 0;
  quint8 Alarm = 0;
  bool AlarmCanceled = false;
  // Run-time: an ignore window applies or there is no downlink monitor, so the show's alarm
  // is not counted.
  bool AlarmSuppressed = false;
  // Run-time: the log last said this show's silence alarm is on.
  bool AlarmLogged = false;
  bool operator==(const ShowRecord&) const = default;
};

struct SilenceOut {
  qint16 Output = 0;
  qint16 Source = kNone;
  quint8 Status = 0;
  qint16 DetectTime1 = 0;
  qint16 DetectTime2 = 0;
  qint16 DetectLevel = 0;
  qint16 Show = kNone;
  quint8 Role = 0;
};

// Routing of one switcher output as the switcher reports it.
struct CrosspointEntry {
  std::array<qint16, 64> Sources{};
  quint8 OutputFlags = 0;
  quint8 SourceCount = 0;
  std::array<qint16, 64> Values1{};
  std::array<qint16, 64> Values2{};
  std::array<qint16, 32> MarkedSources{};
  std::array<qint16, 32> MarkedValues1{};
  std::array<qint16, 32> MarkedValues2{};
  quint8 MarkedCount = 0;
};

// Silence detector state and configuration of one switcher output.
struct SilenceStatusEntry {
  quint8 Status = 0;
  qint16 Mode = 0;
  qint16 SilenceThreshold = 0;
  qint16 DetectTime = 0;
  qint16 ReturnTime = 0;
  qint16 Device = 0;
  qint16 PeakThreshold = 0;
  qint16 HoldTime = 0;
};

// Bookkeeping of the two logs: flood control and the guard against reporting a failed
// error-log write through the error log again.
struct HeldBackError {
  QString location;
  QString message;
  QDateTime lastWritten;
  int heldBack = 0;
};

struct LogState {
  // Error lines written within the last minute, each with the repeats held back since; kept
  // per line so two errors that alternate are held back like one that repeats.
  std::vector<HeldBackError> recentErrors;
  bool reportingWriteFailure = false;
  // Activity lines held while a batch is open (ActivityBatch), written together when it ends.
  int activityBatches = 0;
  QStringList pendingActivity;
};

struct State;

// Handles one complete received message, type byte to end byte.
using MessageHandler = std::function<void(State&, const QByteArray&)>;

// The switcher link's own bookkeeping.
struct LinkState {
  // Keep-alive bytes sent without any keep-alive byte or acknowledgement in return.
  qint16 NoResponseCount = 0;
  // The start-up exchange of the present connection has completed.
  bool ExchangeComplete = false;
  // Leading bytes of the receive buffer already searched for an end byte without finding one,
  // so a message trickling in byte by byte is not searched again from its start.
  qsizetype eomSearchedBytes = 0;
  // Messages and keep-alive bytes taken from the switcher since start, for the status endpoint.
  quint64 messagesDecoded = 0;
  // Per message type; an empty entry drops the message.
  std::array<MessageHandler, 256> handlers;
};

// One entry of an advanced information request.
struct InfoRequest {
  qint16 Code = 0;
  qint16 Param1 = kNone;
  qint16 Param2 = kNone;
};

// Start-up requests still unanswered, one bit per request code.
struct RequestState {
  qint32 Req1 = 0;
  qint32 Req2 = 0;
  qint32 Req3 = 0;
  qint32 Req4 = 0;
  // Filled by BuildRequestList.
  std::vector<InfoRequest> RequestList;
  // The present connection's type request still waits for all its answers.
  bool exchangeOpen = false;
  // Repeats sent since that type request; the still unanswered requests are named once.
  int repeats = 0;
  bool unansweredReported = false;
};

// The loss alarm's memory between passes.
struct LossAlarmState {
  // The relay the latest decision wanted latched; kNone when it wanted none.
  qint16 wantedRelay = kNone;
  // A relay latched under an earlier AlarmRelay setting, released until reported off.
  qint16 strayRelay = kNone;
  // The relay command sent in the present poll tick; not sent again before the next tick,
  // whatever reports arrive meanwhile.
  qint16 sentRelay = kNone;
  int sentCommand = -1;
  bool strayReleaseSent = false;
  // The relay this monitor latched itself, until the switcher reports it released. Only that
  // one is released when nothing here wants it, so monitors sharing a relay do not fight.
  qint16 latchedRelay = kNone;
  // The first decision on a complete exchange has been made: a relay left latched before a
  // restart has had its one release.
  bool startupDecided = false;
};

// The poll timer's counters.
struct PollState {
  // Ticks 1..5 of the keep-alive cycle.
  qint16 PollTick = 0;
  // Ticks left before unanswered start-up requests are sent again.
  qint16 RetryCountdown = 0;
};

// What the window tells about time: since when its lamps are out of date, since when a
// keep-alive has waited for its answer, and since when each watched output is silent.
struct WatchTimes {
  QDateTime staleSince;
  QDateTime unansweredSince;
  // Per watched output, in milliseconds since the epoch; -1 while it is not silent. A number,
  // not a QDateTime: thousands of local-time differences a tick cost milliseconds.
  std::vector<qint64> silentSince;
};

// What the panel update keeps while a decode batch runs, so that a report about one output
// costs the panels of that output rather than a walk over every watched one. It is trusted only
// from a full pass to the end of the batch: nothing but the reports runs in between, and what
// may change the panels otherwise (another message type, the end of the exchange) drops it.
struct PanelPassState {
  // Open decode batches; the memory below is dropped when the last one ends.
  int batches = 0;
  // The lamps, and the count of panels in alarm, are what a full pass would make of the state.
  bool lampsCurrent = false;
  // The panel texts are what a full pass would write.
  bool textsCurrent = false;
  // Per panel: its lamp counts towards the alarm relay (red, neither acknowledged nor
  // cancelled); and how many do.
  std::vector<char> inAlarm;
  int alarmCount = 0;
  // Watched entries by channel, built on first use in a batch: the entries whose Output is c
  // are byChannel[firstOf[c] .. firstOf[c + 1]), in table order.
  std::vector<int> firstOf;
  std::vector<int> byChannel;
  // Channels whose silence status a change-of-state report has just changed.
  std::vector<int> changedChannels;

  // Trusts nothing kept: the next update is a full pass.
  void Forget() {
    lampsCurrent = false;
    textsCurrent = false;
    firstOf.clear();
    byChannel.clear();
    changedChannels.clear();
  }
};

// What the floors above the switcher do when a lower floor changes what they show or decide.
// A lower floor calls these rather than an upper header. InstallReactions fills them for every
// State as it is made, so nothing runs the switcher's reports without the monitor's answer: a
// missing reaction would be a missing alarm.
struct Reactions {
  // The watched outputs or the names they show changed: panel texts, lamps, the relay.
  std::function<void(State&)> outputsChanged;
  // A crosspoint map arrived for switcher outputs first .. first + count - 1 (0-based).
  std::function<void(State&, int first, int count)> routesReported;
  // A silence status or configuration report arrived: every lamp, then the relay.
  std::function<void(State&)> silenceReported;
  // A change-of-state report changed the channels in panelPass.changedChannels.
  std::function<void(State&)> silenceChanged;
  // A relay-state report arrived; the relay table (the relay names) arrived.
  std::function<void(State&)> relayStatesReported;
  std::function<void(State&)> relayTableArrived;
  // A show's alarm changed: the relay decision.
  std::function<void(State&)> showAlarmChanged;
  // The active shows, or the names their panels show, changed.
  std::function<void(State&)> showsChanged;
  // What the window shows changed; its size follows the panels.
  std::function<void(State&)> viewChanged;
  std::function<void(State&)> formResized;
  // The start-up exchange of a connection completed.
  std::function<void(State&)> exchangeCompleted;
};

struct State {
  State();

  // Ports; not owned.
  Clock* clock = &SystemClock::Instance();
  Link* link = nullptr;
  Prompt* prompt = nullptr;

  // Folder of every data and log file, with a trailing separator.
  QString AppPath;

  // Configuration.
  QString ServerAddress = QStringLiteral("127.0.0.1");
  qint32 ServerPort = 1250;
  qint32 MaxLogFileSize = 5000;
  qint16 MaxDisplay = 100;
  qint16 AlarmRelay = kNone;
  quint8 DefaultViewLarge = 0;
  qint16 ProgramMode = 0;
  qint16 OutputCount = 1;

  // Watched outputs, shows and the silence-output table.
  std::vector<OutputEntry> Outputs;
  qint16 PanelsLoaded = 1;
  std::vector<ShowRecord> Shows;
  qint16 ShowCount = 0;
  std::vector<ShowRecord> EditShows;
  std::vector<SilenceOut> SilenceOuts;
  qint16 SilenceOutCount = 0;
  std::vector<qint16> ActiveShows;
  qint16 ActiveShowCount = 0;
  qint16 ShowPanelsLoaded = 0;
  // Borrowed outputs (0-based) given back and still to be parked: kept until the park goes out
  // on a live link, and dropped when another show takes the output over first.
  std::vector<qint16> PendingParks;
  // Most silence-detect outputs the shows on air at one time have needed since start-up.
  qint16 RequiredSilenceOutputs = 0;

  // Name tables, indexed by channel number - 1.
  QStringList OutputNames;
  QStringList InputNames;
  QStringList OptoNames;
  QStringList RelayNames;

  // Switcher state.
  std::vector<CrosspointEntry> CrosspointMap;
  std::vector<SilenceStatusEntry> SilenceStatus;
  std::vector<qint16> RelayStates;
  std::vector<qint16> SilenceOutIndex;
  qint16 SwitcherInputCount = 256;
  qint16 SwitcherOutputCount = 256;
  qint16 SwitcherOptoCount = 0;
  qint16 SwitcherRelayCount = 0;

  // Sorted copies of the output and opto names (the tables stay in switcher order): the names
  // ascending, the number each sorted entry carries, and per output entry its sorted position.
  QStringList SortedOutputNames;
  std::vector<qint16> SortedOutputIndex;
  std::vector<qint16> OutputSortRank;
  QStringList SortedOptoNames;
  std::vector<qint16> SortedOptoIndex;
  // The numbers the switcher gave its output and opto entries, kept for sorting again after a
  // table that updates only some entries.
  std::vector<qint16> OutputNumbers;
  std::vector<qint16> OptoNumbers;
  // The output count changed while a name table was applied.
  bool OutputTableResized = false;

  // Window and dialog globals.
  qint16 SelectedOutput = 0;
  qint16 SelectedShow = 0;
  qint16 ChannelSelectMode = 0;
  bool LargeViewActive = false;
  quint8 ManyOutputs = 0;
  bool DialogAccepted = false;
  bool ShowStatusOpen = false;
  bool Connected = false;
  QTime CurrentTime;
  qint16 Today = 0;
  // Set when the scheduler changed what the output panels show; the poll timer redraws them
  // (UpdateOutputs) and clears it.
  bool OutputsDirty = false;

  // Per switcher output (0-based): until when its silence state counts as unknown because
  // the program itself just routed a new source to it. Invalid = no grace.
  std::vector<QDateTime> SilenceGraceUntil;

  // Bytes received from the switcher and not yet decoded.
  QByteArray ReceiveBuffer;
  LinkState linkState;

  // Rows of the main window's message list, oldest first; at most MaxDisplay.
  QStringList MessageRows;
  QString StatusBarText;
  // A data file the program could not use at start-up, shown beside the link state until the
  // next start.
  QString FileNotice;

  // What the main window draws.
  PanelModels panels;
  RequestState requests;
  LossAlarmState lossAlarm;

  LogState logs;
  PollState poll;
  WatchTimes watch;
  // Told of every operational message with its time as it is reported (the alarm history).
  std::function<void(const QDateTime&, const QString&)> activityListener;
  PanelPassState panelPass;
  Reactions reactions;
};

// Fills the state's dispatch table and its reactions. The monitor defines it
// (monitor/reactions.cpp): how the program answers the switcher is decided there, and a program
// without it does not link.
void InstallReactions(State& s);

// The current wall-clock time from the state's clock.
QDateTime Now(const State& s);

// Starts the grace of a switcher output (0-based) after the program routed source (0-based)
// to it: its detect time plus return time, or 8 + 5 seconds when those are not known. A route
// to the source the switcher already reports there is no change and starts none (false).
bool StartSilenceGrace(State& s, int output, int source);
// Whether the switcher reports source (0-based) routed to output (0-based).
bool RoutedNow(const State& s, int output, int source);
// Ends the grace early, when the switcher reports a change of state for the output.
void EndSilenceGrace(State& s, int output);
// Whether the silence state of a switcher output (0-based) counts as unknown now.
bool InSilenceGrace(const State& s, int output);

}  // namespace zrn
