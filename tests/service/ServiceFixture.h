#pragma once

#include "platform/UserDefaults.h"
#include "sandbox/Library.h"
#include "sandbox/Service.h"
#include "service/KaServerRequest.h"
#include "service/KaStorage.h"
#include "tests/support/TestProfile.h"

#include <QDir>

#include <gtest/gtest.h>

/// The service on this machine with one image in its library, and user defaults that lead to it.
struct ServiceTest : testing::Test {
  /// @param options  else each request has a connection of its own, so that none is tried anew behind our back.
  explicit ServiceTest(const sandbox::ServiceOptions &options = {.requestsPerConnection = 1}) : service(options) {
    service.library().add(image);
    storage.setCredential(by);
  }

  [[nodiscard]] QString url(const QString &host, const QString &target) const {
    return QStringLiteral("https://%1.localhost:%2%3").arg(host).arg(service.port()).arg(target);
  }
  [[nodiscard]] QString presigned(const QString &key) const {
    return service.presignedUrl(issued, sandbox::contentBucket(), key);
  }
  [[nodiscard]] QString picture(const QString &name) const { return profile.picturesFolder() + u'/' + name; }
  [[nodiscard]] QStringList savedFiles() const { return filesBelow(profile.picturesFolder()); }

  sandbox::Service service;
  const TestProfile profile{service.userDefaults()};
  const sandbox::TemporaryCredential issued = service.issueCredential();
  const KaCredential by = {issued.accessKeyId, issued.secretAccessKey, issued.sessionToken,
                           QString::number(issued.expiration)};
  sandbox::LibraryObject image = {QStringLiteral("dev01"),  QStringLiteral("20240501"),
                                  QStringLiteral("10"),     QStringLiteral("00 é"),
                                  QByteArray(100'000, 'p'), sandbox::fileNameHeader(QStringLiteral("IMG_1.JPG"))};
  const QString imageKey = service.library().imageKey(image);
  KaServerRequest request;
  KaStorage storage{request};
};
