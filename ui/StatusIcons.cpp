#include "ui/StatusIcons.h"

#include "platform/AppInfo.h"
#include "platform/NoDestructor.h"

#include <QPixmap>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array kFrames{StatusFrame::Standby,  StatusFrame::Receive1, StatusFrame::Receive2, StatusFrame::Receive3,
                             StatusFrame::Receive4, StatusFrame::Error,    StatusFrame::Unlink};
constexpr std::array kPngSizes{16, 22, 24, 32, 44, 48};

constexpr bool framesAreInOrder() {
  for (std::size_t i = 0; i < kFrames.size(); ++i)
    if (static_cast<std::size_t>(kFrames[i]) != i) return false;
  return true;
}
static_assert(framesAreInOrder(), "frames index the table of icons");

QString imageName(StatusFrame frame) {
  switch (frame) {
  case StatusFrame::Standby:
    return u"menubar_standby"_s;
  case StatusFrame::Receive1:
    return u"menubar_receive1"_s;
  case StatusFrame::Receive2:
    return u"menubar_receive2"_s;
  case StatusFrame::Receive3:
    return u"menubar_receive3"_s;
  case StatusFrame::Receive4:
    return u"menubar_receive4"_s;
  case StatusFrame::Error:
    return u"menubar_error"_s;
  case StatusFrame::Unlink:
    return u"menubar_unlink"_s;
  }
  return {};
}

/// An installed drawing goes by its name, which lets panels give it their own colour. Without Qt's SVG plug-in a
/// drawing is an empty icon, and an empty icon makes the whole status item disappear.
QIcon loadIcon(StatusFrame frame) {
  const QString path = u":/icons/"_s + imageName(frame);
  const QString themed = QString::fromUtf16(platform::kApplicationId) + u'.' + imageName(frame) + u"-symbolic"_s;
  const QIcon drawing = QIcon::fromTheme(themed, QIcon(path + u".svg"_s));
  if (!drawing.pixmap(kPngSizes.front()).isNull()) return drawing;
  QIcon icon;
  for (const int size : kPngSizes)
    icon.addFile(u"%1_%2.png"_s.arg(path).arg(size));
  return icon;
}

} // namespace

const QIcon &statusIcon(StatusFrame frame) {
  using Icons = std::array<QIcon, kFrames.size()>;
  static const platform::NoDestructor<Icons> icons([] {
    Icons loaded;
    for (std::size_t i = 0; i < kFrames.size(); ++i)
      loaded[i] = loadIcon(kFrames[i]);
    return loaded;
  }());
  return (*icons)[static_cast<std::size_t>(frame)];
}
