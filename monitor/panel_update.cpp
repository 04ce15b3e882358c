#include "monitor/panel_update.h"

#include <algorithm>
#include <initializer_list>

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

// Sets text to the parts joined unless it holds them already: every report rewrites the texts
// of thousands of panels, and almost none of them change.
void SetText(QString& text, std::initializer_list<QStringView> parts) {
  qsizetype size = 0;
  for (const QStringView part : parts) {
    size += part.size();
  }
  if (text.size() == size) {
    const QStringView held(text);
    qsizetype at = 0;
    bool same = true;
    for (const QStringView part : parts) {
      same = same && held.sliced(at, part.size()) == part;
      at += part.size();
    }
    if (same) {
      return;
    }
  }
  QString joined;
  joined.reserve(size);
  for (const QStringView part : parts) {
    joined.append(part);
  }
  text = std::move(joined);
}

void SetText(QString& text, const QString& to) {
  if (text != to) {
    text = to;
  }
}

void WriteTexts(const OutputEntry& entry, const PanelTexts& texts, OutputPanelModel& panel) {
  if (texts.number.isEmpty()) {
    SetText(panel.toolTip, texts.label);
  } else {
    SetText(panel.toolTip, {texts.label, u"    [", texts.number, u"]"});
  }
  if (entry.DisplayOption == 2) {
    // The custom label takes the second line.
    SetText(panel.nameLine, QString());
    SetText(panel.channelLine, texts.label);
  } else {
    SetText(panel.nameLine, texts.label);
    if (texts.number.isEmpty()) {
      SetText(panel.channelLine, QString());
    } else {
      SetText(panel.channelLine, {u"Ch. ", texts.number});
    }
  }
}

void WritePanelTexts(State& s, int index) {
  WriteTexts(s.Outputs[index], TextsOf(s, s.Outputs[index]), s.panels.outputs[index]);
}

int PanelCount(const State& s) {
  return std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
}

// Another pass of UpdateOutputs would neither load nor unload panels.
bool PanelSetSettled(const State& s) {
  const int count = WatchedCount(s);
  const int built = static_cast<int>(s.panels.outputs.size());
  return s.PanelsLoaded == count && built == std::max(count, 1);
}

// Whether a grace was ever started for the switcher output (0-based): such a lamp may change
// with the clock alone, so a batch that meets one keeps to full passes.
bool GraceStamped(const State& s, int output) {
  return output >= 0 && output < static_cast<int>(s.SilenceGraceUntil.size()) &&
         s.SilenceGraceUntil[output].isValid();
}

// Builds the channel index of the watched entries: a counting sort, so each channel's entries
// keep table order.
void IndexWatched(State& s) {
  PanelPassState& pass = s.panelPass;
  const int watched = WatchedCount(s);
  int highest = 0;
  for (int i = 0; i < watched; ++i) {
    highest = std::max<int>(highest, s.Outputs[i].Output);
  }
  pass.firstOf.assign(highest + 2, 0);
  int indexed = 0;
  for (int i = 0; i < watched; ++i) {
    const int channel = s.Outputs[i].Output;
    if (channel >= 0) {
      ++pass.firstOf[channel + 1];
      ++indexed;
    }
  }
  for (int c = 1; c <= highest + 1; ++c) {
    pass.firstOf[c] += pass.firstOf[c - 1];
  }
  std::vector<int> next(pass.firstOf.begin(), pass.firstOf.end() - 1);
  pass.byChannel.resize(indexed);
  for (int i = 0; i < watched; ++i) {
    const int channel = s.Outputs[i].Output;
    if (channel >= 0) {
      pass.byChannel[next[channel]++] = i;
    }
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
  // Made once per channel: panel texts and activity lines ask for them all the time.
  thread_local std::vector<QString> made(kNone + 1);
  if (channel < 0 || channel > kNone) {
    return QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
  }
  QString& digits = made[static_cast<size_t>(channel)];
  if (digits.isNull()) {
    digits = QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
  }
  return digits;
}

QString PanelName(const State& s, const OutputEntry& entry) {
  return TextsOf(s, entry).label;
}

void UpdateOutputs(State& s) {
  // A full pass starts from nothing kept: the watched table may have changed since.
  PanelPassState& pass = s.panelPass;
  pass.Forget();
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
        const int panels = PanelCount(s);
        for (int i = 0; i < panels; ++i) {
          WritePanelTexts(s, i);
        }
        ApplyViewVisibility(s);
      });
  if (done) {
    // A pass that had to report a short table, or to load or unload panels, is never skipped.
    pass.textsCurrent = pass.batches > 0 && s.OutputCount <= static_cast<int>(s.Outputs.size()) &&
                        PanelSetSettled(s);
    UpdateStatus(s);
  }
}

void UpdateStatus(State& s) {
  if (s.requests.Req4 != 0) {
    return;
  }
  PanelPassState& pass = s.panelPass;
  pass.lampsCurrent = false;
  pass.firstOf.clear();
  bool graceSeen = false;
  const bool done =
      Trap(s, QStringLiteral("Error updating status"), QStringLiteral("Display Error"), [&] {
        const int panels = PanelCount(s);
        pass.inAlarm.assign(panels, 0);
        pass.alarmCount = 0;
        for (int i = 0; i < panels; ++i) {
          UpdateLamp(s, s.Outputs[i], s.panels.outputs[i]);
          const bool alarm = OutputInAlarm(s, i);
          pass.inAlarm[i] = alarm ? 1 : 0;
          pass.alarmCount += alarm ? 1 : 0;
          graceSeen = graceSeen || GraceStamped(s, s.Outputs[i].Output - 1);
        }
      });
  pass.lampsCurrent = done && !graceSeen && pass.batches > 0;
  DecideAlarmRelay(s);
}

bool IndexedWatching(State& s, int channel, std::span<const int>& entries) {
  PanelPassState& pass = s.panelPass;
  if (!pass.lampsCurrent && !pass.textsCurrent) {
    return false;
  }
  if (pass.firstOf.empty()) {
    IndexWatched(s);
  }
  entries = {};
  if (channel >= 0 && channel + 1 < static_cast<int>(pass.firstOf.size())) {
    entries =
        std::span<const int>(pass.byChannel)
            .subspan(pass.firstOf[channel], pass.firstOf[channel + 1] - pass.firstOf[channel]);
  }
  return true;
}

void UpdateRoutedOutputs(State& s, int first, int count) {
  PanelPassState& pass = s.panelPass;
  if (!pass.textsCurrent) {
    UpdateOutputs(s);
    return;
  }
  const int panels = PanelCount(s);
  for (int output = first; output < first + count; ++output) {
    ForEachWatching(s, output + 1, [&](int i) {
      if (i < panels) {
        WritePanelTexts(s, i);
      }
    });
  }
  if (s.requests.Req4 != 0) {
    return;
  }
  // The lamps do not follow the routing: what a full pass would do beyond them is the decision.
  if (pass.lampsCurrent) {
    DecideAlarmRelay(s);
  } else {
    UpdateStatus(s);
  }
}

void UpdateChangedLamps(State& s) {
  PanelPassState& pass = s.panelPass;
  if (!pass.lampsCurrent || s.requests.Req4 != 0) {
    pass.changedChannels.clear();
    UpdateStatus(s);
    return;
  }
  const int panels = PanelCount(s);
  for (const int channel : pass.changedChannels) {
    ForEachWatching(s, channel, [&](int i) {
      if (i >= panels) {
        return;
      }
      UpdateLamp(s, s.Outputs[i], s.panels.outputs[i]);
      const char alarm = OutputInAlarm(s, i) ? 1 : 0;
      pass.alarmCount += alarm - pass.inAlarm[i];
      pass.inAlarm[i] = alarm;
    });
  }
  pass.changedChannels.clear();
  DecideAlarmRelay(s);
}

}  // namespace zrn
