#include "platform/Mailbox.h"
#include "platform/TerminationSignals.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <csignal>
#include <thread>
#include <vector>

namespace {

int noArguments = 0;

TEST(Mailbox, runsEveryJobOnItsOwnThreadInThePostersOrder) {
  const QCoreApplication application(noArguments, nullptr);
  platform::Mailbox mailbox;
  constexpr int kJobs = 500;
  std::vector<std::vector<int>> seen(3);
  int total = 0;
  bool onlyHere = true;
  {
    std::vector<std::jthread> posters;
    for (auto &own : seen) {
      posters.emplace_back([&] {
        for (int job = 0; job < kJobs; ++job) {
          mailbox.post([&, job] {
            own.push_back(job);
            ++total;
            onlyHere = onlyHere && QThread::currentThread() == application.thread();
          });
        }
      });
    }
  }
  ASSERT_TRUE(waitFor([&] { return total == 3 * kJobs; }));
  EXPECT_TRUE(onlyHere);
  for (const auto &own : seen)
    EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
}

TEST(Mailbox, goesOnInOrderWhileAJobShowsADialog) {
  const QCoreApplication application(noArguments, nullptr);
  platform::Mailbox mailbox;
  std::vector<int> seen;
  QEventLoop dialog;
  mailbox.post([&] {
    seen.push_back(1);
    mailbox.post([&] { seen.push_back(3); });
    mailbox.post([&] { dialog.quit(); });
    dialog.exec();
    seen.push_back(4);
  });
  mailbox.post([&] { seen.push_back(2); });
  ASSERT_TRUE(waitFor([&] { return seen.size() == 4; }));
  EXPECT_EQ(seen, (std::vector{1, 2, 3, 4}));
}

TEST(Mailbox, dropsWhatIsLeftWhenItGoes) {
  const QCoreApplication application(noArguments, nullptr);
  bool ran = false;
  {
    platform::Mailbox mailbox;
    mailbox.post([&] { ran = true; });
  }
  QCoreApplication::processEvents();
  EXPECT_FALSE(ran);
}

TEST(TerminationSignals, becomeAnEventOfTheMainThread) {
  const QCoreApplication application(noArguments, nullptr);
  platform::TerminationSignals signals;
  int told = 0;
  QObject::connect(&signals, &platform::TerminationSignals::terminationRequested, [&] { ++told; });
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    const int before = told;
    ASSERT_EQ(std::raise(signal), 0);
    EXPECT_TRUE(waitFor([&] { return told == before + 1; }));
  }
}

TEST(TerminationSignals, leaveOneAloneThatTheStarterIgnores) {
  const QCoreApplication application(noArguments, nullptr);
  ASSERT_NE(std::signal(SIGHUP, SIG_IGN), SIG_ERR);
  platform::TerminationSignals signals;
  int told = 0;
  QObject::connect(&signals, &platform::TerminationSignals::terminationRequested, [&] { ++told; });
  ASSERT_EQ(std::raise(SIGHUP), 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(told, 0);
  ASSERT_EQ(std::raise(SIGTERM), 0);
  EXPECT_TRUE(waitFor([&] { return told == 1; }));
}

} // namespace
