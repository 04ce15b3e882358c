#include "monitor/panel_update.h"

#include <algorithm>

#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "storage/logs.h"

namespace zrn {

namespace {

// Spelled as operators have always seen it.
const QString kUnknown = QStringLiteral("Uknown");
const QString kNothingRouted = QStringLiteral("-Off-");

// Mode bit 8: silence detection enabled for the output.
constexpr int kSilenceDetectEnabled = 0x100;

struct PanelTexts {
  QString label;
  QString number;  // empty when there is no number to show
};

PanelTexts TextsOf(const State& s, const OutputEntry& entry) {
  if (entry.DisplayOption == 2) {
    return {entry.CustomLabel, QString()};
  }
  const int channel = entry.Output;
  if (entry.DisplayOption == 1) {
    const int routed =
        std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.CrosspointMap.size()));
    if (channel < 1 || channel > routed) {
      return {kUnknown, QString()};
    }
    const CrosspointEntry& route = s.CrosspointMap[channel - 1];
    if (route.SourceCount == 0) {
      return {kNothingRouted, QString()};
    }
    const int source = route.Sources[0];
    const int inputs = std::min<int>(s.SwitcherInputCount, static_cast<int>(s.InputNames.size()));
    if (source < 0 || source >= inputs) {
      return {kUnknown, QString()};
    }
    return {s.InputNames[source], ChannelDigits(source + 1)};
  }
  const int outputs = std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.OutputNames.size()));
  if (channel < 1 || channel > outputs) {
    return {kUnknown, QString()};
  }
  return {s.OutputNames[channel - 1], ChannelDigits(channel)};
}

void WriteTexts(const OutputEntry& entry, const PanelTexts& texts, OutputPanelModel& panel) {
  panel.toolTip = texts.number.isEmpty()
                      ? texts.label
                      : texts.label + QStringLiteral("    [") + texts.number + QLatin1Char(']');
  if (entry.DisplayOption == 2) {
    // The custom label takes the second line.
    panel.nameLine.clear();
    panel.channelLine = texts.label;
  } else {
    panel.nameLine = texts.label;
    panel.channelLine = texts.number.isEmpty() ? QString() : QStringLiteral("Ch. ") + texts.number;
  }
}

// The switcher output (0-based) whose detector a watched channel reads, or -1.
int DetectorOf(const State& s, int channel) {
  const int known = std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.SilenceStatus.size()));
  return channel >= 1 && channel <= known ? channel - 1 : -1;
}

void UpdateLamp(State& s, OutputEntry& entry, OutputPanelModel& panel) {
  panel.lampInGrace = false;

  const int output = DetectorOf(s, entry.Output);
  if (output < 0 || (s.SilenceStatus[output].Mode & kSilenceDetectEnabled) == 0) {
    panel.lamp = kLampGrey;
    return;
  }
  // In show mode the output panels are hidden, so they must not alarm either. Right after the
  // program routed a new source, the old source's silence says nothing about the new one.
  const bool inGrace = InSilenceGrace(s, output);
  if (!entry.MonitoringEnabled || s.ProgramMode == 1 || inGrace) {
    panel.lamp = kLampGrey;
    panel.lampInGrace = inGrace;
    // Whatever was acknowledged or cancelled belonged to the period that just ended: a silence
    // still there when monitoring comes back is a new alarm.
    entry.AlarmState = 0;
    entry.AlarmCanceled = false;
    return;
  }

  const quint8 silence = s.SilenceStatus[output].Status;
  if ((silence & 1) == 0) {
    // The silence that was acknowledged or cancelled is over; the next one alarms again. A
    // peak coming or going (bit 1) does not end it.
    entry.AlarmState = 0;
    entry.AlarmCanceled = false;
  }
  if (entry.AlarmState == 1) {
    panel.lamp = kLampYellow;
  } else if (silence == 1) {
    panel.lamp = kLampRed;
  } else if (silence == 0) {
    panel.lamp = kLampGreen;
  } else {
    panel.lamp = kLampCyan;
  }
}

}  // namespace

QString ChannelDigits(int channel) {
  return QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
}

QString PanelName(const State& s, const OutputEntry& entry) {
  return TextsOf(s, entry).label;
}

void UpdateOutputs(State& s) {
  const bool done =
      Trap(s, QStringLiteral("Error Updating Outputs"), QStringLiteral("Dispaly Error"), [&] {
        s.ManyOutputs = s.OutputCount >= 65 ? 1 : 0;
        if (s.OutputCount > static_cast<int>(s.Outputs.size())) {
          // Draw the entries there are rather than none.
          LogError(s, QStringLiteral("Error Updating Outputs"), QStringLiteral("Dispaly Error"),
                   Failure::SubscriptOutOfRange());
        }
        const int count = WatchedCount(s);
        const int built = static_cast<int>(s.panels.outputs.size());
        if (s.PanelsLoaded < count || built < count) {
          LoadOutputPanels(s, count);
        } else if (s.PanelsLoaded > count || built > std::max(count, 1)) {
          UnloadOutputs(s);
        }
        const int panels = std::min(count, static_cast<int>(s.panels.outputs.size()));
        for (int i = 0; i < panels; ++i) {
          WriteTexts(s.Outputs[i], TextsOf(s, s.Outputs[i]), s.panels.outputs[i]);
        }
        ApplyViewVisibility(s);
      });
  if (done) {
    UpdateStatus(s);
  }
}

void UpdateStatus(State& s) {
  if (s.requests.Req4 != 0) {
    return;
  }
  Trap(s, QStringLiteral("Error updating status"), QStringLiteral("Display Error"), [&] {
    const int panels = std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
    for (int i = 0; i < panels; ++i) {
      UpdateLamp(s, s.Outputs[i], s.panels.outputs[i]);
    }
  });
  DecideAlarmRelay(s);
}

}  // namespace zrn
