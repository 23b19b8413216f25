#include "ui/Thumbnail.h"

#include "platform/ThreadBound.h"

#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace {

/// What a reader that cannot read smaller may allocate.
constexpr int kMostMegabytes = 64;
/// Of all the pixels. A JPEG whose scans refine each other is kept whole by its reader, six bytes a pixel at worst.
constexpr qint64 kMostPixels = 64'000'000;

/// What a service sends is read by the fewest readers that serve: other kinds have plug-ins of all sorts.
constexpr std::array kKinds{"jpeg", "png"};

QImage read(QImageReader &reader, int edge) {
  const QSize size = reader.size();
  if (size.isEmpty() || qint64(size.width()) * size.height() > kMostPixels) return {};
  // A square, as it is the same whichever way the picture is turned afterwards.
  const int side = std::min(size.width(), size.height());
  reader.setClipRect(QRect((size.width() - side) / 2, (size.height() - side) / 2, side, side));
  reader.setScaledSize(QSize(1, 1) * std::min(side, edge));
  reader.setAutoTransform(true);
  return reader.read();
}

} // namespace

void limitThumbnails() {
  platform::assertMainThread();
  QImageReader::setAllocationLimit(kMostMegabytes);
}

QImage thumbnailOf(const QString &path, int edge) {
  // Anything but a plain file may wait for somebody who writes to it.
  if (edge <= 0 || !QFileInfo(path).isFile()) return {};
  for (const char *kind : kKinds) {
    QImageReader reader(path, kind);
    reader.setAutoDetectImageFormat(false);
    if (reader.canRead()) return read(reader, edge);
  }
  return {};
}
