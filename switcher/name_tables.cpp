#include "switcher/name_tables.h"

#include <algorithm>

#include "core/failure.h"
#include "storage/logs.h"
#include "switcher/byte_utils.h"
#include "switcher/message_reader.h"
#include "switcher/startup_exchange.h"

namespace zrn {

namespace {

// The entries one message carries, as sent.
struct ReceivedNames {
  int table = 0;
  int first = 0;
  QStringList names;
  std::vector<qint16> numbers;
};

// Names sorted ascending, with the number each sorted entry carries and, per entry number,
// its sorted position.
struct SortedNames {
  QStringList names;
  std::vector<qint16> index;
  std::vector<qint16> rank;
};

// Reads a table message; false when its length is wrong. Nothing is allocated from the counts
// before the length has shown that the entries are there.
bool ReadTable(State& s, const QByteArray& message, ReceivedNames& out) {
  if (message.size() < 9) {
    return false;
  }
  MessageReader in(s, message);
  out.table = in.Byte();
  const int width = in.Byte();
  const int count = in.Int14();
  out.first = in.Int14();
  if (message.size() != static_cast<qint64>(width + 2) * count + 9) {
    return false;
  }
  out.names.reserve(count);
  out.numbers.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    // One byte per character, blanks kept.
    out.names << QString::fromLatin1(in.Bytes(width));
    out.numbers.push_back(static_cast<qint16>(in.Int14()));
  }
  return true;
}

// Applies the received entries to a table and its numbers; returns the table's size.
int Apply(State& s, const ReceivedNames& received, QStringList& names,
          std::vector<qint16>* numbers) {
  const int count = static_cast<int>(received.names.size());
  if (received.first == 0) {
    names = received.names;
    if (numbers != nullptr) {
      *numbers = received.numbers;
    }
    return count;
  }
  const int size = static_cast<int>(names.size());
  if (numbers != nullptr) {
    // Entries never numbered by the switcher carry their own position.
    for (int i = static_cast<int>(numbers->size()); i < size; ++i) {
      numbers->push_back(static_cast<qint16>(i));
    }
    numbers->resize(static_cast<size_t>(size));
  }
  bool beyond = false;
  for (int i = 0; i < count; ++i) {
    const int at = received.first + i;
    if (at >= size) {
      beyond = true;
      continue;
    }
    names[at] = received.names[i];
    if (numbers != nullptr) {
      (*numbers)[static_cast<size_t>(at)] = received.numbers[static_cast<size_t>(i)];
    }
  }
  if (beyond) {
    LogError(s, QStringLiteral("Error Processing Alpha Table"), QStringLiteral("IP Error"),
             Failure::SubscriptOutOfRange());
  }
  return size;
}

SortedNames Sort(State& s, const QStringList& names, const std::vector<qint16>& numbers) {
  SortedNames sorted{names, numbers, {}};
  const int count = static_cast<int>(names.size());
  sorted.index.resize(static_cast<size_t>(count), kNone);
  QuickSort(s, sorted.names, sorted.index, 0, count - 1);
  sorted.rank.assign(static_cast<size_t>(count), kNone);
  for (int p = 0; p < count; ++p) {
    const int number = sorted.index[static_cast<size_t>(p)];
    // A number naming no entry of the table ranks nothing.
    if (number >= 0 && number < count) {
      sorted.rank[static_cast<size_t>(number)] = static_cast<qint16>(p);
    }
  }
  return sorted;
}

void ApplyOutputNames(State& s, const ReceivedNames& received) {
  const int count = Apply(s, received, s.OutputNames, &s.OutputNumbers);
  SortedNames sorted = Sort(s, s.OutputNames, s.OutputNumbers);
  s.SortedOutputNames = std::move(sorted.names);
  s.SortedOutputIndex = std::move(sorted.index);
  s.OutputSortRank = std::move(sorted.rank);
  s.SwitcherOutputCount = ToInteger(count);
  const auto size = static_cast<size_t>(count);
  if (count > 0) {
    s.SilenceStatus.resize(size);
    if (s.SilenceOutIndex.size() != size) {
      s.OutputTableResized = true;
    }
    s.SilenceOutIndex.resize(size, kNone);
  }
  ClearRequest(s, kRequestOutputNames);
  s.CrosspointMap.resize(size);
  s.reactions.outputsChanged(s);
  s.reactions.showsChanged(s);
}

void ApplyAlphaTable(State& s, const QByteArray& message) {
  if (!ChecksumOk(message)) {
    return;
  }
  s.OutputTableResized = false;
  ReceivedNames received;
  if (!ReadTable(s, message, received)) {
    return;
  }
  switch (received.table) {
    case kInputTable:
      s.SwitcherInputCount = ToInteger(Apply(s, received, s.InputNames, nullptr));
      ClearRequest(s, kRequestInputNames);
      s.reactions.showsChanged(s);
      // Panels showing their routed source name it from this table.
      s.reactions.outputsChanged(s);
      break;
    case kOutputTable:
      ApplyOutputNames(s, received);
      break;
    case kOptoTable: {
      // The table stays in switcher order, so each name keeps its own number.
      s.SwitcherOptoCount = ToInteger(Apply(s, received, s.OptoNames, &s.OptoNumbers));
      SortedNames sorted = Sort(s, s.OptoNames, s.OptoNumbers);
      s.SortedOptoNames = std::move(sorted.names);
      s.SortedOptoIndex = std::move(sorted.index);
      ClearRequest(s, kRequestOptoNames);
      break;
    }
    case kRelayTable: {
      const int count = Apply(s, received, s.RelayNames, nullptr);
      s.SwitcherRelayCount = ToInteger(count);
      s.RelayStates.resize(static_cast<size_t>(count), 0);
      ClearRequest(s, kRequestRelayNames);
      // States that arrived before the table had nowhere to go.
      RequestAgain(s, kRequestRelayStates);
      s.reactions.relayTableArrived(s);
      break;
    }
    default:
      return;
  }
  if (s.OutputTableResized) {
    UpdateSilenceOutTable(s);
  }
}

}  // namespace

void ProcessAlphaTable(State& s, const QByteArray& message) {
  Trap(s, QStringLiteral("Error Processing Alpha Table"), QStringLiteral("IP Error"),
       [&] { ApplyAlphaTable(s, message); });
}

void UpdateSilenceOutTable(State& s) {
  s.SilenceOutIndex.assign(std::max<int>(s.SwitcherOutputCount, 0), kNone);
  const int count = std::min<int>(s.SilenceOutCount, static_cast<int>(s.SilenceOuts.size()));
  for (int k = 0; k < count; ++k) {
    // One entry naming an output the switcher does not have must not cost the others.
    Trap(s, QStringLiteral("Error Updating Silence Out Table"), QStringLiteral("List Error"),
         [&] { At(s.SilenceOutIndex, s.SilenceOuts[k].Output) = static_cast<qint16>(k); });
  }
}

}  // namespace zrn
