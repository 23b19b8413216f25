#pragma once

#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "service/KaCredential.h"
#include "tests/support/TestProfile.h"

#include <QDir>

#include <gtest/gtest.h>

/// The service on this machine with one image in its library, and user defaults that lead to it.
class ServiceTest : public testing::Test {
protected:
  ServiceTest() {
    service.library().add(image);
    imageKey = service.library().imageKey(image);
    profile.writeUserDefaults(service.userDefaults());
  }

  /// Writes the user defaults anew, with @p more besides; before the code under test first reads them.
  void addUserDefaults(const QHash<QString, QString> &more) const {
    QHash<QString, QString> values = service.userDefaults();
    values.insert(more);
    profile.writeUserDefaults(values);
  }

  [[nodiscard]] KaCredential credential() {
    const sandbox::TemporaryCredential issued = service.issueCredential();
    return {issued.accessKeyId, issued.secretAccessKey, issued.sessionToken, {}};
  }

  [[nodiscard]] QString presigned(const KaCredential &by, const QString &key,
                                  const QString &bucket = sandbox::contentBucket()) const {
    constexpr qint64 kLongFromNow = 2147483646;
    return service.presignedUrl({by.accessKeyId, by.secretAccessKey, by.sessionToken, kLongFromNow}, bucket, key);
  }

  [[nodiscard]] QString url(const QString &host, const QString &target) const {
    return QStringLiteral("https://%1.localhost:%2%3").arg(host).arg(service.port()).arg(target);
  }

  /// Every file below the pictures folder, hidden ones too.
  [[nodiscard]] QStringList savedFiles() const {
    return QDir(profile.picturesFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
  }
  [[nodiscard]] QString picture(const QString &name) const { return profile.picturesFolder() + u'/' + name; }

  const TestProfile profile;
  sandbox::Service service;
  const sandbox::LibraryObject image = {.deviceId = QStringLiteral("dev01"),
                                        .date = QStringLiteral("20240501"),
                                        .hour = QStringLiteral("10"),
                                        .fileName = QStringLiteral("0001"),
                                        .body = QByteArray(100'000, 'p'),
                                        .fileNameMetadata = sandbox::fileNameHeader(QStringLiteral("IMG_1.JPG"))};
  QString imageKey;
};
