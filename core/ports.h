#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace zrn {

// Local wall-clock time; tests substitute a clock they can set.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual QDateTime Now() const = 0;
};

class SystemClock final : public Clock {
 public:
  QDateTime Now() const override;
  static SystemClock& Instance();
};

// A clock that stands still until told otherwise.
class ManualClock final : public Clock {
 public:
  explicit ManualClock(QDateTime now = QDateTime(QDate(2026, 11, 16), QTime(15, 42, 52)))
      : now_(std::move(now)) {}
  QDateTime Now() const override { return now_; }
  void Set(const QDateTime& now) { now_ = now; }
  void AdvanceSeconds(qint64 seconds) { now_ = now_.addSecs(seconds); }
  void AdvanceMs(qint64 ms) { now_ = now_.addMSecs(ms); }

 private:
  QDateTime now_;
};

// The switcher connection. The real one wraps a non-blocking socket whose events call the
// core's connected / data / closed handlers.
class Link {
 public:
  virtual ~Link() = default;
  virtual void Open(const QString& address, quint16 port) = 0;
  virtual void Close() = 0;
  // Returns the number of bytes accepted, or -1 on a write error.
  virtual qint64 Write(const QByteArray& bytes) = 0;
  virtual bool CanWrite() const = 0;
  // Why the last attempt or connection ended, as the system put it; empty when unknown.
  virtual QString LastError() const { return QString(); }
};

// Message boxes and questions of the dialogs.
class Prompt {
 public:
  enum class Answer { Yes, No, Cancel, Ok };
  virtual ~Prompt() = default;
  virtual void Inform(const QString& title, const QString& text) = 0;
  virtual Answer Ask(const QString& title, const QString& text, bool withCancel) = 0;
};

}  // namespace zrn
