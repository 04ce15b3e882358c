#include "ui/record_navigation.h"

#include <QPushButton>

#include "ui/dialog_controls.h"

namespace zrn {

namespace {

struct Step {
  const char* name;
  const char* caption;
  const char* tip;
  int (*target)(RecordNavigation::Place);
};

const Step kSteps[] = {
    {"CmdStart", "|<", "Moves to first ", [](RecordNavigation::Place) { return 0; }},
    {"cmdBack", "<", "Moves back one ", [](RecordNavigation::Place p) { return p.at - 1; }},
    {"cmdForward", ">", "Moves forward one ", [](RecordNavigation::Place p) { return p.at + 1; }},
    {"cmdEnd", ">|", "Moves to last ", [](RecordNavigation::Place p) { return p.count - 1; }}};

}  // namespace

RecordNavigation::RecordNavigation(const QString& what, QObject* parent,
                                   std::function<Place()> where,
                                   std::function<void(int index)> goTo)
    : QObject(parent), where_(std::move(where)) {
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    const Step& step = kSteps[i];
    buttons_[i] = Button(QLatin1String(step.name), QLatin1String(step.caption),
                         QLatin1String(step.tip) + what, this,
                         [where = where_, goTo, step] { goTo(step.target(where())); });
  }
}

void RecordNavigation::Update() const {
  const Place place = where_();
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    // The first two lead back, the last two forward.
    buttons_[i]->setEnabled(i < 2 ? place.at > 0 : place.at < place.count - 1);
  }
}

}  // namespace zrn
