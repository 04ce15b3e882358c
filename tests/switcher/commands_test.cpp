#include "switcher/commands.h"

#include <functional>

#include "switcher_fixture.h"

namespace zrn {
namespace {

using test::Bytes;

class Commands : public test::SwitcherTest {};

TEST_F(Commands, FramesMatchTheWorkedExamples) {
  s.SilenceOuts = {SilenceOut{},
                   {.Output = 20, .DetectTime1 = 8, .DetectTime2 = 5, .DetectLevel = 824}};
  s.SilenceOutCount = 2;
  s.SilenceStatus[4] = {0, 0x109, 700, 10, 3, 2, 1100, 2};
  s.SilenceStatus[5] = {1, 0x10A, 16383, 500, 0, 16383, 1024, 0};

  const struct {
    const char* call;
    std::function<void()> send;
    QByteArray wire;
  } cases[] = {
      {"latch relay 3", [&] { SendSwitcherCommand(s, 3, 1, kCommandRelayLatch); },
       Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF})},
      {"connect 12 to 7", [&] { SendSwitcherCommand(s, 7, 12, kCommandConnect); },
       Bytes({0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF})},
      {"release relay 1", [&] { SendSwitcherCommand(s, 1, 1, kCommandRelayRelease); },
       Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 0xFF})},
      {"clear 300", [&] { SendSwitcherCommand(s, 300, kNoSource, kCommandClear); },
       Bytes({0xFE, 0x00, 0x00, 0x7F, 0x7F, 0x2B, 0x02, 0x2B, 0xFF})},
      {"show silence config", [&] { SendShowSilenceConfig(s, 1); },
       Bytes({0xCB, 0x00, 0x01, 0x00, 0x14, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
              0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x71, 0xFF})},
      {"detector config of 5 and 6", [&] { EXPECT_TRUE(SendSilenceDetectConfig(s, 0, 4, 2)); },
       Bytes({0xCB, 0x00, 0x02, 0x00, 0x04, 0x00,                          // header
              0x09, 0x02, 0x02, 0x00, 0x3C, 0x05, 0x0A, 0x00, 0x03, 0x00,  // output 5
              0x4C, 0x08, 0x02, 0x00,                                      // output 5
              0x0A, 0x02, 0x7F, 0x7F, 0x7F, 0x7F, 0x74, 0x03, 0x00, 0x00,  // output 6
              0x00, 0x08, 0x00, 0x00,                                      // output 6
              0x3E, 0xFF})},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Sent(c.send), c.wire) << c.call;
  }
  EXPECT_TRUE(ErrorLines().isEmpty());
}

// A number the protocol cannot carry is refused with its error line, not wrapped around.
TEST_F(Commands, UnsendableNumbersAreRefusedAndLoggedOnce) {
  const struct {
    const char* call;
    std::function<bool()> send;
    const char* location;
  } cases[] = {
      {"output 0", [&] { return SendSwitcherCommand(s, 0, 1, kCommandConnect); },
       "Error Sending Crosspoint Change"},
      {"output 16385", [&] { return SendSwitcherCommand(s, 16385, 1, kCommandConnect); },
       "Error Sending Crosspoint Change"},
      {"subtype 1", [&] { return SendSilenceDetectConfig(s, 1, 4, 1); }, ""},
      {"output 301", [&] { return SendSilenceDetectConfig(s, 0, 300, 1); },
       "Error Sending Silence Detect Configuration"},
      {"no entry 9", [&] { return SendShowSilenceConfig(s, 9); },
       "Error Sending Silence Detect Configuration"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call);
    EXPECT_TRUE(Sent([&] { EXPECT_FALSE(c.send()); }).isEmpty());
    EXPECT_TRUE(ErrorLines().join(u'\n').contains(QLatin1String(c.location)));
  }
  // The repeated refusal is held back and counted once a different line comes.
  ASSERT_EQ(ErrorLines().size(), 3);
  EXPECT_TRUE(ErrorLines()[1].endsWith(QStringLiteral("(repeated 1 times)")));

  // On a dead link nothing is commanded, and that is no error.
  OnClosed(s);
  EXPECT_TRUE(Sent([&] {
                EXPECT_FALSE(SendSwitcherCommand(s, 3, 1, kCommandRelayLatch));
                EXPECT_FALSE(SendSilenceDetectConfig(s, 0, 0, 1));
              }).isEmpty());
  EXPECT_EQ(ErrorLines().size(), 3);
}

}  // namespace
}  // namespace zrn
