#include "identity/KaLink.h"
#include "identity/KaLinkageUtility.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsFiles.h"
#include "tests/support/FlushedDisk.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

FlushedDisk *disk = nullptr; ///< while it is watched
std::function<void()> lookAfterACut;

/// Nothing of what a look does counts.
template <class Call> auto watched(const Call &call) {
  const auto result = call();
  if (FlushedDisk *const watching = std::exchange(disk, nullptr)) {
    lookAfterACut();
    disk = watching;
  }
  return result;
}

long replaced(const char *path, const std::function<long()> &call) {
  const ino_t gone = disk ? FlushedDisk::numberOf(QFile::decodeName(path)) : 0;
  const long result = call();
  if (disk && result == 0) disk->forget(gone);
  return watched([result] { return result; });
}

int flushed(int descriptor) {
  if (FlushedDisk *const watching = std::exchange(disk, nullptr)) {
    watching->flush(descriptor);
    disk = watching;
  }
  return watched([] { return 0; });
}

} // namespace

// In place of the C library's, for Qt's calls, too.
extern "C" [[gnu::visibility("default")]] int fsync(int descriptor) {
  return flushed(descriptor);
}
extern "C" [[gnu::visibility("default")]] int fdatasync(int descriptor) {
  return flushed(descriptor);
}
extern "C" [[gnu::visibility("default")]] int rename(const char *from, const char *to) noexcept {
  return static_cast<int>(replaced(to, [=] { return ::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0); }));
}
extern "C" [[gnu::visibility("default")]] int unlink(const char *path) noexcept {
  return static_cast<int>(replaced(path, [=] { return ::syscall(SYS_unlinkat, AT_FDCWD, path, 0); }));
}

namespace {

class PowerCut : public testing::Test {
protected:
  PowerCut() { state.keep(profile.path()); }
  ~PowerCut() override { disk = nullptr; }

  /// What @p read finds after a cut now, in either way.
  [[nodiscard]] QStringList found(const std::function<QString()> &read) const {
    QStringList results;
    for (const bool isFlushedAlone : {true, false}) {
      const QTemporaryDir copy;
      state.restore(profile.path(), copy.path(), isFlushedAlone);
      qputenv("XDG_DATA_HOME", QFile::encodeName(copy.filePath(u"data"_s)));
      qputenv("XDG_CONFIG_HOME", QFile::encodeName(copy.filePath(u"config"_s)));
      results << read();
    }
    qputenv("XDG_DATA_HOME", QFile::encodeName(profile.dataFolder()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(profile.configFolder()));
    return results;
  }
  /// Does @p write and cuts the power after each call that matters: one of @p during is found, and @p after once it
  /// has returned.
  void cutWhile(const std::function<bool()> &write, const std::function<QString()> &read, const QStringList &during,
                const QString &after) {
    int cuts = 0;
    lookAfterACut = [&] {
      ++cuts;
      for (const QString &result : found(read))
        EXPECT_TRUE(during.contains(result)) << qPrintable(result) << " after cut " << cuts;
    };
    disk = &state;
    EXPECT_TRUE(write());
    disk = nullptr;
    EXPECT_GT(cuts, 0);
    EXPECT_EQ(found(read), (QStringList{after, after})) << "once it has returned";
  }
  [[nodiscard]] static QString link() {
    return KaLinkageUtility::loadLinkageSetting().value_or(u"-"_s) + u'|'
           + KaLinkageUtility::loadTokenCode().value_or(u"-"_s)
           + (KaLinkageUtility::existCodeVerifier() ? u"|verifier"_s : u""_s);
  }

  const TestProfile profile;
  FlushedDisk state;
};

TEST_F(PowerCut, leavesOfEachFileTheOldOrTheNewAndOnceItIsSavedTheNew) {
  const QString record = u"RecentDownloadData"_s;
  const auto config = [] { return qEnvironmentVariable("XDG_CONFIG_HOME") + u"/NORVALE INC/Downloaderpictora.conf"_s; };
  struct Kind {
    std::function<bool(const QString &)> write;
    std::function<QString()> read;
  };
  const Kind kinds[] = {
      {[&](const QString &text) {
         return saveBookkeeping(record, u"key"_s, {text, {}});
       },
       [&] {
         const auto targets = loadBookkeeping(record);
         return targets ? targets->value(u"key"_s).LastDateTime : u"-"_s;
       }},
      {[](const QString &text) { return saveDownloadOption({.parentFolder = text, .parent10GFolder = u"b"_s}); },
       [] {
         return loadDownloadOption().value_or(KaDownloadOption{u"-"_s, {}}).parentFolder;
       }},
      {[&](const QString &text) {
         platform::UserDefaults(config()).setString(u"key"_s, text);
         return true;
       },
       [&] { return platform::UserDefaults(config()).string(u"key"_s).value_or(u"-"_s); }},
  };
  for (const Kind &kind : kinds) {
    SCOPED_TRACE(&kind - kinds);
    QString old = u"-"_s;
    for (const QString &text : {u"one"_s, u"two"_s, u"three"_s}) {
      cutWhile([&] { return kind.write(text); }, kind.read, {old, text}, text);
      old = text;
    }
  }
}

TEST_F(PowerCut, keepsThePairThatTheServiceTakesNextAndNoLinkThatHasEnded) {
  const auto step = [this](const std::function<bool()> &write, const QStringList &states) {
    SCOPED_TRACE(qPrintable(states.last()));
    cutWhile(write, link, states, states.last());
  };
  KaLink kept;
  step([] { return KaLinkageUtility::saveLinkageSetting(u"A"_s); }, {u"-|-"_s, u"A|-"_s});
  step([] { return KaLinkageUtility::saveTokenCode(u"1"_s); }, {u"A|-"_s, u"A|1"_s});
  ASSERT_TRUE(kept.load());
  step([&] { return kept.storeTokenCode(kept.number(), u"2"_s); }, {u"A|1"_s, u"A|2"_s});
  step([&] { return kept.storeIdToken(kept.number(), u"A2"_s); }, {u"A|2"_s, u"A2|2"_s});
  step([] { return KaLinkageUtility::saveCodeVerifier(u"of B"_s); }, {u"A2|2"_s, u"A2|2|verifier"_s});
  step([&] { return kept.completeLogin(u"B"_s); }, {u"A2|2|verifier"_s, u"A2|-|verifier"_s, u"B|-|verifier"_s});
  step([&] { return kept.takeCodeVerifier(kept.number()).has_value(); }, {u"B|-|verifier"_s, u"B|-"_s});
  step([&] { return kept.storeTokenCode(kept.number(), u"3"_s); }, {u"B|-"_s, u"B|3"_s});
  step([&] { return kept.close(), true; }, {u"B|3"_s, u"-|3"_s, u"-|-"_s});
}

} // namespace
