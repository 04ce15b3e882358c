#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "core/state.h"

namespace zrn {

// Request codes: code c is bit c mod 28 of mask c / 28 (Req1 .. Req4).
inline constexpr int kRequestPassword = 1;
inline constexpr int kRequestCrosspointMap = 7;
inline constexpr int kRequestInputNames = 8;
inline constexpr int kRequestOutputNames = 9;
inline constexpr int kRequestRelayStates = 16;
inline constexpr int kRequestOptoNames = 24;
inline constexpr int kRequestRelayNames = 25;
inline constexpr int kRequestSilenceConfig = 90;
inline constexpr int kRequestSilenceStatus = 91;

// What a type request asks for: codes 7, 8, 9, 16, 24 and 25 in the first mask, codes 90 and
// 91 in the fourth.
inline constexpr qint32 kStartupMask1 = 50398080;
inline constexpr qint32 kStartupMask4 = 192;

// Ticks between two sendings of the requests still unanswered, and the repeats after which
// they are named in the activity log.
inline constexpr int kRequestRepeatTicks = 60;
inline constexpr int kRepeatsBeforeReport = 5;

// The outstanding-request bit of a code (0 to 111; other codes are ignored).
void SetRequest(State& s, int code);
void ClearRequest(State& s, int code);
bool RequestOutstanding(const State& s, int code);
bool AnyRequestOutstanding(const State& s);
// "Crosspoint Map", "Relay Names" ... ("Request 42" for a code the monitor never asks for).
QString RequestName(int code);

// Sends an info request (0xF2) for three masks, then takes them as Req1 .. Req3.
void SendInfoRequest(State& s, qint32 mask1, qint32 mask2, qint32 mask3);
// Fills s.requests.RequestList with one entry per set bit (bits 1 to 28) of the four masks;
// returns the number of entries.
int BuildRequestList(State& s, qint32 mask1, qint32 mask2, qint32 mask3, qint32 mask4);
// Sends an advanced info request (0xCD) for the first count entries and adds their bits to the
// outstanding masks.
void SendAdvancedInfoRequest(State& s, const std::vector<InfoRequest>& list, int count);
// Asks for one request code again and adds its bit to what is outstanding, leaving the other
// outstanding requests as they are.
void RequestAgain(State& s, int code);

// Received messages, each whole (type byte to end byte).
void ProcessTypeRequest(State& s, const QByteArray& message);
void ProcessInfoRequest(State& s, const QByteArray& message);
void ProcessPassword(State& s, const QByteArray& message);

// After each answer: when the present connection's type request has had all its answers, the
// exchange is complete and what was held back while the link was down is sent.
void CompleteExchangeIfAnswered(State& s);

// The poll timer's repeat of unanswered requests: counts RetryCountdown down and, when it has
// run out, sends every outstanding request again. Returns whether any request is outstanding
// (the rest of the poll pass waits for a complete exchange).
bool RepeatOutstandingRequests(State& s);

}  // namespace zrn
