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

  // Once after every poll tick, at nowMs on the switcher's clock: accepts a connection attempt,
  // reports the silence changes that have become due and answers everything the monitor wrote,
  // so a command is carried out and reported before the next tick.
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

  int latches = 0;
  int releases = 0;

 private:
  void Deliver(const QList<QByteArray>& messages) {
    for (const QByteArray& message : messages) {
      // What the decode timer would do while bytes wait.
      for (bool waiting = OnDataAvailable(s_, message); waiting;) {
        waiting = DecodeTick(s_);
      }
    }
  }

  void Handle(const QByteArray& m) {
    const auto byte = [&](int at) { return static_cast<quint8>(m[at]); };
    if (byte(0) == sim::kKeepAlive) {
      Deliver({QByteArray(1, static_cast<char>(sim::kKeepAliveAnswer))});
    } else if (byte(0) == 0xF2 && m.size() == 17) {
      // Info request: the first mask's codes, names before the tables they size.
      const int mask = byte(1) | byte(2) << 7 | byte(3) << 14 | byte(4) << 21;
      const auto answer = [&](int code, const QList<QByteArray>& messages) {
        if ((mask & (1 << code)) != 0) {
          Deliver(messages);
        }
      };
      const auto names = [](sim::NameTable table, int count) {
        return QList<QByteArray>{sim::NameTableReport(table, sim::DefaultNames(table, count))};
      };
      answer(8, names(sim::NameTable::kInputs, kInputs));
      answer(9, names(sim::NameTable::kOutputs, kOutputs));
      answer(24, names(sim::NameTable::kOptos, 4));
      answer(25, names(sim::NameTable::kRelays, kRelays));
      answer(7, sim::CrosspointReports(state_, 0, kOutputs));
      answer(16, sim::RelayReports(state_, 0, kRelays));
    } else if (byte(0) == 0xCD) {
      // Advanced request: the monitor asks for detector settings and status together.
      Deliver(sim::SilenceConfigReports(state_, 0, kOutputs));
      Deliver(sim::SilenceStatusReports(state_, 0, kOutputs));
    } else if (byte(0) == 0xFE && m.size() == 9) {
      Switch(sim::Read14(m, 1), sim::Read14(m, 3), sim::Read14(m, 5));
    }
  }

  void Switch(int command, int source, int target) {
    if ((command == 4 || command == 0) && target < kOutputs) {
      state_.outputs[target].source = command == 4 ? source : sim::kNone;
      state_.Reconsider(target, nowMs_);
      Deliver(sim::CrosspointReports(state_, target, 1));
    } else if ((command == 68 || command == 64) && target < kRelays) {
      ++(command == 68 ? latches : releases);
      state_.relays[target] = command == 68 ? 1 : 0;
      Deliver(sim::RelayReports(state_, target, 1));
    }
  }

  State& s_;
  FakeLink& link_;
  sim::SwitchState state_;
  sim::FrameReader reader_;
  qint64 nowMs_ = 0;
  int accepted_ = 0;
};

}  // namespace zrn::test
