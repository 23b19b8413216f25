#include "app/settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Override {
  const char *name;
  QHash<QString, QString> defaults;
  KaWaitTimes expected;
};

class WaitTimes : public testing::TestWithParam<Override> {};

TEST_P(WaitTimes, areOverriddenByPositiveWholeNumbersOnly) {
  const TestProfile profile;
  profile.writeUserDefaults(GetParam().defaults);
  KaWaitTimes waitTimes;
  loadWaitTimeOverrides(waitTimes);
  EXPECT_EQ(waitTimes, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Settings, WaitTimes,
                         testing::Values(Override{"none", {}, {1800s, 180s, 60s, 5s}},
                                         Override{"all",
                                                  {{u"PollingNormalWaitTime"_s, u"7"_s},
                                                   {u"PollingErrorWaitTime"_s, u"8"_s},
                                                   {u"ImageRetryWaitTime"_s, u"9"_s},
                                                   {u"ExifRetryWaitTime"_s, u"10"_s}},
                                                  {7s, 8s, 9s, 10s}},
                                         Override{"zero", {{u"PollingNormalWaitTime"_s, u"0"_s}}, {}},
                                         Override{"negative", {{u"PollingErrorWaitTime"_s, u"-3"_s}}, {}},
                                         Override{"noNumber", {{u"ImageRetryWaitTime"_s, u"soon"_s}}, {}},
                                         Override{"beyondTheClock",
                                                  {{u"ExifRetryWaitTime"_s, u"9223372036854775807"_s}},
                                                  {1800s, 180s, 60s, 100h * 365 * 24}}),
                         [](const auto &row) { return row.param.name; });

} // namespace
