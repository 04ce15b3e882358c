#include "shows/show_status.h"

#include <algorithm>

#include "core/channel_texts.h"
#include "core/failure.h"
#include "shows/show_activity.h"
#include "shows/show_panels.h"
#include "shows/silence_monitors.h"
#include "storage/logs.h"
#include "switcher/commands.h"

namespace zrn {

namespace {

const QString kUnknown = QStringLiteral("Uknown");

int StudioSources(const ShowRecord& show) {
  return std::clamp<int>(show.StudioCount, 0, static_cast<int>(show.StudioLeft.size()));
}

qint16 ChannelOf(const std::vector<ShowChannel>& side, int k) {
  return k < static_cast<int>(side.size()) ? side[k].Channel : kNone;
}

qint16 OutputOf(const std::vector<qint16>& side, int d) {
  return d < static_cast<int>(side.size()) ? side[d] : kNone;
}

bool Defined(qint16 channel) {
  return channel >= 0 && channel < kNone;
}

bool InTable(const QStringList& names, int known, int index) {
  return index >= 0 && index < std::min<int>(known, static_cast<int>(names.size()));
}

QString SourceCaption(const State& s, qint16 channel) {
  if (channel == kNone) {
    return QStringLiteral("Not specified");
  }
  return InTable(s.InputNames, s.SwitcherInputCount, channel) ? s.InputNames[channel]
                                                              : QStringLiteral("Not Defined");
}

QString LogName(const QStringList& names, int known, int number) {
  return (InTable(names, known, number - 1) ? names[number - 1] : kUnknown) + QStringLiteral(" [") +
         ChannelDigits(number) + QLatin1Char(']');
}

// The monitor's colour, storing its reported status where it is known.
Rgb MonitorColour(State& s, int output, quint8* store) {
  quint8 status = 0;
  if (!MonitorStatus(s, output, status)) {
    return kLampGrey;
  }
  s.SilenceOuts[MonitorEntryOf(s, output)].Status = status;
  if (store != nullptr) {
    *store = status;
  }
  return SilenceColour(status);
}

}  // namespace

bool SelectShowPanel(State& s, int panel) {
  if (panel < 0 || panel >= ActiveShowsListed(s)) {
    return false;
  }
  const qint16 show = s.ActiveShows[panel];
  if (ActiveShowPosition(s, show) < 0) {
    return false;
  }
  s.SelectedShow = show;
  return true;
}

ShowStatusModel UpdateSilenceDetectStatus(State& s, int show) {
  ShowStatusModel model;
  model.active = ActiveShowPosition(s, show) >= 0;
  if (show < 0 || show >= std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()))) {
    return model;
  }
  Trap(s, QStringLiteral("Error updating show silence status"), QStringLiteral("Display Error"),
       [&] {
         ShowRecord& rec = s.Shows[show];
         model.title = rec.Name;
         // The downlink's own status and alarm stay with the tick's show update.
         model.titleColour = MonitorColour(s, rec.DownlinkMonitor, nullptr);
         const int studios = StudioSources(rec);
         for (int k = 0; k < studios; ++k) {
           ShowChannel& studio = rec.StudioLeft[k];
           ShowStatusSource source;
           source.caption = SourceCaption(s, studio.Channel);
           source.selectable = Defined(studio.Channel);
           source.colour = MonitorColour(s, studio.Monitor, &studio.Status);
           model.sources.push_back(source);
         }
       });
  return model;
}

std::vector<TakeCommand> TakeCommands(const State& s, int show, int studio) {
  std::vector<TakeCommand> commands;
  if (!CanTakeStudioSource(s, show, studio)) {
    return commands;
  }
  const ShowRecord& rec = s.Shows[show];
  const int outputs = std::clamp<int>(rec.OutputCount, 0, static_cast<int>(rec.OutputLeft.size()));
  const qint16 left = ChannelOf(rec.StudioLeft, studio);
  const qint16 right = ChannelOf(rec.StudioRight, studio);
  const qint16 cue = ChannelOf(rec.StudioCue, studio);
  auto add = [&](qint16 destination, qint16 source) {
    if (Defined(destination) && Defined(source)) {
      commands.push_back({destination + 1, source + 1});
    }
  };
  for (int d = 0; d < outputs; ++d) {
    add(rec.OutputLeft[d], left);
    add(OutputOf(rec.OutputRight, d), right);
    add(OutputOf(rec.OutputCue, d), cue);
  }
  return commands;
}

bool CanTakeStudioSource(const State& s, int show, int studio) {
  if (show < 0 || show >= std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()))) {
    return false;
  }
  const ShowRecord& rec = s.Shows[show];
  return studio >= 0 && studio < StudioSources(rec) && Defined(rec.StudioLeft[studio].Channel);
}

int TakeStudioSource(State& s, int show, int studio) {
  int sent = 0;
  Trap(s, QStringLiteral("Error sending show source change"),
       QStringLiteral("Switcher Message Error"), [&] {
         const std::vector<TakeCommand> commands = TakeCommands(s, show, studio);
         for (const TakeCommand& command : commands) {
           if (!SendSwitcherCommand(s, command.target, command.source, kCommandConnect)) {
             // The rest would not arrive either; what was sent stays sent.
             throw Failure::DeviceIo();
           }
           ++sent;
           DisplayMessage(s, QStringLiteral("Show Source Change - ") + s.Shows[show].Name +
                                 QStringLiteral(": ") +
                                 LogName(s.InputNames, s.SwitcherInputCount, command.source) +
                                 QStringLiteral(" to ") +
                                 LogName(s.OutputNames, s.SwitcherOutputCount, command.target));
         }
       });
  return sent;
}

}  // namespace zrn
