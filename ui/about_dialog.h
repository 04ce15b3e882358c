#pragma once

#include <QDialog>

#include "core/state.h"

namespace zrn {

// The about box: title, version, the server and the start-up requests still unanswered.
class AboutDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit AboutDialog(const State& s, QWidget* parent = nullptr);
};

}  // namespace zrn
