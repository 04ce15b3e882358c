#pragma once

#include <QByteArray>
#include <QString>

#include "core/state.h"

namespace zrn {

// Full path of a file in the program's folder.
QString DataPath(const State& s, const QString& fileName);

// Whole file; throws Failure (53 when absent, 75 when unreadable).
QByteArray ReadFileBytes(const QString& path);

// Replaces the file only once the new content is completely on disk; throws Failure on any
// error, leaving the previous file as it was, with the system's reason in *reason when given.
void SaveFileAtomically(const QString& path, const QByteArray& bytes, QString* reason = nullptr);

// What the operator is told about a file that could not be saved: its path and the reason.
QString SaveFailureText(const QString& path, const QString& reason);
// Tells the operator through the prompt port, when there is one.
void ReportFailedSave(State& s, const QString& text);

// Why a file that exists cannot be opened for reading; empty when it can.
QString UnreadableReason(const QString& path);

// Keeps a file that failed to read out of reach of later saves: copies it (or moves it, when
// the program must not read it again) to its name + ".bad-" + a date-time stamp and writes an
// error-log line naming the copy, and calling the file unreadable rather than damaged when it
// could not even be opened. Returns the new path, or an empty text when it failed.
QString SetAsideDamagedFile(State& s, const QString& fileName, bool move);

// Little-endian reader that never reads past the end: every shortfall throws error 62.
class ByteReader {
 public:
  explicit ByteReader(const QByteArray& bytes) : bytes_(bytes) {}
  quint8 U8();
  qint16 I16();
  // n single-byte characters.
  QString Text(int n);
  qsizetype Remaining() const { return bytes_.size() - pos_; }

 private:
  void Need(qsizetype n) const;
  const QByteArray& bytes_;
  qsizetype pos_ = 0;
};

// Little-endian writer; a value that does not fit its field throws error 6.
class ByteWriter {
 public:
  void U8(int value);
  void I16(int value);
  // Exactly width single-byte characters: shorter text is padded with blanks, longer throws.
  void Text(const QString& text, int width);
  // The text as single-byte characters, any length.
  void RawText(const QString& text);
  const QByteArray& Bytes() const { return bytes_; }

 private:
  QByteArray bytes_;
};

}  // namespace zrn
