#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QHostAddress>

#include <cstdio>
#include <memory>
#include <vector>

#include "sim/control.h"
#include "sim/scenario.h"
#include "sim/sim_switcher.h"
#include "sim/trace.h"

using namespace zrn::sim;

namespace {

void Say(const QString& line) {
  std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
  std::fflush(stdout);
}

int Fail(const QString& line) {
  std::fputs(qPrintable(QStringLiteral("zrn-switcher-sim: ") + line + QLatin1Char('\n')), stderr);
  return 1;
}

// A whole-number option and the range it must fall in.
struct NumberOption {
  const char* name;
  int min;
  int max;
  int* value;
};

// Takes every number option given; false with the option at fault in *error otherwise.
bool ReadNumbers(const QCommandLineParser& parser, const std::vector<NumberOption>& options,
                 QString* error) {
  for (const NumberOption& option : options) {
    const QString name = QString::fromLatin1(option.name);
    if (!parser.isSet(name)) {
      continue;
    }
    bool ok = false;
    const int n = parser.value(name).toInt(&ok);
    if (!ok || n < option.min || n > option.max) {
      *error = QStringLiteral("--%1: '%2' is not a whole number from %3 to %4")
                   .arg(name, parser.value(name))
                   .arg(option.min)
                   .arg(option.max);
      return false;
    }
    *option.value = n;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("zrn-switcher-sim"));

  QCommandLineParser parser;
  QCoreApplication::setApplicationVersion(QStringLiteral(ZRN_VERSION));
  parser.setApplicationDescription(
      QStringLiteral("Plays the audio routing switcher's server module for the ZRN Pennaro "
                     "monitor.\n\nControl commands, one per line on standard input or the "
                     "--control port:\n  ") +
      CommandList().join(QStringLiteral("\n  ")) + QStringLiteral("\n  help"));
  parser.addHelpOption();
  parser.addVersionOption();
  const auto option = [&](const char* name, const char* help, const char* value,
                          const char* fallback = nullptr) {
    parser.addOption(QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(help),
                                        QString::fromLatin1(value), QString::fromLatin1(fallback)));
  };
  option("listen", "Address to listen on (127.0.0.1).", "address", "127.0.0.1");
  option("port", "Port for the monitor (1250; 0 picks a free one).", "port", "1250");
  option("inputs", "Number of inputs (256).", "count");
  option("outputs", "Number of outputs (256).", "count");
  option("relays", "Number of relays (16).", "count");
  option("optos", "Number of optos (16).", "count");
  option("detect", "Default seconds of silence before an output is silent (2).", "seconds");
  option("return", "Default seconds of audio before an output is back (1).", "seconds");
  option("control", "Loopback TCP port for control lines.", "port");
  option("trace", "Log every frame received and sent to this file.", "file");
  option("scenario", "Scenario file of at/every lines, or \"demo\".", "file");
  parser.process(app);

  SimOptions options;
  int port = 1250;
  int controlPort = -1;
  constexpr int kMaxChannels = 16382;
  QString error;
  if (!ReadNumbers(parser,
                   {{"inputs", 1, kMaxChannels, &options.inputs},
                    {"outputs", 1, kMaxChannels, &options.outputs},
                    {"relays", 0, kMaxChannels, &options.relays},
                    {"optos", 0, kMaxChannels, &options.optos},
                    {"detect", 0, kMaxChannels, &options.detectSeconds},
                    {"return", 0, kMaxChannels, &options.returnSeconds},
                    {"port", 0, 65535, &port},
                    {"control", 1, 65535, &controlPort}},
                   &error)) {
    return Fail(error + QStringLiteral("; see --help"));
  }
  const QHostAddress address(parser.value(QStringLiteral("listen")));
  if (address.isNull()) {
    return Fail(QStringLiteral("--listen: not an address: ") +
                parser.value(QStringLiteral("listen")));
  }

  Trace trace;  // outlives the switcher that writes to it
  SimSwitcher sim(options);
  QObject::connect(&sim, &SimSwitcher::quitRequested, &app, &QCoreApplication::quit,
                   Qt::QueuedConnection);

  if (parser.isSet(QStringLiteral("trace"))) {
    QString error;
    if (!trace.Open(parser.value(QStringLiteral("trace")), &error)) {
      return Fail(QStringLiteral("--trace: cannot open the file: ") + error);
    }
    sim.SetTrace(&trace);
  }

  std::unique_ptr<ScenarioRunner> scenario;
  if (parser.isSet(QStringLiteral("scenario"))) {
    const QString name = parser.value(QStringLiteral("scenario"));
    QString text = DemoScenario();
    if (name != QLatin1String("demo")) {
      QFile file(name);
      if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return Fail(QStringLiteral("--scenario: cannot read %1: %2").arg(name, file.errorString()));
      }
      text = QString::fromUtf8(file.readAll());
    }
    auto steps = ParseScenario(text, &error);
    if (!steps || !CheckScenario(*steps, options, &error)) {
      return Fail(QStringLiteral("--scenario: %1 %2").arg(name, error));
    }
    scenario = std::make_unique<ScenarioRunner>(sim, std::move(*steps));
    QObject::connect(scenario.get(), &ScenarioRunner::ran,
                     [](const QString& command, const QString& reply) {
                       Say(QStringLiteral("scenario: ") + command + QStringLiteral(" -> ") + reply);
                     });
  }

  if (!sim.Listen(address, static_cast<quint16>(port))) {
    return Fail(QStringLiteral("cannot listen on %1:%2: %3")
                    .arg(address.toString())
                    .arg(port)
                    .arg(sim.ErrorString()));
  }
  ControlServer control(sim);
  if (controlPort > 0 && !control.Listen(static_cast<quint16>(controlPort))) {
    return Fail(QStringLiteral("cannot listen for control on port %1: %2")
                    .arg(controlPort)
                    .arg(control.ErrorString()));
  }
  StdinControl console(sim);
  const bool consoleOk = console.Start();

  Say(QStringLiteral("zrn-switcher-sim: %1 inputs, %2 outputs, %3 relays; listening on %4:%5")
          .arg(options.inputs)
          .arg(options.outputs)
          .arg(options.relays)
          .arg(address.toString())
          .arg(sim.Port()));
  if (controlPort > 0) {
    Say(QStringLiteral("control on 127.0.0.1:%1").arg(control.Port()));
  }
  if (!consoleOk) {
    Say(QStringLiteral("commands on standard input are not available here; use --control"));
  }
  if (scenario) {
    scenario->Start();
  }
  return app.exec();
}
