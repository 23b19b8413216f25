#include "app/log/ExceptionGuard.h"

#include "app/log/KaLogUtility.h"
#include "tests/log/LogFile.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kDepth = 20;

// NOLINTNEXTLINE(misc-no-recursion): makes a stack that is known to be deep.
[[gnu::noinline]] void throwFromDeep(qsizetype depth, volatile int &calls) {
  if (depth == 0) throw KaException(u"Odd state"_s, u"größer als gedacht"_s);
  throwFromDeep(depth - 1, calls);
  calls = calls + 1; // keeps the call from becoming a jump
}

class Guard : public testing::Test {
protected:
  Guard() { KaLogUtility::switchLogStatus(); }

  [[nodiscard]] qsizetype frameCount() const { return loggedLines(profile).size() - 3; }

  const TestProfile profile;
};

TEST_F(Guard, tellsWhenNothingWentWrong) {
  EXPECT_TRUE(runGuarded([] {}));
  EXPECT_TRUE(loggedLines(profile).isEmpty());
}

TEST_F(Guard, logsAnExceptionOfOursWithTheStackThatThrewIt) {
  int calls = 0;
  EXPECT_FALSE(runGuarded([&calls] { throwFromDeep(kDepth, calls); }));
  const QStringList lines = loggedLines(profile);
  ASSERT_GT(lines.size(), 3);
  EXPECT_EQ(lines[1], u"    Odd state : größer als gedacht"_s);
  EXPECT_EQ(lines[2], u"    <STACK TRACE>"_s);
  EXPECT_GT(frameCount(), kDepth);
}

TEST_F(Guard, logsOtherExceptionsByTheirType) {
  const std::pair<std::function<void()>, QString> cases[] = {
      {[] { throw std::out_of_range("too far"); }, u"    std::out_of_range : too far"_s},
      {[] { throw 7; }, u"    int : not a standard exception"_s},
  };
  for (const auto &[action, expected] : cases) {
    EXPECT_FALSE(runGuarded(action));
    EXPECT_TRUE(loggedLines(profile).contains(expected)) << expected.toStdString();
  }
  EXPECT_GT(frameCount(), 0);
}

} // namespace
