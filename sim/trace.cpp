#include "sim/trace.h"

#include <QDateTime>

#include <chrono>

#include "sim/codec.h"

namespace zrn::sim {

bool Trace::Open(const QString& path, QString* error) {
  file_.setFileName(path);
  if (!file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
    *error = file_.errorString();
    return false;
  }
  return true;
}

void Trace::Log(int connection, const char* direction, const QByteArray& bytes,
                const QString& note) {
  if (!file_.isOpen()) {
    return;
  }
  const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(
                          std::chrono::system_clock::now().time_since_epoch())
                          .count();
  QString line = QDateTime::fromMSecsSinceEpoch(micros / 1000)
                     .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.")) +
                 QStringLiteral("%1 c%2 %3")
                     .arg(micros % 1000000, 6, 10, QLatin1Char('0'))
                     .arg(connection)
                     .arg(QLatin1String(direction));
  if (!bytes.isEmpty()) {
    line += QLatin1Char(' ') + HexBytes(bytes);
  }
  if (!note.isEmpty()) {
    line += QStringLiteral(" # ") + note;
  }
  line += QLatin1Char('\n');
  file_.write(line.toUtf8());
  file_.flush();
}

}  // namespace zrn::sim
