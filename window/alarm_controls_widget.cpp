#include "window/alarm_controls_widget.h"

#include <QPainter>
#include <QPushButton>

#include "window/panel_canvas_widget.h"

namespace zrn {

namespace {

const QColor kText(0xec, 0xef, 0xf1);
const QColor kLampEdge(0x0b, 0x0d, 0x0f);
// As the panel lamps of a stale report: dim and hatched.
const QColor kStaleFill(0x4a, 0x50, 0x56);
const QColor kStaleHatch(0x8a, 0x92, 0x99);

}  // namespace

AlarmControlsWidget::AlarmControlsWidget(QWidget* parent) : QWidget(parent) {
  cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
  cancel_->setToolTip(QStringLiteral("Cancel Alarm"));
  connect(cancel_, &QPushButton::clicked, this, &AlarmControlsWidget::cancelClicked);
  Refresh(model_);
}

QRect AlarmControlsWidget::DesignedPixels(const WindowModel& window) const {
  return PanelCanvasWidget::ToPixels(window.alarmCaption) |
         PanelCanvasWidget::ToPixels(window.alarmLamp) |
         PanelCanvasWidget::ToPixels(window.cancelButton);
}

QRect AlarmControlsWidget::Local(const Rect& twips) const {
  return PanelCanvasWidget::ToPixels(twips).translated(-DesignedPixels(model_).topLeft());
}

void AlarmControlsWidget::Refresh(const WindowModel& window) {
  const bool moved = window.alarmCaption != model_.alarmCaption ||
                     window.alarmLamp != model_.alarmLamp ||
                     window.cancelButton != model_.cancelButton;
  const bool recoloured = !(window.alarmLampColour == model_.alarmLampColour);
  model_ = window;
  if (moved || cancel_->geometry() != Local(model_.cancelButton)) {
    cancel_->setGeometry(Local(model_.cancelButton));
    update();
  } else if (recoloured) {
    update(Local(model_.alarmLamp).adjusted(-2, -2, 2, 2));
  }
}

void AlarmControlsWidget::SetStale(bool stale) {
  if (stale != stale_) {
    stale_ = stale;
    update(Local(model_.alarmLamp).adjusted(-2, -2, 2, 2));
  }
}

void AlarmControlsWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  QFont font = p.font();
  font.setPixelSize(12);
  font.setBold(true);
  p.setFont(font);
  p.setPen(kText);
  p.drawText(Local(model_.alarmCaption), Qt::AlignCenter | Qt::TextSingleLine,
             QStringLiteral("Alarm"));
  const Rgb& c = model_.alarmLampColour;
  p.setPen(QPen(kLampEdge, 1.3));
  const QRectF lamp = QRectF(Local(model_.alarmLamp)).adjusted(0.5, 0.5, -0.5, -0.5);
  p.setBrush(stale_ ? kStaleFill : QColor(c.red, c.green, c.blue));
  p.drawRoundedRect(lamp, 1.7, 1.7);
  if (stale_) {
    p.setPen(Qt::NoPen);
    p.setBrush(QBrush(kStaleHatch, Qt::BDiagPattern));
    p.drawRoundedRect(lamp, 1.7, 1.7);
  }
}

}  // namespace zrn
