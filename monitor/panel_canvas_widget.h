#pragma once

#include <QWidget>

#include "monitor/panel_models.h"

namespace zrn {

// Draws the output panels of both views, the "Status" headings, the show panels and the alarm
// lamp from their models, at 15 twips per logical pixel. Repaints only what changed.
class PanelCanvasWidget final : public QWidget {
  Q_OBJECT

 public:
  explicit PanelCanvasWidget(QWidget* parent = nullptr);

  // Takes the models the core decided and schedules a repaint of what differs.
  void Refresh(const PanelModels& models);
  const PanelModels& Models() const { return models_; }

  // Index of the visible output panel (or show panel) at a point, or -1.
  int OutputPanelAt(const QPoint& point) const;
  int ShowPanelAt(const QPoint& point) const;

  static QRect ToPixels(const Rect& twips);

 signals:
  void outputPanelClicked(int index);
  void outputPanelMenuRequested(int index, const QPoint& globalPos);
  void showPanelClicked(int index);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  QRect OutputPanelPixels(int index) const;
  QSize ContentSize() const;

  PanelModels models_;
};

}  // namespace zrn
