#pragma once

#include <QByteArray>
#include <chrono>

#include "core/state.h"

namespace zrn {

// Past this many bytes without a complete message the receive buffer is emptied.
inline constexpr qsizetype kMaxReceiveBuffer = 1024 * 1024;
// Longest piece handed to the socket in one write.
inline constexpr int kMaxWritePiece = 16384;
// Time the data handler and the decode tick may spend decoding before yielding.
inline constexpr std::chrono::milliseconds kDecodeBudget{20};

// Opens a new connection attempt to ServerAddress:ServerPort, abandoning any earlier one.
void ConnectToSwitcher(State& s);
// Closes the link and marks it down.
void CloseSwitcherLink(State& s);

// The socket's events.
void OnConnected(State& s);
// Appends the bytes and decodes what is complete; true while bytes still wait, that is while
// the decode timer must run.
bool OnDataAvailable(State& s, const QByteArray& bytes);
void OnClosed(State& s);

// The decode timer's tick; true while bytes still wait.
bool DecodeTick(State& s);
// Decodes complete messages until none is left or the budget is spent; true while bytes wait.
bool DecodeAvailable(State& s, std::chrono::milliseconds budget = kDecodeBudget);

// Handles the front of the receive buffer: at most one message or keep-alive byte, with any
// garbage before it. Returns false when nothing more can be done until more bytes arrive.
bool ProcessMessages(State& s);

// Writes one whole message; false when it was not sent (link down, write refused).
bool SendToSwitcher(State& s, const QByteArray& message);

}  // namespace zrn
