#include "platform/BootClock.h"
#include "platform/UserDefaults.h"
#include "settings/KaLedger.h"
#include "tests/engine/EngineFixture.h"

#include <gmock/gmock.h>

#include <QDate>

#include <atomic>
#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;

namespace {

/// Runs follow one another at once, with the settings of a new user but for the folders by rules.
class LookBack : public ProcessorTest {
protected:
  explicit LookBack(const QHash<QString, QString> &defaults = {}) : ProcessorTest(defaults) {
    delegate.change([](auto &answers) {
      answers.option.checkBoxDownloadMetadata = u"true"_s;
      answers.waits.pollingNormal = answers.waits.pollingError = 1ms;
    });
  }

  /// Begins as a new process, and lets it make @p count runs.
  [[nodiscard]] bool makeRuns(int count) {
    processor.reset();
    delegate.forgetEvents();
    service.resetRequestCounts();
    const auto now = [this] { return platform::BootClock::now() + std::chrono::hours(hoursLater); };
    processor = std::make_unique<KaDownloadProcessor>(delegate, link, KaWaitClock{now, 1ms});
    processor->startReceiving(/*initialAccess=*/false);
    return delegate.waitForEvent(u"enableLoggin 1"_s, count);
  }
  /// After those runs, the names of the files, whatever their folders.
  [[nodiscard]] QStringList fileNames() {
    processor.reset();
    QStringList names;
    for (const QString &file : files())
      names << file.section(u'/', -1);
    names.sort();
    return names;
  }
  [[nodiscard]] qsizetype lookBacks() const { return logged(u"Look Back"_s).size(); }

  std::atomic<int> hoursLater = 0;
};

struct Trouble {
  const char *name;
  Endpoint endpoint;
  Fault fault;
};

class LookBackOfASlowLine : public LookBack {
protected:
  LookBackOfASlowLine() : LookBack({{u"timeoutIntervalForRequest"_s, u"0.3"_s}}) {}
};
class LookBackAfter : public LookBackOfASlowLine, public testing::WithParamInterface<Trouble> {};

TEST_P(LookBackAfter, takesWhatFailedOnceBeforeALaterHourSucceeded) {
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  Fault fault = GetParam().fault;
  fault.pathContains = u"B.JPG"_s;
  service.order(GetParam().endpoint, fault);
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG C.JPG"));
  EXPECT_EQ(lookBacks(), 1) << "the first run of a new account needs none";
}

INSTANTIATE_TEST_SUITE_P(
    Engine, LookBackAfter,
    testing::Values(Trouble{"aRefusal", Endpoint::ObjectGet, {.status = 403}},
                    Trouble{"aMissingObject", Endpoint::ObjectGet, {.status = 404}},
                    Trouble{"anOverload", Endpoint::ObjectGet, {.status = 503}},
                    Trouble{"aDrop", Endpoint::ObjectGet, {.kind = DroppedConnection}},
                    Trouble{"aCut", Endpoint::ObjectGet, {.kind = TruncatedBody}},
                    Trouble{"anEmptyBody", Endpoint::ObjectGet, {.kind = EmptyBody}},
                    Trouble{"silence", Endpoint::ObjectGet, {.kind = NoAnswer}},
                    Trouble{"aRefusedHead", Endpoint::ObjectHead, {.status = 403}},
                    Trouble{"aWrongSizeFourTimes", Endpoint::ObjectGet, {.kind = Body, .body = "short", .times = 4}}),
    [](const auto &row) { return row.param.name; });

TEST_F(LookBack, takesWhatCameLateAndWhatIsNamedLikeAnother) {
  addImages("10/A.JPG 12/C.JPG");
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(fileNames(), names("A.JPG C.JPG"));
  addImages("09/LATE.JPG dev2/10/A.JPG 12/C.RAF");
  ASSERT_TRUE(makeRuns(3));
  EXPECT_EQ(fileNames(), names("A.JPG A_1.JPG C.JPG C.RAF LATE.JPG"));
  EXPECT_THAT(fetched(), testing::UnorderedElementsAre(u"A.JPG"_s, u"C.RAF"_s, u"LATE.JPG"_s));
  EXPECT_EQ(lookBacks(), 1) << "in the first run of a process that knows the account";
}

TEST_F(LookBack, isMadeWhenTheUserAsksAndEverySixHours) {
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(lookBacks(), 0);
  delegate.change([](auto &answers) { answers.waits.pollingNormal = 1h; });
  ASSERT_TRUE(waitFor([&] {
    processor->getContentsNow();
    return lookBacks() == 1;
  }));
  processor.reset();
  addImages("A.JPG");
  ASSERT_TRUE(makeRuns(1));
  const auto before = lookBacks();
  while (lookBacks() == before && hoursLater < 50) {
    ++hoursLater;
    (void)delegate.waitForEvent(u"enableLoggin 1"_s, hoursLater + 1, 1);
  }
  EXPECT_THAT(hoursLater.load(), testing::AllOf(testing::Ge(6), testing::Lt(50)));
}

TEST_F(LookBack, endsARunThatCannotHaveAnImageAndTriesItInRunsFurtherAndFurtherApart) {
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"B.JPG"_s});
  ASSERT_TRUE(makeRuns(1));
  EXPECT_TRUE(delegate.events().contains(u"result 1"_s));
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 8));
  EXPECT_EQ(fileNames(), names("A.JPG C.JPG"));
  // Once in the first run, as the last hour then is behind it, and once in the look-backs of the 2nd, 4th and 8th.
  EXPECT_EQ(fetched().count(u"B.JPG"_s), 4);
  service.clearFaults();
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG C.JPG"));
}

TEST_F(LookBack, countsWhatIsStillToComeUntilItHasComeOrTheStorageHasItNoMore) {
  takeLongTermStorageToo();
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"A.JPG"_s});
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"B.JPG"_s});
  QList<qsizetype> atResults;
  delegate.change([&](auto &answers) {
    answers.onEvent = [&](const QString &event) {
      if (event == u"result 1" || event == u"result 2") atResults << delegate.answers().stillToCome;
    };
  });
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(delegate.answers().stillToCome, 4) << "of either storage";
  delegate.change([](auto &answers) { answers.onEvent = nullptr; });
  EXPECT_EQ(atResults, (QList<qsizetype>{2, 4})) << "who hears that a storage is done knows of it";
  service.library().remove(image(u"11"_s, u"B.JPG"_s));
  EXPECT_TRUE(waitFor([&] { return delegate.answers().stillToCome == 2; }));
  delegate.change([](auto &answers) { answers.option.checkBox10GDownload = u"false"_s; });
  EXPECT_TRUE(waitFor([&] { return delegate.answers().stillToCome == 1; }));
  delegate.change([](auto &answers) { answers.option.checkBox10GDownload = u"true"_s; });
  EXPECT_TRUE(waitFor([&] { return delegate.answers().stillToCome == 2; }));
  service.clearFaults();
  EXPECT_TRUE(waitFor([&] { return delegate.answers().stillToCome == 0; }));
  EXPECT_EQ(fileNames(), names("A.JPG C.JPG"));
}

TEST_F(LookBack, countsACopyOfTheWrongSizeWhileItIsTriedAgain) {
  addImages("10/A.JPG 11/B.JPG");
  service.order(Endpoint::ObjectGet, {.kind = Body, .body = "short", .times = -1, .pathContains = u"A.JPG"_s});
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(delegate.answers().stillToCome, 1);
  EXPECT_TRUE(waitFor([&] { return delegate.answers().stillToCome == 0; }));
  processor.reset();
  EXPECT_EQ(fetched().count(u"A.JPG"_s), 5 * 4);
}

TEST_F(LookBack, forgetsWhatAnotherAccountIsWaitingFor) {
  delegate.change([](auto &answers) { answers.waits.pollingNormal = 1h; });
  addImages("10/A.JPG 11/B.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"A.JPG"_s});
  ASSERT_TRUE(makeRuns(1));
  processor->getContentsNow(); // after its second run it is not tried in the third
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 2));
  EXPECT_EQ(delegate.answers().stillToCome, 1);
  service.library().remove(image(u"10"_s, u"A.JPG"_s));
  service.library().setUserId(u"user-0002"_s);
  link.completeLogin(signIn());
  link.confirmFolders();
  processor->startReceiving(/*initialAccess=*/false);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 3));
  EXPECT_EQ(delegate.answers().stillToCome, 0);
}

TEST_F(LookBack, takesInTheSameRunWhatIsBehindAnImageThatCannotBeHad) {
  delegate.change([](auto &answers) { answers.option.checkBoxDownloadMetadata = u"false"_s; });
  addImages("10/A.JPG 10/B.JPG 11/C.JPG 12/D.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"A.JPG"_s});
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"B.JPG"_s});
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(fileNames(), names("C.JPG D.JPG"));
}

TEST_F(LookBack, isNotOverWhenTheCamerasWereSaidToBeMissing) {
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"B.JPG"_s});
  service.order(Endpoint::ListDevices, {.kind = Delay, .times = 5});
  service.order(Endpoint::ListDevices, {.status = 404});
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(delegate.answers().stillToCome, 1);
  ASSERT_TRUE(delegate.waitForEvent(u"enableLoggin 1"_s, 3));
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG C.JPG"));
}

TEST_F(LookBackOfASlowLine, isNotHeldUpByImagesThatNeverGetAnAnswer) {
  addImages("10/A.JPG 10/B.JPG 10/C.JPG 11/D.JPG 12/E.JPG");
  for (const QString &name : {u"A.JPG"_s, u"B.JPG"_s, u"C.JPG"_s})
    service.order(Endpoint::ObjectGet, {.kind = NoAnswer, .times = -1, .pathContains = name});
  service.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"D.JPG"_s});
  ASSERT_TRUE(makeRuns(9));
  EXPECT_EQ(fileNames(), names("D.JPG E.JPG"));
  EXPECT_LE(fetched().count(u"A.JPG"_s), 6) << "further and further apart";
}

TEST_F(LookBack, endsTheRoundsOfAnImageThatIsListedAgainAndAgain) {
  addImages("10/A.JPG 11/B.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503, .times = -1, .pathContains = u"B.JPG"_s});
  ASSERT_TRUE(makeRuns(1));
  processor.reset();
  EXPECT_EQ(fetched(), names("A.JPG B.JPG B.JPG B.JPG"));
  EXPECT_TRUE(delegate.events().contains(u"result 1"_s));
}

TEST_F(LookBack, endsARunWithoutAFolderAndSaysSoAndNoMore) {
  addImages("10/A.JPG 10/B.JPG 11/C.JPG 12/D.JPG 13/E.JPG");
  delegate.change([](auto &answers) { answers.folderVerdict = KaResultCode::FolderNotAccessible; });
  ASSERT_TRUE(makeRuns(9)); // whose own fault it were, would be tried next in the 16th
  const QStringList events = delegate.events();
  EXPECT_TRUE(events.contains(u"trouble 13"_s) && !events.contains(u"result 1"_s) && !events.contains(u"result 13"_s));
  EXPECT_TRUE(events.contains(u"status 0"_s)) << "the icon rests";
  EXPECT_EQ(fetched(), QStringList()) << "and transferred nothing";
  delegate.change([](auto &answers) { answers.folderVerdict = KaResultCode::Success; });
  delegate.forgetEvents();
  ASSERT_TRUE(delegate.waitForEvent(u"result 1"_s));
  EXPECT_LE(delegate.events().count(u"enableLoggin 0"_s), 3) << "none of them waits for a later run";
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG C.JPG D.JPG E.JPG"));
  EXPECT_FALSE(delegate.events().contains(u"trouble 13"_s));
}

TEST_F(LookBack, takesWhatFoundNoRoomOnceThereIsSome) {
  sandbox::LibraryObject large = image(u"10"_s, u"A.JPG"_s);
  large.listedSize = 1LL << 60;
  add(large);
  addImages("11/B.JPG");
  delegate.change([](auto &answers) { answers.waits.pollingNormal = 1h; });
  ASSERT_TRUE(makeRuns(1));
  const QStringList events = delegate.events();
  EXPECT_EQ(events.count(u"trouble 8"_s), 1);
  EXPECT_GT(events.indexOf(u"trouble 8"_s), events.indexOf(u"result 1"_s)) << "after the run's own result";
  large.listedSize = -1;
  add(large);
  processor->getContentsNow();
  EXPECT_TRUE(waitFor([&] { return files().size() == 2; }));
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG"));
}

TEST_F(LookBack, tellsOfNoRoomForTheLongTermStorageTooWhateverCameAfterIt) {
  takeLongTermStorageToo();
  delegate.change([this](auto &answers) {
    answers.records[service.library().userId()] = {u"20250101/00"_s, {}};
    answers.waits.pollingNormal = 1h;
  });
  sandbox::LibraryObject large = image(u"10"_s, u"A.JPG"_s);
  large.listedSize = 1LL << 60;
  add(large);
  addImages("11/B.JPG");
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(delegate.events().count(u"trouble 8 of 10G"_s), 1);
  EXPECT_EQ(fileNames(), names("B.JPG"));
}

TEST_F(LookBack, asksOnceForCredentialsThatItCannotHave) {
  service.setCredentialLifetime(300s); // renewed before each image
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  delegate.change([this](auto &answers) {
    answers.records[service.library().userId()] = {u"20240501/13"_s, {}};
    answers.ledgers[service.library().userId()] = {KaLoadedLedger::Outcome::Read, {}};
    answers.waits.pollingNormal = answers.waits.pollingError = 1h;
  });
  service.order(Endpoint::RefreshToken, {.kind = Delay});
  service.order(Endpoint::RefreshToken, {.status = 503, .times = -1});
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(lookBacks(), 1);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 2) << "for the run, and for one image";
  EXPECT_EQ(delegate.answers().stillToCome, 2) << "behind the one for which a look needed no new ones";
}

TEST_F(LookBack, booksWhatTheLongTermStorageBringsThoughTheOrdinaryOneHadNoCredentials) {
  takeLongTermStorageToo();
  addImages("A.JPG");
  service.order(Endpoint::Sts, {.status = 500});
  ASSERT_TRUE(makeRuns(1));
  processor.reset();
  const KaLedger ledger = delegate.answers().ledgers.value(service.library().userId()).ledger;
  EXPECT_EQ(ledger.longTerm.days.size(), 1U);
  EXPECT_TRUE(ledger.longTerm.boundaryContentIds.isEmpty() && ledger.ordinary.days.empty());
}

TEST_F(LookBack, isNotNeededForWhatWasTakenBeforeThereWasALedger) {
  addImages("10/OLD.JPG 11/A.JPG 11/B.JPG 12/C.JPG");
  delegate.change([this](auto &answers) {
    answers.records[service.library().userId()] = {u"20240501/11"_s, {u"A"_s}};
  });
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(fileNames(), names("B.JPG C.JPG"));
  // The ledger holds, whatever becomes of the record.
  delegate.change([](auto &answers) { answers.records.clear(); });
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(fileNames(), names("B.JPG C.JPG"));
  EXPECT_EQ(fetched(), QStringList());
}

TEST_F(LookBack, takesWhatARecordOfTheFutureWouldShutOut) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.date = QDate::currentDate().addDays(-2).toString(u"yyyyMMdd"_s);
  add(object);
  delegate.change([this](auto &answers) { answers.records[service.library().userId()] = {u"99990101/00"_s, {}}; });
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(fileNames(), names("A.JPG"));
}

TEST_F(LookBack, followsSoonOnAListingThatWasSaidToBeMissingAndNeedNotWhereItWasAskedAhead) {
  addImages("10/A.JPG dev2/11/B.JPG");
  for (const bool isAhead : {true, false}) { // the question of its turn has its answer then
    platform::standardUserDefaults().setString(u"requestsAhead"_s, isAhead ? u"8"_s : u"0"_s);
    service.order(Endpoint::ListItems, {.status = 404, .pathContains = u"dev1"_s});
    ASSERT_TRUE(makeRuns(isAhead ? 1 : 2));
    EXPECT_EQ(fileNames(), names("A.JPG B.JPG")) << isAhead;
    for (const QString &file : files())
      QFile::remove(path(file));
    delegate.forgetTaken();
  }
}

TEST_F(LookBack, waitsForSettingsThatWereThereAMomentAgo) {
  service.library().setSettingsObject(R"({"applicationAliasIds":["alias"]})");
  addImages("10/A.JPG");
  ASSERT_TRUE(makeRuns(1));
  addImages("09/LATE.JPG alias/09/B.JPG");
  for (const int times : {1, -1}) { // in one look-back, then in all that the run after it asks for, too
    service.order(Endpoint::SettingsObject, {.kind = Delay});
    service.order(Endpoint::SettingsObject, {.status = 404, .times = times});
    ASSERT_TRUE(makeRuns(2));
    EXPECT_EQ(fileNames(), names(times == 1 ? "A.JPG LATE.JPG" : "A.JPG B.JPG LATE.JPG"));
  }
}

TEST_F(LookBack, ofALedgerThatCannotBeReadAsksForAllThatIsListed) {
  addImages("10/A.JPG 11/B.JPG");
  delegate.change([this](auto &answers) {
    answers.records[service.library().userId()] = {u"20240501/11"_s, {u"B"_s}};
    answers.ledgers[service.library().userId()] = {KaLoadedLedger::Outcome::Unreadable, {}};
  });
  ASSERT_TRUE(makeRuns(1));
  EXPECT_EQ(fileNames(), names("A.JPG B.JPG"));
}

TEST_F(LookBack, copiesNothingThatLiesWhereItWasPutWhateverWasLostBeforeANewLink) {
  struct Loss {
    const char *name;
    std::function<void(FakeDelegate::Answers &)> lose;
    qsizetype transfers; ///< for both storages
  };
  const KaLoadedLedger unreadable{KaLoadedLedger::Outcome::Unreadable, {}};
  const Loss losses[] = {{"ledger", [](auto &answers) { answers.ledgers.clear(); }, 0},
                         {"record", [](auto &answers) { answers.records.clear(); }, 0},
                         {"what the ledger holds", [&](auto &answers) { *answers.ledgers.begin() = unreadable; }, 6},
                         {"both", [](auto &answers) { answers.ledgers.clear(), answers.records.clear(); }, 6}};
  takeLongTermStorageToo();
  addImages("10/A.JPG dev2/10/A.JPG 11/B.JPG");
  ASSERT_TRUE(makeRuns(1));
  for (const Loss &loss : losses) {
    processor.reset();
    delegate.change(loss.lose);
    link.completeLogin(signIn());
    link.confirmFolders();
    ASSERT_TRUE(makeRuns(2));
    EXPECT_EQ(fileNames(), names("A.JPG A_1.JPG B.JPG")) << loss.name;
    EXPECT_EQ(fetched().size(), loss.transfers) << loss.name;
  }
}

TEST_F(LookBack, findsSavedWhatALongPassHadHalfAMinuteAgo) {
  addImages("10/A.JPG 11/B.JPG 12/C.JPG");
  service.order(Endpoint::ObjectGet, {.kind = SlowBody, .pathContains = u"C.JPG"_s});
  const auto now = [minutes = 0]() mutable { return platform::BootClock::time_point(std::chrono::minutes(++minutes)); };
  processor = std::make_unique<KaDownloadProcessor>(delegate, link, KaWaitClock{now, 1ms});
  processor->startReceiving(/*initialAccess=*/false);
  // The image that is held gives its pass up after ten seconds.
  EXPECT_TRUE(delegate.waitForEvent(u"save RecentDownloadData user-0001"_s, 1, 5));
  const KaLedger ledger = delegate.answers().ledgers.value(service.library().userId()).ledger;
  ASSERT_EQ(ledger.ordinary.days.size(), 1U);
  EXPECT_EQ(ledger.ordinary.days.begin()->second.size(), 2U);
  EXPECT_EQ(record().LastDateTime, u"20240501/11"_s);
}

TEST_F(LookBack, forgetsWhatNoListingCanBring) {
  KaLedger old;
  const QDate today = QDateTime::currentDateTimeUtc().date();
  for (const int days : {31 + 42, 31 + 39, 3})
    old.ordinary.days[today.addDays(-days).toString(u"yyyyMMdd"_s)] = {KaKeyDigest{}};
  old.longTerm = old.ordinary;
  delegate.change([&](auto &answers) {
    answers.records[service.library().userId()] = {u"20990101/00"_s, {}};
    answers.ledgers[service.library().userId()] = {KaLoadedLedger::Outcome::Read, old};
  });
  ASSERT_TRUE(makeRuns(1));
  processor.reset();
  const KaLedger ledger = delegate.answers().ledgers.value(service.library().userId()).ledger;
  EXPECT_EQ(ledger.ordinary.days.size(), 2U);
  EXPECT_EQ(ledger.longTerm.days.size(), 3U);
}

TEST_F(LookBack, countsOnNothingThatTheLedgerHasNot) {
  addImages("A.JPG");
  delegate.change([](auto &answers) { answers.savesLedger = false; });
  ASSERT_TRUE(makeRuns(1));
  EXPECT_TRUE(delegate.events().contains(u"result 14"_s));
  EXPECT_THAT(delegate.events(), testing::Not(testing::Contains(testing::Truly(
                                     [](const QString &event) { return event.startsWith(u"save RecentDown"); }))));
}

TEST_F(LookBack, knowsTheLongTermStorageByItsKeysAndTheNamelessToo) {
  takeLongTermStorageToo();
  sandbox::LibraryObject nameless = {u"dev1"_s, u"20240501"_s, u"10"_s, u"N.JPG"_s, QByteArray(10, 'n')};
  for (const QString &device : {u"dev1"_s, u"dev2"_s})
    add({device, u"20240501"_s, u"10"_s, u"A.JPG"_s, device.toUtf8(), sandbox::fileNameHeader(u"A.JPG"_s)});
  add(nameless);
  add({u"dev1"_s, u"20230501"_s, u"10"_s, u"A.JPG"_s, "last year's", sandbox::fileNameHeader(u"A.JPG"_s)});
  ASSERT_TRUE(makeRuns(2));
  EXPECT_EQ(fetched().count(u"A.JPG"_s), 6) << "three for each of two storages";
  EXPECT_EQ(fetched().count(u"N.JPG"_s), 8);
  ASSERT_TRUE(makeRuns(2));
  processor.reset();
  EXPECT_EQ(fetched(), QStringList());
}

} // namespace
