#pragma once

#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <QCoreApplication>
#include <QHash>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

/// What the agent lives in. Surroundings.cpp makes it so.
struct Around {
  int endAt = 0;              ///< it dies at that change to the disk; 0: it does not
  bool isCut = false;         ///< of a power cut
  bool keepsPictures = false; ///< then: names in the download folders that were not flushed remain, too
  bool keepsOwn = false;      ///< then: names of the agent's own files that were not flushed remain, too
  bool isPlain = false;       ///< a file system without unnamed files and links
  int speed = 10'000;         ///< of the time that waits are measured by: a minute takes 6 ms
};

/// What the user has lost.
struct Losses {
  int lost = 0;     ///< pictures that are not there
  int doubled = 0;  ///< files with a picture that another one holds
  int broken = 0;   ///< files that hold no picture
  int leftOver = 0; ///< files of the agent's that nothing will use
  int silent = 0;   ///< times that it was linked and asked for nothing
  int linkLost = 0;

  Losses &operator+=(const Losses &more);
  friend bool operator==(const Losses &, const Losses &) = default;
};
std::ostream &operator<<(std::ostream &out, const Losses &losses);

/// The built agent in a profile of its own, linked to a service of its own.
class SweepTest : public testing::Test {
protected:
  explicit SweepTest(const QHash<QString, QString> &defaults = {});

  /// To both storages, with a content of its own by which it is known again.
  void add(sandbox::LibraryObject object);
  void addPreviews(int count); ///< so many in all

  /// The account holds nothing any more.
  void forgetPictures();

  /// From now on the profile is one that was linked a moment ago and has taken nothing.
  void beginAnew();
  /// Keeps what the profile is like, but for the link.
  void putAside() const;
  /// From now on the profile is the one that was put aside, newly linked.
  void beginAgain();

  [[nodiscard]] std::unique_ptr<AgentProcess> start(const Around &around) const;
  /// Waits until @p agent is gone, or has come to its third run. @return whether the latter.
  [[nodiscard]] bool waitForRuns(const AgentProcess &agent) const;
  /// The profile becomes what a power cut has left of it.
  void takeUpWhatIsLeft() const;
  [[nodiscard]] Losses losses() const;
  /// Files of the agent's own that nothing will use.
  [[nodiscard]] QStringList leftOver() const;

  const TestProfile profile;
  const PrivateBus bus;
  int noArguments = 0;
  const QCoreApplication application{noArguments, nullptr};
  sandbox::Service service;

private:
  /// What a power cut is about: the agent's own files, and last the download folders.
  [[nodiscard]] QStringList roots() const;
  void link();

  const QHash<QString, QString> userDefaults;
  QHash<QString, QList<QByteArray>> pictures; ///< contents by the folder that they belong in
};
