#include "storage/file_io.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "core/failure.h"
#include "storage/logs.h"

namespace zrn {

QString DataPath(const State& s, const QString& fileName) {
  return s.AppPath + fileName;
}

QByteArray ReadFileBytes(const QString& path) {
  QFile file(path);
  if (!file.exists()) {
    throw Failure::FileNotFound();
  }
  if (!file.open(QIODevice::ReadOnly)) {
    throw Failure::PathFileAccess();
  }
  QByteArray bytes = file.readAll();
  if (file.error() != QFileDevice::NoError) {
    throw Failure::DeviceIo();
  }
  return bytes;
}

void SaveFileAtomically(const QString& path, const QByteArray& bytes, QString* reason) {
  QSaveFile file(path);
  auto fail = [&](const Failure& failure) {
    if (reason != nullptr) {
      *reason = file.errorString();
    }
    throw failure;
  };
  if (!file.open(QIODevice::WriteOnly)) {
    fail(Failure::PathFileAccess());
  }
  // The save file buffers everything until commit; flushing first makes a full disk or a
  // size limit show up here instead of committing a cut-off file.
  if (file.write(bytes) != bytes.size() || !file.flush()) {
    const QString why = file.errorString();
    file.cancelWriting();
    if (reason != nullptr) {
      *reason = why;
    }
    throw Failure::DeviceIo();
  }
  if (!file.commit()) {
    fail(Failure::DeviceIo());
  }
}

QString SaveFailureText(const QString& path, const QString& reason) {
  return QStringLiteral(
             "%1 could not be saved: %2. The changes are in use now but will be lost "
             "when the program stops.")
      .arg(QDir::toNativeSeparators(path),
           reason.isEmpty() ? QStringLiteral("unknown error") : reason);
}

void ReportFailedSave(State& s, const QString& text) {
  if (s.prompt != nullptr) {
    s.prompt->Inform(QStringLiteral("File Error"), text);
  }
}

QString UnreadableReason(const QString& path) {
  QFile file(path);
  if (!file.exists() || file.open(QIODevice::ReadOnly)) {
    return QString();
  }
  return file.errorString();
}

QString SetAsideDamagedFile(State& s, const QString& fileName, bool move) {
  const QString path = DataPath(s, fileName);
  const QString kind =
      UnreadableReason(path).isEmpty() ? QStringLiteral("Damaged") : QStringLiteral("Unreadable");
  const QString base = path + QStringLiteral(".bad-") + Now(s).toString("yyyyMMdd-HHmmss");
  QString target = base;
  for (int n = 2; QFileInfo::exists(target) && n < 1000; ++n) {
    target = base + QStringLiteral("-%1").arg(n);
  }
  const bool ok = move ? QFile::rename(path, target) : QFile::copy(path, target);
  if (ok) {
    WriteErrorLog(s, QStringLiteral("%1 file kept as %2").arg(kind, QFileInfo(target).fileName()),
                  QStringLiteral("Setting Aside ") + fileName);
    return target;
  }
  WriteErrorLog(s, QStringLiteral("%1 file could not be set aside").arg(kind),
                QStringLiteral("Setting Aside ") + fileName);
  return QString();
}

void ByteReader::Need(qsizetype n) const {
  if (n > Remaining()) {
    throw Failure::InputPastEnd();
  }
}

quint8 ByteReader::U8() {
  Need(1);
  return static_cast<quint8>(bytes_[pos_++]);
}

qint16 ByteReader::I16() {
  Need(2);
  const auto low = static_cast<quint8>(bytes_[pos_]);
  const auto high = static_cast<quint8>(bytes_[pos_ + 1]);
  pos_ += 2;
  return static_cast<qint16>(static_cast<quint16>(low | (high << 8)));
}

QString ByteReader::Text(int n) {
  Need(n);
  QString text = QString::fromLatin1(bytes_.constData() + pos_, n);
  pos_ += n;
  return text;
}

void ByteWriter::U8(int value) {
  if (value < 0 || value > 255) {
    throw Failure::Overflow();
  }
  bytes_.append(static_cast<char>(value));
}

void ByteWriter::I16(int value) {
  const auto v = static_cast<quint16>(ToInteger(value));
  bytes_.append(static_cast<char>(v & 0xFF));
  bytes_.append(static_cast<char>(v >> 8));
}

void ByteWriter::Text(const QString& text, int width) {
  if (text.size() > width) {
    throw Failure::InvalidArgument();
  }
  RawText(text);
  bytes_.append(QByteArray(width - text.size(), ' '));
}

void ByteWriter::RawText(const QString& text) {
  bytes_.append(text.toLatin1());
}

}  // namespace zrn
