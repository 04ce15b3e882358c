// End-to-end alarm latency: the switcher simulator in its own process, the monitor in this one,
// over loopback. Reports the time from the simulator writing a silence change to it reading
// the relay latch (from the simulator's microsecond trace), and how long a 256 x 256 start-up
// exchange takes to complete.
//
// Usage: alarm_latency [CHANGES]   (default 2000)
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

#include "monitor/monitor.h"

namespace {

class Sim {
 public:
  bool Start(quint16 port, const QString& trace) {
    process_.setProgram(QCoreApplication::applicationDirPath() +
                        QStringLiteral("/zrn-switcher-sim"));
    process_.setArguments({QStringLiteral("--port"), QString::number(port),
                           QStringLiteral("--detect"), QStringLiteral("0"),
                           QStringLiteral("--return"), QStringLiteral("0"),
                           QStringLiteral("--trace"), trace});
    process_.start();
    return process_.waitForStarted(5000) && Command(QStringLiteral("status")).startsWith("ok");
  }
  QString Command(const QString& line) {
    process_.write((line + QLatin1Char('\n')).toUtf8());
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

// Microseconds since the epoch of a trace line "yyyy-MM-dd HH:mm:ss.zzzzzz ...".
qint64 Stamp(const QString& line) {
  const QDateTime t = QDateTime::fromString(line.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
  return t.toMSecsSinceEpoch() * 1000 + line.mid(20, 6).toLongLong();
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  const int changes = argc > 1 ? std::max(1, atoi(argv[1])) : 2000;
  QTemporaryDir dir;
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost);
  const quint16 port = probe.serverPort();
  probe.close();

  const QString trace = dir.path() + QStringLiteral("/sim.trace");
  Sim sim;
  if (!sim.Start(port, trace)) {
    std::fprintf(stderr, "zrn-switcher-sim did not start\n");
    return 1;
  }
  QFile ini(dir.path() + QStringLiteral("/zrnconfig.ini"));
  ini.open(QIODevice::WriteOnly);
  ini.write(
      QStringLiteral("[CONFIGURATION]\r\nServer IP Port=%1\r\nAlarm Relay=1\r\nOutput Count=1\r\n"
                     "[OUTPUT1]\r\nOutput=1\r\nDisplay Options=0\r\nCustom Label=None\r\n"
                     "Event Count=0\r\n")
          .arg(port)
          .toLatin1());
  ini.close();

  zrn::Monitor monitor(dir.path() + QLatin1Char('/'));
  QElapsedTimer exchange;
  exchange.start();
  monitor.Start();
  const zrn::State& s = monitor.state();
  if (!WaitFor([&] { return s.linkState.ExchangeComplete; }, 20000)) {
    std::fprintf(stderr, "the start-up exchange did not complete\n");
    return 1;
  }
  const double exchangeMs = exchange.nsecsElapsed() / 1e6;

  auto relayOn = [&](bool on) {
    return WaitFor([&] { return s.RelayStates.size() > 0 && (s.RelayStates[0] == 1) == on; },
                   10000);
  };
  for (int i = 0; i < changes; ++i) {
    sim.Command(QStringLiteral("input 1 silent"));
    if (!relayOn(true)) {
      std::fprintf(stderr, "no latch after change %d\n", i);
      return 1;
    }
    sim.Command(QStringLiteral("input 1 audio"));
    if (!relayOn(false)) {
      std::fprintf(stderr, "no release after change %d\n", i);
      return 1;
    }
  }

  // Pair each reported silence on output 1 (CB 0A, one item, output 0, silent) with the next latch
  // of relay 1 the simulator reads (FE 44 00 00 00 00 00).
  QFile file(trace);
  file.open(QIODevice::ReadOnly);
  std::vector<double> latencies;
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
  if (latencies.empty()) {
    std::fprintf(stderr, "no silence/latch pairs found in the trace\n");
    return 1;
  }
  std::sort(latencies.begin(), latencies.end());
  auto at = [&](double q) { return latencies[static_cast<size_t>(q * (latencies.size() - 1))]; };
  std::printf("start-up exchange 256 x 256: %.1f ms\n", exchangeMs);
  std::printf("silence -> relay latch over %zu changes: p50 %.3f ms, p99 %.3f ms, max %.3f ms\n",
              latencies.size(), at(0.5), at(0.99), latencies.back());
  return 0;
}
