// Writes the README's screenshots: the main window in both views with 16 and with 300 watched
// outputs on a 1280x720 screen, against the switcher simulator, and every dialog.
//
//   zrn-screenshots <folder> [<demo folder>]
//
// The demo folder (scripts/seed-demo ... show) gives the dialogs its schedule and its show on
// air all day.

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>
#include <functional>
#include <memory>
#include <utility>

#include "alerts/alerts.h"
#include "history/alarm_history.h"
#include "monitor/monitor.h"
#include "sim/sim_switcher.h"
#include "storage/logs.h"
#include "storage/shows_file.h"
#include "ui/about_dialog.h"
#include "ui/alerts_dialog.h"
#include "ui/broadcast_style.h"
#include "ui/channel_pair_dialog.h"
#include "ui/channel_select_dialog.h"
#include "ui/ignore_window_dialog.h"
#include "ui/schedule_dialog.h"
#include "ui/setup_dialog.h"
#include "ui/show_silence_status_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/silence_detect_dialog.h"
#include "window/alarm_history_window.h"
#include "window/find_bar_widget.h"
#include "window/main_window.h"
#include "window/next_day_window.h"

namespace {

constexpr char kScreen[] = R"({"screens": [{"name": "Operator", "x": 0, "y": 0, "width": 1280,
  "height": 720, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

int failures = 0;

void Linked(const zrn::Monitor& monitor) {
  if (!QTest::qWaitFor([&] { return monitor.state().linkState.ExchangeComplete; }, 10000)) {
    std::fprintf(stderr, "zrn-screenshots: the monitor did not finish its start-up exchange\n");
    ++failures;
  }
}

void Save(const QPixmap& shot, const QString& path) {
  if (shot.isNull() || !shot.save(path)) {
    std::fprintf(stderr, "zrn-screenshots: could not write %s\n", qPrintable(path));
    ++failures;
    return;
  }
  std::printf("%s\n", qPrintable(path));
}

void WriteConfiguration(const QString& folder, quint16 port, int outputs, const char* view,
                        const char* mode = "Output") {
  QString ini = QStringLiteral(
                    "[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP Port=%1\r\n"
                    "Maximum Log File Size=5000\r\nMaximum Display=100\r\nAlarm Relay=3\r\n"
                    "Default View=%2\r\nProgram Mode=%4\r\nOutput Count=%3\r\n")
                    .arg(port)
                    .arg(QLatin1String(view))
                    .arg(outputs)
                    .arg(QLatin1String(mode));
  for (int n = 1; n <= outputs; ++n) {
    ini += QStringLiteral(
               "[OUTPUT%1]\r\nOutput=%2\r\nDisplay Options=%3\r\nCustom Label=Studio %1\r\n"
               "Event Count=0\r\n")
               .arg(n)
               .arg((n - 1) % 256 + 1)
               .arg(n % 4 == 0 ? 2 : 0);
  }
  QFile file(folder + QStringLiteral("/zrnconfig.ini"));
  if (file.open(QIODevice::WriteOnly)) {
    file.write(ini.toLatin1());
  }
}

// One main window against the simulator: a few outputs silent, one of them acknowledged.
void ShootWindow(zrn::sim::SimSwitcher& sim, const QString& out, int outputs, const char* view) {
  QTemporaryDir folder;
  WriteConfiguration(folder.path(), sim.Port(), outputs, view);
  zrn::Monitor monitor(folder.path() + QLatin1Char('/'));
  zrn::MainWindow window(monitor);
  monitor.Start();
  window.show();
  Linked(monitor);
  const QList<int> silent = outputs > 200 ? QList<int>{5, 40, 149, 287} : QList<int>{5, 11};
  for (const int output : silent) {
    sim.ForceOutput((output - 1) % 256, false);
  }
  QTest::qWait(3500);
  monitor.PanelClicked(silent.first() - 1);
  QTest::qWait(200);
  const QString name = QStringLiteral("%1/%2-%3.png").arg(out, QString::fromLatin1(view).toLower());
  Save(window.grab(), name.arg(outputs));
  if (outputs > 200) {
    QScrollBar* bar = window.PanelArea()->verticalScrollBar();
    bar->setValue(bar->maximum());
    QTest::qWait(100);
    Save(window.grab(), name.arg(QStringLiteral("%1-scrolled").arg(outputs)));
  }
  for (const int output : silent) {
    sim.ForceOutput((output - 1) % 256, std::nullopt);
  }
  monitor.Stop();
  // The next window starts on a quiet switcher.
  QTest::qWait(1500);
}

// A day of activity in the log, written as the program writes it, for the history to read back.
void SeedActivityLog(const QString& folder) {
  zrn::ManualClock clock;
  zrn::State s;
  s.AppPath = folder + QLatin1Char('/');
  s.clock = &clock;
  const QDateTime now = QDateTime::currentDateTime();
  const struct {
    int minutesAgo;
    const char* line;
  } lines[] = {
      {1380, "TX 3     [0003] Silence Alarm Status ON!"},
      {1372, "TX 3     [0003] Loss Alarm Canceled - User"},
      {1351, "TX 3     [0003] Silence Alarm Status OFF!"},
      {1200, "Server Module Not Connected"},
      {1186, "Server Module Connected"},
      {900, "TX 9     [0009] Monitoring disabled."},
      {560, "TX 9     [0009] Monitoring enabled."},
      {420, "TX 7     [0007] Silence Alarm Status ON!"},
      {405, "Loss Alarm Report Canceled"},
      {371, "TX 7     [0007] Silence Alarm Status OFF!"},
      {240, "Drive Time Silence Alarm Status ON!"},
      {226, "Drive Time Silence Alarm Status OFF!"},
      {95, "TX 12    [0012] Silence Alarm Status ON!"},
      {61, "TX 12    [0012] Silence Alarm Status OFF!"},
  };
  for (const auto& l : lines) {
    clock.Set(now.addSecs(-60 * l.minutesAgo));
    zrn::DisplayMessage(s, QString::fromLatin1(l.line));
  }
}

void Trigger(zrn::MainWindow& window, const QString& caption) {
  for (QAction* action : window.findChildren<QAction*>()) {
    if (action->text() == caption) {
      action->trigger();
      return;
    }
  }
  std::fprintf(stderr, "zrn-screenshots: no menu item %s\n", qPrintable(caption));
  ++failures;
}

// The windows of the View menu, the find box, how long outputs have been silent, and the lamps
// of a lost link.
void ShootViewWindows(zrn::sim::SimSwitcher& sim, const QString& out) {
  QTemporaryDir folder;
  WriteConfiguration(folder.path(), sim.Port(), 16, "Normal");
  SeedActivityLog(folder.path());
  zrn::Monitor monitor(folder.path() + QLatin1Char('/'));
  zrn::MainWindow window(monitor);
  monitor.Start();
  window.show();
  Linked(monitor);
  for (const int output : {5, 11}) {
    sim.ForceOutput(output - 1, false);
  }
  QTest::qWait(3500);
  monitor.PanelClicked(4);
  // Long enough for the silences to have counted some seconds.
  QTest::qWait(5000);
  monitor.ToggleView();
  QTest::qWait(600);
  Save(window.grab(), out + QStringLiteral("/large-16-silent-for.png"));
  monitor.ToggleView();
  QTest::qWait(300);

  // A schedule around the clock for the next 24 hours.
  zrn::State& s = monitor.state();
  const auto event = [](const char* time, bool on, qint16 source = zrn::kNone,
                        const char* label = nullptr) {
    zrn::ScheduledEvent e;
    e.Time = QString::fromLatin1(time);
    e.Days = 0x7F;
    e.Active = on;
    if (source != zrn::kNone) {
      e.Connect = true;
      e.Source = source;
    }
    if (label != nullptr) {
      e.DisplayOption = 2;
      e.Label = QString::fromLatin1(label).leftJustified(12);
    }
    return e;
  };
  const std::vector<std::vector<zrn::ScheduledEvent>> schedules = {
      {event("01:00:00", false), event("05:30:00", true)},
      {event("01:00:00", false), event("05:30:00", true, 3, "Morning")},
      {event("06:00:00", true, 7, "Breakfast"), event("09:00:00", true, 8, "Midday")},
      {event("22:00:00", false), event("06:30:00", true)},
  };
  for (std::size_t i = 0; i < schedules.size(); ++i) {
    s.Outputs[i].Events = schedules[i];
    s.Outputs[i].EventCount = static_cast<qint16>(schedules[i].size());
  }
  Trigger(window, QStringLiteral("&Next 24 Hours"));
  QTest::qWait(300);
  if (zrn::NextDayWindow* next = window.NextDay()) {
    Save(next->grab(), out + QStringLiteral("/next-24-hours.png"));
    next->close();
  }

  Trigger(window, QStringLiteral("&Alarm History"));
  QTest::qWait(300);
  if (zrn::AlarmHistoryWindow* history = window.AlarmHistoryView()) {
    Save(history->grab(), out + QStringLiteral("/alarm-history.png"));
    history->close();
  }

  Trigger(window, QStringLiteral("&Find Output"));
  window.FindBar()->Text()->setText(QStringLiteral("TX 1"));
  QTest::qWait(300);
  Save(window.grab(), out + QStringLiteral("/find-output.png"));
  window.FindBar()->Text()->clear();
  window.FindBar()->hide();
  QTest::qWait(300);

  // The moment the link is lost, before the poll timer connects again.
  sim.DropConnections();
  if (QTest::qWaitFor([&] { return !monitor.state().Connected; }, 5000)) {
    Save(window.grab(), out + QStringLiteral("/stale-16.png"));
  } else {
    std::fprintf(stderr, "zrn-screenshots: the link was not seen lost\n");
    ++failures;
  }
  for (const int output : {5, 11}) {
    sim.ForceOutput(output - 1, std::nullopt);
  }
  Linked(monitor);
  monitor.Stop();
  QTest::qWait(1500);
}

// Builds a dialog of the given kind on the state as it stands now and shoots it.
template <class Dialog, class... Args>
void ShootNew(const std::function<void(const char*, QDialog&)>& shoot, const char* file,
              Args&&... args) {
  Dialog dialog(std::forward<Args>(args)...);
  shoot(file, dialog);
}

void ShootDialogs(zrn::sim::SimSwitcher& sim, const QString& out, const QString& demo) {
  QTemporaryDir folder;
  const bool seeded = !demo.isEmpty();
  WriteConfiguration(folder.path(), sim.Port(), 16, "Normal", seeded ? "Show" : "Output");
  for (const char* file : {"ZRNEvents.dat", "ZRNShows.dat"}) {
    if (seeded) {
      QFile::copy(demo + QLatin1Char('/') + QLatin1String(file),
                  folder.path() + QLatin1Char('/') + QLatin1String(file));
    }
  }
  zrn::Monitor monitor(folder.path() + QLatin1Char('/'));
  zrn::MainWindow window(monitor);
  monitor.Start();
  window.show();
  Linked(monitor);
  // The show goes on air at the next passes of the poll timer.
  QTest::qWait(2000);
  if (seeded) {
    Save(window.grab(), out + QStringLiteral("/show-mode-16.png"));
  }
  zrn::State& s = monitor.state();
  s.SelectedOutput = 1;
  s.SelectedShow = 0;

  const auto shoot = [&](const char* file, QDialog& dialog) {
    dialog.show();
    QTest::qWait(100);
    Save(dialog.grab(), out + QLatin1Char('/') + QLatin1String(file));
    dialog.hide();
  };
  {
    // Setup as it looks in output mode, with the watched outputs.
    const qint16 mode = s.ProgramMode;
    s.ProgramMode = 0;
    zrn::SetupDialog dialog(s);
    s.ProgramMode = mode;
    shoot("setup-dialog.png", dialog);
  }
  ShootNew<zrn::ScheduleDialog>(shoot, "schedule-dialog.png", s);
  ShootNew<zrn::SilenceDetectDialog>(shoot, "silence-detect-dialog.png", s, 0);
  ShootNew<zrn::ShowsDialog>(shoot, "shows-dialog.png", s);
  s.ChannelSelectMode = 3;
  ShootNew<zrn::ChannelSelectDialog>(shoot, "channel-select-dialog.png", s);
  // The channel pair and ignore window editors work on the show editor's copy of the shows.
  s.EditShows = s.Shows;
  if (!s.EditShows.empty()) {
    s.EditShows[0].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:05:00")},
                                    {QStringLiteral("17:59:30"), QStringLiteral("18:00:30")}};
    s.EditShows[0].IgnoreCount = 2;
  }
  s.ChannelSelectMode = 1;
  ShootNew<zrn::ChannelPairDialog>(shoot, "channel-pair-dialog.png", s);
  ShootNew<zrn::IgnoreWindowDialog>(shoot, "ignore-window-dialog.png", s);
  ShootNew<zrn::ShowSilenceStatusDialog>(shoot, "show-silence-status-dialog.png", s, 0);
  ShootNew<zrn::AboutDialog>(shoot, "about-dialog.png", s);
  {
    // Never started: the defaults an absent ZRNAlerts.ini means, and no port taken.
    zrn::Alerts alerts(monitor);
    zrn::AlertsDialog dialog(alerts, s);
    shoot("alerts-dialog.png", dialog);
  }
  monitor.Stop();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::fprintf(stderr, "usage: zrn-screenshots <folder> [<demo folder>]\n");
    return 2;
  }
  // A screen of the size operators' smaller monitors have, whatever this machine has.
  QTemporaryDir scratch;
  const QString screen = scratch.path() + QStringLiteral("/screen.json");
  QFile screenFile(screen);
  if (!screenFile.open(QIODevice::WriteOnly) || screenFile.write(kScreen) < 0) {
    std::fprintf(stderr, "zrn-screenshots: cannot write the screen description\n");
    return 1;
  }
  screenFile.close();
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.toLocal8Bit());
  QApplication app(argc, argv);
  zrn::ApplyBroadcastStyle(app);

  const QString out = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
  QDir().mkpath(out);
  zrn::sim::SimOptions options;
  options.detectSeconds = 1;
  zrn::sim::SimSwitcher sim(options);
  if (!sim.Listen(QHostAddress::LocalHost, 0)) {
    std::fprintf(stderr, "zrn-screenshots: the simulator cannot listen\n");
    return 1;
  }
  for (const int outputs : {16, 300}) {
    for (const char* view : {"Normal", "Large"}) {
      ShootWindow(sim, out, outputs, view);
    }
  }
  ShootViewWindows(sim, out);
  ShootDialogs(sim, out,
               argc > 2 ? QDir(QString::fromLocal8Bit(argv[2])).absolutePath() : QString());
  return failures == 0 ? 0 : 1;
}
