#include "sim/sim_switcher.h"

#include <QTcpSocket>

#include <algorithm>

#include "sim/names.h"
#include "sim/reports.h"
#include "sim/trace.h"

namespace zrn::sim {

namespace {

// Request codes of the info request (first mask) that this switcher answers, in the order it
// answers them: names before the map so a monitor sizes its tables first.
constexpr int kCodePassword = 1;
constexpr int kCodeCrosspoints = 7;
constexpr int kCodeInputNames = 8;
constexpr int kCodeOutputNames = 9;
constexpr int kCodeRelayStates = 16;
constexpr int kCodeOptoNames = 24;
constexpr int kCodeRelayNames = 25;

// Advanced request codes.
constexpr int kCodeSilenceConfig = 90;
constexpr int kCodeSilenceStatus = 91;
constexpr int kParamsFlag = 8192;

// Message types the monitor sends.
constexpr quint8 kInfoRequest = 0xF2;
constexpr quint8 kAdvancedRequest = 0xCD;
constexpr quint8 kSwitchCommand = 0xFE;

constexpr int kCommandClear = 0;
constexpr int kCommandConnect = 4;
constexpr int kCommandRelayRelease = 64;
constexpr int kCommandRelayLatch = 68;

// A monitor that stops reading must not make the switcher buffer without end.
constexpr qint64 kMaxUnsent = 16 * 1024 * 1024;

const QByteArray kPasswordText = QByteArrayLiteral("PENNARO");

int Byte(const QByteArray& message, int offset) {
  return static_cast<quint8>(message[offset]);
}

}  // namespace

SimSwitcher::SimSwitcher(const SimOptions& options, QObject* parent)
    : QObject(parent),
      state_(
          options.inputs, options.outputs, options.relays,
          SilenceConfig{.detectTime = options.detectSeconds, .returnTime = options.returnSeconds}),
      inputNames_(DefaultNames(NameTable::kInputs, options.inputs)),
      outputNames_(DefaultNames(NameTable::kOutputs, options.outputs)),
      optoNames_(DefaultNames(NameTable::kOptos, options.optos)),
      relayNames_(DefaultNames(NameTable::kRelays, options.relays)) {
  clock_.start();
  audioTimer_.setSingleShot(true);
  audioTimer_.setTimerType(Qt::PreciseTimer);
  connect(&audioTimer_, &QTimer::timeout, this, &SimSwitcher::ReportDueChanges);
  connect(&server_, &QTcpServer::newConnection, this, &SimSwitcher::OnNewConnection);
}

SimSwitcher::~SimSwitcher() {
  // Sockets die with the server; none may call back into a half-destroyed switcher.
  for (const auto& c : connections_) {
    QObject::disconnect(c->socket, nullptr, this, nullptr);
    c->socket->abort();
  }
}

bool SimSwitcher::Listen(const QHostAddress& address, quint16 port) {
  return server_.listen(address, port);
}

SimSwitcher::Connection* SimSwitcher::Find(int id) {
  for (const auto& c : connections_) {
    if (c->id == id) {
      return c.get();
    }
  }
  return nullptr;
}

void SimSwitcher::OnNewConnection() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    // A real switcher reports a change the moment it happens, not when an ACK comes back.
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    auto connection = std::make_unique<Connection>();
    const int id = nextId_++;
    connection->id = id;
    connection->socket = socket;
    connect(socket, &QTcpSocket::readyRead, this, [this, id] { OnReadyRead(id); });
    connect(socket, &QTcpSocket::disconnected, this, [this, id] { Remove(id, "closed by peer"); });
    connections_.push_back(std::move(connection));
    if (trace_) {
      trace_->Log(id, "--", {},
                  QStringLiteral("connected from %1:%2")
                      .arg(socket->peerAddress().toString())
                      .arg(socket->peerPort()));
    }
    // The switcher opens the exchange.
    Send(*connections_.back(), TypeRequest());
  }
}

void SimSwitcher::Remove(int id, const char* why) {
  const auto it = std::find_if(connections_.begin(), connections_.end(),
                               [id](const auto& c) { return c->id == id; });
  if (it == connections_.end()) {
    return;
  }
  QTcpSocket* socket = (*it)->socket;
  connections_.erase(it);
  QObject::disconnect(socket, nullptr, this, nullptr);
  if (trace_) {
    trace_->Log(id, "--", {}, QString::fromLatin1(why));
  }
  socket->abort();
  socket->deleteLater();
}

int SimSwitcher::DropConnections() {
  std::vector<std::unique_ptr<Connection>> dropped;
  dropped.swap(connections_);
  for (const auto& c : dropped) {
    QTcpSocket* socket = c->socket;
    QObject::disconnect(socket, nullptr, this, nullptr);
    if (trace_) {
      trace_->Log(c->id, "--", {}, QStringLiteral("dropped"));
    }
    // An orderly close, so bytes already written still reach the monitor.
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    socket->disconnectFromHost();
    if (socket->state() == QAbstractSocket::UnconnectedState) {
      socket->deleteLater();
    }
  }
  return static_cast<int>(dropped.size());
}

void SimSwitcher::OnReadyRead(int id) {
  Connection* c = Find(id);
  if (!c) {
    return;
  }
  c->reader.Append(c->socket->readAll());
  while ((c = Find(id)) != nullptr) {
    std::optional<FrameReader::Item> item = c->reader.Next();
    if (!item) {
      break;
    }
    if (trace_) {
      trace_->Log(id, item->skipped ? "skip" : "rx", item->bytes);
    }
    if (!item->skipped) {
      const QString note = Handle(*c, item->bytes);
      if (trace_ && !note.isEmpty()) {
        trace_->Log(id, "--", {}, note);
      }
    }
  }
  if (c && c->reader.Overflowed()) {
    Remove(id, "dropped: over 1 MiB without an end byte");
  }
}

QString SimSwitcher::Handle(Connection& c, const QByteArray& message) {
  const auto type = static_cast<quint8>(message[0]);
  if (type == kKeepAlive) {
    if (muted_) {
      return QStringLiteral("muted: keep-alive not answered");
    }
    Send(c, QByteArray(1, static_cast<char>(kKeepAliveAnswer)));
    return {};
  }
  if (IsSingleByteMessage(type)) {
    return {};
  }
  if (!HasValidChecksum(message)) {
    return QStringLiteral("ignored: bad checksum");
  }
  switch (type) {
    case kTypeRequest:  // the monitor's type answer; nothing depends on it
      return {};
    case kInfoRequest:
      return HandleInfoRequest(c, message);
    case kAdvancedRequest:
      return HandleAdvancedRequest(c, message);
    case kSwitchCommand:
      return HandleSwitchCommand(message);
    case kSilenceDetect:
      return HandleSilenceConfig(message);
    default:
      return QStringLiteral("ignored: unknown type");
  }
}

QString SimSwitcher::HandleInfoRequest(Connection& c, const QByteArray& message) {
  if (message.size() != 17) {
    return QStringLiteral("ignored: length");
  }
  const int mask1 =
      Byte(message, 1) | Byte(message, 2) << 7 | Byte(message, 3) << 14 | Byte(message, 4) << 21;
  const auto wanted = [&](int code) { return (mask1 & (1 << code)) != 0; };
  if (wanted(kCodePassword)) {
    Send(c, PasswordReport(kPasswordText));
  }
  struct Names {
    int code;
    NameTable table;
    const QStringList& names;
  };
  for (const Names& t : {Names{kCodeInputNames, NameTable::kInputs, inputNames_},
                         Names{kCodeOutputNames, NameTable::kOutputs, outputNames_},
                         Names{kCodeOptoNames, NameTable::kOptos, optoNames_},
                         Names{kCodeRelayNames, NameTable::kRelays, relayNames_}}) {
    if (wanted(t.code)) {
      Send(c, NameTableReport(t.table, t.names));
    }
  }
  if (wanted(kCodeCrosspoints)) {
    Send(c, CrosspointReports(state_, 0, OutputCount()));
  }
  if (wanted(kCodeRelayStates)) {
    Send(c, RelayReports(state_, 0, RelayCount()));
  }
  return {};
}

QString SimSwitcher::HandleAdvancedRequest(Connection& c, const QByteArray& message) {
  const int end = static_cast<int>(message.size()) - 2;
  if (end < 5) {
    return QStringLiteral("ignored: length");
  }
  struct Entry {
    int code, first, count;
  };
  std::vector<Entry> entries;
  const int count = Read14(message, 3);
  int at = 5;
  for (int i = 0; i < count; ++i) {
    if (at + 2 > end) {
      return QStringLiteral("ignored: length");
    }
    const int word = Read14(message, at);
    at += 2;
    Entry entry{word & ~kParamsFlag, 0, OutputCount()};
    if (word & kParamsFlag) {
      if (at + 4 > end) {
        return QStringLiteral("ignored: length");
      }
      // With parameters the request covers count outputs from the first one.
      entry.first = std::min(Read14(message, at), OutputCount());
      entry.count = std::min(Read14(message, at + 2), OutputCount() - entry.first);
      at += 4;
    }
    entries.push_back(entry);
  }
  if (at != end) {
    return QStringLiteral("ignored: length");
  }
  for (const Entry& e : entries) {
    if (e.code == kCodeSilenceConfig) {
      Send(c, SilenceConfigReports(state_, e.first, e.count));
    } else if (e.code == kCodeSilenceStatus) {
      Send(c, SilenceStatusReports(state_, e.first, e.count));
    }
  }
  return {};
}

QString SimSwitcher::HandleSwitchCommand(const QByteArray& message) {
  if (message.size() != 9) {
    return QStringLiteral("ignored: length");
  }
  const int command = Read14(message, 1);
  const int source = Read14(message, 3);
  const int target = Read14(message, 5);
  const bool sourceOk = source == kNone || source < InputCount();
  if (command == kCommandConnect && target < OutputCount() && sourceOk) {
    Route(source, target);
  } else if (command == kCommandClear && source == kNone && target < OutputCount()) {
    Route(kNone, target);
  } else if ((command == kCommandRelayLatch || command == kCommandRelayRelease) &&
             target < RelayCount()) {
    ++relayCommands_;
    SetRelay(target, command == kCommandRelayLatch);
  } else {
    return QStringLiteral("ignored: command or channel out of range");
  }
  return {};
}

QString SimSwitcher::HandleSilenceConfig(const QByteArray& message) {
  if (message.size() < 8 || Byte(message, 1) != kSilenceConfig) {
    return QStringLiteral("ignored: not a configuration");
  }
  int count = Read14(message, 2);
  const int first = Read14(message, 4);
  if (message.size() != 14 * count + 8) {
    return QStringLiteral("ignored: length");
  }
  count = std::max(0, std::min(count, OutputCount() - first));
  std::vector<int> changed;
  for (int i = 0; i < count; ++i) {
    const int at = 6 + 14 * i;
    OutputState& out = state_.outputs[first + i];
    out.config =
        SilenceConfig{Read14(message, at),     Read14(message, at + 2), Read14(message, at + 4),
                      Read14(message, at + 6), Read14(message, at + 8), Read14(message, at + 10),
                      Read14(message, at + 12)};
    out.dueMs = -1;  // new times apply from now on
    changed.push_back(first + i);
  }
  if (count > 0) {
    Broadcast(SilenceConfigReports(state_, first, count));
  }
  Reconsider(changed);
  return {};
}

void SimSwitcher::Send(Connection& c, const QByteArray& bytes) {
  if (c.socket->bytesToWrite() > kMaxUnsent) {
    const int id = c.id;
    QMetaObject::invokeMethod(
        this, [this, id] { Remove(id, "dropped: not reading"); }, Qt::QueuedConnection);
    return;
  }
  if (trace_) {
    trace_->Log(c.id, "tx", bytes);
  }
  c.socket->write(bytes);
}

void SimSwitcher::Send(Connection& c, const QList<QByteArray>& messages) {
  for (const QByteArray& m : messages) {
    Send(c, m);
  }
}

void SimSwitcher::Broadcast(const QList<QByteArray>& messages) {
  for (const auto& c : connections_) {
    Send(*c, messages);
  }
}

int SimSwitcher::SendRaw(const QByteArray& bytes) {
  Broadcast({bytes});
  return ConnectionCount();
}

void SimSwitcher::SetInputAudio(int input, bool audio) {
  state_.inputAudio[input] = audio;
  std::vector<int> fed;
  for (int o = 0; o < OutputCount(); ++o) {
    if (state_.outputs[o].source == input) {
      fed.push_back(o);
    }
  }
  Reconsider(fed);
}

void SimSwitcher::ForceOutput(int output, std::optional<bool> audio) {
  state_.outputs[output].forcedAudio = audio;
  Reconsider({output});
}

void SimSwitcher::SetPeak(int output, bool on) {
  quint8& status = state_.outputs[output].status;
  status = on ? (status | kStatusPeak) : (status & ~kStatusPeak);
  Broadcast(SilenceChangeReports({{output, static_cast<quint8>(kPeakItem | (on ? 1 : 0))}}));
}

qsizetype SimSwitcher::Burst(int count) {
  QByteArray bytes;
  for (int i = 0; i < count; ++i) {
    const int output = i % OutputCount();
    quint8& status = state_.outputs[output].status;
    status ^= kStatusPeak;
    const bool on = (status & kStatusPeak) != 0;
    for (const QByteArray& report :
         SilenceChangeReports({{output, static_cast<quint8>(kPeakItem | (on ? 1 : 0))}})) {
      bytes += report;
    }
  }
  SendRaw(bytes);
  return bytes.size();
}

void SimSwitcher::Route(int input, int output) {
  state_.outputs[output].source = input;
  Broadcast(CrosspointReports(state_, output, 1));
  Reconsider({output});
}

void SimSwitcher::SetRelay(int relay, bool on) {
  state_.relays[relay] = on ? 1 : 0;
  Broadcast(RelayReports(state_, relay, 1));
}

void SimSwitcher::Reconsider(const std::vector<int>& outputs) {
  std::vector<std::pair<int, quint8>> cleared;
  for (int o : outputs) {
    if (state_.Reconsider(o, clock_.elapsed())) {
      cleared.emplace_back(o, 0);
    }
  }
  if (!cleared.empty()) {
    Broadcast(SilenceChangeReports(cleared));
  }
  ReportDueChanges();
}

void SimSwitcher::ReportDueChanges() {
  std::vector<std::pair<int, quint8>> items;
  for (int o : state_.TakeDue(clock_.elapsed())) {
    items.emplace_back(o, state_.outputs[o].status & kStatusSilent);
  }
  if (!items.empty()) {
    Broadcast(SilenceChangeReports(items));
  }
  ScheduleAudioTimer();
}

void SimSwitcher::ScheduleAudioTimer() {
  const qint64 next = state_.NextDue();
  if (next < 0) {
    audioTimer_.stop();
    return;
  }
  audioTimer_.start(static_cast<int>(std::max<qint64>(0, next - clock_.elapsed())));
}

}  // namespace zrn::sim
