#pragma once

#include <QWidget>

class QCheckBox;
class QLineEdit;

namespace zrn {

// The find box above the panels: text that narrows the panels by number, name, label or
// source, and "Only alarms". Escape clears it and puts it away.
class FindBarWidget final : public QWidget {
  Q_OBJECT

 public:
  explicit FindBarWidget(QWidget* parent = nullptr);

  // Shows the box and gives it the keyboard, its text selected for typing over.
  void Open();
  QLineEdit* Text() const { return text_; }
  QCheckBox* OnlyAlarms() const { return onlyAlarms_; }

 signals:
  void filterChanged(const QString& text, bool onlyAlarms);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Changed();

  QLineEdit* text_ = nullptr;
  QCheckBox* onlyAlarms_ = nullptr;
};

}  // namespace zrn
