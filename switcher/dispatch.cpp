#include "switcher/dispatch.h"

namespace zrn {

namespace {

// Known types whose handling arrives with the start-up exchange and the status reports;
// until then they are taken off the buffer and dropped, like unknown types.
void NotHandledYet(State&, const QByteArray&) {}

}  // namespace

void InstallMessageHandlers(State& s) {
  auto& table = s.linkState.handlers;
  table.fill(MessageHandler());
  table[0x81] = NotHandledYet;  // type request
  table[0xF2] = NotHandledYet;  // info request
  table[0xFC] = NotHandledYet;  // name table
  table[0x80] = NotHandledYet;  // password
  table[0xCB] = NotHandledYet;  // silence detect
  table[0xF7] = NotHandledYet;  // relay states
  table[0xF6] = NotHandledYet;  // crosspoint map
}

}  // namespace zrn
