#include "monitor/panel_filter.h"

#include <algorithm>

#include "monitor/output_panels.h"

namespace zrn {

namespace {

// Switcher output (1-based) routed to nothing or beyond the tables reads as no source.
QString RoutedSourceName(const State& s, int channel) {
  if (channel < 1 || channel > static_cast<int>(s.CrosspointMap.size())) {
    return QString();
  }
  const CrosspointEntry& route = s.CrosspointMap[static_cast<size_t>(channel - 1)];
  const int source = route.Sources[0];
  if (route.SourceCount == 0 || source < 0 || source >= s.InputNames.size()) {
    return QString();
  }
  return s.InputNames[source];
}

void PlaceAt(OutputPanelModel& panel, const OutputPanelModel& place) {
  panel.normal.frame = place.normal.frame;
  panel.large.frame = place.large.frame;
}

}  // namespace

bool PanelMatches(const State& s, int index, const QString& text, bool onlyAlarms) {
  if (index < 0 || index >= static_cast<int>(s.panels.outputs.size()) ||
      index >= static_cast<int>(s.Outputs.size())) {
    return false;
  }
  const OutputPanelModel& panel = s.panels.outputs[static_cast<size_t>(index)];
  if (onlyAlarms && panel.lamp != kLampRed && panel.lamp != kLampYellow) {
    return false;
  }
  const QString wanted = text.trimmed();
  if (wanted.isEmpty()) {
    return true;
  }
  const OutputEntry& entry = s.Outputs[static_cast<size_t>(index)];
  bool isNumber = false;
  const int number = wanted.toInt(&isNumber);
  if (isNumber) {
    return number == index + 1 || number == entry.Output;
  }
  const auto has = [&](const QString& where) {
    return where.contains(wanted, Qt::CaseInsensitive);
  };
  const int channel = entry.Output;
  const QString name =
      channel >= 1 && channel <= s.OutputNames.size() ? s.OutputNames[channel - 1] : QString();
  return has(name) || has(entry.CustomLabel) || has(panel.nameLine) || has(panel.channelLine) ||
         has(RoutedSourceName(s, channel));
}

void SetPanelFilter(State& s, const QString& text, bool onlyAlarms) {
  s.panels.filter.text = text;
  s.panels.filter.onlyAlarms = onlyAlarms;
  ApplyViewVisibility(s);
}

void ApplyPanelFilter(State& s) {
  PanelFilter& filter = s.panels.filter;
  std::vector<OutputPanelModel>& panels = s.panels.outputs;
  const int count = std::min(WatchedCount(s), static_cast<int>(panels.size()));
  if (!filter.Active()) {
    filter.shown.clear();
    if (filter.moved) {
      for (int i = 0; i < static_cast<int>(panels.size()); ++i) {
        PlaceAt(panels[static_cast<size_t>(i)], DesignedOutputPanel(i));
      }
      filter.moved = false;
    }
    return;
  }
  filter.shown.clear();
  for (int i = 0; i < count; ++i) {
    OutputPanelModel& panel = panels[static_cast<size_t>(i)];
    if (PanelMatches(s, i, filter.text, filter.onlyAlarms)) {
      PlaceAt(panel, DesignedOutputPanel(static_cast<int>(filter.shown.size())));
      filter.shown.push_back(i);
    } else {
      panel.normal.visible = false;
      panel.large.visible = false;
    }
  }
  filter.moved = true;
  // Only the rows that hold panels keep their heading.
  constexpr int kGridColumns = 32;
  const int rows = (static_cast<int>(filter.shown.size()) + kGridColumns - 1) / kGridColumns;
  for (int row = 0; row < static_cast<int>(s.panels.headings.size()); ++row) {
    LabelModel& heading = s.panels.headings[static_cast<size_t>(row)];
    heading.visible = heading.visible && (row < std::max(rows, 1));
  }
}

}  // namespace zrn
