// A temporary folder shared by the file-reading fuzz targets, removed at exit.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace zrn::fuzz {

// Empties the folder of what the last input left (set-aside ".bad-" copies, error logs), so it
// does not grow from run to run, writes the input as the file under test and returns the
// folder with a trailing separator, as State::AppPath expects it.
inline QString WriteInput(const QString& fileName, const uint8_t* data, size_t size) {
  static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/zrn-fuzz-XXXXXX"));
  QDir folder(dir.path());
  for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    folder.remove(name);
  }
  QFile file(folder.filePath(fileName));
  const auto length = static_cast<qint64>(size);
  if (!dir.isValid() || !file.open(QIODevice::WriteOnly) ||
      file.write(reinterpret_cast<const char*>(data), length) != length) {
    __builtin_trap();
  }
  return dir.path() + QLatin1Char('/');
}

}  // namespace zrn::fuzz
