#include "shows/show_panels.h"

#include <algorithm>

#include "storage/logs.h"

namespace zrn {

namespace {

// Rows of six; rows go on past the fourth with the same pitch, and the panel area scrolls.
constexpr int kShowColumns = 6;
constexpr int kShowLeft = 1080;
constexpr int kShowTop = 240;
constexpr int kShowPitchX = 1840;
constexpr int kShowPitchY = 1680;

const QString kNotDefined = QStringLiteral("Not Defined");

ShowPanelModel MakeShowPanel(int i) {
  ShowPanelModel panel;
  panel.frame.left = kShowLeft + kShowPitchX * (i % kShowColumns);
  panel.frame.top = kShowTop + kShowPitchY * (i / kShowColumns);
  panel.name.left = i > 8 ? 80 : 120;
  panel.nameText = QStringLiteral("Show %1").arg(i + 1, 2, 10, QLatin1Char('0'));
  return panel;
}

QString ShowOutputName(const State& s, qint16 output) {
  const int known = std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.OutputNames.size()));
  return output >= 0 && output < known ? s.OutputNames[output] : kNotDefined;
}

QString ShowSourceName(const State& s, qint16 input) {
  const int known = std::min<int>(s.SwitcherInputCount, static_cast<int>(s.InputNames.size()));
  return input >= 0 && input < known ? s.InputNames[input] : kNotDefined;
}

void FillShowPanel(const State& s, const ShowRecord& show, ShowPanelModel& panel) {
  panel.nameText = show.Name;
  const int outputs =
      std::clamp<int>(show.OutputCount, 0, static_cast<int>(show.OutputLeft.size()));
  QStringList names;
  for (int k = 0; k < outputs; ++k) {
    names << ShowOutputName(s, show.OutputLeft[k]);
  }
  // A show without outputs still says so rather than showing an empty line.
  panel.outputsText = names.isEmpty() ? kNotDefined : names.join(QStringLiteral(", "));
  panel.sourceText = ShowSourceName(s, show.DownlinkSource);
}

}  // namespace

int ActiveShowsListed(const State& s) {
  return std::clamp<int>(s.ActiveShowCount, 0, static_cast<int>(s.ActiveShows.size()));
}

void LoadShowStatus(State& s, int count) {
  Trap(s, QStringLiteral("Error Loading Show Status"), QStringLiteral("Display Error"), [&] {
    count = std::max(count, 0);
    std::vector<ShowPanelModel>& panels = s.panels.shows;
    const int first = std::clamp<int>(s.ShowPanelsLoaded, 0, static_cast<int>(panels.size()));
    for (int i = first; i < count; ++i) {
      if (i < static_cast<int>(panels.size())) {
        panels[i] = MakeShowPanel(i);
      } else {
        panels.push_back(MakeShowPanel(i));
      }
    }
    s.ShowPanelsLoaded = ToInteger(count);
    s.reactions.viewChanged(s);
    s.reactions.formResized(s);
  });
}

void UnloadShowDisplays(State& s) {
  Trap(s, QStringLiteral("Error Unloading Show Status"), QStringLiteral("Display Error"), [&] {
    const int keep = ActiveShowsListed(s);
    std::vector<ShowPanelModel>& panels = s.panels.shows;
    if (static_cast<int>(panels.size()) > std::max(keep, 1)) {
      panels.resize(std::max(keep, 1));
    }
    if (keep == 0) {
      panels[0] = MakeShowPanel(0);
    }
    s.ShowPanelsLoaded = ToInteger(keep);
    s.reactions.viewChanged(s);
  });
}

void UpdateShows(State& s) {
  const int active = ActiveShowsListed(s);
  if (s.ShowPanelsLoaded > active) {
    UnloadShowDisplays(s);
  } else if (s.ShowPanelsLoaded < active) {
    LoadShowStatus(s, active);
  }
  Trap(s, QStringLiteral("Error Updating Show Status"), QStringLiteral("Display Error"), [&] {
    std::vector<ShowPanelModel>& panels = s.panels.shows;
    const int filled =
        std::min({static_cast<int>(s.ShowPanelsLoaded), active, static_cast<int>(panels.size())});
    const int shows = std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()));
    for (int p = 0; p < filled; ++p) {
      const qint16 index = s.ActiveShows[p];
      if (index >= 0 && index < shows) {
        FillShowPanel(s, s.Shows[index], panels[p]);
        continue;
      }
      // One bad list entry costs its own panel only.
      LogError(s, QStringLiteral("Error Updating Show Status"), QStringLiteral("Display Error"),
               Failure::SubscriptOutOfRange());
      panels[p].nameText.clear();
      panels[p].outputsText = kNotDefined;
      panels[p].sourceText = kNotDefined;
    }
  });
  s.reactions.viewChanged(s);
}

void DisplayShows(State& s) {
  s.reactions.viewChanged(s);
}

}  // namespace zrn
