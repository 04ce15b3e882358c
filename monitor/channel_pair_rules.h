#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "core/state.h"

namespace zrn {

// What the channel pair editor edits (ChannelSelectMode).
enum ChannelPairMode { kPairShowOutputs = 1, kPairStudioSources = 2 };

// A stereo pair with its cue channel; 0-based channels, kNone when not defined.
struct ChannelGroup {
  qint16 left = kNone;
  qint16 right = kNone;
  qint16 cue = kNone;
  bool operator==(const ChannelGroup&) const = default;
};

// "Configure Show Outputs" (mode 1), "Configure Show Studio Sources" (mode 2); empty otherwise.
QString ChannelPairTitle(int mode);

// The show's outputs (mode 1) or studio sources (mode 2), as many as its count and arrays hold.
std::vector<ChannelGroup> ShowChannelGroups(const ShowRecord& show, int mode);
// Makes the groups the show's outputs or studio sources and sets the count; studio entries that
// stay keep their run-time fields.
void StoreChannelGroups(ShowRecord& show, int mode, const std::vector<ChannelGroup>& groups);

// "Studio A(0012),  Not Defined(16383),  Cue 1(0013)": name and 1-based number of each channel,
// switcher outputs in mode 1, inputs in mode 2.
QString ChannelGroupText(const State& s, int mode, const ChannelGroup& group);

// "Undefined", then "[0001] " and the name of every switcher output (mode 1) or input (mode 2).
QStringList ChannelPairItems(const State& s, int mode);
// The item showing a channel: channel + 1, or 0 for none and for a channel not in the list.
int ChannelPairItem(const State& s, int mode, int channel);
qint16 ChannelOfPairItem(int item);

}  // namespace zrn
