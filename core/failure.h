#pragma once

#include <QString>

namespace zrn {

// A trapped run-time error, numbered as the error log shows them.
struct Failure {
  int number = 0;
  QString description;

  static Failure Overflow() { return {6, QStringLiteral("Overflow")}; }
  static Failure OutOfMemory() { return {7, QStringLiteral("Out of memory")}; }
  static Failure SubscriptOutOfRange() { return {9, QStringLiteral("Subscript out of range")}; }
  static Failure TypeMismatch() { return {13, QStringLiteral("Type mismatch")}; }
  static Failure FileNotFound() { return {53, QStringLiteral("File not found")}; }
  static Failure DeviceIo() { return {57, QStringLiteral("Device I/O error")}; }
  static Failure InputPastEnd() { return {62, QStringLiteral("Input past end of file")}; }
  static Failure PathFileAccess() { return {75, QStringLiteral("Path/File access error")}; }
  static Failure InvalidArgument() {
    return {5, QStringLiteral("Invalid procedure call or argument")};
  }
};

// Index check used for every table lookup: throws instead of reading out of bounds.
template <class Table>
auto& At(Table& table, long long index) {
  if (index < 0 || index >= static_cast<long long>(table.size())) {
    throw Failure::SubscriptOutOfRange();
  }
  return table[static_cast<typename Table::size_type>(index)];
}

// Narrowing to a 16-bit Integer field, with overflow as an error.
inline qint16 ToInteger(long long value) {
  if (value < -32768 || value > 32767) {
    throw Failure::Overflow();
  }
  return static_cast<qint16>(value);
}

}  // namespace zrn
