#include "switcher/status_reports.h"

#include <tuple>

#include "monitor/panel_update.h"
#include "switcher/name_tables.h"
#include "switcher/startup_exchange.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

using test::Bytes;

constexpr qint16 kDetecting = 0x109;  // message only, device on, silence detection enabled

class StatusReports : public test::SwitcherTest {};

TEST_F(StatusReports, ChangesOfSilenceStateAreReportedAndResetTheAcknowledgement) {
  s.OutputNames[5] = QStringLiteral("Studio");
  s.Outputs[0].Output = 6;
  s.Outputs[0].MonitoringEnabled = true;
  s.SilenceStatus[5].Mode = kDetecting;
  UpdateOutputs(s);
  const QByteArray silent = Bytes({0xCB, 0x0A, 0x01, 0x00, 0x05, 0x00, 0x01, 0x11, 0xFF});
  const QByteArray peak = Bytes({0xCB, 0x0A, 0x01, 0x00, 0x05, 0x00, 0x41, 0x51, 0xFF});
  const QByteArray audio = Bytes({0xCB, 0x0A, 0x01, 0x00, 0x05, 0x00, 0x00, 0x10, 0xFF});

  Receive(silent);
  Receive(silent);  // no change, no line
  EXPECT_EQ(s.panels.outputs[0].lamp, kLampRed);
  Receive(peak);
  EXPECT_EQ(std::tuple(s.SilenceStatus[5].Status, s.panels.outputs[0].lamp),
            std::tuple(3, kLampCyan));

  // With the detector not configured the lamp pass leaves the entry alone, so this is the report's
  // doing: a peak coming or going keeps the acknowledgement, silence ending clears it.
  s.SilenceStatus[5].Mode = 0;
  s.Outputs[0].AlarmState = 1;
  s.Outputs[0].AlarmCanceled = true;
  Receive(Bytes({0xCB, 0x0A, 0x01, 0x00, 0x05, 0x00, 0x40, 0x50, 0xFF}));
  const auto alarm = [&] {
    return std::tuple(s.SilenceStatus[5].Status, s.Outputs[0].AlarmState,
                      s.Outputs[0].AlarmCanceled);
  };
  EXPECT_EQ(alarm(), std::tuple(1, 1, true));
  Receive(audio);
  EXPECT_EQ(alarm(), std::tuple(0, 0, false));
  EXPECT_EQ(Reports(), (QStringList{"Studio [0006] Silence Alarm Status ON!",
                                    "Studio [0006] Silence Alarm Status ON!",
                                    "Studio [0006] Silence Alarm Status OFF!"}));

  // The grace after our own route ends when the switcher speaks about silence, not peaks.
  StartSilenceGrace(s, 5, 7);
  Receive(peak);
  EXPECT_TRUE(InSilenceGrace(s, 5));
  Receive(audio);
  EXPECT_FALSE(InSilenceGrace(s, 5));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

// A change-of-state report is read whole: on an 8-output switcher, eight peak items and then
// "output 5 silent" still raise the alarm; an item beyond the switcher is skipped on its own.
TEST_F(StatusReports, ChangeOfStateItemsPastTheOutputCountAreSkippedOneByOne) {
  s.SwitcherOutputCount = 8;
  s.Outputs[0].Output = 5;
  s.Outputs[0].MonitoringEnabled = true;
  s.SilenceStatus[4].Mode = kDetecting;
  UpdateOutputs(s);
  Receive(Bytes({0xCB, 0x0A, 0x09, 0x00, 0x00, 0x00, 0x40, 0x01, 0x00, 0x40, 0x02,
                 0x00, 0x40, 0x03, 0x00, 0x40, 0x04, 0x00, 0x40, 0x05, 0x00, 0x40,
                 0x06, 0x00, 0x40, 0x07, 0x00, 0x40, 0x04, 0x00, 0x01, 0x34, 0xFF}));
  EXPECT_EQ(s.panels.outputs[0].lamp, kLampRed);
  // In show mode the hidden outputs' lines are not written.
  s.ProgramMode = 1;
  Receive(Bytes({0xCB, 0x0A, 0x01, 0x00, 0x04, 0x00, 0x00, 0x0F, 0xFF}));
  s.ProgramMode = 0;
  // Output 9 (index 8) does not exist on this switcher: its item changes nothing.
  Receive(Bytes({0xCB, 0x0A, 0x02, 0x00, 0x08, 0x00, 0x01, 0x04, 0x00, 0x00, 0x19, 0xFF}));
  EXPECT_EQ(std::tuple(s.SilenceStatus[8].Status, s.SilenceStatus[4].Status), std::tuple(0, 0));
  EXPECT_EQ(Reports(), QStringList{"Out 0005 [0005] Silence Alarm Status ON!"});
  EXPECT_TRUE(Errors().isEmpty());
}

TEST_F(StatusReports, DetectorStatusAndConfigurationWithinTheSwitchersOutputs) {
  s.requests.Req4 = kStartupMask4;
  // Outputs 250 to 259 on a 256-output switcher: only 250 to 255 exist.
  Receive(Bytes({0xCB, 0x0B, 0x0A, 0x00, 0x7A, 0x01, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0x1A, 0xFF}));
  EXPECT_EQ(std::tuple(s.SilenceStatus[249].Status, s.SilenceStatus[250].Status,
                       s.SilenceStatus[255].Status, s.SilenceStatus.size(), s.requests.Req4),
            std::tuple(0, 1, 1, 256u, 0x40));

  s.SilenceStatus[20].Status = 1;
  Receive(Bytes({0xCB, 0x00, 0x01, 0x00, 0x14, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
                 0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x71, 0xFF}));
  const SilenceStatusEntry& e = s.SilenceStatus[20];  // its status is kept
  EXPECT_EQ(std::tuple(e.Status, e.Mode, e.Device, e.SilenceThreshold, e.DetectTime, e.ReturnTime,
                       e.PeakThreshold, e.HoldTime, s.requests.Req4),
            std::tuple(1, 265, kNone, 824, 8, 5, 1024, 0, 0));

  const QByteArray bad[] = {
      Bytes({0xCB, 0x0A, 0x01, 0x00, 0x05, 0x00, 0x01, 0x12, 0xFF}),  // checksum
      Bytes({0xCB, 0x0A, 0x02, 0x00, 0x05, 0x00, 0x01, 0x12, 0xFF}),  // one item of two
      Bytes({0xCB, 0x05, 0x00, 0x00, 0x00, 0x00, 0x05, 0xFF}),        // no such subtype
      Bytes({0xCB, 0x0A, 0x0A, 0xFF}),                                // no count
  };
  for (const QByteArray& message : bad) {
    clock.AdvanceSeconds(61);  // past the error log's hold-back of repeated lines
    Receive(message);
  }
  EXPECT_EQ(
      Errors(),
      (QStringList{"Silence Detect Check Sum Error", "Silence Detect Message Length Error",
                   "Silence Detect Message Length Error", "Silence Detect Message Length Error"}));
  EXPECT_EQ(s.SilenceStatus[5].Status, 0);
}

TEST_F(StatusReports, CrosspointMapsWithMarkersAndLimits) {
  s.requests.Req1 = 1 << kRequestCrosspointMap;
  s.InputNames[11] = QStringLiteral("Line 12");
  s.Outputs[0].Output = 7;
  s.Outputs[0].DisplayOption = 1;
  UpdateOutputs(s);

  // Level 10 with markers: the marked entry goes apart, Sources(0) is the next unmarked one.
  Receive(Bytes({0xF6, 0x4A, 0x01, 0x00, 0x06, 0x00, 0x02, 0x00, 0x06, 0x0A, 0x03, 0x00, 0x01,
                 0x00, 0x02, 0x00, 0x00, 0x0B, 0x00, 0x05, 0x00, 0x06, 0x00, 0x7F, 0xFF}));
  const CrosspointEntry& m = s.CrosspointMap[6];
  EXPECT_EQ(
      std::tuple(m.SourceCount, m.OutputFlags, m.MarkedCount, m.MarkedSources[0],
                 m.MarkedValues1[0], m.MarkedValues2[0], m.Sources[0], m.Values1[0], m.Values2[0]),
      std::tuple(2, 6, 1, 3, 1, 2, 11, 5, 6));
  EXPECT_FALSE(RequestOutstanding(s, kRequestCrosspointMap));
  EXPECT_EQ(s.panels.outputs[0].nameLine, QStringLiteral("Line 12"));

  // 65 entries stop the report at that output, after storing the one before; so does a report
  // longer than its blocks. Neither is the answer.
  s.requests.Req1 = 1 << kRequestCrosspointMap;
  s.CrosspointMap[1].SourceCount = 3;
  Receive(Bytes({0xF6, 0x01, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x41,
                 0x00, 0x01, 0x4A, 0xFF}));
  EXPECT_EQ(std::tuple(s.CrosspointMap[0].Sources[0], s.CrosspointMap[1].SourceCount),
            std::tuple(4, 3));
  Receive(Bytes({0xF6, 0x01, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x00,
                 0x08, 0xFF}));
  EXPECT_EQ(s.CrosspointMap[0].Sources[0], 5);
  EXPECT_TRUE(RequestOutstanding(s, kRequestCrosspointMap));

  // A block cut short, and a first output the table does not hold, are errors of the report.
  Receive(Bytes({0xF6, 0x01, 0x01, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x04, 0x00, 0x08, 0xFF}));
  Receive(Bytes({0xF6, 0x01, 0x01, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x04, 0xFF}));
  EXPECT_EQ(Errors(),
            (QStringList{"Error Processing Crosspoint Map Error # 5 - Invalid procedure call or "
                         "argument",
                         "Error Processing Crosspoint Map Error # 9 - Subscript out of range"}));
  EXPECT_TRUE(RequestOutstanding(s, kRequestCrosspointMap));
}

TEST_F(StatusReports, RelayStatesAreStoredWithinTheRelayTableAndNamesAskForThemAgain) {
  s.SwitcherRelayCount = 4;
  s.RelayStates = {1, 0, 0, 0};
  s.AlarmRelay = 2;
  s.requests.Req1 = 1 << kRequestRelayStates;
  // Relay 0 reports 5 (stored as 0), relay 1 is on, relay 9 is beyond the table.
  Receive(Bytes(
      {0xF7, 0x28, 0x03, 0x00, 0x00, 0x00, 0x05, 0x01, 0x00, 0x01, 0x09, 0x00, 0x01, 0x3C, 0xFF}));
  EXPECT_EQ(s.RelayStates, (std::vector<qint16>{0, 1, 0, 0}));
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampRed);

  s.requests.Req1 = 1 << kRequestRelayStates;
  Receive(Bytes({0xF7, 0x29, 0x01, 0x00, 0x01, 0x00, 0x00, 0x2B, 0xFF}));  // not the relay table
  Receive(Bytes({0xF7, 0x28, 0x01, 0x00, 0x01, 0x00, 0x00, 0x2B, 0xFF}));  // checksum
  Receive(Bytes({0xF7, 0x28, 0x02, 0x00, 0x01, 0x00, 0x00, 0x2B, 0xFF}));  // one item of two
  EXPECT_EQ(Errors(), QStringList{"Error Receiving Relay/Opto State Relay States Length Error"});
  EXPECT_EQ(std::tuple(s.RelayStates[1], s.requests.Req1), std::tuple(1, 1 << kRequestRelayStates));

  // Relay names ask for the states again (the request itself is the start-up exchange test's).
  s.AlarmRelay = 3;
  s.requests.Req1 = (1 << kRequestRelayNames) | (1 << kRequestInputNames);
  Receive(Bytes(
      {0xFC, 0x28, 0x01, 0x02, 0x00, 0x00, 0x00, 'K', 0x00, 0x00, 'L', 0x01, 0x00, 0x43, 0xFF}));
  EXPECT_EQ(std::tuple(s.RelayNames, s.RelayStates.size()), std::tuple(QStringList{"K", "L"}, 2u));
  EXPECT_EQ(s.requests.Req1, (1 << kRequestRelayStates) | (1 << kRequestInputNames));
  EXPECT_EQ(Errors().last(),
            "Error Checking Alarm Relay Alarm Relay 0003 beyond the switcher's 2 "
            "relays");
}

// Two outputs, w = 8: entry 0 "OUT 2", entry 1 "OUT 1", numbered 0 and 1.
const QByteArray kTwoOutputs =
    Bytes({0xFC, 0x14, 0x08, 0x02, 0x00, 0x00, 0x00, 'O', 'U', 'T', ' ',  '2',  ' ',  ' ', ' ',
           0x00, 0x00, 'O',  'U',  'T',  ' ',  '1',  ' ', ' ', ' ', 0x01, 0x00, 0x72, 0xFF});

TEST_F(StatusReports, OutputTableReplacesTheNamesAndResizesTheSwitcherTables) {
  s.requests.Req1 = kStartupMask1;
  s.SilenceStatus[1].Mode = 0x109;
  s.CrosspointMap[0].Sources[0] = 4;
  s.SilenceOuts = {{.Output = 1}, {.Output = 200}};  // the second beyond the new size
  s.SilenceOutCount = 2;

  // One byte off, a wrong checksum, or 16383 names of 127 characters announced in nine bytes:
  // nothing changes, nothing is allocated, and the names stay outstanding.
  for (const QByteArray& bad : {QByteArray(kTwoOutputs).insert(27, '\0'),
                                QByteArray(kTwoOutputs).replace(27, 1, Bytes({0x71})),
                                kTwoOutputs.left(26) + Bytes({0x72, 0xFF}),
                                Bytes({0xFC, 0x14, 0x7F, 0x7F, 0x7F, 0x00, 0x00, 0x11, 0xFF}),
                                Bytes({0xFC, 0x14, 0x14, 0xFF})}) {
    Receive(bad);
  }
  EXPECT_EQ(s.OutputNames.size(), 256);
  EXPECT_TRUE(RequestOutstanding(s, kRequestOutputNames));

  Receive(kTwoOutputs);
  EXPECT_EQ(std::tuple(s.OutputNames, s.SortedOutputNames, s.SortedOutputIndex, s.OutputSortRank),
            std::tuple(QStringList{"OUT 2   ", "OUT 1   "}, QStringList{"OUT 1   ", "OUT 2   "},
                       std::vector<qint16>{1, 0}, std::vector<qint16>{1, 0}));
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
  EXPECT_EQ(std::tuple(s.OutputNames, s.SortedOutputIndex, s.OutputSortRank),
            std::tuple(QStringList{"Z"}, std::vector<qint16>{5}, std::vector<qint16>{kNone}));
  // Only the silence output beyond the new size is an error.
  EXPECT_EQ(Errors(), QStringList{"Error Updating Silence Out Table Error # 9 - Subscript out of "
                                  "range"});
}

TEST_F(StatusReports, NameTablesStartingFurtherOnUpdateTheirEntriesInPlace) {
  s.requests.Req1 = kStartupMask1;
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
  EXPECT_EQ(std::tuple(s.OptoNames, s.SortedOptoNames, s.SortedOptoIndex),
            std::tuple(QStringList{"B", "A"}, QStringList{"A", "B"}, std::vector<qint16>{1, 0}));
  EXPECT_FALSE(RequestOutstanding(s, kRequestOptoNames));
}

}  // namespace
}  // namespace zrn
