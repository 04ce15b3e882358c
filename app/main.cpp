#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>

#include "alerts/alerts.h"
#include "monitor/monitor.h"
#include "storage/logs.h"
#include "ui/broadcast_style.h"
#include "ui/message_box_prompt.h"
#include "window/main_window.h"

namespace {

// Help, version, headless runs and mistyped options must not need a display, so the kind of
// application is chosen before one exists (QApplication aborts without a display). Options that
// QApplication itself takes (-platform, -style...) still choose the window.
bool NeedsNoDisplay(int argc, char** argv) {
  QStringList args;
  for (int i = 0; i < argc; ++i) {
    args << QString::fromLocal8Bit(argv[i]);
  }
  QCommandLineParser probe;
  probe.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  probe.addHelpOption();
  probe.addVersionOption();
  probe.addOption(QCommandLineOption(QStringLiteral("folder"), QString(), QStringLiteral("dir")));
  probe.addOption(QCommandLineOption(QStringLiteral("headless")));
  if (!probe.parse(args)) {
    static const QStringList kWindowOptions = {
        QStringLiteral("platform"),        QStringLiteral("platformpluginpath"),
        QStringLiteral("platformtheme"),   QStringLiteral("plugin"),
        QStringLiteral("qwindowgeometry"), QStringLiteral("qwindowtitle"),
        QStringLiteral("qwindowicon"),     QStringLiteral("reverse"),
        QStringLiteral("session"),         QStringLiteral("style"),
        QStringLiteral("stylesheet"),      QStringLiteral("widgetcount"),
        QStringLiteral("display"),         QStringLiteral("geometry")};
    for (const QString& name : probe.unknownOptionNames()) {
      if (!kWindowOptions.contains(name)) {
        return true;
      }
    }
    return false;
  }
  return probe.isSet(QStringLiteral("headless")) || probe.isSet(QStringLiteral("help")) ||
         probe.isSet(QStringLiteral("help-all")) || probe.isSet(QStringLiteral("version"));
}

// A real write tells more than permission bits (a read-only mount, a root-owned folder).
bool CanWriteIn(const QString& folder) {
  QTemporaryFile probe(folder + QStringLiteral("/.zrn-write-test-XXXXXX"));
  return probe.open();
}

// SIGTERM and SIGINT end the program through the event loop, so shut-down runs as from the menu.
// The handler only writes a byte; the loop reads it.
int signalPipe[2] = {-1, -1};

void OnSignal(int) {
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

std::unique_ptr<QSocketNotifier> EndOnSignals(std::function<void()> end) {
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0) {
    return nullptr;
  }
  auto notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, [end = std::move(end)] {
    char byte = 0;
    [[maybe_unused]] const ssize_t got = ::read(signalPipe[0], &byte, 1);
    end();
  });
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
  return notifier;
}

int Fail(const QString& line) {
  std::fputs(qPrintable(QStringLiteral("zrn-pennaro: ") + line + QLatin1Char('\n')), stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  std::unique_ptr<QCoreApplication> app;
  if (NeedsNoDisplay(argc, argv)) {
    app = std::make_unique<QCoreApplication>(argc, argv);
  } else {
    app = std::make_unique<QApplication>(argc, argv);
  }
  QCoreApplication::setApplicationName(QStringLiteral("zrn-pennaro"));
  QCoreApplication::setApplicationVersion(QStringLiteral(ZRN_VERSION));

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Monitors a broadcast audio routing switcher: routed sources, silence "
                     "alarms, the alarm relay, scheduled events and shows."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption folderOption(
      QStringLiteral("folder"),
      QStringLiteral("Folder of the configuration, data and log files (default: beside the "
                     "program, or the per-user data folder when that is not writable)."),
      QStringLiteral("dir"));
  const QCommandLineOption headlessOption(
      QStringLiteral("headless"),
      QStringLiteral("Run without a window or a display: files, logs, relay, schedule, shows, "
                     "webhook and status endpoint only. SIGTERM or SIGINT ends it."));
  parser.addOption(folderOption);
  parser.addOption(headlessOption);
  parser.process(*app);
  if (!parser.positionalArguments().isEmpty()) {
    return Fail(QStringLiteral("unexpected argument: ") + parser.positionalArguments().first() +
                QStringLiteral("; see --help"));
  }

  QString folder;
  QString notice;
  if (parser.isSet(folderOption)) {
    folder = QDir(parser.value(folderOption)).absolutePath();
    if (!QDir().mkpath(folder) || !CanWriteIn(folder)) {
      return Fail(QStringLiteral("--folder: cannot write in ") + folder);
    }
  } else {
    // Every data and log file lives beside the executable, unless it is installed where the
    // operator may not write.
    folder = QCoreApplication::applicationDirPath();
    if (!CanWriteIn(folder)) {
      const QString beside = folder;
      folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
      if (folder.isEmpty() || !QDir().mkpath(folder) || !CanWriteIn(folder)) {
        return Fail(QStringLiteral("cannot write in %1 nor in the per-user data folder; use "
                                   "--folder")
                        .arg(beside));
      }
      notice = QStringLiteral("Files are kept in %1 (%2 is not writable)")
                   .arg(QDir::toNativeSeparators(folder), QDir::toNativeSeparators(beside));
    }
  }

  zrn::Monitor monitor(folder + QLatin1Char('/'));
  zrn::Alerts alerts(monitor);
  const auto sayWhereFiles = [&] {
    if (!notice.isEmpty()) {
      monitor.Run("Error Starting", [&] { zrn::DisplayMessage(monitor.state(), notice); });
    }
  };

  if (parser.isSet(headlessOption)) {
    const auto ender = EndOnSignals([] { QCoreApplication::quit(); });
    monitor.Start();
    // After the start-up read, so its file folder is known and its errors reach the error log.
    alerts.Start();
    sayWhereFiles();
    const int code = QCoreApplication::exec();
    monitor.Stop();
    return code;
  }

  auto& gui = static_cast<QApplication&>(*app);
  zrn::ApplyBroadcastStyle(gui);
  zrn::MainWindow window(monitor);
  zrn::MessageBoxPrompt prompt(&window);
  monitor.state().prompt = &prompt;
  window.AttachAlerts(alerts);
  // Closing the window shuts the monitor down and closes the other windows.
  const auto ender = EndOnSignals([&] {
    window.close();
    QCoreApplication::quit();
  });
  monitor.Start();
  alerts.Start();
  sayWhereFiles();
  window.show();
  return QApplication::exec();
}
