#pragma once

#include <QObject>
#include <array>
#include <functional>

class QPushButton;

namespace zrn {

// The |<, <, > and >| buttons of a dialog that steps through records ("CmdStart", "cmdBack",
// "cmdForward", "cmdEnd"), their tool tips naming the record: "Moves to first show". They go to
// the first, previous, next and last record; Update() enables those that lead somewhere.
//
//   nav_ = new RecordNavigation(QStringLiteral("show"), this,
//                               [this] { return RecordNavigation::Place{current_, Count()}; },
//                               [this](int index) { GoTo(index); });
class RecordNavigation final : public QObject {
 public:
  struct Place {
    int at = 0;
    int count = 0;
  };

  RecordNavigation(const QString& what, QObject* parent, std::function<Place()> where,
                   std::function<void(int index)> goTo);

  const std::array<QPushButton*, 4>& Buttons() const { return buttons_; }
  void Update() const;

 private:
  std::array<QPushButton*, 4> buttons_{};
  std::function<Place()> where_;
};

}  // namespace zrn
