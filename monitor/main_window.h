#pragma once

#include <QMainWindow>

class QAction;
class QLabel;
class QMenu;
class QListWidget;
class QPushButton;
class QScrollArea;

namespace zrn {

class Monitor;
class PanelCanvasWidget;

// The main window: draws what the monitor's state says and hands clicks and menu commands
// back to the monitor. It keeps no state of its own that the program needs.
class MainWindow final : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(Monitor& monitor, QWidget* parent = nullptr);

  PanelCanvasWidget* Canvas() const { return canvas_; }
  QListWidget* History() const { return history_; }
  QPushButton* CancelButton() const { return cancel_; }
  QLabel* StatusText() const { return status_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Refresh();
  void SyncHistory();
  void BuildMenus();
  void ShowPanelMenu(int index, const QPoint& globalPos);
  void OpenShowStatus(int panel);

  Monitor& monitor_;
  QScrollArea* scroll_ = nullptr;
  PanelCanvasWidget* canvas_ = nullptr;
  QListWidget* history_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QLabel* status_ = nullptr;
  QMenu* panelMenu_ = nullptr;
  QAction* enableAction_ = nullptr;
  QSize lastWindowSize_;
};

}  // namespace zrn
