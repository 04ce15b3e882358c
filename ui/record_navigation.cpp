#include "ui/record_navigation.h"

#include <QPushButton>

#include "ui/dialog_controls.h"

namespace zrn {

RecordNavigation::RecordNavigation(const QString& what, QObject* parent,
                                   std::function<Place()> where,
                                   std::function<void(int index)> goTo)
    : QObject(parent), where_(std::move(where)) {
  const auto first = [](Place) { return 0; };
  const auto back = [](Place p) { return p.at - 1; };
  const auto forward = [](Place p) { return p.at + 1; };
  const auto last = [](Place p) { return p.count - 1; };
  const std::array<std::function<int(Place)>, 4> targets{first, back, forward, last};
  const std::array<QString, 4> names{QStringLiteral("CmdStart"), QStringLiteral("cmdBack"),
                                     QStringLiteral("cmdForward"), QStringLiteral("cmdEnd")};
  const std::array<QString, 4> captions{QStringLiteral("|<"), QStringLiteral("<"),
                                        QStringLiteral(">"), QStringLiteral(">|")};
  const std::array<QString, 4> tips{
      QStringLiteral("Moves to first "), QStringLiteral("Moves back one "),
      QStringLiteral("Moves forward one "), QStringLiteral("Moves to last ")};
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i] = Button(names[i], captions[i], tips[i] + what, this,
                         [where = where_, goTo, target = targets[i]] { goTo(target(where())); });
  }
}

void RecordNavigation::Update() const {
  const Place place = where_();
  buttons_[0]->setEnabled(place.at > 0);
  buttons_[1]->setEnabled(place.at > 0);
  buttons_[2]->setEnabled(place.at < place.count - 1);
  buttons_[3]->setEnabled(place.at < place.count - 1);
}

}  // namespace zrn
