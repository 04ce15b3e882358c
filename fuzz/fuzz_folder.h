// A temporary folder shared by the file-reading fuzz targets: each input is written into it as
// the file under test, and everything the reader leaves behind is removed after the run.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

namespace zrn::fuzz {

// The folder with a trailing separator, as State::AppPath expects it; removed at exit.
inline const QString& FolderPath() {
  static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/zrn-fuzz-XXXXXX"));
  static const QString path = dir.isValid() ? dir.path() + QLatin1Char('/') : QString();
  if (path.isEmpty()) {
    __builtin_trap();
  }
  return path;
}

// Replaces the file under test with the input.
inline void WriteInput(const QString& fileName, const uint8_t* data, size_t size) {
  QFile file(FolderPath() + fileName);
  const auto length = static_cast<qint64>(size);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
      file.write(reinterpret_cast<const char*>(data), length) != length) {
    __builtin_trap();
  }
}

// Removes the input, set-aside ".bad-" copies and the error logs of failed reads, so the
// folder does not grow from run to run.
inline void ClearFolder() {
  QDir dir(FolderPath());
  for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    dir.remove(name);
  }
}

}  // namespace zrn::fuzz
