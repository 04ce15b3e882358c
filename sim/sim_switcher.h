#pragma once

#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

#include "sim/codec.h"
#include "sim/switch_state.h"

class QTcpSocket;

namespace zrn::sim {

class Trace;

struct SimOptions {
  int inputs = 256;
  int outputs = 256;
  int relays = 16;
  int optos = 16;
  int detectSeconds = 2;
  int returnSeconds = 1;
};

// The switcher's server module: accepts monitor connections, answers their requests, carries
// out their commands and reports every change to all of them. Channel numbers are 0-based.
class SimSwitcher : public QObject {
  Q_OBJECT

 public:
  explicit SimSwitcher(const SimOptions& options, QObject* parent = nullptr);
  ~SimSwitcher() override;

  bool Listen(const QHostAddress& address, quint16 port);
  quint16 Port() const { return server_.serverPort(); }
  QString ErrorString() const { return server_.errorString(); }
  void SetTrace(Trace* trace) { trace_ = trace; }

  int InputCount() const { return static_cast<int>(state_.inputAudio.size()); }
  int OutputCount() const { return static_cast<int>(state_.outputs.size()); }
  int RelayCount() const { return static_cast<int>(state_.relays.size()); }
  int ConnectionCount() const { return static_cast<int>(connections_.size()); }
  const SwitchState& State() const { return state_; }
  bool Muted() const { return muted_; }
  // Relay latch and release commands received from monitors since start.
  qint64 RelayCommands() const { return relayCommands_; }

  void SetInputAudio(int input, bool audio);
  // nullopt hands the output back to the audio of its routed input.
  void ForceOutput(int output, std::optional<bool> audio);
  void SetPeak(int output, bool on);
  // Flips the peak indicator of the outputs in turn, count times, and sends every change report
  // in one write, as a busy switcher's backlog arrives; returns the bytes sent to each monitor.
  qsizetype Burst(int count);
  // input kNone clears the output.
  void Route(int input, int output);
  void SetRelay(int relay, bool on);
  // Closes every monitor connection; returns how many there were.
  int DropConnections();
  // A muted switcher stops answering keep-alives.
  void SetMuted(bool muted) { muted_ = muted; }
  // Writes raw bytes to every connection; returns the number of connections.
  int SendRaw(const QByteArray& bytes);
  void RequestQuit() { emit quitRequested(); }

 signals:
  void quitRequested();

 private:
  struct Connection {
    int id = 0;
    QTcpSocket* socket = nullptr;
    FrameReader reader;
  };

  void OnNewConnection();
  void OnReadyRead(int id);
  void Remove(int id, const char* why);
  Connection* Find(int id);

  // Each returns a note for the trace when the message was not acted on.
  QString Handle(Connection& c, const QByteArray& message);
  QString HandleInfoRequest(Connection& c, const QByteArray& message);
  QString HandleAdvancedRequest(Connection& c, const QByteArray& message);
  QString HandleSwitchCommand(const QByteArray& message);
  QString HandleSilenceConfig(const QByteArray& message);

  void Send(Connection& c, const QByteArray& bytes);
  void Send(Connection& c, const QList<QByteArray>& messages);
  void Broadcast(const QList<QByteArray>& messages);

  // Re-evaluates outputs after a change of audio, routing or detector configuration.
  void Reconsider(const std::vector<int>& outputs);
  void ReportDueChanges();
  void ScheduleAudioTimer();

  SwitchState state_;
  QStringList inputNames_, outputNames_, optoNames_, relayNames_;
  QTcpServer server_;
  std::vector<std::unique_ptr<Connection>> connections_;
  int nextId_ = 1;
  bool muted_ = false;
  qint64 relayCommands_ = 0;
  Trace* trace_ = nullptr;
  QElapsedTimer clock_;
  QTimer audioTimer_;
};

}  // namespace zrn::sim
