#pragma once

#include <QString>
#include <vector>

// What the main window draws, decided by the core. Geometry is in twips (15 to a logical pixel),
// relative to the window's client area for frames and to their frame for the parts inside.

namespace zrn {

struct Rgb {
  int red = 0;
  int green = 0;
  int blue = 0;
  friend bool operator==(const Rgb&, const Rgb&) = default;
};

inline constexpr Rgb kLampGrey{224, 224, 224};
inline constexpr Rgb kLampGreen{0, 255, 0};
inline constexpr Rgb kLampRed{255, 0, 0};
inline constexpr Rgb kLampYellow{255, 255, 0};
inline constexpr Rgb kLampCyan{0, 255, 255};

struct Rect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

// An output panel of the normal view: position number and lamp; the name is its tool tip.
struct NormalPanelView {
  Rect frame{1080, 240, 375, 615};
  Rect number{80, 120, 360, 255};
  Rect lamp{75, 405, 195, 135};
  bool visible = false;
  friend bool operator==(const NormalPanelView&, const NormalPanelView&) = default;
};

// An output panel of the large view: position number and lamp, name line and channel line.
struct LargePanelView {
  Rect frame{1080, 240, 1500, 1200};
  Rect number{120, 240, 300, 255};
  Rect lamp{480, 240, 315, 255};
  Rect nameLine{120, 600, 1305, 255};
  Rect channelLine{120, 840, 1305, 255};
  bool visible = false;
  friend bool operator==(const LargePanelView&, const LargePanelView&) = default;
};

// One watched output, drawn in both views with the same texts and lamp colour.
struct OutputPanelModel {
  NormalPanelView normal;
  LargePanelView large;
  QString position = QStringLiteral("01");
  // Shown on the whole normal-view panel.
  QString toolTip;
  QString nameLine;
  QString channelLine;
  Rgb lamp = kLampGrey;
  // The lamp is grey only because the program just routed a new source to the output; it is
  // looked at again once that grace is over.
  bool lampInGrace = false;
  // How long the output has been silent (red or acknowledged), in whole seconds; -1 when not.
  qint64 silentSeconds = -1;
  friend bool operator==(const OutputPanelModel&, const OutputPanelModel&) = default;
};

// A fixed caption of the window ("Status" above a grid row).
struct LabelModel {
  Rect rect;
  QString text;
  bool visible = false;
  friend bool operator==(const LabelModel&, const LabelModel&) = default;
};

// One active show in the show view.
struct ShowPanelModel {
  Rect frame{1080, 240, 1740, 1680};
  Rect name{120, 120, 1500, 255};
  Rect outputs{120, 435, 1500, 510};
  Rect source{120, 1005, 1500, 255};
  // Round indicator.
  Rect indicator{120, 1320, 315, 255};
  QString nameText = QStringLiteral("Show 01");
  // Also the tool tip of the output line; the source line has none.
  QString outputsText;
  QString sourceText;
  Rgb indicatorColour = kLampGrey;
  bool visible = false;
  friend bool operator==(const ShowPanelModel&, const ShowPanelModel&) = default;
};

// The window itself and its fixed controls.
struct WindowModel {
  int width = 15525;
  int height = 11055;
  Rect alarmCaption{14180, 360, 855, 255};  // "Alarm"
  Rect alarmLamp{14220, 720, 315, 255};
  Rect cancelButton{14040, 1200, 735, 375};  // "Cancel", tool tip "Cancel Alarm"
  Rect messageList{120, 2160, 15015, 7695};
  bool messageListVisible = true;
  // The alarm relay as the switcher reports it.
  Rgb alarmLampColour = kLampGrey;
  friend bool operator==(const WindowModel&, const WindowModel&) = default;
};

inline std::vector<LabelModel> DesignHeadings() {
  std::vector<LabelModel> headings;
  for (int row = 0; row < 4; ++row) {
    headings.push_back({{240, 600 + 960 * row, 615, 240}, QStringLiteral("Status"), row == 0});
  }
  return headings;
}

// The operator's filter of the output panels. While it is set, the panels that match close up
// in grid order from the first place; cleared, every panel is back in its specified place.
struct PanelFilter {
  QString text;
  bool onlyAlarms = false;
  // The panels shown while filtering, in order; the rest are hidden.
  std::vector<int> shown;
  // Panels stand elsewhere than their specified places.
  bool moved = false;
  bool Active() const { return !text.trimmed().isEmpty() || onlyAlarms; }
  friend bool operator==(const PanelFilter&, const PanelFilter&) = default;
};

struct PanelModels {
  // Index = index of the watched output; panel 0 always exists.
  std::vector<OutputPanelModel> outputs = std::vector<OutputPanelModel>(1);
  // Index = grid row of the normal view.
  std::vector<LabelModel> headings = DesignHeadings();
  // Index = position in the active show list; panel 0 always exists, hidden when unused.
  std::vector<ShowPanelModel> shows = std::vector<ShowPanelModel>(1);
  WindowModel window;
  PanelFilter filter;
};

}  // namespace zrn
