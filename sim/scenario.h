#pragma once

#include <QObject>
#include <QString>

#include <optional>
#include <vector>

namespace zrn::sim {

class SimSwitcher;
struct SimOptions;

// "at SECONDS COMMAND" runs once, SECONDS after the start; "every SECONDS COMMAND" runs every
// SECONDS, first SECONDS after the start. Blank lines and lines starting with # are skipped.
struct ScenarioStep {
  bool repeat = false;
  double seconds = 0;
  QString command;
  int line = 0;  // 1-based, in the scenario text
};

// nullopt with the offending line in *error when a line does not parse.
std::optional<std::vector<ScenarioStep>> ParseScenario(const QString& text, QString* error);
// Runs every step once on a switcher of the given size that no monitor hears, so a bad argument
// ("input 999 silent") is found with its line when the file is loaded, not minutes later.
bool CheckScenario(const std::vector<ScenarioStep>& steps, const SimOptions& options,
                   QString* error);
// The built-in scenario "demo": a few inputs fall silent and come back now and then.
QString DemoScenario();

class ScenarioRunner : public QObject {
  Q_OBJECT

 public:
  ScenarioRunner(SimSwitcher& sim, std::vector<ScenarioStep> steps, QObject* parent = nullptr);
  void Start();

 signals:
  // Every command run, with its reply, for the console.
  void ran(const QString& command, const QString& reply);

 private:
  SimSwitcher& sim_;
  std::vector<ScenarioStep> steps_;
};

}  // namespace zrn::sim
