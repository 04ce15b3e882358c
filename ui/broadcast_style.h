#pragma once

class QApplication;

namespace zrn {

// A dark, low-glare look for a control room: the lamps stand out, nothing else does.
void ApplyBroadcastStyle(QApplication& app);

}  // namespace zrn
