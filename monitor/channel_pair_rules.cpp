#include "monitor/channel_pair_rules.h"

#include <algorithm>

#include "core/channel_texts.h"
#include "monitor/setup_rules.h"
#include "schedule/schedule_rules.h"

namespace zrn {

namespace {

int ChannelCount(const State& s, int mode) {
  return std::clamp<int>(mode == kPairShowOutputs ? s.SwitcherOutputCount : s.SwitcherInputCount, 0,
                         kNone - 1);
}

const QStringList& Names(const State& s, int mode) {
  return mode == kPairShowOutputs ? s.OutputNames : s.InputNames;
}

QString ChannelPart(const State& s, int mode, int channel) {
  if (channel < 0 || channel >= kNone) {
    return QStringLiteral("Not Defined(16383)");
  }
  const QStringList& names = Names(s, mode);
  const int known = std::min<int>(ChannelCount(s, mode), static_cast<int>(names.size()));
  const QString name = channel < known ? names[channel] : QStringLiteral("Not Defined");
  return name + QLatin1Char('(') + ChannelDigits(channel + 1) + QLatin1Char(')');
}

}  // namespace

QString ChannelPairTitle(int mode) {
  switch (mode) {
    case kPairShowOutputs:
      return QStringLiteral("Configure Show Outputs");
    case kPairStudioSources:
      return QStringLiteral("Configure Show Studio Sources");
    default:
      return {};
  }
}

std::vector<ChannelGroup> ShowChannelGroups(const ShowRecord& show, int mode) {
  std::vector<ChannelGroup> groups;
  if (mode == kPairShowOutputs) {
    const std::size_t n =
        std::min({static_cast<std::size_t>(std::max<int>(show.OutputCount, 0)),
                  show.OutputLeft.size(), show.OutputRight.size(), show.OutputCue.size()});
    for (std::size_t j = 0; j < n; ++j) {
      groups.push_back({show.OutputLeft[j], show.OutputRight[j], show.OutputCue[j]});
    }
  } else if (mode == kPairStudioSources) {
    const std::size_t n =
        std::min({static_cast<std::size_t>(std::max<int>(show.StudioCount, 0)),
                  show.StudioLeft.size(), show.StudioRight.size(), show.StudioCue.size()});
    for (std::size_t j = 0; j < n; ++j) {
      groups.push_back(
          {show.StudioLeft[j].Channel, show.StudioRight[j].Channel, show.StudioCue[j].Channel});
    }
  }
  return groups;
}

void StoreChannelGroups(ShowRecord& show, int mode, const std::vector<ChannelGroup>& groups) {
  const std::size_t n = std::min<std::size_t>(groups.size(), 32767);
  if (mode == kPairShowOutputs) {
    show.OutputLeft.resize(n);
    show.OutputRight.resize(n);
    show.OutputCue.resize(n);
    for (std::size_t j = 0; j < n; ++j) {
      show.OutputLeft[j] = groups[j].left;
      show.OutputRight[j] = groups[j].right;
      show.OutputCue[j] = groups[j].cue;
    }
    show.OutputCount = static_cast<qint16>(n);
  } else if (mode == kPairStudioSources) {
    show.StudioLeft.resize(n);
    show.StudioRight.resize(n);
    show.StudioCue.resize(n);
    for (std::size_t j = 0; j < n; ++j) {
      show.StudioLeft[j].Channel = groups[j].left;
      show.StudioRight[j].Channel = groups[j].right;
      show.StudioCue[j].Channel = groups[j].cue;
    }
    show.StudioCount = static_cast<qint16>(n);
  }
}

QString ChannelGroupText(const State& s, int mode, const ChannelGroup& group) {
  return ChannelPart(s, mode, group.left) + QStringLiteral(",  ") +
         ChannelPart(s, mode, group.right) + QStringLiteral(",  ") +
         ChannelPart(s, mode, group.cue);
}

QStringList ChannelPairItems(const State& s, int mode) {
  return mode == kPairShowOutputs ? OutputChoiceItems(s) : SourceListTexts(s);
}

int ChannelPairItem(const State& s, int mode, int channel) {
  return channel >= 0 && channel < ChannelCount(s, mode) ? channel + 1 : 0;
}

qint16 ChannelOfPairItem(int item) {
  return item >= 1 && item <= kNone ? static_cast<qint16>(item - 1) : kNone;
}

}  // namespace zrn
