#include "service/KaApplicationConstants.h"

#include "platform/NoDestructor.h"
#include "platform/UserDefaults.h"

using namespace Qt::StringLiterals;
using platform::NoDestructor;

namespace {

struct Constant {
  QString key;
  QString builtIn;
  QString registeredKey = key;
  QString registeredValue = builtIn;
};

QString lookUp(const Constant &constant) {
  platform::UserDefaults &defaults = platform::standardUserDefaults();
  if (const std::optional<QString> stored = defaults.string(constant.key)) return *stored;
  defaults.registerDefaults({{constant.registeredKey, constant.registeredValue}});
  return constant.builtIn;
}

} // namespace

QString KaApplicationConstants::strataHostName() {
  static const NoDestructor<QString> value(lookUp({u"strataHostName"_s, u"api.norvale.example"_s}));
  return *value;
}

QString KaApplicationConstants::strataSiteTopHostName() {
  static const NoDestructor<QString> value(lookUp({u"strataSiteTopHostName"_s, u"www.norvale.example"_s}));
  return *value;
}

QString KaApplicationConstants::idTokenHostName() {
  static const NoDestructor<QString> value(lookUp({u"idTokenHostName"_s, u"id.norvale.example"_s}));
  return *value;
}

QString KaApplicationConstants::awsRegion() {
  static const NoDestructor<QString> value([] {
    const QString builtIn = u"eu-west-1"_s;
    const QString region = lookUp({u"awsRegion"_s, builtIn}).trimmed();
    return region.isEmpty() ? builtIn : region;
  }());
  return *value;
}

QString KaApplicationConstants::awsS3BucketName() {
  static const NoDestructor<QString> value(lookUp({u"awsS3BucketName"_s, u"strata-prd-content"_s}));
  return *value;
}

QString KaApplicationConstants::awsS3PreviewListBucketName() {
  // The registered value is not the returned one: kept, since later readers of the key see it.
  static const NoDestructor<QString> value(lookUp({.key = u"awsS3PreviewListBucketName"_s,
                                                   .builtIn = u"strata-prd-ka-preview-list"_s,
                                                   .registeredValue = u"strata-prd-Ka-S3AccessLog"_s}));
  return *value;
}

QString KaApplicationConstants::awsS3AccelerateHostName() {
  // Accelerated hosts know no path style.
  static const NoDestructor<QString> value(
      lookUp({u"awsS3AccelerateHostName"_s,
              awsS3PathStyle() ? u"s3.%1.amazonaws.com"_s.arg(awsRegion()) : u"s3-accelerate.amazonaws.com"_s}));
  return *value;
}

bool KaApplicationConstants::awsS3PathStyle() {
  static const bool value = platform::standardUserDefaults().boolValue(u"awsS3PathStyle"_s);
  return value;
}

QString KaApplicationConstants::awsStsHostName() {
  static const NoDestructor<QString> value(lookUp({u"awsStsHostName"_s, u"sts.amazonaws.com"_s}));
  return *value;
}

QString KaApplicationConstants::awsStsRoleArn() {
  static const NoDestructor<QString> value(
      lookUp({u"awsStsRoleArn"_s, u"arn:aws:iam::000000000000:role/strata-prd-download"_s}));
  return *value;
}

QString KaApplicationConstants::awsLogsHostName() {
  static const NoDestructor<QString> value(lookUp({u"awsLogsHostName"_s, u"logs.%1.amazonaws.com"_s.arg(awsRegion())}));
  return *value;
}

QString KaApplicationConstants::awsLogsGroupName() {
  // Read under one key and registered under another: kept, overrides are stored under "awsLogGroupName".
  static const NoDestructor<QString> value(lookUp(
      {.key = u"awsLogGroupName"_s, .builtIn = u"strata-prd-Ka-LogGroup"_s, .registeredKey = u"awsLogsGroupName"_s}));
  return *value;
}

QString KaApplicationConstants::awsLogsStreamName() {
  static const NoDestructor<QString> value(lookUp({u"awsLogsStreamName"_s, u"strata-prd-Ka-S3AccessLog"_s}));
  return *value;
}
