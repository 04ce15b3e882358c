#include "switcher/dispatch.h"

#include "switcher/name_tables.h"
#include "switcher/startup_exchange.h"
#include "switcher/status_reports.h"

namespace zrn {

namespace {

// Every answer may be the last one the start-up exchange waits for.
template <void (*Handler)(State&, const QByteArray&)>
void Answer(State& s, const QByteArray& message) {
  Handler(s, message);
  CompleteExchangeIfAnswered(s);
}

}  // namespace

void InstallMessageHandlers(State& s) {
  auto& table = s.linkState.handlers;
  table.fill(MessageHandler());
  table[0x81] = ProcessTypeRequest;
  table[0xF2] = ProcessInfoRequest;
  table[0xFC] = Answer<ProcessAlphaTable>;
  table[0x80] = Answer<ProcessPassword>;
  table[0xCB] = Answer<ProcessSilenceDetect>;
  table[0xF7] = Answer<ProcessRelayStates>;
  table[0xF6] = Answer<ProcessCrosspointMap>;
}

}  // namespace zrn
