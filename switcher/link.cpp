#include "switcher/link.h"

#include <QElapsedTimer>
#include <cstring>

#include "core/failure.h"
#include "storage/logs.h"
#include "switcher/byte_utils.h"
#include "switcher/frame.h"

namespace zrn {

namespace {

const QString kConnectedText = QStringLiteral("Server Module Connected");
const QString kNotConnectedText = QStringLiteral("Server Module Not Connected");

QString ServerText(const State& s) {
  return s.ServerAddress + QLatin1Char(':') + QString::number(s.ServerPort);
}

// The specified text with where the program is trying to connect and why the last try failed.
QString NotConnectedText(const State& s) {
  const QString reason = s.link != nullptr ? s.link->LastError() : QString();
  return kNotConnectedText + QStringLiteral(" - connecting to ") + ServerText(s) +
         (reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reason));
}

bool TopBitSet(char byte) {
  return (static_cast<quint8>(byte) & 0x80) != 0;
}

void ClearReceiveBuffer(State& s) {
  s.ReceiveBuffer.clear();
  s.linkState.eomSearchedBytes = 0;
}

// Removes n bytes from the front of the receive buffer, keeping the end-byte search in step.
void Consume(State& s, qsizetype n) {
  QByteArray& buffer = s.ReceiveBuffer;
  if (n >= buffer.size()) {
    buffer.clear();
  } else if (n > 0) {
    buffer.remove(0, n);  // moves the start of the bytes, not the bytes
  }
  s.linkState.eomSearchedBytes = std::max<qsizetype>(0, s.linkState.eomSearchedBytes - n);
}

// The front n bytes as a message, taken out of the receive buffer. They are copied into one
// buffer kept for every message, so a message costs no allocation; the caller holds a shared
// copy, which a handler that decodes again would leave untouched.
QByteArray TakeMessage(State& s, qsizetype n) {
  thread_local QByteArray message;
  message.resize(n);
  std::memcpy(message.data(), s.ReceiveBuffer.constData(), static_cast<size_t>(n));
  Consume(s, n);
  return message;
}

// Position of the byte that ends the front message: its end byte or, unless the message is
// taken whole, any byte with its top bit set, which starts another message and so cuts this
// one short. Searches only bytes not searched before; -1 while there is none.
qsizetype FindBoundary(State& s, bool takenWhole) {
  LinkState& link = s.linkState;
  const QByteArray& buffer = s.ReceiveBuffer;
  // A lone end byte at the front is a message of its own.
  qsizetype at = buffer[0] == kEndOfMessage ? 0 : std::max<qsizetype>(link.eomSearchedBytes, 1);
  if (takenWhole) {
    at = buffer.indexOf(kEndOfMessage, at);
  } else {
    while (at < buffer.size() && !TopBitSet(buffer[at])) {
      ++at;
    }
  }
  if (at < 0 || at >= buffer.size()) {
    link.eomSearchedBytes = buffer.size();
    return -1;
  }
  link.eomSearchedBytes = at;
  return at;
}

void ProcessFront(State& s) {
  QByteArray& buffer = s.ReceiveBuffer;
  for (;;) {
    qsizetype clear = 0;
    while (clear < buffer.size() && !TopBitSet(buffer[clear])) {
      ++clear;
    }
    if (clear > 0) {
      WriteErrorLog(s, QStringLiteral("Invalid Data %1 bytes").arg(clear), QString());
      Consume(s, clear);
      if (buffer.isEmpty()) {
        return;
      }
    }

    const auto type = static_cast<quint8>(buffer[0]);
    if (type == 0xF5) {
      ++s.linkState.messagesDecoded;
      Consume(s, 1);
      s.linkState.NoResponseCount = 0;
      static const QByteArray kKeepAliveAnswer(1, static_cast<char>(0xF4));
      SendToSwitcher(s, kKeepAliveAnswer);
      return;
    }
    if (type == 0xF4 || type == 0xF1 || type == 0xF3) {
      ++s.linkState.messagesDecoded;
      Consume(s, 1);
      s.linkState.NoResponseCount = 0;
      return;
    }

    // A cut-short message is dropped as soon as the next type byte arrives, not only once an
    // end byte follows: keep-alive answers queued behind it must not wait for a report that a
    // quiet switcher may not send for minutes.
    const qsizetype boundary = FindBoundary(s, type == 0x81);
    if (boundary < 0) {
      return;  // incomplete: wait for more bytes
    }
    if (buffer[boundary] != kEndOfMessage) {
      WriteErrorLog(s, QStringLiteral("Incomplete Message ") + QString::number(type, 16).toUpper(),
                    QString());
      Consume(s, boundary);
      continue;
    }
    const QByteArray message = TakeMessage(s, boundary + 1);
    ++s.linkState.messagesDecoded;
    // The status reports keep the panel update's memory in step; anything else may change
    // what the panels show in ways it does not follow.
    if (type != 0xCB && type != 0xF6 && type != 0xF7) {
      s.panelPass.Forget();
    }
    const MessageHandler& handler = s.linkState.handlers[type];
    if (handler) {
      handler(s, message);
    }
    return;
  }
}

// Whether a call of ProcessMessages could make progress now.
bool CanProgress(State& s) {
  const QByteArray& buffer = s.ReceiveBuffer;
  if (buffer.isEmpty()) {
    return false;
  }
  // Only an unfinished frame at the front waits for more bytes.
  const auto front = static_cast<quint8>(buffer[0]);
  const bool singleByte = front == 0xF1 || front == 0xF3 || front == 0xF4 || front == 0xF5;
  return !TopBitSet(buffer[0]) || singleByte || buffer.size() > s.linkState.eomSearchedBytes;
}

// While one lives, the panel update may keep what its last full pass found; only the reports
// run meanwhile. Nothing of it outlives the batch.
class PanelPassBatch {
 public:
  explicit PanelPassBatch(State& s) : s_(s) { ++s_.panelPass.batches; }
  ~PanelPassBatch() {
    if (--s_.panelPass.batches == 0) {
      s_.panelPass.Forget();
    }
  }
  PanelPassBatch(const PanelPassBatch&) = delete;
  PanelPassBatch& operator=(const PanelPassBatch&) = delete;

 private:
  State& s_;
};

}  // namespace

void CloseSwitcherLink(State& s) {
  if (s.link != nullptr) {
    s.link->Close();
  }
  const bool wasConnected = s.Connected;
  s.Connected = false;
  s.linkState.ExchangeComplete = false;
  ClearReceiveBuffer(s);
  s.StatusBarText = kNotConnectedText;
  // Once per change, never once per failed attempt, so an outage shows in the log with its times.
  if (wasConnected) {
    DisplayMessage(s, kNotConnectedText);
  }
}

void ConnectToSwitcher(State& s) {
  if (s.ServerPort < 1 || s.ServerPort > 65535) {
    // A hand-edited port would otherwise be cut to 16 bits and dial some other port.
    const QString refused = kNotConnectedText + QStringLiteral(
                                                    " - port %1 is not between 1 and "
                                                    "65535; no connection is tried")
                                                    .arg(s.ServerPort);
    if (s.Connected) {
      CloseSwitcherLink(s);
    }
    if (s.StatusBarText != refused) {
      WriteErrorLog(s, QStringLiteral("Server IP Port %1 refused").arg(s.ServerPort),
                    QStringLiteral("Error Connecting to Switcher"));
      s.StatusBarText = refused;
    }
    return;
  }
  Trap(s, QStringLiteral("Error Connecting to Switcher"), QStringLiteral("Connection Error"), [&] {
    if (s.Connected) {
      CloseSwitcherLink(s);
    } else if (s.link != nullptr) {
      s.link->Close();
    }
    ClearReceiveBuffer(s);
    if (s.link == nullptr) {
      throw Failure{91, QStringLiteral("Object variable or With block variable not set")};
    }
    s.link->Open(s.ServerAddress, static_cast<quint16>(s.ServerPort));
    if (!s.Connected) {
      s.StatusBarText = NotConnectedText(s);
    }
  });
}

void OnConnected(State& s) {
  // A new connection starts clean: no stale bytes, no polls counted against it, and its own
  // start-up exchange still to come.
  ClearReceiveBuffer(s);
  s.linkState.NoResponseCount = 0;
  s.linkState.ExchangeComplete = false;
  s.requests.exchangeOpen = false;
  s.requests.repeats = 0;
  s.requests.unansweredReported = false;
  const bool wasConnected = s.Connected;
  s.Connected = true;
  s.StatusBarText = kConnectedText;
  if (!wasConnected) {
    DisplayMessage(s, kConnectedText);
  }
}

void OnClosed(State& s) {
  CloseSwitcherLink(s);
  s.StatusBarText = NotConnectedText(s);
}

bool OnDataAvailable(State& s, const QByteArray& bytes) {
  const bool appended = Trap(s, QStringLiteral("Error Receiving IP Message"),
                             QStringLiteral("IP Error"), [&] { s.ReceiveBuffer.append(bytes); });
  // Bytes already searched hold no end byte.
  if (appended && s.ReceiveBuffer.size() > kMaxReceiveBuffer &&
      s.ReceiveBuffer.indexOf(kEndOfMessage, s.linkState.eomSearchedBytes) < 0) {
    WriteErrorLog(s, QStringLiteral("Receive Buffer Overflow %1").arg(s.ReceiveBuffer.size()),
                  QString());
    ClearReceiveBuffer(s);
  }
  return DecodeAvailable(s);
}

bool DecodeTick(State& s) {
  return DecodeAvailable(s);
}

bool DecodeAvailable(State& s, std::chrono::milliseconds budget) {
  QElapsedTimer spent;
  spent.start();
  // The activity lines of the reports are written together when the batch is done.
  const ActivityBatch batch(s);
  const PanelPassBatch panelPass(s);
  // At least one message per call, so a tick always makes progress.
  while (ProcessMessages(s)) {
    if (spent.elapsed() >= budget.count()) {
      break;
    }
  }
  return CanProgress(s);
}

bool ProcessMessages(State& s) {
  if (s.ReceiveBuffer.isEmpty()) {
    return false;
  }
  const qsizetype before = s.ReceiveBuffer.size();
  const bool ok = Trap(s, QStringLiteral("Error Processing Command"),
                       QStringLiteral("Connection Error"), [&] { ProcessFront(s); });
  if (!ok) {
    s.panelPass.Forget();  // a handler cut short may have changed anything
  }
  if (!ok && s.ReceiveBuffer.size() == before) {
    return false;  // nothing was removed: trying again now would fail the same way
  }
  return CanProgress(s);
}

bool SendToSwitcher(State& s, const QByteArray& message) {
  bool sent = false;
  Trap(s, QStringLiteral("Error sending to switcher"), QStringLiteral("Connection Error"), [&] {
    // Nothing goes out on a dead link: a command dropped here is not reported as done.
    if (!s.Connected || s.link == nullptr) {
      return;
    }
    QByteArray rest = message;
    while (!rest.isEmpty()) {
      QByteArray piece =
          rest.size() > kMaxWritePiece ? SplitBytes(rest, kMaxWritePiece) : std::exchange(rest, {});
      // A partial write continues with the bytes not yet written; a bounded number of tries
      // keeps a stalled socket from holding the program.
      for (int tries = 0; !piece.isEmpty(); ++tries) {
        if (tries >= 1000 || !s.link->CanWrite()) {
          return;
        }
        const qint64 written = s.link->Write(piece);
        if (written < 0) {
          return;
        }
        piece.remove(0, static_cast<qsizetype>(written));
      }
    }
    sent = true;
  });
  return sent;
}

}  // namespace zrn
