#include "switcher/commands.h"
#include "support/bytes.h"
#include "support/fake_link.h"
#include "support/temp_state.h"
#include "switcher/link.h"

namespace zrn {
namespace {

using test::FakeLink;
using test::TempStateTest;

using test::Bytes;

class Commands : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    OnConnected(s);
  }
  // What one command put on the wire.
  template <class Send>
  QByteArray Sent(Send send) {
    link.wire.clear();
    send();
    return link.wire;
  }
  FakeLink link;
};

TEST_F(Commands, SwitchFramesMatchTheWorkedExamples) {
  EXPECT_EQ(Sent([&] { SendSwitcherCommand(s, 3, 1, kCommandRelayLatch); }),
            Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF}));
  EXPECT_EQ(Sent([&] { SendSwitcherCommand(s, 7, 12, kCommandConnect); }),
            Bytes({0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF}));
  EXPECT_EQ(Sent([&] { SendSwitcherCommand(s, 1, 1, kCommandRelayRelease); }),
            Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 0xFF}));
  EXPECT_EQ(Sent([&] { SendSwitcherCommand(s, 300, kNoSource, kCommandClear); }),
            Bytes({0xFE, 0x00, 0x00, 0x7F, 0x7F, 0x2B, 0x02, 0x2B, 0xFF}));
  EXPECT_TRUE(ErrorLines().isEmpty());

  // A number the protocol cannot carry is refused with its error line, not wrapped around.
  EXPECT_TRUE(Sent([&] { EXPECT_FALSE(SendSwitcherCommand(s, 0, 1, kCommandConnect)); }).isEmpty());
  EXPECT_TRUE(Sent([&] { SendSwitcherCommand(s, 16385, 1, kCommandConnect); }).isEmpty());
  ASSERT_EQ(ErrorLines().size(), 1) << "the second refusal repeats the first";
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Sending Crosspoint Change")));
}

TEST_F(Commands, SilenceDetectConfigurations) {
  SilenceOut entry;
  entry.Output = 20;
  entry.DetectLevel = 824;
  entry.DetectTime1 = 8;
  entry.DetectTime2 = 5;
  s.SilenceOuts = {SilenceOut{}, entry};
  s.SilenceOutCount = 2;
  EXPECT_EQ(Sent([&] { SendShowSilenceConfig(s, 1); }),
            Bytes({0xCB, 0x00, 0x01, 0x00, 0x14, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
                   0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x71, 0xFF}));

  SilenceStatusEntry& a = s.SilenceStatus[4];
  a = {0, 0x109, 700, 10, 3, 2, 1100, 2};
  SilenceStatusEntry& b = s.SilenceStatus[5];
  b = {1, 0x10A, 16383, 500, 0, 16383, 1024, 0};
  const QByteArray frame = Sent([&] { EXPECT_TRUE(SendSilenceDetectConfig(s, 0, 4, 2)); });
  EXPECT_EQ(frame, Bytes({0xCB, 0x00, 0x02, 0x00, 0x04, 0x00,                          // header
                          0x09, 0x02, 0x02, 0x00, 0x3C, 0x05, 0x0A, 0x00, 0x03, 0x00,  // a
                          0x4C, 0x08, 0x02, 0x00,                                      // a
                          0x0A, 0x02, 0x7F, 0x7F, 0x7F, 0x7F, 0x74, 0x03, 0x00, 0x00,  // b
                          0x00, 0x08, 0x00, 0x00,                                      // b
                          0x3E, 0xFF}));
  EXPECT_EQ(frame.size(), 14 * 2 + 8);

  EXPECT_TRUE(Sent([&] { EXPECT_FALSE(SendSilenceDetectConfig(s, 1, 4, 1)); }).isEmpty());
  EXPECT_TRUE(Sent([&] { SendSilenceDetectConfig(s, 0, 300, 1); }).isEmpty());
  EXPECT_TRUE(Sent([&] { SendShowSilenceConfig(s, 9); }).isEmpty());
  ASSERT_EQ(ErrorLines().size(), 1) << "the same error twice within a minute is held back";
  EXPECT_TRUE(
      ErrorLines()[0].contains(QStringLiteral("Error Sending Silence Detect Configuration")));
}

TEST_F(Commands, NothingIsCommandedOnADeadLink) {
  OnClosed(s);
  link.wire.clear();
  EXPECT_FALSE(SendSwitcherCommand(s, 3, 1, kCommandRelayLatch));
  EXPECT_FALSE(SendSilenceDetectConfig(s, 0, 0, 1));
  EXPECT_TRUE(link.wire.isEmpty());
  EXPECT_TRUE(ErrorLines().isEmpty()) << "a refused command is not an error";
}

}  // namespace
}  // namespace zrn
