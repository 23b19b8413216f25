#pragma once

#include "sandbox/Service.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <chrono>

/// A service of the test's own and a profile that points there, written before members of derived classes read it.
class ServiceFixture : public testing::Test {
protected:
  explicit ServiceFixture(std::chrono::seconds silenceLimit = std::chrono::seconds(30)) {
    QHash<QString, QString> defaults = service.userDefaults();
    defaults.insert(QStringLiteral("timeoutIntervalForRequest"), QString::number(silenceLimit.count()));
    profile.writeUserDefaults(defaults);
  }

  /// Short where the limit is what ends the request, else long enough for a busy machine.
  [[nodiscard]] static std::chrono::seconds silenceLimitFor(const sandbox::Fault &fault) {
    return std::chrono::seconds(fault.kind == sandbox::Fault::Kind::NoAnswer ? 3 : 30);
  }

  const TestProfile profile;
  sandbox::Service service;
};
