#include "window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStaticText>
#include <QStatusBar>
#include <QStyledItemDelegate>
#include <algorithm>

#include "alerts/alerts.h"
#include "history/alarm_history.h"
#include "monitor/link_watch.h"
#include "monitor/menu_commands.h"
#include "monitor/monitor.h"
#include "monitor/panel_filter.h"
#include "monitor/setup_commands.h"
#include "shows/show_status.h"
#include "storage/shows_file.h"
#include "ui/about_dialog.h"
#include "ui/alerts_dialog.h"
#include "ui/schedule_dialog.h"
#include "ui/setup_dialog.h"
#include "ui/show_silence_status_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/silence_detect_dialog.h"
#include "window/alarm_controls_widget.h"
#include "window/alarm_history_window.h"
#include "window/desktop_alerts.h"
#include "window/find_bar_widget.h"
#include "window/next_day_window.h"
#include "window/panel_canvas_widget.h"

namespace zrn {

namespace {

// Draws the message list's rows from laid-out text kept per row: a new row scrolls every row
// up, and laying all of them out again on each message kept the program from reading the
// switcher for milliseconds. Rows are single lines, cut at the right edge.
class MessageRowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    if (selected) {
      painter->fillRect(option.rect, option.palette.highlight());
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    if (laidOut_.size() > kMaxKept) {
      laidOut_.clear();
    }
    auto it = laidOut_.find(text);
    if (it == laidOut_.end()) {
      QStaticText row(text);
      row.setTextFormat(Qt::PlainText);
      row.prepare(QTransform(), option.font);
      it = laidOut_.insert(text, row);
    }
    painter->save();
    painter->setClipRect(option.rect);
    painter->setFont(option.font);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    const int margin = option.widget != nullptr
                           ? option.widget->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1
                           : 3;
    const qreal top = option.rect.top() + (option.rect.height() - it->size().height()) / 2.0;
    painter->drawStaticText(QPointF(option.rect.left() + margin, top), *it);
    painter->restore();
  }

 private:
  // Bounded: the rows on screen and those around them.
  static constexpr qsizetype kMaxKept = 1024;
  mutable QHash<QString, QStaticText> laidOut_;
};

}  // namespace

MainWindow::MainWindow(Monitor& monitor, QWidget* parent)
    : QMainWindow(parent), monitor_(monitor), alarms_(std::make_unique<AlarmHistory>()) {
  setWindowTitle(QStringLiteral("ZRN Pennaro"));
  monitor_.state().activityListener = [this](const QDateTime& when, const QString& message) {
    // The log holds everything before this message: it is read back first.
    ReadHistoryBack();
    alarms_->Record(when, message);
  };

  BuildMenus();
  BuildViewMenu();

  // The panels scroll in their own area; the alarm controls and the message list are placed
  // beside and below it, never over it.
  body_ = new QWidget;
  canvas_ = new PanelCanvasWidget;
  body_->setPalette(canvas_->palette());
  body_->setAutoFillBackground(true);
  body_->installEventFilter(this);
  setCentralWidget(body_);

  scroll_ = new QScrollArea(body_);
  scroll_->setObjectName(QStringLiteral("panelArea"));
  scroll_->setWidget(canvas_);
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setPalette(canvas_->palette());

  find_ = new FindBarWidget(body_);
  find_->hide();
  find_->installEventFilter(this);
  connect(find_, &FindBarWidget::filterChanged, this, &MainWindow::Find);

  alarm_ = new AlarmControlsWidget(body_);
  connect(alarm_, &AlarmControlsWidget::cancelClicked, this, [this] { monitor_.CancelAlarm(); });

  history_ = new QListWidget(body_);
  history_->setObjectName(QStringLiteral("lstDisplay"));
  history_->setUniformItemSizes(true);
  history_->setSelectionMode(QAbstractItemView::SingleSelection);
  QFont mono(QStringLiteral("Monospace"));
  mono.setStyleHint(QFont::TypeWriter);
  history_->setFont(mono);
  history_->setItemDelegate(new MessageRowDelegate(history_));

  status_ = new QLabel;
  statusBar()->addWidget(status_, 1);
  notice_ = new QLabel;
  notice_->setObjectName(QStringLiteral("fileNotice"));
  notice_->setStyleSheet(QStringLiteral("color: #ffb020; font-weight: bold;"));
  notice_->hide();
  statusBar()->addPermanentWidget(notice_);

  connect(canvas_, &PanelCanvasWidget::outputPanelClicked, this,
          [this](int index) { monitor_.PanelClicked(index); });
  connect(canvas_, &PanelCanvasWidget::showPanelClicked, this,
          [this](int index) { OpenShowStatus(index); });
  connect(canvas_, &PanelCanvasWidget::outputPanelMenuRequested, this,
          [this](int index, const QPoint& at) { ShowPanelMenu(index, at); });
  connect(&monitor_, &Monitor::changed, this, &MainWindow::Refresh);
  Refresh();
}

void MainWindow::AttachAlerts(Alerts& alerts) {
  auto* action = new QAction(QStringLiteral("&Alerts..."), fileMenu_);
  connect(action, &QAction::triggered, this, [this, &alerts] {
    monitor_.Run("Error in Alerts", [this, &alerts] {
      AlertsDialog dialog(alerts, monitor_.state(), this);
      dialog.exec();
    });
  });
  fileMenu_->insertAction(printAction_, action);
  desktop_ = new DesktopAlerts(alerts, this);
}

MainWindow::~MainWindow() {
  monitor_.state().activityListener = nullptr;
}

NextDayWindow* MainWindow::NextDay() const {
  return nextDay_;
}

AlarmHistoryWindow* MainWindow::AlarmHistoryView() const {
  return alarmHistory_;
}

void MainWindow::ReadHistoryBack() {
  const State& s = monitor_.state();
  if (historyRead_ || s.AppPath.isEmpty()) {
    return;
  }
  historyRead_ = true;
  alarms_->ReadBack(s.AppPath, Now(s));
}

void MainWindow::BuildViewMenu() {
  // Between File and Help, where operators look for it.
  QMenu* view = new QMenu(QStringLiteral("&View"), this);
  const QList<QAction*> menus = menuBar()->actions();
  menuBar()->insertMenu(menus.isEmpty() ? nullptr : menus.back(), view);
  QAction* find = view->addAction(QStringLiteral("&Find Output"), this, [this] { find_->Open(); });
  find->setShortcut(QKeySequence::Find);
  find->setShortcutContext(Qt::WindowShortcut);
  view->addAction(QStringLiteral("&Next 24 Hours"), this, [this] {
    if (nextDay_ == nullptr) {
      nextDay_ = new NextDayWindow(monitor_, this);
    }
    nextDay_->show();
    nextDay_->raise();
    nextDay_->Refresh();
  });
  view->addAction(QStringLiteral("&Alarm History"), this, [this] {
    ReadHistoryBack();
    if (alarmHistory_ == nullptr) {
      alarmHistory_ = new AlarmHistoryWindow(monitor_, *alarms_, this);
    }
    alarmHistory_->show();
    alarmHistory_->raise();
    alarmHistory_->Refresh();
  });
}

void MainWindow::Find(const QString& text, bool onlyAlarms) {
  monitor_.Run("Error Finding Output", [&] { SetPanelFilter(monitor_.state(), text, onlyAlarms); });
  // What was found closes up from the first place: it is shown from the top.
  scroll_->horizontalScrollBar()->setValue(0);
  scroll_->verticalScrollBar()->setValue(0);
}

QPushButton* MainWindow::CancelButton() const {
  return alarm_->CancelButton();
}

void MainWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  fileMenu_ = file;
  file->addAction(QStringLiteral("Set&up"), this, [this] {
    monitor_.Run("Error in Setup", [this] {
      State& s = monitor_.state();
      s.DialogAccepted = false;
      SetupDialog dialog(s, DefaultSetupEditors(), this);
      dialog.exec();
      if (s.DialogAccepted) {
        SetupAccepted(s);
      }
    });
  });
  file->addAction(QStringLiteral("Sho&w Setup"), this, [this] {
    monitor_.Run("Error in Show Setup", [this] {
      State& s = monitor_.state();
      s.SelectedShow = 0;
      ShowsDialog dialog(s, this);
      dialog.exec();
    });
  });
  printAction_ = file->addAction(QStringLiteral("&Print Show List to Text File"), this, [this] {
    monitor_.Run("Error Saving Shows to text file", [this] { PrintShows(monitor_.state()); });
  });
  file->addAction(QStringLiteral("Toggle &View"), this, [this] { monitor_.ToggleView(); });
  file->addSeparator();
  file->addAction(QStringLiteral("E&xit"), this, &QWidget::close);

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  help->addAction(QStringLiteral("A&bout"), this, [this] {
    AboutDialog dialog(monitor_.state(), this);
    dialog.exec();
  });

  panelMenu_ = new QMenu(QStringLiteral("Configure"), this);
  enableAction_ = panelMenu_->addAction(QStringLiteral("Disable"), this, [this] {
    monitor_.Run("Error Changing Monitoring", [this] { mnuEnable_Click(monitor_.state()); });
  });
  panelMenu_->addAction(QStringLiteral("Configure Schedule"), this, [this] {
    monitor_.Run("Error Configuring Schedule", [this] {
      State& s = monitor_.state();
      if (SelectedChannel(s) == kNone) {
        return;
      }
      s.DialogAccepted = false;
      ScheduleDialog dialog(s, this);
      dialog.exec();
      ScheduleAccepted(s);
    });
  });
  panelMenu_->addAction(QStringLiteral("Configure Silence Detect"), this, [this] {
    monitor_.Run("Error Configuring Silence Detect", [this] {
      State& s = monitor_.state();
      const int channel = SelectedChannel(s);
      if (channel == kNone) {
        return;
      }
      SilenceDetectDialog dialog(s, channel - 1, this);
      dialog.exec();
    });
  });
}

void MainWindow::OpenShowStatus(int panel) {
  monitor_.Run("Error Opening Show Status", [this, panel] {
    State& s = monitor_.state();
    if (!SelectShowPanel(s, panel)) {
      return;
    }
    ShowSilenceStatusDialog dialog(s, s.SelectedShow, this);
    connect(&monitor_, &Monitor::changed, &dialog, &ShowSilenceStatusDialog::Refresh);
    dialog.exec();
  });
}

void MainWindow::ShowPanelMenu(int index, const QPoint& globalPos) {
  monitor_.PanelMenuRequested(index);
  enableAction_->setText(EnableMenuCaption(monitor_.state()));
  panelMenu_->popup(globalPos);
}

void MainWindow::Refresh() {
  ReadHistoryBack();
  const State& s = monitor_.state();
  const PanelModels& models = s.panels;
  canvas_->Refresh(models);
  canvas_->SetStale(ReportsStale(s));
  alarm_->Refresh(models.window);
  alarm_->SetStale(ReportsStale(s));
  history_->setVisible(models.window.messageListVisible);
  SyncHistory();
  PlaceControls();

  if (const QString line = StatusLine(s); status_->text() != line) {
    status_->setText(line);
  }
  if (notice_->text() != s.FileNotice) {
    notice_->setText(s.FileNotice);
    notice_->setVisible(!s.FileNotice.isEmpty());
  }
  // The window follows the view's size when the view changes, not on every refresh, so the
  // operator's own resizing stays.
  const QSize size(models.window.width / 15, models.window.height / 15);
  if (size != lastWindowSize_) {
    lastWindowSize_ = size;
    FollowViewSize(size);
  }
}

QSize FittedWindowSize(const QSize& wanted, const QRect& available, const QMargins& frame) {
  const int width = available.width() - frame.left() - frame.right();
  const int height = available.height() - frame.top() - frame.bottom();
  return QSize(std::max(1, std::min(wanted.width(), width)),
               std::max(1, std::min(wanted.height(), height)));
}

void MainWindow::FollowViewSize(const QSize& size) {
  const QScreen* screen = this->screen();
  if (screen == nullptr) {
    resize(size);
    return;
  }
  const QRect available = screen->availableGeometry();
  // Before the window is first shown its frame is not known; a title bar's worth is kept free.
  const QMargins frame = isVisible() && frameGeometry() != geometry()
                             ? QMargins(geometry().left() - frameGeometry().left(),
                                        geometry().top() - frameGeometry().top(),
                                        frameGeometry().right() - geometry().right(),
                                        frameGeometry().bottom() - geometry().bottom())
                             : QMargins(4, 32, 4, 4);
  resize(FittedWindowSize(size, available, frame));
  // A window grown past the screen's edge comes back onto it.
  if (isVisible()) {
    const QRect outer = frameGeometry();
    const int left = std::clamp(outer.left(), available.left(),
                                std::max(available.left(), available.right() - outer.width() + 1));
    const int top = std::clamp(outer.top(), available.top(),
                               std::max(available.top(), available.bottom() - outer.height() + 1));
    if (left != outer.left() || top != outer.top()) {
      move(left, top);
    }
  }
}

void MainWindow::PlaceControls() {
  // Between the panel area and the controls beside and below it.
  constexpr int kGap = 4;
  const WindowModel& w = monitor_.state().panels.window;
  const QSize area = body_->size();
  const QRect designed = alarm_->DesignedPixels(w);
  const QRect list = PanelCanvasWidget::ToPixels(w.messageList);

  // The find box, while open, takes a strip above the panels.
  const int findHeight = find_->isVisible() ? find_->sizeHint().height() : 0;
  if (findHeight > 0 && find_->geometry() != QRect(0, 0, area.width(), findHeight)) {
    find_->setGeometry(0, 0, area.width(), findHeight);
  }
  const int panelBottom =
      (w.messageListVisible ? std::max(0, list.top() - kGap) : area.height()) - findHeight;
  const QSize content = canvas_->minimumSize();
  const int bar = scroll_->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, scroll_);
  // The alarm controls stand where the view puts them, moved right when the panels and their
  // scroll bar need the room and left when the window is narrower than the view.
  const int needed = content.width() + (content.height() > panelBottom ? bar : 0) + kGap;
  int columnLeft = std::max(designed.left(), needed);
  columnLeft = std::max(0, std::min(columnLeft, area.width() - designed.width() - kGap));
  const QRect column(QPoint(columnLeft, designed.top()), designed.size());
  if (alarm_->geometry() != column) {
    alarm_->setGeometry(column);
  }
  // The area is no larger than the panels, so its scroll bars stay beside them rather than
  // out by the alarm controls or at the foot of the window.
  const int widest = std::max(0, columnLeft - kGap);
  bool vertical = content.height() > panelBottom;
  const bool horizontal = content.width() + (vertical ? bar : 0) > widest;
  vertical = vertical || content.height() + (horizontal ? bar : 0) > panelBottom;
  const QRect panels(0, findHeight, std::min(widest, content.width() + (vertical ? bar : 0)),
                     std::min(panelBottom, content.height() + (horizontal ? bar : 0)));
  if (scroll_->geometry() != panels) {
    scroll_->setGeometry(panels);
  }
  // The list keeps its designed place and shrinks with a window smaller than the view.
  constexpr int kFewestRowsHigh = 48;
  const QRect placed(
      list.left(), list.top(),
      std::max(0, std::min(list.width(), area.width() - list.left() - kGap)),
      std::max(kFewestRowsHigh, std::min(list.height(), area.height() - list.top() - kGap)));
  if (history_->geometry() != placed) {
    history_->setGeometry(placed);
  }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if ((watched == body_ && event->type() == QEvent::Resize) ||
      (watched == find_ && (event->type() == QEvent::Show || event->type() == QEvent::Hide))) {
    PlaceControls();
  }
  return QMainWindow::eventFilter(watched, event);
}

// The rows only grow at the end and drop off the front, so the list follows by editing both
// ends instead of being rebuilt.
void MainWindow::SyncHistory() {
  const QStringList& rows = monitor_.state().MessageRows;
  const int first = rows.isEmpty() ? -1 : 0;
  while (history_->count() > 0 && (first < 0 || history_->item(0)->text() != rows[0])) {
    delete history_->takeItem(0);
  }
  bool added = false;
  for (qsizetype i = history_->count(); i < rows.size(); ++i) {
    history_->addItem(rows[i]);
    added = true;
  }
  if (history_->count() != rows.size()) {
    history_->clear();
    history_->addItems(rows);
    added = true;
  }
  if (added) {
    history_->scrollToBottom();
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  monitor_.Stop();
  // Every other window of the program goes with the main window, newest first.
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    if (*it != this && (*it)->isVisible()) {
      (*it)->close();
    }
  }
  event->accept();
}

}  // namespace zrn
