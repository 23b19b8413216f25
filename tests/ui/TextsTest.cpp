#include "ui/Texts.h"
#include "tests/ui/UiProfile.h"
#include "ui/StatusIcons.h"
#include "ui/StatusTables.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QIcon>
#include <QImage>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

std::vector<QLatin1StringView> keysInUse() {
  std::vector<QLatin1StringView> keys{"APP_SHORT_NAME"_L1,
                                      "MSG_FIRST_LAUNCH"_L1,
                                      "DLG_COMMON_BUTTON_OK_MAC"_L1,
                                      "DLG_COMMON_BUTTON_CANCEL"_L1,
                                      "MENU_DOWNLOAD"_L1,
                                      "MENU_LOGIN"_L1,
                                      "MENU_LOGOUT"_L1,
                                      "MENU_LAUNCH_SETTING"_L1,
                                      "MENU_EXIT_MAC"_L1};
  for (qint64 code = 0; code <= 24; ++code)
    if (const auto key = resultEffect(static_cast<KaResultCode>(code)).messageKey; !key.isEmpty()) keys.push_back(key);
  for (qint64 status = 0; status <= 3; ++status)
    for (qint64 error = 0; error <= 3; ++error)
      keys.push_back(tooltipKey(static_cast<KaAppStatus>(status), static_cast<KaErrorStatus>(error)));
  return keys;
}

TEST(Texts, everyKeyHasAnEnglishTextInEveryLocale) {
  for (const char *const locale : {"C", "en_GB", "eo"}) {
    QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
    const UiProfile profile;
    installTexts();
    for (const auto key : keysInUse()) {
      const QString text = localised(key);
      EXPECT_FALSE(text.trimmed().isEmpty()) << key.data();
      EXPECT_NE(text, key) << locale;
    }
  }
}

TEST(StatusIcons, everyFrameIsAPictureOfItsOwn) {
  const UiProfile profile;
  std::vector<QImage> seen;
  for (int frame = 0; frame <= static_cast<int>(StatusFrame::Unlink); ++frame) {
    const QImage image = statusIcon(static_cast<StatusFrame>(frame)).pixmap(22).toImage();
    EXPECT_EQ(image.size(), QSize(22, 22)) << frame;
    EXPECT_THAT(seen, testing::Not(testing::Contains(image))) << frame;
    seen.push_back(image);
  }
}

TEST(StatusIcons, everyDrawingHasPicturesForDesktopsWithoutSvg) {
  const UiProfile profile;
  const auto drawings = QDir(u":/icons"_s).entryInfoList({u"*.svg"_s});
  EXPECT_EQ(drawings.size(), static_cast<int>(StatusFrame::Unlink) + 1);
  for (const auto &drawing : drawings)
    for (const int size : {16, 22, 24, 32, 44, 48})
      EXPECT_EQ(QImage(u":/icons/%1_%2.png"_s.arg(drawing.baseName()).arg(size)).size(), QSize(size, size))
          << drawing.baseName().toStdString();
}

} // namespace
