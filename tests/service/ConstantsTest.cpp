#include "service/KaApplicationConstants.h"

#include "platform/UserDefaults.h"
#include "tests/support/TestProfile.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Constants : public testing::Test {
protected:
  const TestProfile profile;
};

TEST_F(Constants, fallBackToTheBuiltInValuesAndRegisterThem) {
  EXPECT_EQ(KaApplicationConstants::awsS3BucketName(), u"strata-prd-content"_s);
  EXPECT_EQ(KaApplicationConstants::awsS3PreviewListBucketName(), u"strata-prd-ka-preview-list"_s);
  EXPECT_EQ(KaApplicationConstants::awsS3AccelerateHostName(), u"s3-accelerate.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsStsHostName(), u"sts.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsLogsHostName(), u"logs.eu-west-1.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsLogsGroupName(), u"strata-prd-Ka-LogGroup"_s);
  EXPECT_EQ(KaApplicationConstants::awsLogsStreamName(), u"strata-prd-Ka-S3AccessLog"_s);

  const platform::UserDefaults &defaults = platform::standardUserDefaults();
  EXPECT_EQ(defaults.string(u"awsS3BucketName"_s), u"strata-prd-content"_s);
  EXPECT_EQ(defaults.string(u"awsS3PreviewListBucketName"_s), u"strata-prd-Ka-S3AccessLog"_s);
  EXPECT_EQ(defaults.string(u"awsLogsGroupName"_s), u"strata-prd-Ka-LogGroup"_s);
  EXPECT_EQ(defaults.string(u"awsLogGroupName"_s), std::nullopt);
}

TEST_F(Constants, nameARoleOfATwelveDigitAccount) {
  EXPECT_TRUE(QRegularExpression(u"^arn:aws:iam::[0-9]{12}:role/strata-prd-download$"_s)
                  .match(KaApplicationConstants::awsStsRoleArn())
                  .hasMatch());
}

TEST_F(Constants, readTheLogGroupUnderItsOwnKey) {
  profile.writeUserDefaults({{u"awsLogsGroupName"_s, u"ignored"_s}, {u"awsLogGroupName"_s, u"mine"_s}});
  EXPECT_EQ(KaApplicationConstants::awsLogsGroupName(), u"mine"_s);
}

TEST_F(Constants, keepWhatTheyFirstRead) {
  profile.writeUserDefaults({{u"strataHostName"_s, u"here:8443"_s}});
  EXPECT_EQ(KaApplicationConstants::strataHostName(), u"here:8443"_s);
  platform::standardUserDefaults().setString(u"strataHostName"_s, u"elsewhere"_s);
  EXPECT_EQ(KaApplicationConstants::strataHostName(), u"here:8443"_s);
}

} // namespace
