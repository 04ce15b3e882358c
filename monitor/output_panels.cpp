#include "monitor/output_panels.h"

#include <algorithm>

#include "monitor/panel_filter.h"
#include "shows/show_panels.h"
#include "storage/logs.h"

namespace zrn {

namespace {

// Normal view: 32 panels a row; large view: 12. Rows go on below the last designed one with
// the same pitch, and the panel area scrolls.
constexpr int kGridColumns = 32;
constexpr int kLargeColumns = 12;
constexpr int kPanelLeft = 1080;
constexpr int kPanelTop = 240;
constexpr int kGridPitchX = 400;
constexpr int kGridPitchY = 960;
constexpr int kLargePitchX = 1600;
constexpr int kLargePitchY = 1200;
constexpr int kHeadingTop = 600;
constexpr int kDesignedHeadings = 4;

}  // namespace

OutputPanelModel DesignedOutputPanel(int i) {
  OutputPanelModel panel;
  const int row = i / kGridColumns;
  panel.normal.frame.left = kPanelLeft + kGridPitchX * (i - kGridColumns * row);
  panel.normal.frame.top = kPanelTop + kGridPitchY * row;
  // Three-digit positions need the room.
  panel.normal.number.left = i > 100 ? 20 : 80;

  const int largeRow = i / kLargeColumns;
  panel.large.frame.left = kPanelLeft + kLargePitchX * (i - kLargeColumns * largeRow);
  panel.large.frame.top = kPanelTop + kLargePitchY * largeRow;
  panel.large.number.left = i > 8 ? 80 : 120;

  panel.position = QStringLiteral("%1").arg(i + 1, 2, 10, QLatin1Char('0'));
  return panel;
}

namespace {

int ShownShowPanels(const State& s) {
  return std::clamp<int>(s.ShowPanelsLoaded, 0, ActiveShowsListed(s));
}

void ApplyVisibility(State& s) {
  const bool outputView = s.ProgramMode != 1;
  const bool normal = outputView && !s.LargeViewActive;
  const bool large = outputView && s.LargeViewActive;
  const int count = WatchedCount(s);

  std::vector<OutputPanelModel>& panels = s.panels.outputs;
  for (int i = 0; i < static_cast<int>(panels.size()); ++i) {
    panels[i].normal.visible = normal && i < count;
    panels[i].large.visible = large && i < count;
  }

  std::vector<LabelModel>& headings = s.panels.headings;
  const int rows = (count + kGridColumns - 1) / kGridColumns;
  headings.resize(std::max(kDesignedHeadings, rows));
  for (int row = 0; row < static_cast<int>(headings.size()); ++row) {
    LabelModel& heading = headings[row];
    heading.rect = {240, kHeadingTop + kGridPitchY * row, 615, 240};
    heading.text = QStringLiteral("Status");
    if (row == 0) {
      heading.visible = normal;
    } else if (row == 1) {
      heading.visible = normal && count > kGridColumns;
    } else if (row < kDesignedHeadings) {
      heading.visible = normal && s.ManyOutputs != 0;
    } else {
      heading.visible = normal && count > kGridColumns * row;
    }
  }

  s.panels.window.messageListVisible = normal;

  const int shown = outputView ? 0 : ShownShowPanels(s);
  std::vector<ShowPanelModel>& shows = s.panels.shows;
  for (int p = 0; p < static_cast<int>(shows.size()); ++p) {
    shows[p].visible = p < shown;
  }
}

}  // namespace

void LoadOutputPanels(State& s, int count) {
  Trap(s, QStringLiteral("Error Loading Pennaro"), QStringLiteral("Display Error"), [&] {
    count = std::max(count, 0);
    std::vector<OutputPanelModel>& panels = s.panels.outputs;
    for (int i = static_cast<int>(panels.size()); i < count; ++i) {
      panels.push_back(DesignedOutputPanel(i));
    }
    s.PanelsLoaded = ToInteger(count);
    ApplyViewVisibility(s);
    SetFormSize(s);
  });
}

void UnloadOutputs(State& s) {
  Trap(s, QStringLiteral("Error unloading control"), QStringLiteral("Display Error"), [&] {
    const int keep = WatchedCount(s);
    std::vector<OutputPanelModel>& panels = s.panels.outputs;
    panels.resize(std::max<size_t>(keep, 1));
    if (keep == 0) {
      // Panel 0 cannot go; it waits, unused and without an old lamp, for the next output.
      panels[0] = OutputPanelModel();
    }
    s.PanelsLoaded = ToInteger(keep);
    ApplyViewVisibility(s);
  });
}

void mnuToggle_Click(State& s) {
  Trap(s, QStringLiteral("Error Toggling view"), QStringLiteral("IP Error"), [&] {
    if (s.LargeViewActive) {
      s.LargeViewActive = false;
      if (s.OutputCount < 65) {
        s.ManyOutputs = 0;
      }
    } else {
      s.LargeViewActive = true;
    }
    SetFormSize(s);
    if (s.ProgramMode == 1) {
      DisplayShows(s);
    } else {
      ApplyViewVisibility(s);
    }
  });
}

void SetFormSize(State& s) {
  Trap(s, QStringLiteral("Error Setting Form Size"), QStringLiteral("Display Error"), [&] {
    if (s.LargeViewActive) {
      s.ManyOutputs = 1;
    }
    const bool wide = s.ManyOutputs != 0;
    WindowModel& w = s.panels.window;
    w.height = wide ? 14630 : 11055;
    w.width = wide ? 21675 : 15525;
    w.alarmCaption.left = wide ? 20430 : 14180;
    w.alarmLamp.left = wide ? 20470 : 14220;
    w.cancelButton.left = wide ? 20290 : 14040;
    w.messageList.top = wide ? 4036 : 2160;
    w.messageList.height = wide ? 9295 : 7695;
    w.messageList.width = wide ? 21165 : 15015;
  });
}

void ShowConfiguredView(State& s) {
  const bool wantLarge = s.ProgramMode != 1 && s.DefaultViewLarge != 0;
  if (s.LargeViewActive != wantLarge) {
    mnuToggle_Click(s);
    return;
  }
  SetFormSize(s);
  ApplyViewVisibility(s);
}

void ApplyViewVisibility(State& s) {
  Trap(s, QStringLiteral("Error Showing View"), QStringLiteral("Display Error"), [&] {
    ApplyVisibility(s);
    ApplyPanelFilter(s);
  });
}

}  // namespace zrn
