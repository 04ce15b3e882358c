#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "core/state.h"

namespace zrn {

// The parts of a silence detector's Mode word.
struct DetectMode {
  // 0 none, 1 message only, 2 relay, 3 opto.
  int deviceType = 0;
  // The device is switched on (else off) when the alarm fires.
  bool actionOn = false;
  // The device follows peak (else silence) detection.
  bool followsPeak = false;
  bool silenceEnabled = false;
  bool peakEnabled = false;
};

DetectMode SplitMode(int mode);
int ComposeMode(const DetectMode& mode);

// "0 Seconds" to "500 Seconds"; position = seconds.
QStringList TimeListTexts();
// The position of a time; times beyond the list show its nearest end.
int TimePosition(int seconds);

// "Undefined", then "20 dB" down to "-51 dB" for the codes 1224 down to 514.
QStringList ThresholdListTexts();
// Position 0 for 16383 and for any code the list cannot show.
int ThresholdPosition(int code);
int ThresholdCode(int position);

// One entry of the alarm device list.
struct DeviceItem {
  QString text;
  // The Device value it stands for; kNone for "Undefined".
  int device = kNone;
};

// "Undefined", then every relay ("Alarm [0001]") or opto ("Door[ 0001]") of the switcher by
// device type. A relay or opto beyond those the switcher reported is kept as its own entry, so
// sending other changes does not drop it.
std::vector<DeviceItem> DeviceListItems(const State& s, int deviceType, int device);
// The position of device in items; 0 when it is not there.
int DevicePosition(const std::vector<DeviceItem>& items, int device);

// "Channel is Silent.  ", "Peak Detected", both, or empty.
QString DetectStatusText(int status);

// "Configure Silence Detect for Studio A [0012]" for switcher output 11 (0-based).
QString SilenceDetectTitle(const State& s, int output);

// The activity line of a configuration sent to the switcher for output (0-based).
QString SilenceConfigSentLine(const State& s, int output);

}  // namespace zrn
