#pragma once

#include <QWidget>

#include "core/panel_models.h"

namespace zrn {

// Draws the output panels of both views, the "Status" headings and the show panels from their
// models, at 15 twips per logical pixel, and grows to hold them all (the window scrolls it).
// Repaints only what changed.
class PanelCanvasWidget final : public QWidget {
  Q_OBJECT

 public:
  explicit PanelCanvasWidget(QWidget* parent = nullptr);

  // Takes the models the core decided and schedules a repaint of what differs.
  void Refresh(const PanelModels& models);
  const PanelModels& Models() const { return models_; }
  // Draws every lamp and show indicator as "no information" while the reports are stale.
  void SetStale(bool stale);
  bool Stale() const { return stale_; }

  // Index of the visible output panel (or show panel) at a point, or -1.
  int OutputPanelAt(const QPoint& point) const;
  int ShowPanelAt(const QPoint& point) const;

  static QRect ToPixels(const Rect& twips);
  // Where a panel's position number is drawn, whole, in the normal or the large view.
  static QRect NumberPixels(const OutputPanelModel& panel, bool large);

  QSize sizeHint() const override;

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

  // Only the panels and headings; the window's own controls are drawn by the window.
  PanelModels models_;
  bool stale_ = false;
};

}  // namespace zrn
