#include "ui/StatusTables.h"

#include <gmock/gmock.h>

#include <vector>

using namespace Qt::StringLiterals;
using enum KaAppStatus;
using enum KaErrorStatus;

namespace {

struct ResultRow {
  qint64 code;
  ResultEffect effect;
};

const std::vector<ResultRow> kResults{
    {1, {"MSG_DOWNLOAD_COMPLETE"_L1, Normal, {}, false}},
    {2, {"MSG_10G_DOWNLOAD_COMPLETE"_L1, Normal, {}, false}},
    {3, {"MSG_DOWNLOAD_ZERO"_L1, Normal, {}, false}},
    {4, {"MSG_INITIAL_ACCESS_COMPLETE"_L1, Normal, {}, false}},
    {5, {{}, NotLinked, {}, true}},
    {6, {"MSG_ERR_CERTIFICATE"_L1, Error, Maintenance, true}},
    {7, {"MSG_ERR_COMMUNICATION"_L1, Error, Maintenance, true}},
    {8, {"MSG_ERR_DISK_FULL"_L1, Error, DiskFull, true}},
    {9, {"MSG_ERR_OFFLINE"_L1, Error, Offline, true}},
    {10, {"MSG_ERR_UNLINK"_L1, NotLinked, {}, true}},
    {11, {"MSG_ERR_RETRY"_L1, Error, Maintenance, true}},
    {12, {"MSG_ERR_SERVER"_L1, Error, Maintenance, true}},
    {13, {"MSG_ERR_DOWNLOAD"_L1, Error, Download, true}},
    {14, {"MSG_ERR_UNEXPECTED"_L1, Error, Maintenance, true}},
    {16, {"MSG_ERR_LINK_INVALID"_L1, Error, Maintenance, true}},
    {17, {"MSG_ERR_VALIDATION"_L1, NotLinked, {}, true}},
    {24, {"MSG_NEW_VERSION_RELEASED"_L1, {}, {}, false}},
    {-1, {}},
    {0, {}},
    {15, {}},
    {18, {}},
    {19, {}},
    {20, {}},
    {21, {}},
    {22, {}},
    {23, {}},
    {25, {}},
};

class ResultTable : public testing::TestWithParam<ResultRow> {};

TEST_P(ResultTable, tellsWhatAResultDoes) {
  EXPECT_EQ(resultEffect(static_cast<KaResultCode>(GetParam().code)), GetParam().effect);
}

INSTANTIATE_TEST_SUITE_P(Codes, ResultTable, testing::ValuesIn(kResults), [](const auto &row) {
  return row.param.code < 0 ? std::string("negative") : "code" + std::to_string(row.param.code);
});

TEST(TickTable, animatesFourFramesAndRestatesTheMenuOncePerCycle) {
  const std::vector<TickEffect> cycle{{StatusFrame::Receive1, true, 1},
                                      {StatusFrame::Receive2, {}, 2},
                                      {StatusFrame::Receive3, {}, 3},
                                      {StatusFrame::Receive4, {}, 0}};
  qint32 count = 0;
  for (int tick = 0; tick < 9; ++tick) {
    const TickEffect effect = tickEffect(Downloading, count);
    EXPECT_EQ(effect, cycle[static_cast<std::size_t>(tick) % cycle.size()]) << tick;
    count = effect.animationCount;
  }
}

TEST(TickTable, restatesTheMenuOnEveryTickOtherwise) {
  EXPECT_EQ(tickEffect(Normal, 2), (TickEffect{StatusFrame::Standby, true, 2}));
  EXPECT_EQ(tickEffect(Error, 2), (TickEffect{StatusFrame::Error, false, 0}));
  EXPECT_EQ(tickEffect(NotLinked, 2), (TickEffect{StatusFrame::Unlink, false, 0}));
  EXPECT_EQ(tickEffect(static_cast<KaAppStatus>(4), 2), (TickEffect{{}, {}, 2}));
}

TEST(TooltipTable, namesTheStatusAndTheError) {
  EXPECT_EQ(tooltipKey(Normal, Download), "TOOL_TIP_STATUS_NORMAL"_L1);
  EXPECT_EQ(tooltipKey(Downloading, Offline), "TOOL_TIP_STATUS_DOWNLOADING"_L1);
  EXPECT_EQ(tooltipKey(NotLinked, DiskFull), "TOOL_TIP_STATUS_UNLINK"_L1);
  EXPECT_EQ(tooltipKey(Error, Offline), "TOOL_TIP_STATUS_OFFLINE"_L1);
  EXPECT_EQ(tooltipKey(Error, Maintenance), "TOOL_TIP_STATUS_MAINTENANCE"_L1);
  EXPECT_EQ(tooltipKey(Error, DiskFull), "TOOL_TIP_STATUS_DISK_FULL"_L1);
  EXPECT_EQ(tooltipKey(Error, Download), "TOOL_TIP_STATUS_ERR_DOWNLOAD"_L1);
  EXPECT_EQ(tooltipKey(Error, static_cast<KaErrorStatus>(4)), ""_L1);
  EXPECT_EQ(tooltipKey(static_cast<KaAppStatus>(4), Offline), ""_L1);
}

} // namespace
