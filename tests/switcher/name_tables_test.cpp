#include "switcher/name_tables.h"
#include "monitor/panel_update.h"
#include "switcher/startup_exchange.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

using test::Bytes;

// Two outputs, w = 8: entry 0 "OUT 2", entry 1 "OUT 1", numbered 0 and 1.
const QByteArray kTwoOutputs =
    Bytes({0xFC, 0x14, 0x08, 0x02, 0x00, 0x00, 0x00, 'O', 'U', 'T', ' ',  '2',  ' ',  ' ', ' ',
           0x00, 0x00, 'O',  'U',  'T',  ' ',  '1',  ' ', ' ', ' ', 0x01, 0x00, 0x72, 0xFF});

class NameTables : public test::SwitcherTest {
 protected:
  void SetUp() override {
    SwitcherTest::SetUp();
    s.requests.Req1 = kStartupMask1;
  }
};

TEST_F(NameTables, OutputTableReplacesTheNamesAndResizesTheSwitcherTables) {
  s.SilenceStatus[1].Mode = 0x109;
  s.CrosspointMap[0].Sources[0] = 4;
  s.SilenceOuts = {SilenceOut{}, SilenceOut{}};
  s.SilenceOuts[0].Output = 1;
  s.SilenceOuts[1].Output = 200;  // beyond the new size
  s.SilenceOutCount = 2;

  // One byte off, a wrong checksum, or 16383 names of 127 characters announced in nine bytes:
  // nothing changes, nothing is allocated, and the names stay outstanding.
  QByteArray longer = kTwoOutputs;
  longer.insert(27, '\0');
  QByteArray badSum = kTwoOutputs;
  badSum[27] = 0x71;
  for (const QByteArray& bad : {longer, badSum, kTwoOutputs.left(26) + Bytes({0x72, 0xFF}),
                                Bytes({0xFC, 0x14, 0x7F, 0x7F, 0x7F, 0x00, 0x00, 0x11, 0xFF}),
                                Bytes({0xFC, 0x14, 0x14, 0xFF})}) {
    Receive(bad);
  }
  EXPECT_EQ(s.OutputNames.size(), 256);
  EXPECT_TRUE(RequestOutstanding(s, kRequestOutputNames));

  Receive(kTwoOutputs);
  EXPECT_EQ(s.OutputNames, (QStringList{"OUT 2   ", "OUT 1   "}));
  EXPECT_EQ(s.SortedOutputNames, (QStringList{"OUT 1   ", "OUT 2   "}));
  EXPECT_EQ(s.SortedOutputIndex, (std::vector<qint16>{1, 0}));
  EXPECT_EQ(s.OutputSortRank, (std::vector<qint16>{1, 0}));
  EXPECT_FALSE(RequestOutstanding(s, kRequestOutputNames));
  // The switcher's tables take the new size and keep their first entries.
  EXPECT_EQ(std::tuple(s.SwitcherOutputCount, s.SilenceStatus.size(), s.CrosspointMap.size(),
                       s.SilenceStatus[1].Mode, s.CrosspointMap[0].Sources[0]),
            std::tuple(2, 2u, 2u, 0x109, 4));
  EXPECT_EQ(s.SilenceOutIndex, (std::vector<qint16>{kNone, 0})) << "rebuilt for the new size";
  EXPECT_EQ(s.panels.outputs[0].nameLine, QStringLiteral("OUT 2   ")) << "panels refreshed";

  // A table of no entries is a table too.
  Receive(Bytes({0xFC, 0x0A, 0x04, 0x00, 0x00, 0x00, 0x00, 0x0E, 0xFF}));
  EXPECT_EQ(std::tuple(s.InputNames.size(), s.SwitcherInputCount), std::tuple(0, 0));
  EXPECT_FALSE(RequestOutstanding(s, kRequestInputNames));

  // An entry numbered beyond its table ranks nothing.
  Receive(Bytes({0xFC, 0x14, 0x01, 0x01, 0x00, 0x00, 0x00, 'Z', 0x05, 0x00, 0x75, 0xFF}));
  EXPECT_EQ(s.OutputNames, QStringList{"Z"});
  EXPECT_EQ(s.SortedOutputIndex, std::vector<qint16>{5});
  EXPECT_EQ(s.OutputSortRank, std::vector<qint16>{kNone});
  // Only the silence output beyond the new size is an error.
  EXPECT_EQ(Errors(), QStringList{"Error Updating Silence Out Table Error # 9 - Subscript out of "
                                  "range"});
}

TEST_F(NameTables, TablesStartingFurtherOnUpdateTheirEntriesInPlace) {
  Receive(test::StartupAnswers()[2]);  // output entry 6 only
  EXPECT_EQ(std::tuple(s.OutputNames.size(), s.SwitcherOutputCount, s.OutputNames[5],
                       s.OutputNames[6], s.SortedOutputNames.last(), s.SortedOutputIndex.back(),
                       s.OutputSortRank[6], s.OutputSortRank[7]),
            std::tuple(256, 256, QStringLiteral("Out 0006"), QStringLiteral("Studio 7"),
                       QStringLiteral("Studio 7"), 6, 255, 6));

  // Entries beyond the table are not added.
  Receive(Bytes({0xFC, 0x14, 0x01, 0x01, 0x00, 0x2C, 0x02, 'X', 0x2C, 0x02, 0x4A, 0xFF}));
  EXPECT_EQ(s.OutputNames.size(), 256);
  EXPECT_EQ(Errors(),
            QStringList{"Error Processing Alpha Table Error # 9 - Subscript out of range"});

  // Input names refresh the panels naming their routed source.
  s.Outputs[0].Output = 12;
  s.Outputs[0].DisplayOption = 1;
  s.CrosspointMap[11].SourceCount = 1;
  s.CrosspointMap[11].Sources[0] = 4;
  UpdateOutputs(s);
  Receive(Bytes(
      {0xFC, 0x0A, 0x05, 0x01, 0x00, 0x04, 0x00, 'M', 'i', 'c', ' ', '5', 0x04, 0x00, 0x06, 0xFF}));
  EXPECT_EQ(s.panels.outputs[0].nameLine, QStringLiteral("Mic 5"));

  // Opto names stay in the switcher's order, each with its own number; the sorted copy is apart.
  Receive(Bytes(
      {0xFC, 0x1E, 0x01, 0x02, 0x00, 0x00, 0x00, 'B', 0x00, 0x00, 'A', 0x01, 0x00, 0x25, 0xFF}));
  EXPECT_EQ(s.OptoNames, (QStringList{"B", "A"}));
  EXPECT_EQ(s.SortedOptoNames, (QStringList{"A", "B"}));
  EXPECT_EQ(s.SortedOptoIndex, (std::vector<qint16>{1, 0}));
  EXPECT_FALSE(RequestOutstanding(s, kRequestOptoNames));
}

TEST_F(NameTables, RelayNamesAskForTheRelayStatesAgain) {
  s.AlarmRelay = 3;
  s.requests.Req1 = (1 << kRequestRelayNames) | (1 << kRequestInputNames);
  link.wire.clear();
  Receive(Bytes(
      {0xFC, 0x28, 0x01, 0x02, 0x00, 0x00, 0x00, 'K', 0x00, 0x00, 'L', 0x01, 0x00, 0x43, 0xFF}));
  EXPECT_EQ(s.RelayNames, (QStringList{"K", "L"}));
  EXPECT_EQ(s.RelayStates.size(), 2u);
  EXPECT_EQ(link.wire, test::kRelayStatesRequest);
  EXPECT_EQ(s.requests.Req1, (1 << kRequestRelayStates) | (1 << kRequestInputNames));
  EXPECT_EQ(Errors(), QStringList{"Error Checking Alarm Relay Alarm Relay 0003 beyond the "
                                  "switcher's 2 relays"});
}

}  // namespace
}  // namespace zrn
