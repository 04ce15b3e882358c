// The monitor as it runs: the switcher simulator in its own process, the monitor and its main
// window (offscreen) in this one, over loopback. Prints one "key value" line per figure:
//
//   loopback_rtt_*        round trip of 9 bytes between two plain sockets on loopback, back to
//                         back; loopback_rest_rtt_* with 20 ms of sleep before each
//   first_paint_ms        start of a monitor process (this program again, building the window
//                         as zrn-pennaro does) to its first paint once the start-up exchange
//                         with a 4096 x 4096 switcher is complete, 4096 watched outputs
//   exchange_4096_ms      start-up exchange with a 4096 x 4096 switcher, 4096 watched outputs
//   latch_*_ms            silence change written by the simulator to the relay latch it reads
//                         back (from the simulator's microsecond trace), each change made
//                         with the monitor at rest (its window painted, 20 ms after the last);
//                         4096 x 4096 switcher, 4096 watched outputs
//   busy_latch_*_ms       the same with each change made as soon as the last was handled, so
//                         the report often arrives while the window is still painting
//   burst_*               100,000 status reports in one write: time until all are handled, and
//                         the longest the window's event loop went without a turn meanwhile
//   alerts_off_latch_*    at-rest latency again with the alerts attached and the status
//                         endpoint off, in blocks taken in turn with
//   alerts_scraped_latch_* the endpoint on and /metrics scraped ten times a second from
//                         another thread, as Prometheus would; alerts_scrapes is their count
//
// Usage: live_bench [CHANGES]   (default 1000 silence changes of each kind)
//        live_bench --first-paint FOLDER   (the monitor process timed by first_paint_ms)
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "alerts/alerts.h"
#include "monitor/monitor.h"
#include "ui/broadcast_style.h"
#include "window/main_window.h"

namespace {

class Sim {
 public:
  bool Start(quint16 port, const QStringList& extra) {
    process_.setProgram(QCoreApplication::applicationDirPath() +
                        QStringLiteral("/zrn-switcher-sim"));
    process_.setArguments(QStringList{QStringLiteral("--port"), QString::number(port)} + extra);
    process_.start();
    return process_.waitForStarted(5000) && Command(QStringLiteral("status")).startsWith("ok");
  }
  // Sends a control line and, unless told not to wait, returns its reply.
  QString Command(const QString& line, bool wait = true) {
    process_.write((line + QLatin1Char('\n')).toUtf8());
    if (!wait) {
      return QString();
    }
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 10000) {
      while (process_.canReadLine()) {
        const QString reply = QString::fromUtf8(process_.readLine()).trimmed();
        if (reply.startsWith(QStringLiteral("ok")) || reply.startsWith(QStringLiteral("error"))) {
          return reply;
        }
      }
      QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
      process_.waitForReadyRead(1);
    }
    return QString();
  }
  // Drops the replies to commands sent without waiting.
  void DiscardReplies() { process_.readAllStandardOutput(); }
  ~Sim() {
    process_.kill();
    process_.waitForFinished(3000);
  }

 private:
  QProcess process_;
};

bool WaitFor(const std::function<bool()>& done, int ms) {
  QElapsedTimer waited;
  waited.start();
  while (!done()) {
    if (waited.elapsed() > ms) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
  }
  return true;
}

quint16 FreePort() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost);
  return probe.serverPort();
}

// Microseconds since the epoch of a trace line "yyyy-MM-dd HH:mm:ss.zzzzzz ...".
qint64 Stamp(const QString& line) {
  const QDateTime t = QDateTime::fromString(line.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
  return t.toMSecsSinceEpoch() * 1000 + line.mid(20, 6).toLongLong();
}

double Quantile(std::vector<double> values, double q) {
  std::sort(values.begin(), values.end());
  return values[static_cast<size_t>(q * static_cast<double>(values.size() - 1))];
}

void Print(const char* key, double value) {
  std::printf("%s %.3f\n", key, value);
}

// A configuration watching outputs 1..watched, with relay 1 as the alarm relay.
void WriteConfiguration(const QString& folder, quint16 port, int watched) {
  QByteArray ini = QStringLiteral(
                       "[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP Port=%1\r\n"
                       "Alarm Relay=1\r\nMaximum Display=100\r\nOutput Count=%2\r\n")
                       .arg(port)
                       .arg(watched)
                       .toLatin1();
  for (int n = 1; n <= watched; ++n) {
    ini += QStringLiteral(
               "[OUTPUT%1]\r\nOutput=%1\r\nDisplay Options=%2\r\nCustom Label=Feed %1\r\n"
               "Event Count=0\r\n")
               .arg(n)
               .arg(n % 3)
               .toLatin1();
  }
  QFile file(folder + QStringLiteral("/zrnconfig.ini"));
  if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    file.write(ini);
  }
}

// Round trips of 9 bytes between two sockets with Nagle off, the echo in its own thread: the
// floor any message between two processes on this machine stands on.
// With restMs between trips both ends sleep in between, as the monitor and the switcher do
// between two alarms, and each trip pays for waking them.
std::vector<double> LoopbackRoundTrips(int count, int restMs = 0) {
  std::vector<double> trips;
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      ::listen(listener, 1) != 0 ||
      ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    return trips;
  }
  const int one = 1;
  std::thread echo([listener, one, count] {
    const int peer = ::accept(listener, nullptr, nullptr);
    ::setsockopt(peer, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    char buffer[9];
    for (int i = 0; i < count; ++i) {
      if (::recv(peer, buffer, sizeof buffer, MSG_WAITALL) != sizeof buffer ||
          ::send(peer, buffer, sizeof buffer, 0) != sizeof buffer) {
        break;
      }
    }
    ::close(peer);
  });
  const int client = ::socket(AF_INET, SOCK_STREAM, 0);
  ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  if (::connect(client, reinterpret_cast<sockaddr*>(&address), length) == 0) {
    char buffer[9] = {'\xF6', 1, 1, 0, 6, 0, 1, 8, '\xFF'};
    QElapsedTimer clock;
    for (int i = 0; i < count; ++i) {
      if (restMs > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(restMs));
      }
      clock.start();
      if (::send(client, buffer, sizeof buffer, 0) != sizeof buffer ||
          ::recv(client, buffer, sizeof buffer, MSG_WAITALL) != sizeof buffer) {
        break;
      }
      trips.push_back(clock.nsecsElapsed() / 1e6);
    }
  }
  ::close(client);
  echo.join();
  ::close(listener);
  return trips;
}

// Starts a monitor with its window on a fresh folder and times its start-up exchange.
struct RunningMonitor {
  QTemporaryDir dir;
  std::unique_ptr<zrn::Monitor> monitor;
  std::unique_ptr<zrn::MainWindow> window;
  double exchangeMs = -1;

  bool Start(quint16 port, int watched) {
    WriteConfiguration(dir.path(), port, watched);
    monitor = std::make_unique<zrn::Monitor>(dir.path() + QLatin1Char('/'));
    window = std::make_unique<zrn::MainWindow>(*monitor);
    window->show();
    QElapsedTimer exchange;
    exchange.start();
    monitor->Start();
    if (!WaitFor([&] { return monitor->state().linkState.ExchangeComplete; }, 30000)) {
      dir.setAutoRemove(false);
      std::fprintf(stderr, "live_bench: the monitor's files are kept in %s\n",
                   qPrintable(dir.path()));
      return false;
    }
    exchangeMs = exchange.nsecsElapsed() / 1e6;
    return true;
  }
};

// Each reported silence on output 1 (CB 0A, one item, output 0, silent) paired with the next
// latch of relay 1 the simulator reads (FE 44 00 00 00 00 00), in the order they happened.
std::vector<double> LatchLatencies(const QString& trace) {
  std::vector<double> latencies;
  QFile file(trace);
  if (!file.open(QIODevice::ReadOnly)) {
    return latencies;
  }
  qint64 silenceAt = -1;
  while (!file.atEnd()) {
    const QString line = QString::fromLatin1(file.readLine()).trimmed();
    if (line.contains(QStringLiteral(" tx CB 0A 01 00 00 00 01 "))) {
      silenceAt = Stamp(line);
    } else if (silenceAt >= 0 && line.contains(QStringLiteral(" rx FE 44 00 00 00 00 00"))) {
      latencies.push_back((Stamp(line) - silenceAt) / 1000.0);
      silenceAt = -1;
    }
  }
  return latencies;
}

// Scrapes /metrics every 100 ms over one kept-alive connection from its own thread, as a
// Prometheus server does; idle while aimed at port 0.
class Scraper {
 public:
  Scraper() : thread_([this] { Run(); }) {}
  ~Scraper() {
    stop_ = true;
    thread_.join();
  }
  void Aim(quint16 port) { port_ = port; }
  int Scrapes() const { return scrapes_; }

 private:
  void Run() {
    int fd = -1;
    quint16 connected = 0;
    while (!stop_) {
      const auto next = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
      const quint16 port = port_;
      if (port != connected && fd >= 0) {
        ::close(fd);
        fd = -1;
      }
      if (port != 0 && fd < 0) {
        fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
          ::close(fd);
          fd = -1;
        }
        connected = port;
      }
      if (fd >= 0 && !Scrape(fd)) {
        ::close(fd);
        fd = -1;
      }
      std::this_thread::sleep_until(next);
    }
    if (fd >= 0) {
      ::close(fd);
    }
  }
  // One request and its whole answer (headers, then Content-Length bytes).
  bool Scrape(int fd) {
    static const char kRequest[] = "GET /metrics HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
    if (::send(fd, kRequest, sizeof kRequest - 1, 0) != sizeof kRequest - 1) {
      return false;
    }
    QByteArray got;
    char buffer[65536];
    qsizetype headerEnd = -1;
    qsizetype length = -1;
    while (length < 0 || got.size() < headerEnd + 4 + length) {
      const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
      if (n <= 0) {
        return false;
      }
      got.append(buffer, n);
      if (headerEnd < 0 && (headerEnd = got.indexOf("\r\n\r\n")) >= 0) {
        const qsizetype at = got.toLower().indexOf("content-length:");
        length =
            at < 0 ? 0 : got.mid(at + 15, got.indexOf('\r', at) - at - 15).trimmed().toLongLong();
      }
    }
    ++scrapes_;
    return true;
  }

  std::atomic<bool> stop_{false};
  std::atomic<quint16> port_{0};
  std::atomic<int> scrapes_{0};
  std::thread thread_;
};

int Fail(const char* what) {
  std::fprintf(stderr, "live_bench: %s\n", what);
  return 1;
}

constexpr int kBigRouter = 4096;

QStringList BigRouter() {
  return {QStringLiteral("--inputs"), QString::number(kBigRouter), QStringLiteral("--outputs"),
          QString::number(kBigRouter)};
}

// The monitor process of first_paint_ms: built as zrn-pennaro builds it; says "painted" on its
// first paint once the exchange is complete, and ends.
int FirstPaintChild(int argc, char** argv, const QString& folder) {
  QApplication app(argc, argv);
  zrn::ApplyBroadcastStyle(app);
  zrn::Monitor monitor(folder + QLatin1Char('/'));
  zrn::MainWindow window(monitor);
  monitor.Start();
  window.show();
  class PaintWatch : public QObject {
   public:
    PaintWatch(zrn::Monitor& m, QWidget& w) : monitor_(m), window_(w) {}
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Paint && monitor_.state().linkState.ExchangeComplete) {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (widget != nullptr && widget->window() == &window_) {
          std::printf("painted\n");
          std::fflush(stdout);
          QCoreApplication::exit(0);
        }
      }
      return false;
    }

   private:
    zrn::Monitor& monitor_;
    QWidget& window_;
  } watch(monitor, window);
  app.installEventFilter(&watch);
  // The last answer may change nothing on screen; the window is drawn once the exchange is done
  // either way.
  QObject::connect(&monitor, &zrn::Monitor::changed, &window, [&] {
    if (monitor.state().linkState.ExchangeComplete) {
      window.update();
    }
  });
  QTimer::singleShot(20000, [] { QCoreApplication::exit(1); });
  return app.exec();
}

// Milliseconds from starting the monitor process to its "painted" line; -1 when it never came.
double FirstPaintMs(const QString& folder) {
  QProcess child;
  child.setProgram(QCoreApplication::applicationFilePath());
  child.setArguments({QStringLiteral("--first-paint"), folder});
  QElapsedTimer started;
  started.start();
  child.start();
  double ms = -1;
  while (child.state() != QProcess::NotRunning || child.bytesAvailable() > 0) {
    child.waitForReadyRead(1);
    if (child.canReadLine() && child.readLine().startsWith("painted")) {
      ms = started.nsecsElapsed() / 1e6;
      break;
    }
    if (started.elapsed() > 30000) {
      break;
    }
  }
  child.waitForFinished(5000);
  return ms;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && QByteArray(argv[1]) == "--first-paint") {
    return FirstPaintChild(argc, argv, QString::fromLocal8Bit(argv[2]));
  }
  QApplication app(argc, argv);
  const int changes = argc > 1 ? std::max(1, atoi(argv[1])) : 1000;

  const std::vector<double> trips = LoopbackRoundTrips(20000);
  if (trips.empty()) {
    return Fail("no loopback round trips");
  }
  Print("loopback_rtt_p50_ms", Quantile(trips, 0.5));
  Print("loopback_rtt_p99_ms", Quantile(trips, 0.99));
  const std::vector<double> restingTrips = LoopbackRoundTrips(250, 20);
  if (restingTrips.empty()) {
    return Fail("no loopback round trips");
  }
  Print("loopback_rest_rtt_p50_ms", Quantile(restingTrips, 0.5));
  Print("loopback_rest_rtt_p99_ms", Quantile(restingTrips, 0.99));

  {
    const quint16 port = FreePort();
    Sim big;
    if (!big.Start(port, BigRouter())) {
      return Fail("zrn-switcher-sim did not start");
    }
    QTemporaryDir folder;
    WriteConfiguration(folder.path(), port, kBigRouter);
    const double firstPaint = FirstPaintMs(folder.path());
    if (firstPaint < 0) {
      return Fail("the monitor process never painted its window after the exchange");
    }
    Print("first_paint_ms", firstPaint);
  }

  QTemporaryDir traceDir;
  const QString trace = traceDir.path() + QStringLiteral("/sim.trace");
  const quint16 port = FreePort();
  Sim sim;
  if (!sim.Start(port, BigRouter() + QStringList{QStringLiteral("--detect"), QStringLiteral("0"),
                                                 QStringLiteral("--return"), QStringLiteral("0"),
                                                 QStringLiteral("--trace"), trace})) {
    return Fail("zrn-switcher-sim did not start");
  }
  RunningMonitor m;
  if (!m.Start(port, kBigRouter)) {
    return Fail("the 4096 x 4096 start-up exchange did not complete");
  }
  Print("exchange_4096_ms", m.exchangeMs);
  const zrn::State& s = m.monitor->state();

  auto relayOn = [&](bool on) {
    return WaitFor([&] { return !s.RelayStates.empty() && (s.RelayStates[0] == 1) == on; }, 10000);
  };
  const auto settle = [](int ms) {
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < ms) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
  };
  for (int i = 0; i < 2 * changes; ++i) {
    const bool atRest = i < changes;
    for (const bool silent : {true, false}) {
      if (atRest) {
        settle(20);
      }
      // Not waiting for the simulator's reply: the monitor's event loop must be free at once.
      sim.Command(silent ? QStringLiteral("input 1 silent") : QStringLiteral("input 1 audio"),
                  false);
      if (!relayOn(silent)) {
        return Fail(silent ? "no latch after a silence change"
                           : "no release after the audio came back");
      }
      sim.DiscardReplies();
    }
  }

  // The same changes at rest with the alerts attached: blocks with the status endpoint off and
  // blocks with it on and scraped, in turn, so both meet the same machine.
  constexpr int kAlertBlocks = 10;
  const int perBlock = std::max(1, changes / kAlertBlocks);
  int scrapes = 0;
  {
    zrn::Alerts alerts(*m.monitor);
    zrn::AlertSettings off;
    off.httpEnabled = false;
    zrn::AlertSettings on = off;
    on.httpEnabled = true;
    on.httpPort = 0;
    Scraper scraper;
    for (int block = 0; block < 2 * kAlertBlocks; ++block) {
      const bool scraped = block % 2 == 1;
      alerts.Apply(scraped ? on : off);
      scraper.Aim(scraped ? alerts.EndpointPort() : 0);
      if (scraped && alerts.EndpointPort() == 0) {
        return Fail("the status endpoint did not start");
      }
      settle(250);
      for (int k = 0; k < perBlock; ++k) {
        settle(20);
        sim.Command(QStringLiteral("input 1 silent"), false);
        if (!relayOn(true)) {
          return Fail("no latch after a silence change with the alerts attached");
        }
        sim.DiscardReplies();
        settle(20);
        sim.Command(QStringLiteral("input 1 audio"), false);
        if (!relayOn(false)) {
          return Fail("no release with the alerts attached");
        }
        sim.DiscardReplies();
      }
      scraper.Aim(0);
    }
    scrapes = scraper.Scrapes();
  }

  // The burst, followed by a route change on the same connection: once the monitor's map shows
  // the new route, every report before it has been handled.
  constexpr int kBurst = 100000;
  QElapsedTimer loop;
  qint64 lastTurn = 0;
  qint64 longestStall = 0;
  QTimer turns;
  turns.setInterval(0);
  QObject::connect(&turns, &QTimer::timeout, [&] {
    const qint64 now = loop.nsecsElapsed();
    longestStall = std::max(longestStall, now - lastTurn);
    lastTurn = now;
  });
  std::vector<double> drains;
  std::vector<double> stalls;
  for (int round = 0; round < 5; ++round) {
    const qint16 input = static_cast<qint16>(10 + round);
    loop.start();
    lastTurn = 0;
    longestStall = 0;
    turns.start();
    sim.Command(QStringLiteral("burst %1").arg(kBurst), false);
    sim.Command(QStringLiteral("route %1 2").arg(input + 1), false);
    if (!WaitFor([&] { return s.CrosspointMap[1].Sources[0] == input; }, 10000)) {
      return Fail("the burst was not drained");
    }
    drains.push_back(loop.nsecsElapsed() / 1e6);
    turns.stop();
    stalls.push_back(longestStall / 1e6);
    // Take the control replies before the next round.
    settle(50);
    sim.DiscardReplies();
  }

  std::vector<double> latencies = LatchLatencies(trace);
  if (latencies.empty()) {
    return Fail("no silence/latch pairs found in the trace");
  }
  if (latencies.size() != static_cast<size_t>(2 * changes + 2 * kAlertBlocks * perBlock)) {
    return Fail("the trace does not hold a silence and a latch for every change");
  }
  const std::vector<double> atRest(latencies.begin(), latencies.begin() + changes);
  const std::vector<double> busy(latencies.begin() + changes, latencies.end());
  Print("latch_count", changes);
  Print("latch_p50_ms", Quantile(atRest, 0.5));
  Print("latch_p99_ms", Quantile(atRest, 0.99));
  Print("latch_max_ms", Quantile(atRest, 1.0));
  Print("busy_latch_p50_ms", Quantile(busy, 0.5));
  Print("busy_latch_p99_ms", Quantile(busy, 0.99));
  Print("busy_latch_max_ms", Quantile(busy, 1.0));
  Print("burst_messages", kBurst);
  Print("burst_drain_median_ms", Quantile(drains, 0.5));
  Print("burst_drain_max_ms", Quantile(drains, 1.0));
  Print("burst_longest_stall_ms", Quantile(stalls, 1.0));
  std::vector<double> alertsOff;
  std::vector<double> alertsScraped;
  for (int block = 0; block < 2 * kAlertBlocks; ++block) {
    const auto from = latencies.begin() + 2 * changes + block * perBlock;
    (block % 2 == 1 ? alertsScraped : alertsOff)
        .insert((block % 2 == 1 ? alertsScraped : alertsOff).end(), from, from + perBlock);
  }
  Print("alerts_latch_count", static_cast<double>(alertsOff.size()));
  Print("alerts_off_latch_p50_ms", Quantile(alertsOff, 0.5));
  Print("alerts_off_latch_p99_ms", Quantile(alertsOff, 0.99));
  Print("alerts_scraped_latch_p50_ms", Quantile(alertsScraped, 0.5));
  Print("alerts_scraped_latch_p99_ms", Quantile(alertsScraped, 0.99));
  Print("alerts_scrapes", scrapes);
  return 0;
}
