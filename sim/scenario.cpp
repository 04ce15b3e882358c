#include "sim/scenario.h"

#include <QStringList>
#include <QTimer>

#include <cmath>

#include "sim/control.h"

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
    bool ok = false;
    const double seconds = words.size() >= 3 ? words[1].toDouble(&ok) : 0;
    const bool every = words[0] == QLatin1String("every");
    const bool timed = every || words[0] == QLatin1String("at");
    const double least = every ? 0.001 : 0;
    if (!timed || !ok || !std::isfinite(seconds) || seconds < least || seconds > kMaxSeconds ||
        !IsCommandName(words[2].toLower())) {
      *error = QStringLiteral("line %1: %2").arg(i + 1).arg(line);
      return std::nullopt;
    }
    steps.push_back({every, seconds, words.mid(2).join(QLatin1Char(' '))});
  }
  return steps;
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
