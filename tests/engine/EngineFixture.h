#pragma once

#include "engine/KaDownloadPieces.h"
#include "engine/KaDownloadProcessor.h"
#include "identity/KaLink.h"
#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "tests/engine/FakeDelegate.h"
#include "tests/support/FakeBrowser.h"
#include "tests/support/Image.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

/// The pieces of the download thread, for a test to drive.
struct EngineParts : KaDownloadPieces {
  EngineParts(FakeDelegate &delegate, KaLink &link);

  /// Refreshes the token and gets credentials. @return the first code that is no success.
  [[nodiscard]] KaResultCode open();
  /// Opens, lists and downloads what was found. @return the first code that is no success.
  [[nodiscard]] KaPassOutcome pass(const KaContentTarget &target);
};

/// The service on this machine, a linked account in a home of its own, logging on.
class EngineTest : public testing::Test {
protected:
  /// @param defaults  user defaults besides those that lead to the service, and "requestsAhead" 0: so each request
  ///                  fails or succeeds by itself, in its turn.
  /// @param options   else each request has a connection of its own, so that none is tried anew behind our back.
  explicit EngineTest(const QHash<QString, QString> &defaults = {},
                      const QString &account = QStringLiteral("user-0001"),
                      const sandbox::ServiceOptions &options = {.requestsPerConnection = 1});

  void add(const sandbox::LibraryObject &object) { service.library().add(object); }
  /// Images "NAME", "HOUR/NAME" or "DEVICE/HOUR/NAME", with blanks between.
  void addImages(const char *paths);
  /// The service offers the 10G storage, and the user wants it, in @p folder, else in the same folder.
  void takeLongTermStorageToo(const QString &folder = {});
  /// Into the pictures folder.
  [[nodiscard]] KaContentTarget target(KaContentTarget rest = {.childFolder = 4}) const;

  /// Below the pictures folder.
  [[nodiscard]] QStringList files() const { return filesBelow(profile.picturesFolder()); }
  /// Of a file below the pictures folder.
  [[nodiscard]] QString path(const QString &relativePath) const {
    return profile.picturesFolder() + u'/' + relativePath;
  }
  /// The record of the ordinary storage.
  [[nodiscard]] KaDownloadData record() { return delegate.answers().records.value(service.library().userId()); }
  /// The log's blocks with @p title so far, which may leave out what follows a colon: title and lines joined by "|".
  [[nodiscard]] QStringList logged(const QString &title) const;
  /// The file names of the objects that were asked for, in order.
  [[nodiscard]] QStringList fetched() const;

  /// A login as a person makes it, up to the callback. @return its ID token.
  [[nodiscard]] QString signIn();
  /// Up to the page that has opened.
  static void beginLogin(KaLink &link);
  /// What the pairing folder holds.
  [[nodiscard]] QStringList pairingFiles() const;

  const TestProfile profile;
  sandbox::Service service;
  const FakeBrowser browser{profile};
  FakeDelegate delegate;
  KaLink link{std::chrono::hours(1)};
};

/// The download thread itself.
class ProcessorTest : public EngineTest {
protected:
  using EngineTest::EngineTest;

  void start(bool initialAccess = false) {
    processor = std::make_unique<KaDownloadProcessor>(delegate, link);
    processor->startReceiving(initialAccess);
  }
  /// Starts, and waits for the end of the first run.
  [[nodiscard]] bool run(bool initialAccess = false) {
    start(initialAccess);
    return delegate.waitForEvent(QStringLiteral("enableLoggin 1"));
  }

  std::unique_ptr<KaDownloadProcessor> processor;
};

/// The words of @p text.
inline QStringList names(const char *text) {
  return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

inline void PrintTo(KaResultCode code, std::ostream *out) {
  *out << "result " << static_cast<qint64>(code);
}

inline void PrintTo(const QString &text, std::ostream *out) {
  *out << text.toStdString();
}
