#include <algorithm>
#include <numeric>

#include "core/failure.h"
#include "switcher/byte_utils.h"
#include "switcher/frame.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

using test::Bytes;

// Known message types are recorded as they are dispatched; a password message fails its handler.
class Link : public test::SwitcherTest {
 protected:
  void SetUp() override {
    SwitcherTest::SetUp();
    for (int type : {0x81, 0xCB, 0xF2, 0xF6, 0xF7, 0xFC}) {
      s.linkState.handlers[type] = [this](State&, const QByteArray& m) { dispatched << m; };
    }
    s.linkState.handlers[0x80] = [](State&, const QByteArray&) {
      throw Failure::SubscriptOutOfRange();
    };
  }

  QList<QByteArray> dispatched;
};

// What is not a whole known frame is dropped, and what follows is still handled; any keep-alive
// or acknowledgement shows the switcher alive, and only the keep-alive is answered.
TEST_F(Link, EachKindOfInputAndWhatItLeaves) {
  const struct {
    QByteArray buffer;
    int dispatched;  // by the first call already
    const char* error;
    bool alive;
  } cases[] = {
      {Bytes({0xF5}), 0, "", true},
      {Bytes({0xF1}), 0, "", true},
      {Bytes({0xF3}), 0, "", true},
      {Bytes({0x12, 0x34, 0xF4}), 0, "Invalid Data 2 bytes", true},
      {Bytes({0x05, 0x06, 0x07}), 0, "Invalid Data 3 bytes", false},
      // The message after the cut is handled in the same call.
      {Bytes({0xCB, 0x0A, 0xF7, 0x28, 0x00, 0x00, 0x28, 0xFF}), 1, "Incomplete Message CB", false},
      // A type request is taken whole, even with a top-bit byte inside.
      {Bytes({0x81, 0x64, 0x99, 0x05, 0xFF}), 1, "", false},
      // Unknown types leave without a word.
      {Bytes({0x90, 0x01, 0x01, 0xFF, 0xFE, 0x00, 0x00, 0xFF}), 0, "", false},
      {Bytes({0xFF, 0xFF}), 0, "", false},
      // A failing handler costs only its message.
      {Bytes({0x80, 0x01, 0x01, 0xFF}), 0,
       "Error Processing Command Error # 9 - Subscript out of range", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.buffer.toHex().constData());
    clock.AdvanceSeconds(61);
    dispatched.clear();
    s.linkState.NoResponseCount = 7;
    const qsizetype before = Errors().size();
    s.ReceiveBuffer = c.buffer;
    const QByteArray answer = Sent([&] {
      ProcessMessages(s);
      EXPECT_EQ(dispatched.size(), c.dispatched);
      for (int more = 0; more < 10 && ProcessMessages(s); ++more) {
      }
    });
    EXPECT_EQ(dispatched.size(), c.dispatched);
    EXPECT_TRUE(s.ReceiveBuffer.isEmpty());
    EXPECT_EQ(Errors().mid(before).join(u'|'), QString::fromLatin1(c.error));
    EXPECT_EQ(s.linkState.NoResponseCount, c.alive ? 0 : 7);
    EXPECT_EQ(answer, c.buffer == Bytes({0xF5}) ? Bytes({0xF4}) : QByteArray());
  }
}

TEST_F(Link, EverythingAtOnceOnArrivalProgressWithoutTimeAndABoundedBuffer) {
  const QByteArray two = Bytes({0xF7, 0x01, 0x01, 0xFF, 0xF6, 0x02, 0x02, 0xFF});
  // Arriving bytes are decoded at once, not one message per timer tick.
  EXPECT_FALSE(OnDataAvailable(s, two + Bytes({0xF5}) + two));
  EXPECT_EQ(dispatched.size(), 4);

  // With no time to spare each call still makes progress, and says that bytes wait.
  s.ReceiveBuffer = two;
  EXPECT_TRUE(DecodeAvailable(s, std::chrono::milliseconds(0)));
  EXPECT_FALSE(DecodeAvailable(s, std::chrono::milliseconds(0)));
  EXPECT_EQ(dispatched.size(), 6);

  // A frame that never ends is dropped at the buffer's bound, and the link goes on working.
  QByteArray flood = Bytes({0x80});
  flood += QByteArray(600 * 1024, 0x01);
  EXPECT_FALSE(OnDataAvailable(s, flood));
  EXPECT_EQ(s.ReceiveBuffer.size(), flood.size()) << "an unfinished frame waits";
  OnDataAvailable(s, QByteArray(600 * 1024, 0x02));
  EXPECT_TRUE(s.ReceiveBuffer.isEmpty());
  EXPECT_EQ(Errors(), QStringList{QStringLiteral("Receive Buffer Overflow 1228801")});
  OnDataAvailable(s, Bytes({0xF7, 0x05, 0x05, 0xFF}));
  EXPECT_EQ(dispatched.size(), 7);
}

TEST_F(Link, SendingSplitsLongMessagesAndContinuesPartialWrites) {
  const QByteArray big = QByteArray("abcdefg").repeated(5715);
  EXPECT_TRUE(SendToSwitcher(s, big));
  EXPECT_EQ(link.wire, big);
  EXPECT_EQ(link.pieces, (std::vector<int>{16384, 16384, 7237}));

  link.acceptPerWrite = 3000;
  EXPECT_EQ(Sent([&] { EXPECT_TRUE(SendToSwitcher(s, big)); }), big)
      << "a partial write continues where it stopped";

  link.wire.clear();
  link.failWrites = true;  // then the socket no longer writable
  EXPECT_FALSE(SendToSwitcher(s, Bytes({0xF5})));
  link.failWrites = false;
  link.writable = false;
  EXPECT_FALSE(SendToSwitcher(s, Bytes({0xF5})));
  EXPECT_TRUE(link.wire.isEmpty());
}

// A hand-edited port would be cut to 16 bits and dial another port: it is refused instead.
TEST_F(Link, BadPortsAreRefusedAndANewConnectionStartsCleanAndIsLoggedOnce) {
  for (const qint32 port : {0, 70000}) {
    s.ServerPort = port;
    ConnectToSwitcher(s);
    ConnectToSwitcher(s);
  }
  EXPECT_EQ(link.opens, 0);
  EXPECT_EQ(s.StatusBarText,
            QStringLiteral("Server Module Not Connected - port 70000 is not between 1 and 65535; "
                           "no connection is tried"));
  // One line per refused port, not one per attempt.
  EXPECT_EQ(Errors(), (QStringList{"Error Connecting to Switcher Server IP Port 0 refused",
                                   "Error Connecting to Switcher Server IP Port 70000 refused"}));
  s.ServerPort = 65535;
  ConnectToSwitcher(s);
  EXPECT_EQ(link.lastPort, 65535);

  // Each attempt and each loss is not a change of state: five failed retries add no line.
  s.ServerPort = 1250;
  s.ReceiveBuffer = Bytes({0xF6, 0x01});
  s.linkState.NoResponseCount = 201;
  s.linkState.ExchangeComplete = true;
  OnConnected(s);
  EXPECT_EQ(std::tuple(s.ReceiveBuffer, s.linkState.NoResponseCount, s.linkState.ExchangeComplete),
            std::tuple(QByteArray(), 0, false));
  for (int attempt = 0; attempt < 5; ++attempt) {
    OnClosed(s);
    ConnectToSwitcher(s);
  }
  EXPECT_EQ(
      std::tuple(link.opens, link.lastAddress, link.lastPort, s.StatusBarText),
      std::tuple(6, QStringLiteral("127.0.0.1"), 1250,
                 QStringLiteral("Server Module Not Connected - connecting to 127.0.0.1:1250")));
  OnConnected(s);
  // The fixture cleared the first connection's line from the list.
  EXPECT_EQ(Reports(), (QStringList{"Server Module Not Connected", "Server Module Connected",
                                    "Server Module Not Connected", "Server Module Connected"}));
}

// Bad input gives the safe value and one error line each.
TEST_F(Link, NumbersTimesCheckSumsAndCuttingTheBuffer) {
  EXPECT_EQ(ConvertInteger(s, 5, 2), 261);
  EXPECT_EQ(ConvertInteger(s, 200, 255), 16383);
  const struct {
    const char* time;
    int day, minutes;
  } times[] = {{"13:05:59", 2, 3665},   {"23:59:59", 6, 10079},  {"12:30:00 AM", 0, 30},
               {"12:30:00 PM", 0, 750}, {"1:05:00 PM", 1, 2225}, {"9:15:00 AM", 0, 555},
               {"999:00:00", 6, 0},     {"garbage", 1, 0}};
  for (const auto& c : times) {
    EXPECT_EQ(ConvertMinutes(s, QString::fromLatin1(c.time), c.day), c.minutes) << c.time;
  }
  EXPECT_EQ(Errors(), (QStringList{"Invalid data in Message Error # 6 - Overflow",
                                   "Error Converting Minutes Error # 6 - Overflow",
                                   "Error Converting Minutes Error # 13 - Type mismatch"}));

  EXPECT_EQ(CheckSum(Bytes({0x81, 0x64, 0x21, 0x05, 0xFF}), 2), 5);
  EXPECT_EQ(CheckSum(QByteArray(), 2), 0);
  EXPECT_EQ(FindEOM(s, Bytes({1, 2, 3})), 0);
  EXPECT_EQ(FindEOM(s, Bytes({0xF6, 0x01, 0xFF, 0xCB})), 3);
  s.ReceiveBuffer = Bytes({1, 2, 3, 4, 5});
  EXPECT_EQ(TrimBuffer(s, 0), QByteArray());
  EXPECT_EQ(TrimBuffer(s, 3), Bytes({1, 2, 3}));
  EXPECT_EQ(TrimBuffer(s, 10), Bytes({4, 5}));
  EXPECT_TRUE(s.ReceiveBuffer.isEmpty());
  QByteArray message = Bytes({9, 8, 7});
  EXPECT_EQ(SplitBytes(message, 1), Bytes({9}));
  EXPECT_EQ(message, Bytes({8, 7}));
}

// Names sort by character code and carry their numbers along, whatever the table's shape: sorted,
// reversed and all equal tables of the largest size must not exhaust the stack.
TEST_F(Link, QuickSortOrdersByCodeAndCarriesTheNumbers) {
  QStringList sorted;
  for (int i = 0; i < 16383; ++i) {
    sorted << QStringLiteral("Out %1").arg(i, 5, 10, QLatin1Char('0'));
  }
  QList<QStringList> tables{{"b", "B", "a"}, {}, {"Studio 10", "Studio 1", "Studio"}, sorted};
  tables << QStringList(sorted.rbegin(), sorted.rend())
         << QStringList(16383, QStringLiteral("same"));
  for (QStringList names : tables) {
    SCOPED_TRACE(names.mid(0, 3).join(u',').toStdString());
    const QStringList original = names;
    std::vector<qint16> numbers(names.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    QuickSort(s, names, numbers, 0, static_cast<int>(names.size()) - 1);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (int i = 0; i < names.size(); ++i) {
      ASSERT_EQ(original[numbers[i]], names[i]) << "numbers travel with their names";
    }
  }
  EXPECT_TRUE(ErrorLines().isEmpty());

  QStringList names{QStringLiteral("x")};
  std::vector<qint16> numbers{0};
  QuickSort(s, names, numbers, 0, 5);
  EXPECT_EQ(ErrorLines().filter(QStringLiteral("Quick Sort Error")).size(), 1);
}

}  // namespace
}  // namespace zrn
