#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "core/state.h"

namespace zrn {

// Two 7-bit protocol bytes, low first, as one number; 16383 (and an error-log line) when the
// result does not fit an Integer.
qint16 ConvertInteger(State& s, int low, int high);

// Sum modulo 128 of the bytes after the type byte, leaving out the last n bytes.
int CheckSum(const QByteArray& message, int n);

// 1-based position of the first end byte (255), or 0.
int FindEOM(State& s, const QByteArray& buffer);

// Cuts the first n bytes off the receive buffer and returns them.
QByteArray TrimBuffer(State& s, int n);

// Cuts the first n bytes off bytes and returns them.
QByteArray SplitBytes(QByteArray& bytes, int n);

// Minute of the week (day 0 = Monday) of a time text in 12- or 24-hour form.
qint16 ConvertMinutes(State& s, const QString& time, int day);

// Sorts names[low..high] ascending by character code, carrying the parallel numbers along.
void QuickSort(State& s, QStringList& names, std::vector<qint16>& numbers, int low, int high);

}  // namespace zrn
