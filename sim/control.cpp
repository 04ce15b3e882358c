#include "sim/control.h"

#include <QSocketNotifier>
#include <QStringList>
#include <QTcpSocket>

#include <cstdio>
#include <functional>
#include <map>
#include <optional>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

#include "sim/codec.h"
#include "sim/sim_switcher.h"

namespace zrn::sim {

namespace {

// How many outputs the status line lists routes for.
constexpr int kStatusRoutes = 16;
// A control client that sends this much without a newline is cut off.
constexpr qsizetype kMaxLine = 64 * 1024;

QString Error(const QString& text) {
  return QStringLiteral("error ") + text;
}

// A 1-based channel number within 1..count, as a 0-based index.
std::optional<int> Channel(const QString& word, int count) {
  bool ok = false;
  const int n = word.toInt(&ok);
  if (!ok || n < 1 || n > count) {
    return std::nullopt;
  }
  return n - 1;
}

QString RangeError(const char* what, int count) {
  return Error(QStringLiteral("%1 must be 1..%2").arg(QLatin1String(what)).arg(count));
}

std::optional<bool> OnOff(const QString& word) {
  if (word == QLatin1String("on")) {
    return true;
  }
  if (word == QLatin1String("off")) {
    return false;
  }
  return std::nullopt;
}

// "3,7,12" of the 1-based channels for which pick is true, "-" for none.
QString List(int count, const std::function<bool(int)>& pick) {
  QStringList out;
  for (int i = 0; i < count; ++i) {
    if (pick(i)) {
      out << QString::number(i + 1);
    }
  }
  return out.isEmpty() ? QStringLiteral("-") : out.join(QLatin1Char(','));
}

using Args = QStringList;
using Handler = std::function<QString(SimSwitcher&, const Args&)>;

QString InputCommand(SimSwitcher& sim, const Args& args) {
  const auto input = args.size() == 3 ? Channel(args[1], sim.InputCount()) : std::nullopt;
  if (!input) {
    return args.size() == 3 ? RangeError("input", sim.InputCount())
                            : Error(QStringLiteral("usage: input N silent|audio|toggle"));
  }
  bool audio;
  if (args[2] == QLatin1String("silent")) {
    audio = false;
  } else if (args[2] == QLatin1String("audio")) {
    audio = true;
  } else if (args[2] == QLatin1String("toggle")) {
    audio = !sim.State().inputAudio[*input];
  } else {
    return Error(QStringLiteral("usage: input N silent|audio|toggle"));
  }
  sim.SetInputAudio(*input, audio);
  return QStringLiteral("ok input %1 %2").arg(*input + 1).arg(audio ? "audio" : "silent");
}

QString OutputCommand(SimSwitcher& sim, const Args& args) {
  const auto output = args.size() == 3 ? Channel(args[1], sim.OutputCount()) : std::nullopt;
  if (!output) {
    return args.size() == 3 ? RangeError("output", sim.OutputCount())
                            : Error(QStringLiteral("usage: output N silent|audio|auto"));
  }
  std::optional<bool> forced;
  if (args[2] == QLatin1String("silent")) {
    forced = false;
  } else if (args[2] == QLatin1String("audio")) {
    forced = true;
  } else if (args[2] != QLatin1String("auto")) {
    return Error(QStringLiteral("usage: output N silent|audio|auto"));
  }
  sim.ForceOutput(*output, forced);
  return QStringLiteral("ok output %1 %2").arg(*output + 1).arg(args[2]);
}

QString PeakCommand(SimSwitcher& sim, const Args& args) {
  const auto output = args.size() == 3 ? Channel(args[1], sim.OutputCount()) : std::nullopt;
  std::optional<bool> on = args.size() == 3 ? OnOff(args[2]) : std::nullopt;
  // "toggle" flips the peak, so "every 0.5 peak N toggle" plays a flickering peak meter.
  if (output && !on && args[2] == QLatin1String("toggle")) {
    on = (sim.State().outputs[*output].status & kStatusPeak) == 0;
  }
  if (!output || !on) {
    return output ? Error(QStringLiteral("usage: peak N on|off|toggle"))
                  : RangeError("output", sim.OutputCount());
  }
  sim.SetPeak(*output, *on);
  return QStringLiteral("ok peak %1 %2").arg(*output + 1).arg(*on ? "on" : "off");
}

QString BurstCommand(SimSwitcher& sim, const Args& args) {
  bool ok = false;
  const int count = args.size() == 2 ? args[1].toInt(&ok) : 0;
  if (!ok || count < 1 || count > 1000000) {
    return Error(QStringLiteral("usage: burst N (1 to 1000000 peak changes in one write)"));
  }
  const qsizetype bytes = sim.Burst(count);
  return QStringLiteral("ok burst %1 reports, %2 bytes").arg(count).arg(bytes);
}

QString RouteCommand(SimSwitcher& sim, const Args& args) {
  if (args.size() != 3) {
    return Error(QStringLiteral("usage: route IN|none OUT"));
  }
  const bool none = args[1] == QLatin1String("none");
  const auto input = none ? std::optional<int>(kNone) : Channel(args[1], sim.InputCount());
  const auto output = Channel(args[2], sim.OutputCount());
  if (!input) {
    return RangeError("input", sim.InputCount());
  }
  if (!output) {
    return RangeError("output", sim.OutputCount());
  }
  sim.Route(*input, *output);
  return QStringLiteral("ok route %1 %2").arg(args[1]).arg(*output + 1);
}

QString RelayCommand(SimSwitcher& sim, const Args& args) {
  const auto relay = args.size() == 3 ? Channel(args[1], sim.RelayCount()) : std::nullopt;
  const auto on = args.size() == 3 ? OnOff(args[2]) : std::nullopt;
  if (!relay || !on) {
    return relay ? Error(QStringLiteral("usage: relay N on|off"))
                 : RangeError("relay", sim.RelayCount());
  }
  sim.SetRelay(*relay, *on);
  return QStringLiteral("ok relay %1 %2").arg(*relay + 1).arg(args[2]);
}

QString MuteCommand(SimSwitcher& sim, const Args& args) {
  const auto on = args.size() == 2 ? OnOff(args[1]) : std::nullopt;
  if (!on) {
    return Error(QStringLiteral("usage: mute on|off"));
  }
  sim.SetMuted(*on);
  return QStringLiteral("ok mute ") + args[1];
}

QString SendCommand(SimSwitcher& sim, const Args& args) {
  const auto bytes = ParseHex(args.mid(1).join(QLatin1Char(' ')));
  if (!bytes) {
    return Error(QStringLiteral("usage: send HEX (for example send F6 01 00)"));
  }
  const int connections = sim.SendRaw(*bytes);
  return QStringLiteral("ok sent %1 bytes to %2 connections").arg(bytes->size()).arg(connections);
}

const std::map<QString, Handler>& Commands() {
  static const std::map<QString, Handler> commands = {
      {QStringLiteral("input"), InputCommand},
      {QStringLiteral("output"), OutputCommand},
      {QStringLiteral("peak"), PeakCommand},
      {QStringLiteral("burst"), BurstCommand},
      {QStringLiteral("route"), RouteCommand},
      {QStringLiteral("relay"), RelayCommand},
      {QStringLiteral("mute"), MuteCommand},
      {QStringLiteral("send"), SendCommand},
      {QStringLiteral("drop"),
       [](SimSwitcher& sim, const Args&) {
         return QStringLiteral("ok dropped %1").arg(sim.DropConnections());
       }},
      {QStringLiteral("status"),
       [](SimSwitcher& sim, const Args&) { return QStringLiteral("ok ") + StatusLine(sim); }},
      {QStringLiteral("quit"),
       [](SimSwitcher& sim, const Args&) {
         sim.RequestQuit();
         return QStringLiteral("ok quit");
       }},
      {QStringLiteral("help"),
       [](SimSwitcher&, const Args&) {
         return QStringLiteral("ok ") + CommandList().join(QStringLiteral("; "));
       }},
  };
  return commands;
}

}  // namespace

QStringList CommandList() {
  return {QStringLiteral("input N silent|audio|toggle"),
          QStringLiteral("output N silent|audio|auto"),
          QStringLiteral("peak N on|off|toggle"),
          QStringLiteral("burst N"),
          QStringLiteral("route IN|none OUT"),
          QStringLiteral("relay N on|off"),
          QStringLiteral("drop"),
          QStringLiteral("mute on|off"),
          QStringLiteral("send HEX"),
          QStringLiteral("status"),
          QStringLiteral("quit")};
}

bool IsCommandName(const QString& word) {
  return Commands().count(word) > 0;
}

QString RunCommand(SimSwitcher& sim, const QString& line) {
  const QStringList args = line.simplified().toLower().split(QLatin1Char(' '), Qt::SkipEmptyParts);
  if (args.isEmpty() || args[0].startsWith(QLatin1Char('#'))) {
    return {};
  }
  const auto it = Commands().find(args[0]);
  if (it == Commands().end()) {
    return Error(QStringLiteral("unknown command '%1'").arg(args[0]));
  }
  return it->second(sim, args);
}

QString StatusLine(const SimSwitcher& sim) {
  const SwitchState& s = sim.State();
  const int outputs = sim.OutputCount();
  QStringList routes;
  for (int o = 0; o < std::min(outputs, kStatusRoutes); ++o) {
    const int source = s.outputs[o].source;
    routes << QStringLiteral("%1:%2").arg(o + 1).arg(source == kNone ? QStringLiteral("-")
                                                                     : QString::number(source + 1));
  }
  QStringList forced;
  for (int o = 0; o < outputs; ++o) {
    if (s.outputs[o].forcedAudio) {
      forced << QStringLiteral("%1:%2").arg(o + 1).arg(*s.outputs[o].forcedAudio ? "audio"
                                                                                 : "silent");
    }
  }
  const auto status = [&](quint8 bit) {
    return List(outputs, [&](int o) { return (s.outputs[o].status & bit) != 0; });
  };
  return QStringList{
      QStringLiteral("connections=%1").arg(sim.ConnectionCount()),
      QStringLiteral("muted=%1").arg(sim.Muted() ? 1 : 0),
      QStringLiteral("inputs=%1").arg(sim.InputCount()),
      QStringLiteral("outputs=%1").arg(outputs),
      QStringLiteral("relays=%1").arg(sim.RelayCount()),
      QStringLiteral("relays_on=") +
          List(sim.RelayCount(), [&](int r) { return s.relays[r] == 1; }),
      QStringLiteral("silent_inputs=") +
          List(sim.InputCount(), [&](int i) { return !s.inputAudio[i]; }),
      QStringLiteral("silent_outputs=") + status(kStatusSilent),
      QStringLiteral("peak_outputs=") + status(kStatusPeak),
      QStringLiteral("pending_outputs=") +
          List(outputs, [&](int o) { return s.outputs[o].dueMs >= 0; }),
      QStringLiteral("forced=") +
          (forced.isEmpty() ? QStringLiteral("-") : forced.join(QLatin1Char(','))),
      QStringLiteral("routes=") + routes.join(QLatin1Char(',')),
      QStringLiteral("relay_commands=%1").arg(sim.RelayCommands()),
  }
      .join(QLatin1Char(' '));
}

ControlServer::ControlServer(SimSwitcher& sim, QObject* parent) : QObject(parent), sim_(sim) {
  connect(&server_, &QTcpServer::newConnection, this, &ControlServer::OnNewConnection);
}

bool ControlServer::Listen(quint16 port) {
  return server_.listen(QHostAddress::LocalHost, port);
}

void ControlServer::OnNewConnection() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
      while (socket->canReadLine()) {
        const QString line = QString::fromUtf8(socket->readLine()).trimmed();
        const QString reply = RunCommand(sim_, line);
        if (!reply.isEmpty()) {
          socket->write(reply.toUtf8() + '\n');
        }
      }
      if (socket->bytesAvailable() > kMaxLine) {
        socket->abort();
      }
    });
  }
}

StdinControl::StdinControl(SimSwitcher& sim, QObject* parent) : QObject(parent), sim_(sim) {}

StdinControl::~StdinControl() = default;

bool StdinControl::Start() {
#ifdef Q_OS_UNIX
  notifier_ = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, &StdinControl::OnReadable);
  return true;
#else
  return false;
#endif
}

void StdinControl::OnReadable() {
#ifdef Q_OS_UNIX
  char chunk[4096];
  const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof chunk);
  if (n <= 0) {
    notifier_->setEnabled(false);  // end of input: the switcher runs on without a console
    return;
  }
  pending_.append(chunk, n);
  qsizetype newline;
  while ((newline = pending_.indexOf('\n')) >= 0) {
    const QString line = QString::fromUtf8(pending_.left(newline)).trimmed();
    pending_.remove(0, newline + 1);
    const QString reply = RunCommand(sim_, line);
    if (!reply.isEmpty()) {
      std::fputs(qPrintable(reply + QLatin1Char('\n')), stdout);
      std::fflush(stdout);
    }
  }
  if (pending_.size() > kMaxLine) {
    pending_.clear();
  }
#endif
}

}  // namespace zrn::sim
