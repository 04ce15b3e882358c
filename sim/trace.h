#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace zrn::sim {

// One line per frame received or sent: local time with microseconds, the connection, the
// direction and the bytes in hexadecimal, flushed at once so the file can be followed live.
class Trace {
 public:
  bool Open(const QString& path, QString* error);
  bool IsOpen() const { return file_.isOpen(); }
  // direction: "rx", "tx", "skip" (bytes of no message) or "--" for connection events.
  void Log(int connection, const char* direction, const QByteArray& bytes,
           const QString& note = {});

 private:
  QFile file_;
};

}  // namespace zrn::sim
