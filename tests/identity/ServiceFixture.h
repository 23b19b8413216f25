#pragma once

#include "sandbox/Service.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

/// A service of the test's own and a profile that points there, written before members of derived classes read it.
class ServiceFixture : public testing::Test {
protected:
  ServiceFixture() {
    QHash<QString, QString> defaults = service.userDefaults();
    defaults.insert(QStringLiteral("timeoutIntervalForRequest"), QStringLiteral("1"));
    profile.writeUserDefaults(defaults);
  }

  const TestProfile profile;
  sandbox::Service service;
};
