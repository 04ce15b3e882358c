#pragma once

#include <QWidget>

#include "core/panel_models.h"

class QPushButton;

namespace zrn {

// The "Alarm" caption, the alarm relay lamp and the Cancel button, kept together and out of
// the scrolling panel area so they stay in sight however far the panels are scrolled.
class AlarmControlsWidget final : public QWidget {
  Q_OBJECT

 public:
  explicit AlarmControlsWidget(QWidget* parent = nullptr);

  QPushButton* CancelButton() const { return cancel_; }

  // The controls' places in the window as the view specifies them, in pixels.
  QRect DesignedPixels(const WindowModel& window) const;
  // Takes the model; the widget itself is placed by the window.
  void Refresh(const WindowModel& window);
  // Draws the relay lamp as "no information" while the switcher's reports are stale.
  void SetStale(bool stale);

 signals:
  void cancelClicked();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect Local(const Rect& twips) const;

  WindowModel model_;
  bool stale_ = false;
  QPushButton* cancel_ = nullptr;
};

}  // namespace zrn
