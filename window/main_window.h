#pragma once

#include <QMainWindow>
#include <QPointer>
#include <memory>

class QAction;
class QLabel;
class QMenu;
class QListWidget;
class QPushButton;
class QScrollArea;

namespace zrn {

class AlarmControlsWidget;
class Alerts;
class DesktopAlerts;
class AlarmHistory;
class AlarmHistoryWindow;
class FindBarWidget;
class Monitor;
class NextDayWindow;
class PanelCanvasWidget;

// The size the window opens at: the view's own where the screen's free area holds it with the
// window's frame, otherwise as much of that area as there is.
QSize FittedWindowSize(const QSize& wanted, const QRect& available, const QMargins& frame);

// The main window: draws what the monitor's state says and hands clicks and menu commands
// back to the monitor. It keeps no state of its own that the program needs.
class MainWindow final : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(Monitor& monitor, QWidget* parent = nullptr);
  ~MainWindow() override;

  PanelCanvasWidget* Canvas() const { return canvas_; }
  // The scrolling area that holds the panels.
  QScrollArea* PanelArea() const { return scroll_; }
  AlarmControlsWidget* AlarmControls() const { return alarm_; }
  QListWidget* History() const { return history_; }
  QPushButton* CancelButton() const;
  QLabel* StatusText() const { return status_; }
  // Files the program could not use, beside the link state.
  QLabel* FileNotice() const { return notice_; }
  // Adds File > Alerts... and the desktop's alerts (tray, notifications, title, tone).
  void AttachAlerts(Alerts& alerts);
  DesktopAlerts* Desktop() const { return desktop_; }
  // The find box above the panels (Ctrl+F).
  FindBarWidget* FindBar() const { return find_; }
  // The alarm history kept since start-up, read back from the activity log first.
  AlarmHistory& Alarms() const { return *alarms_; }
  // The windows of the View menu, once opened.
  NextDayWindow* NextDay() const;
  AlarmHistoryWindow* AlarmHistoryView() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Refresh();
  void PlaceControls();
  void FollowViewSize(const QSize& size);
  void SyncHistory();
  void BuildMenus();
  void ShowPanelMenu(int index, const QPoint& globalPos);
  void OpenShowStatus(int panel);
  void BuildViewMenu();
  void Find(const QString& text, bool onlyAlarms);
  void ReadHistoryBack();

  Monitor& monitor_;
  QWidget* body_ = nullptr;
  QScrollArea* scroll_ = nullptr;
  PanelCanvasWidget* canvas_ = nullptr;
  AlarmControlsWidget* alarm_ = nullptr;
  QListWidget* history_ = nullptr;
  QLabel* status_ = nullptr;
  QLabel* notice_ = nullptr;
  QMenu* fileMenu_ = nullptr;
  QAction* printAction_ = nullptr;
  DesktopAlerts* desktop_ = nullptr;
  QMenu* panelMenu_ = nullptr;
  QAction* enableAction_ = nullptr;
  QSize lastWindowSize_;
  FindBarWidget* find_ = nullptr;
  std::unique_ptr<AlarmHistory> alarms_;
  bool historyRead_ = false;
  QPointer<NextDayWindow> nextDay_;
  QPointer<AlarmHistoryWindow> alarmHistory_;
};

}  // namespace zrn
