#pragma once

#include <QByteArray>
#include <QList>
#include <utility>

#include "core/state.h"
#include "sim/codec.h"
#include "sim/names.h"
#include "sim/reports.h"
#include "sim/switch_state.h"
#include "support/fake_link.h"
#include "switcher/link.h"

namespace zrn::test {

// The switcher's side of the fake link, in process: it reads what the monitor wrote, carries
// it out and answers through the monitor's receive path. Its messages come from the
// simulator's encoder, which shares no code with the monitor's decoder, and it keeps time on
// its own monotonic clock, so the monitor's wall clock can be set back and forth under it.
class WireSwitcher {
 public:
  static constexpr int kInputs = 256;
  static constexpr int kOutputs = 256;
  static constexpr int kRelays = 8;

  WireSwitcher(State& s, FakeLink& link)
      : s_(s),
        link_(link),
        state_(kInputs, kOutputs, kRelays, sim::SilenceConfig{.detectTime = 2, .returnTime = 1}) {}

  // Once after every poll tick, at nowMs on the switcher's clock: accepts a connection attempt
  // (opening the exchange with a type request), reports the silence changes that have become
  // due and answers everything the monitor wrote.
  void Serve(qint64 nowMs) {
    nowMs_ = nowMs;
    if (link_.opens > accepted_) {
      accepted_ = link_.opens;
      OnConnected(s_);
      Deliver({sim::TypeRequest()});
    }
    std::vector<std::pair<int, quint8>> items;
    for (int o : state_.TakeDue(nowMs_)) {
      items.emplace_back(o, state_.outputs[o].status & sim::kStatusSilent);
    }
    if (!items.empty()) {
      Deliver(sim::SilenceChangeReports(items));
    }
    // Within the tick, so a command is carried out and reported before the next one.
    while (!link_.wire.isEmpty()) {
      reader_.Append(std::exchange(link_.wire, QByteArray()));
      link_.pieces.clear();
      while (std::optional<sim::FrameReader::Item> item = reader_.Next()) {
        if (!item->skipped) {
          Handle(item->bytes);
        }
      }
    }
  }

  // Audio on an input (0-based) comes or goes; the outputs it feeds report it after their
  // detect or return time.
  void SetInputAudio(int input, bool audio) {
    state_.inputAudio[input] = audio;
    for (int o = 0; o < kOutputs; ++o) {
      if (state_.outputs[o].source == input) {
        state_.Reconsider(o, nowMs_);
      }
    }
  }

  const sim::SwitchState& state() const { return state_; }
  int latches() const { return latches_; }
  int releases() const { return releases_; }

 private:
  void Deliver(const QList<QByteArray>& messages) {
    for (const QByteArray& message : messages) {
      // What the decode timer would do while bytes wait.
      for (bool waiting = OnDataAvailable(s_, message); waiting;) {
        waiting = DecodeTick(s_);
      }
    }
  }

  static int Byte(const QByteArray& m, int at) { return static_cast<quint8>(m[at]); }

  void Handle(const QByteArray& m) {
    switch (Byte(m, 0)) {
      case sim::kKeepAlive:
        Deliver({QByteArray(1, static_cast<char>(sim::kKeepAliveAnswer))});
        break;
      case 0xF2:  // info request: the first mask's codes, names before the tables they size
        if (m.size() == 17) {
          const int mask = Byte(m, 1) | Byte(m, 2) << 7 | Byte(m, 3) << 14 | Byte(m, 4) << 21;
          Answer(mask, 8, {sim::NameTableReport(sim::NameTable::kInputs, Names(10, kInputs))});
          Answer(mask, 9, {sim::NameTableReport(sim::NameTable::kOutputs, Names(20, kOutputs))});
          Answer(mask, 24, {sim::NameTableReport(sim::NameTable::kOptos, Names(30, 4))});
          Answer(mask, 25, {sim::NameTableReport(sim::NameTable::kRelays, Names(40, kRelays))});
          Answer(mask, 7, sim::CrosspointReports(state_, 0, kOutputs));
          Answer(mask, 16, sim::RelayReports(state_, 0, kRelays));
        }
        break;
      case 0xCD:  // advanced request: the monitor asks for detector settings and status together
        Deliver(sim::SilenceConfigReports(state_, 0, kOutputs));
        Deliver(sim::SilenceStatusReports(state_, 0, kOutputs));
        break;
      case 0xFE:
        if (m.size() == 9) {
          Switch(sim::Read14(m, 1), sim::Read14(m, 3), sim::Read14(m, 5));
        }
        break;
      case sim::kSilenceDetect:
        if (m.size() == 22 && Byte(m, 1) == sim::kSilenceConfig && sim::Read14(m, 2) == 1) {
          const int o = sim::Read14(m, 4);
          state_.outputs[o].config = sim::SilenceConfig{
              sim::Read14(m, 6),  sim::Read14(m, 8),  sim::Read14(m, 10), sim::Read14(m, 12),
              sim::Read14(m, 14), sim::Read14(m, 16), sim::Read14(m, 18)};
          state_.outputs[o].dueMs = -1;
          state_.Reconsider(o, nowMs_);
          Deliver(sim::SilenceConfigReports(state_, o, 1));
        }
        break;
      default:
        break;
    }
  }

  void Switch(int command, int source, int target) {
    if ((command == 4 || command == 0) && target < kOutputs) {
      state_.outputs[target].source = command == 4 ? source : sim::kNone;
      state_.Reconsider(target, nowMs_);
      Deliver(sim::CrosspointReports(state_, target, 1));
    } else if ((command == 68 || command == 64) && target < kRelays) {
      ++(command == 68 ? latches_ : releases_);
      state_.relays[target] = command == 68 ? 1 : 0;
      Deliver(sim::RelayReports(state_, target, 1));
    }
  }

  void Answer(int mask, int code, const QList<QByteArray>& messages) {
    if ((mask & (1 << code)) != 0) {
      Deliver(messages);
    }
  }

  static QStringList Names(int table, int count) {
    return sim::DefaultNames(static_cast<sim::NameTable>(table), count);
  }

  State& s_;
  FakeLink& link_;
  sim::SwitchState state_;
  sim::FrameReader reader_;
  qint64 nowMs_ = 0;
  int accepted_ = 0;
  int latches_ = 0;
  int releases_ = 0;
};

}  // namespace zrn::test
