#pragma once

#include <QByteArray>
#include <initializer_list>

namespace zrn::test {

// Literal wire bytes, written as in the protocol tables: Bytes({0xFE, 0x44, ...}).
inline QByteArray Bytes(std::initializer_list<int> values) {
  QByteArray out;
  for (int v : values) {
    out.append(static_cast<char>(v));
  }
  return out;
}

}  // namespace zrn::test
