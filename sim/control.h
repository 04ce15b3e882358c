#pragma once

#include <QObject>
#include <QString>
#include <QTcpServer>

#include <memory>

class QSocketNotifier;

namespace zrn::sim {

class SimSwitcher;

// Runs one control line ("route 12 7") and returns its one-line reply, "ok ..." or
// "error ...". Channel numbers are 1-based. An empty line or a comment gives an empty reply.
QString RunCommand(SimSwitcher& sim, const QString& line);
// The one-line summary of the "status" command, without its "ok ".
QString StatusLine(const SimSwitcher& sim);
bool IsCommandName(const QString& word);
// One line per control command with its arguments, as "help" and --help list them.
QStringList CommandList();

// Control lines over loopback TCP: one command per line, one reply line per command.
class ControlServer : public QObject {
  Q_OBJECT

 public:
  explicit ControlServer(SimSwitcher& sim, QObject* parent = nullptr);
  bool Listen(quint16 port);
  quint16 Port() const { return server_.serverPort(); }
  QString ErrorString() const { return server_.errorString(); }

 private:
  void OnNewConnection();

  SimSwitcher& sim_;
  QTcpServer server_;
};

// Control lines on standard input, replies on standard output. Not available on Windows,
// where standard input cannot be watched by the event loop; use the control port there.
class StdinControl : public QObject {
  Q_OBJECT

 public:
  explicit StdinControl(SimSwitcher& sim, QObject* parent = nullptr);
  ~StdinControl() override;
  bool Start();

 private:
  void OnReadable();

  SimSwitcher& sim_;
  std::unique_ptr<QSocketNotifier> notifier_;
  QByteArray pending_;
};

}  // namespace zrn::sim
