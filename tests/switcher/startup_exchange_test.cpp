#include "switcher/startup_exchange.h"

#include <functional>

#include "switcher/commands.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

using test::Bytes;

class Exchange : public test::SwitcherTest {
 protected:
  std::array<qint32, 4> Masks() const {
    return {s.requests.Req1, s.requests.Req2, s.requests.Req3, s.requests.Req4};
  }
};

TEST_F(Exchange, TypeRequestIsAnsweredAndPasswordsClearTheirBitOrAreAskedAgain) {
  const struct {
    QByteArray message;
    bool accepted;
  } cases[] = {
      {test::kTypeRequest, true},
      {Bytes({0x81, 0x64, 0x05, 0x69, 0xFF}), true},         // with the optional byte
      {Bytes({0x81, 0x64, 0x99, 0x05, 0xFF}), false},        // checksum
      {Bytes({0x81, 0x65, 0x65, 0xFF}), false},              // not "d"
      {Bytes({0x81, 0x64, 0x01, 0x02, 0x67, 0xFF}), false},  // six bytes
      {Bytes({0x81, 0x64, 0xFF}), false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message.toHex().constData());
    s.requests = RequestState();
    EXPECT_EQ(Sent([&] { Receive(c.message); }),
              c.accepted ? test::kStartupMessages : QByteArray());
    EXPECT_EQ(Masks()[3], c.accepted ? kStartupMask4 : 0);
  }

  // A password clears its bit, or is asked for alongside what is outstanding.
  Receive(test::kTypeRequest);
  s.requests.Req1 |= 2;
  EXPECT_TRUE(Sent([&] {
                Receive(Bytes({0x80, 0x00, 0x03, 'a', 'b', 'c', 0x29, 0xFF}));
              }).isEmpty());
  EXPECT_EQ(Masks(), (std::array<qint32, 4>{kStartupMask1, 0, 0, kStartupMask4}));

  // Announces five characters and carries two: asked again, and nothing else is forgotten.
  EXPECT_EQ(Sent([&] {
              Receive(Bytes({0x80, 0x00, 0x05, 'a', 'b', 0x48, 0xFF}));
            }),
            Bytes({0xF2, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x02, 0xFF}));
  EXPECT_EQ(Masks(), (std::array<qint32, 4>{kStartupMask1 | 2, 0, 0, kStartupMask4}));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

TEST_F(Exchange, CompletesWhenThisConnectionsTypeRequestHasAllItsAnswers) {
  const QList<QByteArray> answers = test::StartupAnswers();
  auto answerAll = [&] {
    for (qsizetype k = 0; k < answers.size(); ++k) {
      EXPECT_FALSE(s.linkState.ExchangeComplete) << "before answer " << k;
      Receive(answers[k]);
    }
  };
  Receive(test::kTypeRequest);
  EXPECT_EQ(Sent(answerAll), test::kRelayStatesRequest) << "the relay names ask for the states";
  EXPECT_EQ(std::tuple(s.linkState.ExchangeComplete, Masks(), ErrorLines()),
            std::tuple(true, std::array<qint32, 4>{}, QStringList()));

  // A new connection completes only after its own type request, whatever arrives before.
  OnClosed(s);
  OnConnected(s);
  s.requests.Req1 = 1 << kRequestCrosspointMap;
  Receive(answers[0]);
  EXPECT_EQ(std::tuple(s.requests.Req1, s.linkState.ExchangeComplete), std::tuple(0, false));

  Receive(test::kTypeRequest);
  answerAll();
  EXPECT_TRUE(s.linkState.ExchangeComplete);

  // The switcher opening the exchange again on the same connection starts it afresh.
  Receive(test::kTypeRequest);
  EXPECT_FALSE(s.linkState.ExchangeComplete);
}

// Connecting a source is the loopback test's.
TEST_F(Exchange, CommandAndRequestFramesMatchTheWorkedExamples) {
  s.requests.Req1 = 0x200;
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
      // Parameters follow the flag 8192; the request's bit is added to the masks.
      {"advanced info request",
       [&] {
         SendAdvancedInfoRequest(s, {InfoRequest{90, 5, 7}}, 1);
       },
       Bytes({0xCD, 0x7F, 0x00, 0x01, 0x00, 0x5A, 0x40, 0x05, 0x00, 0x07, 0x00, 0x26, 0xFF})},
      // It replaces the first three masks; only 14 bits of the third travel.
      {"info request", [&] { SendInfoRequest(s, 0, 1 << 27, (1 << 14) | 5); },
       Bytes({0xF2, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 0x05, 0x00, 0x00, 0x00, 0x00,
              0x00, 0x45, 0xFF})},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Sent(c.send), c.wire) << c.call;
  }
  EXPECT_EQ(Masks(), (std::array<qint32, 4>{0, 1 << 27, (1 << 14) | 5, 0x40}));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

// A number the protocol cannot carry is refused with its error line, not wrapped around.
TEST_F(Exchange, UnsendableCommandNumbersAreRefusedAndLoggedOnce) {
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
