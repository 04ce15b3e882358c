#include "sim/scenario.h"

#include <QStringList>
#include <QTimer>

#include <cmath>

#include "sim/control.h"
#include "sim/sim_switcher.h"

namespace zrn::sim {

namespace {

// One day; longer waits are surely a typing mistake.
constexpr double kMaxSeconds = 86400;

}  // namespace

std::optional<std::vector<ScenarioStep>> ParseScenario(const QString& text, QString* error) {
  std::vector<ScenarioStep> steps;
  const QStringList lines = text.split(QLatin1Char('\n'));
  for (int i = 0; i < lines.size(); ++i) {
    const QString line = lines[i].simplified();
    if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
      continue;
    }
    const QStringList words = line.split(QLatin1Char(' '));
    const auto fail = [&](const QString& why) {
      *error = QStringLiteral("line %1: %2: %3").arg(i + 1).arg(why, line);
      return std::nullopt;
    };
    const bool every = words[0] == QLatin1String("every");
    if (!every && words[0] != QLatin1String("at")) {
      return fail(QStringLiteral("a step starts with \"at\" or \"every\""));
    }
    bool ok = false;
    const double seconds = words.size() >= 2 ? words[1].toDouble(&ok) : 0;
    const double least = every ? 0.001 : 0;
    if (!ok || !std::isfinite(seconds) || seconds < least || seconds > kMaxSeconds) {
      return fail(every ? QStringLiteral("seconds must be more than 0 and at most 86400")
                        : QStringLiteral("seconds must be from 0 to 86400"));
    }
    if (words.size() < 3 || !IsCommandName(words[2].toLower())) {
      return fail(QStringLiteral("not a control command"));
    }
    steps.push_back({every, seconds, words.mid(2).join(QLatin1Char(' ')), i + 1});
  }
  return steps;
}

bool CheckScenario(const std::vector<ScenarioStep>& steps, const SimOptions& options,
                   QString* error) {
  SimSwitcher scratch(options);
  for (const ScenarioStep& step : steps) {
    const QString reply = RunCommand(scratch, step.command);
    if (reply.startsWith(QLatin1String("error"))) {
      *error = QStringLiteral("line %1: %2: %3")
                   .arg(step.line)
                   .arg(reply.mid(6),
                        (step.repeat ? QStringLiteral("every ") : QStringLiteral("at ")) +
                            QString::number(step.seconds) + QLatin1Char(' ') + step.command);
      return false;
    }
  }
  return true;
}

QString DemoScenario() {
  return QStringLiteral(
      "# Inputs 3, 7 and 12 feed outputs 3, 7 and 12 by default.\n"
      "every 20 input 3 toggle\n"
      "every 30 input 7 toggle\n"
      "every 45 input 12 toggle\n");
}

ScenarioRunner::ScenarioRunner(SimSwitcher& sim, std::vector<ScenarioStep> steps, QObject* parent)
    : QObject(parent), sim_(sim), steps_(std::move(steps)) {}

void ScenarioRunner::Start() {
  for (const ScenarioStep& step : steps_) {
    auto* timer = new QTimer(this);
    timer->setSingleShot(!step.repeat);
    timer->setTimerType(Qt::PreciseTimer);
    const QString command = step.command;
    connect(timer, &QTimer::timeout, this,
            [this, command] { emit ran(command, RunCommand(sim_, command)); });
    timer->start(static_cast<int>(std::lround(step.seconds * 1000)));
  }
}

}  // namespace zrn::sim
