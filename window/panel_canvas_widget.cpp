#include "window/panel_canvas_widget.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>

#include "monitor/link_watch.h"

namespace zrn {

namespace {

constexpr int kTwipsPerPixel = 15;
// Room kept right of and below the last panel.
constexpr int kContentMargin = 4;
// Between a position number and the lamp beside it in the large view.
constexpr int kNumberGap = 30;

const QColor kBackground(0x1d, 0x21, 0x25);
const QColor kPanelFill(0x2b, 0x31, 0x37);
const QColor kPanelBorder(0x4b, 0x55, 0x5e);
const QColor kText(0xec, 0xef, 0xf1);
const QColor kDimText(0xa9, 0xb3, 0xbb);
const QColor kSilentText(0xff, 0xb0, 0x20);

QColor ToColor(const Rgb& rgb) {
  return QColor(rgb.red, rgb.green, rgb.blue);
}

QRectF Inner(const Rect& frame, const Rect& part) {
  return QRectF(frame.left + part.left, frame.top + part.top, part.width, part.height);
}

QRectF Twips(const Rect& r) {
  return QRectF(r.left, r.top, r.width, r.height);
}

void DrawFrame(QPainter& p, const Rect& frame) {
  p.setPen(QPen(kPanelBorder, 15));
  p.setBrush(kPanelFill);
  p.drawRoundedRect(Twips(frame), 60, 60);
}

// A lamp whose report may be out of date: dim and hatched, never a colour that could be read
// as audio present or as an alarm.
const QColor kStaleFill(0x4a, 0x50, 0x56);
const QColor kStaleHatch(0x8a, 0x92, 0x99);

void DrawLamp(QPainter& p, const QRectF& rect, const Rgb& colour, bool round, bool stale) {
  p.setPen(QPen(QColor(0x0b, 0x0d, 0x0f), 20));
  p.setBrush(stale ? kStaleFill : ToColor(colour));
  const auto shape = [&] {
    if (round) {
      p.drawEllipse(rect);
    } else {
      p.drawRoundedRect(rect, 25, 25);
    }
  };
  shape();
  if (stale) {
    QBrush hatch(kStaleHatch, Qt::BDiagPattern);
    // The pattern is in device pixels: undo the twips scale for its spacing.
    hatch.setTransform(QTransform::fromScale(15, 15));
    p.setBrush(hatch);
    p.setPen(Qt::NoPen);
    shape();
  }
}

QFont PanelFont(int twipsHigh, bool bold, bool narrow = false) {
  QFont font;
  font.setPixelSize(twipsHigh);
  font.setBold(bold);
  if (narrow) {
    font.setStretch(QFont::SemiCondensed);
  }
  return font;
}

void DrawText(QPainter& p, const QRectF& rect, const QString& text, const QFont& font,
              const QColor& colour, int flags = Qt::AlignLeft | Qt::AlignVCenter) {
  p.setFont(font);
  p.setPen(colour);
  const QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, rect.width());
  p.drawText(rect, flags | Qt::TextSingleLine, shown);
}

// A position number is never cut: three and four digits take a smaller font instead, bold while
// it stays large enough, then regular, whose thinner strokes keep small digits apart.
void DrawNumber(QPainter& p, const QRectF& rect, const QString& text, QFont font) {
  constexpr int kSmallestBoldTwips = 150;
  constexpr int kSmallestTwips = 105;
  const auto fitted = [&](const QFont& f) {
    const qreal wanted = QFontMetricsF(f).horizontalAdvance(text);
    return wanted <= rect.width() ? f.pixelSize()
                                  : static_cast<int>(f.pixelSize() * rect.width() / wanted);
  };
  if (const int bold = fitted(font); bold < font.pixelSize()) {
    if (bold >= kSmallestBoldTwips) {
      font.setPixelSize(bold);
    } else {
      font.setBold(false);
      font.setPixelSize(std::max(kSmallestTwips, fitted(font)));
    }
  }
  p.setFont(font);
  p.setPen(kText);
  p.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

// The box a position number may fill: its label, kept inside the frame and, in the large view,
// clear of the lamp.
QRectF NumberBox(const NormalPanelView& v, const QString& text) {
  // Every three- and four-digit number starts where the widest ones do, so they all get the
  // same room.
  constexpr int kWideLeft = 20;
  Rect label = v.number;
  if (text.size() > 2) {
    label.left = std::min(label.left, kWideLeft);
  }
  return Inner(v.frame, label).intersected(Twips(v.frame).adjusted(0, 0, -kNumberGap, 0));
}

QRectF NumberBox(const LargePanelView& v) {
  QRectF label = Inner(v.frame, v.number);
  label.setRight(v.frame.left + v.lamp.left - kNumberGap);
  return label;
}

QRect Grown(const QRect& r) {
  return r.adjusted(-2, -2, 2, 2);
}

}  // namespace

PanelCanvasWidget::PanelCanvasWidget(QWidget* parent) : QWidget(parent) {
  setAutoFillBackground(true);
  QPalette pal = palette();
  pal.setColor(QPalette::Window, kBackground);
  setPalette(pal);
  setMouseTracking(false);
  setMinimumSize(ContentSize());
}

QRect PanelCanvasWidget::ToPixels(const Rect& twips) {
  return QRect(twips.left / kTwipsPerPixel, twips.top / kTwipsPerPixel,
               (twips.width + kTwipsPerPixel - 1) / kTwipsPerPixel,
               (twips.height + kTwipsPerPixel - 1) / kTwipsPerPixel);
}

QRect PanelCanvasWidget::OutputPanelPixels(int index) const {
  const OutputPanelModel& panel = models_.outputs[index];
  return ToPixels(panel.normal.frame) | ToPixels(panel.large.frame);
}

QSize PanelCanvasWidget::ContentSize() const {
  QRect extent;
  for (const OutputPanelModel& panel : models_.outputs) {
    if (panel.normal.visible) {
      extent |= ToPixels(panel.normal.frame);
    }
    if (panel.large.visible) {
      extent |= ToPixels(panel.large.frame);
    }
  }
  for (const ShowPanelModel& show : models_.shows) {
    if (show.visible) {
      extent |= ToPixels(show.frame);
    }
  }
  for (const LabelModel& heading : models_.headings) {
    if (heading.visible) {
      extent |= ToPixels(heading.rect);
    }
  }
  return QSize(extent.right() + kContentMargin, extent.bottom() + kContentMargin);
}

QSize PanelCanvasWidget::sizeHint() const {
  return ContentSize();
}

void PanelCanvasWidget::Refresh(const PanelModels& models) {
  const bool sameShape = models.outputs.size() == models_.outputs.size() &&
                         models.shows.size() == models_.shows.size() &&
                         models.headings == models_.headings;
  if (!sameShape) {
    models_.outputs = models.outputs;
    models_.shows = models.shows;
    models_.headings = models.headings;
    setMinimumSize(ContentSize());
    updateGeometry();
    update();
    return;
  }
  // Only panels whose model changed are repainted, so a quiet switcher costs nothing and an
  // alarm costs one panel, not the whole grid.
  bool moved = false;
  for (std::size_t i = 0; i < models.outputs.size(); ++i) {
    if (!(models.outputs[i] == models_.outputs[i])) {
      const QRect before = OutputPanelPixels(static_cast<int>(i));
      moved = moved || models.outputs[i].normal.visible != models_.outputs[i].normal.visible ||
              models.outputs[i].large.visible != models_.outputs[i].large.visible;
      models_.outputs[i] = models.outputs[i];
      update(Grown(before | OutputPanelPixels(static_cast<int>(i))));
    }
  }
  for (std::size_t i = 0; i < models.shows.size(); ++i) {
    if (!(models.shows[i] == models_.shows[i])) {
      const QRect before = ToPixels(models_.shows[i].frame);
      moved = moved || models.shows[i].visible != models_.shows[i].visible;
      models_.shows[i] = models.shows[i];
      update(Grown(before | ToPixels(models.shows[i].frame)));
    }
  }
  if (moved) {
    setMinimumSize(ContentSize());
    updateGeometry();
  }
}

void PanelCanvasWidget::SetStale(bool stale) {
  if (stale != stale_) {
    stale_ = stale;
    update();
  }
}

void PanelCanvasWidget::paintEvent(QPaintEvent* event) {
  QPainter p(this);
  p.setClipRegion(event->region());
  p.setRenderHint(QPainter::Antialiasing);
  p.scale(1.0 / kTwipsPerPixel, 1.0 / kTwipsPerPixel);
  // Against the dirty region itself, not its bounding box: a panel and the alarm lamp far
  // apart must not repaint everything between them.
  const QRegion dirty = event->region();
  auto needed = [&](const Rect& twips) {
    return dirty.intersects(ToPixels(twips).adjusted(-4, -4, 4, 4));
  };

  for (const LabelModel& heading : models_.headings) {
    if (heading.visible && needed(heading.rect)) {
      DrawText(p, Twips(heading.rect), heading.text, PanelFont(165, true), kDimText);
    }
  }

  for (const OutputPanelModel& panel : models_.outputs) {
    if (panel.normal.visible && needed(panel.normal.frame)) {
      const NormalPanelView& v = panel.normal;
      DrawFrame(p, v.frame);
      DrawNumber(p, NumberBox(v, panel.position), panel.position, PanelFont(180, true));
      DrawLamp(p, Inner(v.frame, v.lamp), panel.lamp, false, stale_);
    }
    if (panel.large.visible && needed(panel.large.frame)) {
      const LargePanelView& v = panel.large;
      DrawFrame(p, v.frame);
      DrawNumber(p, NumberBox(v), panel.position, PanelFont(200, true));
      DrawLamp(p, Inner(v.frame, v.lamp), panel.lamp, false, stale_);
      if (panel.silentSeconds >= 0) {
        // Beside the lamp, the only free room of the panel.
        const QRectF beside(
            v.frame.left + v.lamp.left + v.lamp.width + kNumberGap, v.frame.top + v.lamp.top,
            v.frame.width - v.lamp.left - v.lamp.width - 2 * kNumberGap, v.lamp.height);
        DrawText(p, beside, CompactDuration(panel.silentSeconds), PanelFont(170, true, true),
                 stale_ ? kDimText : kSilentText, Qt::AlignRight | Qt::AlignVCenter);
      }
      DrawText(p, Inner(v.frame, v.nameLine), panel.nameLine, PanelFont(180, true, true), kText);
      DrawText(p, Inner(v.frame, v.channelLine), panel.channelLine, PanelFont(170, false, true),
               kDimText);
    }
  }

  for (const ShowPanelModel& show : models_.shows) {
    if (!show.visible || !needed(show.frame)) {
      continue;
    }
    DrawFrame(p, show.frame);
    DrawText(p, Inner(show.frame, show.name), show.nameText, PanelFont(190, true), kText);
    // The output line may take two lines of its box.
    p.setFont(PanelFont(170, false));
    p.setPen(kDimText);
    p.drawText(Inner(show.frame, show.outputs), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
               show.outputsText);
    DrawText(p, Inner(show.frame, show.source), show.sourceText, PanelFont(170, false), kDimText);
    DrawLamp(p, Inner(show.frame, show.indicator), show.indicatorColour, true, stale_);
  }
}

QRect PanelCanvasWidget::NumberPixels(const OutputPanelModel& panel, bool large) {
  const QRectF box = large ? NumberBox(panel.large) : NumberBox(panel.normal, panel.position);
  return QRectF(box.topLeft() / kTwipsPerPixel, box.size() / kTwipsPerPixel).toAlignedRect();
}

int PanelCanvasWidget::OutputPanelAt(const QPoint& point) const {
  for (std::size_t i = 0; i < models_.outputs.size(); ++i) {
    const OutputPanelModel& panel = models_.outputs[i];
    if ((panel.normal.visible && ToPixels(panel.normal.frame).contains(point)) ||
        (panel.large.visible && ToPixels(panel.large.frame).contains(point))) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

int PanelCanvasWidget::ShowPanelAt(const QPoint& point) const {
  for (std::size_t i = 0; i < models_.shows.size(); ++i) {
    if (models_.shows[i].visible && ToPixels(models_.shows[i].frame).contains(point)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

void PanelCanvasWidget::mousePressEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (const int output = OutputPanelAt(at); output >= 0) {
    if (event->button() == Qt::LeftButton) {
      emit outputPanelClicked(output);
    } else if (event->button() == Qt::RightButton) {
      emit outputPanelMenuRequested(output, event->globalPosition().toPoint());
    }
    return;
  }
  if (const int show = ShowPanelAt(at); show >= 0 && event->button() == Qt::LeftButton) {
    emit showPanelClicked(show);
    return;
  }
  QWidget::mousePressEvent(event);
}

bool PanelCanvasWidget::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) {
    return QWidget::event(event);
  }
  auto* help = static_cast<QHelpEvent*>(event);
  QString tip;
  if (const int output = OutputPanelAt(help->pos());
      output >= 0 && models_.outputs[output].normal.visible) {
    const OutputPanelModel& panel = models_.outputs[output];
    tip = panel.toolTip;
    if (panel.silentSeconds >= 0) {
      tip += QStringLiteral("\nSilent for ") + DurationText(panel.silentSeconds);
    }
  } else if (const int show = ShowPanelAt(help->pos()); show >= 0) {
    const ShowPanelModel& panel = models_.shows[show];
    if (ToPixels(Rect{panel.frame.left + panel.outputs.left, panel.frame.top + panel.outputs.top,
                      panel.outputs.width, panel.outputs.height})
            .contains(help->pos())) {
      tip = panel.outputsText;
    }
  }
  if (tip.isEmpty()) {
    QToolTip::hideText();
    event->ignore();
  } else {
    QToolTip::showText(help->globalPos(), tip, this);
  }
  return true;
}

}  // namespace zrn
