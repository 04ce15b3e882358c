#include "monitor/panel_update.h"

#include <algorithm>
#include <initializer_list>

#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "storage/logs.h"

namespace zrn {

namespace {

// Mode bit 8: silence detection enabled for the output.
constexpr int kSilenceDetectEnabled = 0x100;

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
  WriteTexts(s.Outputs[index], PanelTextsOf(s, s.Outputs[index]), s.panels.outputs[index]);
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
