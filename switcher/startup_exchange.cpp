#include "switcher/startup_exchange.h"

#include <QStringList>
#include <algorithm>

#include "storage/logs.h"
#include "switcher/frame.h"
#include "switcher/link.h"
#include "switcher/message_reader.h"

namespace zrn {

namespace {

constexpr int kBitsPerMask = 28;
constexpr int kCodeCount = 4 * kBitsPerMask;
constexpr quint8 kTypeRequest = 0x81;
constexpr quint8 kInfoRequest = 0xF2;
constexpr quint8 kAdvancedInfoRequest = 0xCD;
// The monitor's type, answered to every type request.
constexpr int kMonitorType = 160;
// Set in an advanced request entry's code when two parameters follow it.
constexpr int kParametersFollow = 8192;

const QString kConnectedText = QStringLiteral("Server Module Connected");

template <class Requests>
auto& Mask(Requests& r, int index) {
  switch (index) {
    case 0:
      return r.Req1;
    case 1:
      return r.Req2;
    case 2:
      return r.Req3;
    default:
      return r.Req4;
  }
}

qint32 Bit(int code) {
  return static_cast<qint32>(1u << (code % kBitsPerMask));
}

// Seven bits of a mask, starting at bit shift.
char Group(qint32 mask, int shift) {
  return static_cast<char>((static_cast<quint32>(mask) >> shift) & 127);
}

QByteArray InfoRequestFrame(qint32 mask1, qint32 mask2, qint32 mask3) {
  QByteArray payload;
  for (qint32 mask : {mask1, mask2}) {
    for (int shift = 0; shift < 28; shift += 7) {
      payload.append(Group(mask, shift));
    }
  }
  // Only the low 14 bits of the third mask travel.
  payload.append(Group(mask3, 0));
  payload.append(Group(mask3, 7));
  payload.append(QByteArray(4, '\0'));
  return BuildFrame(kInfoRequest, payload);
}

void NameUnansweredRequests(State& s) {
  QStringList names;
  for (int code = 0; code < kCodeCount; ++code) {
    if (RequestOutstanding(s, code)) {
      names << RequestName(code);
    }
  }
  const QString line =
      QStringLiteral("No answer from switcher: ") + names.join(QStringLiteral(", "));
  DisplayMessage(s, line);
  s.StatusBarText = line;
  s.requests.unansweredReported = true;
}

}  // namespace

void SetRequest(State& s, int code) {
  if (code >= 0 && code < kCodeCount) {
    Mask(s.requests, code / kBitsPerMask) |= Bit(code);
  }
}

void ClearRequest(State& s, int code) {
  if (code >= 0 && code < kCodeCount) {
    Mask(s.requests, code / kBitsPerMask) &= ~Bit(code);
  }
}

bool RequestOutstanding(const State& s, int code) {
  if (code < 0 || code >= kCodeCount) {
    return false;
  }
  return (Mask(s.requests, code / kBitsPerMask) & Bit(code)) != 0;
}

bool AnyRequestOutstanding(const State& s) {
  const RequestState& r = s.requests;
  return r.Req1 != 0 || r.Req2 != 0 || r.Req3 != 0 || r.Req4 != 0;
}

QString RequestName(int code) {
  struct Named {
    int code;
    const char* name;
  };
  static constexpr Named kNames[] = {
      {kRequestPassword, "Password"},
      {kRequestCrosspointMap, "Crosspoint Map"},
      {kRequestInputNames, "Input Names"},
      {kRequestOutputNames, "Output Names"},
      {kRequestRelayStates, "Relay States"},
      {kRequestOptoNames, "Opto Names"},
      {kRequestRelayNames, "Relay Names"},
      {kRequestSilenceConfig, "Silence Detect Configuration"},
      {kRequestSilenceStatus, "Silence Detect Status"},
  };
  for (const Named& n : kNames) {
    if (n.code == code) {
      return QString::fromLatin1(n.name);
    }
  }
  return QStringLiteral("Request %1").arg(code);
}

void SendInfoRequest(State& s, qint32 mask1, qint32 mask2, qint32 mask3) {
  Trap(s, QStringLiteral("Error Sending Info Request"), QStringLiteral("Connection Error"), [&] {
    SendToSwitcher(s, InfoRequestFrame(mask1, mask2, mask3));
    s.requests.Req1 = mask1;
    s.requests.Req2 = mask2;
    s.requests.Req3 = mask3;
  });
}

int BuildRequestList(State& s, qint32 mask1, qint32 mask2, qint32 mask3, qint32 mask4) {
  int count = 0;
  Trap(s, QStringLiteral("Error determining request values"),
       QStringLiteral("Switcher Message Error"), [&] {
         std::vector<InfoRequest>& list = s.requests.RequestList;
         list.clear();
         const qint32 masks[] = {mask1, mask2, mask3, mask4};
         for (int m = 0; m < 4; ++m) {
           // Bit 0 of a mask is never a request.
           for (int k = 1; k <= kBitsPerMask; ++k) {
             if (((static_cast<quint32>(masks[m]) >> k) & 1u) != 0) {
               list.push_back({ToInteger(kBitsPerMask * m + k), kNone, kNone});
             }
           }
         }
         count = static_cast<int>(list.size());
       });
  return count;
}

void SendAdvancedInfoRequest(State& s, const std::vector<InfoRequest>& list, int count) {
  Trap(s, QStringLiteral("Error Sending Advanced Info Request"),
       QStringLiteral("Switcher Command Error"), [&] {
         const int n = std::clamp(count, 0, static_cast<int>(list.size()));
         QByteArray payload;
         payload.append(static_cast<char>(0x7F));
         payload.append('\0');
         AppendInt14(payload, n);
         for (int i = 0; i < n; ++i) {
           const InfoRequest& entry = list[static_cast<size_t>(i)];
           if (entry.Param2 != kNone) {
             AppendInt14(payload, entry.Code + kParametersFollow);
             AppendInt14(payload, entry.Param1);
             AppendInt14(payload, entry.Param2);
           } else {
             AppendInt14(payload, entry.Code);
           }
         }
         SendToSwitcher(s, BuildFrame(kAdvancedInfoRequest, payload));
         for (int i = 0; i < n; ++i) {
           SetRequest(s, list[static_cast<size_t>(i)].Code);
         }
       });
}

void RequestAgain(State& s, int code) {
  if (code < 0 || code >= kCodeCount) {
    return;
  }
  if (code < 3 * kBitsPerMask) {
    qint32 masks[3] = {0, 0, 0};
    masks[code / kBitsPerMask] = Bit(code);
    Trap(s, QStringLiteral("Error Sending Info Request"), QStringLiteral("Connection Error"),
         [&] { SendToSwitcher(s, InfoRequestFrame(masks[0], masks[1], masks[2])); });
    SetRequest(s, code);
  } else {
    SendAdvancedInfoRequest(s, {InfoRequest{ToInteger(code), kNone, kNone}}, 1);
  }
}

void ProcessTypeRequest(State& s, const QByteArray& message) {
  const qsizetype length = message.size();
  if ((length != 4 && length != 5) || !ChecksumOk(message) ||
      static_cast<quint8>(message[1]) != 0x64) {
    return;
  }
  // The switcher (re)opens the exchange: nothing counts as complete until it is answered anew.
  RequestState& r = s.requests;
  r.exchangeOpen = true;
  r.repeats = 0;
  s.linkState.ExchangeComplete = false;

  QByteArray type;
  AppendInt14(type, kMonitorType);
  SendToSwitcher(s, BuildFrame(kTypeRequest, type));
  SendInfoRequest(s, kStartupMask1, 0, 0);
  const int count = BuildRequestList(s, 0, 0, 0, kStartupMask4);
  SendAdvancedInfoRequest(s, s.requests.RequestList, count);
}

void ProcessInfoRequest(State& /*s*/, const QByteArray& /*message*/) {
  // The switcher's own info requests ask for nothing the monitor keeps: taken off the wire and
  // left unanswered.
}

void ProcessPassword(State& s, const QByteArray& message) {
  Trap(s, QStringLiteral("Error Receiving Password"), QStringLiteral("IP Message Error"), [&] {
    const bool wellFormed = message.size() >= 5 &&
                            message.size() == static_cast<quint8>(message[2]) + 5 &&
                            ChecksumOk(message);
    if (wellFormed) {
      ClearRequest(s, kRequestPassword);
      return;
    }
    // Asking again must not forget the other answers still awaited.
    RequestAgain(s, kRequestPassword);
  });
}

void CompleteExchangeIfAnswered(State& s) {
  RequestState& r = s.requests;
  if (!r.exchangeOpen || !s.Connected || AnyRequestOutstanding(s)) {
    return;
  }
  r.exchangeOpen = false;
  r.repeats = 0;
  s.linkState.ExchangeComplete = true;
  // Pending routes start graces and shows take outputs over: the panels' memory is stale.
  s.panelPass.Forget();
  if (r.unansweredReported) {
    r.unansweredReported = false;
    s.StatusBarText = kConnectedText;
  }
  s.reactions.exchangeCompleted(s);
}

bool RepeatOutstandingRequests(State& s) {
  RequestState& r = s.requests;
  if (!AnyRequestOutstanding(s)) {
    return false;
  }
  // A request cannot be answered on a dead link: nothing is repeated or counted against the
  // switcher until the next connection asks again.
  if (!s.Connected) {
    return true;
  }
  qint16& countdown = s.poll.RetryCountdown;
  if (countdown >= 1) {
    --countdown;
    return true;
  }
  if (r.exchangeOpen && r.repeats >= kRepeatsBeforeReport && !r.unansweredReported) {
    NameUnansweredRequests(s);
  }
  SendInfoRequest(s, r.Req1, r.Req2, r.Req3);
  countdown = kRequestRepeatTicks;
  if (r.Req4 != 0) {
    const int count = BuildRequestList(s, 0, 0, 0, r.Req4);
    SendAdvancedInfoRequest(s, r.RequestList, count);
  }
  ++r.repeats;
  return true;
}

}  // namespace zrn
