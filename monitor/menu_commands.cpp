#include "monitor/menu_commands.h"

#include "monitor/panel_update.h"
#include "schedule/event_scheduler.h"
#include "storage/events_file.h"
#include "storage/file_io.h"
#include "storage/logs.h"

namespace zrn {

namespace {

// Entry SelectedOutput, or null when there is none.
template <class AnyState>
auto SelectedEntry(AnyState& s) -> decltype(&s.Outputs.front()) {
  const int index = s.SelectedOutput;
  return index >= 0 && index < static_cast<int>(s.Outputs.size())
             ? &s.Outputs[static_cast<size_t>(index)]
             : nullptr;
}

}  // namespace

int SelectedChannel(const State& s) {
  const OutputEntry* entry = SelectedEntry(s);
  return entry == nullptr ? kNone : entry->Output;
}

QString EnableMenuCaption(const State& s) {
  const OutputEntry* entry = SelectedEntry(s);
  return entry != nullptr && entry->MonitoringEnabled ? QStringLiteral("Disable")
                                                      : QStringLiteral("Enable");
}

void mnuEnable_Click(State& s) {
  OutputEntry* entry = SelectedEntry(s);
  if (entry == nullptr || entry->Output == kNone) {
    return;
  }
  const QString name = PanelName(s, *entry);
  entry->MonitoringEnabled = !entry->MonitoringEnabled;
  const QString suffix = entry->MonitoringEnabled ? QStringLiteral(" Monitoring enabled - User")
                                                  : QStringLiteral(" Monitoring disabled - User");
  DisplayMessage(
      s, name + QStringLiteral(" [") + ChannelDigits(entry->Output) + QLatin1Char(']') + suffix);
  UpdateStatus(s);
}

void ScheduleAccepted(State& s) {
  if (!s.DialogAccepted) {
    return;
  }
  if (QString failure; !SaveEvents(s, &failure)) {
    ReportFailedSave(s, failure);
  }
  if (SelectedEntry(s) != nullptr) {
    GetNextEvent(s, s.SelectedOutput);
  }
  s.DialogAccepted = false;
}

QStringList AboutLines(const State& s) {
  const RequestState& r = s.requests;
  return {QStringLiteral("ZRN Pennaro"), QStringLiteral("Version: ") + QLatin1String(kVersionText),
          QStringLiteral("Server:") + s.ServerAddress + QStringLiteral(" Port:") +
              QString::number(s.ServerPort),
          QStringLiteral("Req1:") + QString::number(r.Req1) + QStringLiteral(", Req2:") +
              QString::number(r.Req2) + QStringLiteral(", Req3:") + QString::number(r.Req3) +
              QStringLiteral(", Req4:") + QString::number(r.Req4)};
}

}  // namespace zrn
