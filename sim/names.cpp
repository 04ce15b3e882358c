#include "sim/names.h"

namespace zrn::sim {

QStringList DefaultNames(NameTable table, int count) {
  QStringList named;
  QString prefix;
  switch (table) {
    case NameTable::kInputs:
      named = {QStringLiteral("STUDIO A"), QStringLiteral("STUDIO B"), QStringLiteral("STUDIO C"),
               QStringLiteral("NEWSROOM"), QStringLiteral("NET 1"),    QStringLiteral("NET 2"),
               QStringLiteral("SAT 1"),    QStringLiteral("SAT 2"),    QStringLiteral("SAT 3"),
               QStringLiteral("REMOTE 1"), QStringLiteral("REMOTE 2"), QStringLiteral("PHONE")};
      prefix = QStringLiteral("IN ");
      break;
    case NameTable::kOutputs:
      named = {QStringLiteral("TX 1"),    QStringLiteral("TX 2"),   QStringLiteral("STREAM"),
               QStringLiteral("NET RET"), QStringLiteral("SAT UP"), QStringLiteral("STA MON"),
               QStringLiteral("STB MON"), QStringLiteral("RECORD")};
      prefix = QStringLiteral("OUT ");
      break;
    case NameTable::kOptos:
      named = {QStringLiteral("ON AIR"), QStringLiteral("MIC LIVE")};
      prefix = QStringLiteral("OPTO ");
      break;
    case NameTable::kRelays:
      named = {QStringLiteral("ALARM")};
      prefix = QStringLiteral("RELAY ");
      break;
  }
  QStringList names = named.mid(0, count);
  for (int i = names.size(); i < count; ++i) {
    names << prefix + QString::number(i + 1);
  }
  return names;
}

}  // namespace zrn::sim
