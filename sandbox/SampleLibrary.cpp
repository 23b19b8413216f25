#include "sandbox/SampleLibrary.h"

#include "sandbox/Tokens.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr QSize kSmall(640, 480);
constexpr QSize kLarge(1600, 1200);

QRgb anyColor(QRandomGenerator &random) {
  return QColor::fromHsv(random.bounded(360), 80 + random.bounded(150), 90 + random.bounded(160)).rgb();
}

/// @param share  of @p over, out of 256.
QRgb mixed(QRgb under, QRgb over, int share) {
  const auto channel = [share](int below, int above) { return below + (above - below) * share / 256; };
  return qRgb(channel(qRed(under), qRed(over)), channel(qGreen(under), qGreen(over)),
              channel(qBlue(under), qBlue(over)));
}

void paintSky(QImage &picture, QRgb top, QRgb bottom) {
  for (int y = 0; y < picture.height(); ++y) {
    auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
    std::fill_n(line, picture.width(), mixed(top, bottom, 256 * y / picture.height()));
  }
}

void paintDisc(QImage &picture, QPoint centre, int radius, QRgb color, int share) {
  const int last = qMin(picture.height() - 1, centre.y() + radius);
  for (int y = qMax(0, centre.y() - radius); y <= last; ++y) {
    const int half = int(std::sqrt(radius * radius - (y - centre.y()) * (y - centre.y())));
    auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
    const int right = qMin(picture.width() - 1, centre.x() + half);
    for (int x = qMax(0, centre.x() - half); x <= right; ++x)
      line[x] = mixed(line[x], color, share);
  }
}

/// A sky with discs: different for each seed, the same for the same one. Painted by hand because QPainter shares large
/// fills out to a thread pool that the thread sanitizer cannot see into.
QImage paintedPicture(quint32 seed, QSize size) {
  QRandomGenerator random(seed);
  QImage picture(size, QImage::Format_RGB32);
  const QRgb top = anyColor(random);
  paintSky(picture, top, anyColor(random));
  for (int disc = 0; disc < 24; ++disc) {
    const QRgb color = anyColor(random);
    const int radius = 8 + random.bounded(size.height() / 4);
    const int x = random.bounded(size.width());
    const int y = random.bounded(size.height());
    paintDisc(picture, {x, y}, radius, color, 80 + random.bounded(176));
  }
  return picture;
}

QByteArray jpeg(quint32 seed, QSize size) {
  QBuffer buffer;
  buffer.open(QBuffer::WriteOnly);
  if (!paintedPicture(seed, size).save(&buffer, "JPG", 88)) throw std::runtime_error("no JPEG writer");
  return buffer.data();
}

QByteArray metadataDocument(const QString &captureTime, const QStringList &rules = {}) {
  QJsonObject document{{u"camera"_s, QJsonObject{{u"maker"_s, u"Norvale"_s}, {u"iso"_s, 200}}}};
  if (!captureTime.isEmpty()) document.insert(u"captureTime"_s, captureTime);
  if (!rules.isEmpty())
    document.insert(u"sortation"_s, QJsonObject{{u"matchedRules"_s, QJsonArray::fromStringList(rules)}});
  return compactJson(document);
}

/// Gathers the sample, giving each object a key and a picture of its own.
class Sampler {
public:
  QList<LibraryObject> objects;

  /// Where the objects that follow were uploaded to.
  void at(const QString &device, const QString &date, const QString &hour) {
    place = {.deviceId = device, .date = date, .hour = hour};
  }
  /// One object with a name and plain metadata, to be changed by the caller.
  LibraryObject &add(const QString &name, const QString &captureTime, QSize size = kSmall) {
    LibraryObject object = place;
    const int number = int(objects.size()) + 1;
    object.fileName = u"%1-%2.JPG"_s.arg(object.deviceId.right(2)).arg(number, 6, 10, QLatin1Char('0'));
    object.body = jpeg(quint32(number), size);
    object.fileNameMetadata = fileNameHeader(name);
    object.metadataDocument = metadataDocument(captureTime);
    object.tags = {{storagePeriodTag(), u"30"_s}};
    objects.append(object);
    return objects.last();
  }
  /// One object that matches sort rules, which only the expand metadata tells.
  LibraryObject &addSorted(const QString &name, const QString &captureTime, const QStringList &rules) {
    LibraryObject &object = add(name, captureTime);
    object.expandMetadataDocument = metadataDocument(captureTime, rules);
    return object;
  }
  /// One object with an expand variant.
  LibraryObject &addExpanded(const QString &name, const QString &captureTime) {
    LibraryObject &object = add(name, captureTime);
    object.expandBody = jpeg(quint32(objects.size()) + 1000, kLarge);
    return object;
  }
  /// The latest @p count objects belong to the 10G storage, too.
  void keepLong(int count, const QHash<QString, QString> &tags) {
    for (auto object = objects.end() - count; object != objects.end(); ++object)
      object->tags = tags;
  }
  /// Pictures a minute apart, named by a running number.
  void addSeries(int first, int count, const QString &dateAndHour, const QString &offset, QSize size = kSmall) {
    for (int index = 0; index < count; ++index)
      add(u"IMG_%1.JPG"_s.arg(first + index, 4, 10, QLatin1Char('0')),
          u"%1:%2:07.000%3"_s.arg(dateAndHour).arg(index, 2, 10, QLatin1Char('0')).arg(offset), size);
  }

private:
  LibraryObject place;
};

void addNames(Sampler &sample) {
  sample.at(u"camera-02"_s, u"20240502"_s, u"06"_s);
  const QString day = u"2024-05-02T"_s;
  sample.add(u"  Evening at the lake .JPG "_s, day + u"06:00:00.000+00:00"_s);
  sample.add(u"roll 3/frame 12.JPG"_s, day + u"06:01:00.000+00:00"_s);
  sample.add(u"a/b.JPG"_s, day + u"06:02:00.000+00:00"_s);
  sample.add(u"写真 春.JPG"_s, day + u"06:03:00.000+00:00"_s);
  sample.add(u"Фотография.JPG"_s, day + u"06:04:00.000+00:00"_s);
  sample.add(u"صورة.jpg"_s, day + u"06:05:00.000+00:00"_s);
  sample.add(u"Grüße & Küsse #1 100%.JPG"_s, day + u"06:06:00.000+00:00"_s);
  sample.add(u"no extension"_s, day + u"06:07:00.000+00:00"_s);
  sample.add(u"two.dots.in.it.JPG"_s, day + u"06:08:00.000+00:00"_s);
  // A name that says nothing is none, but the object counts as named.
  sample.add(u"."_s, day + u"06:09:00.000+00:00"_s);
  sample.at(u"camera-02"_s, u"20240502"_s, u"07"_s);
  const QString longStem = u"Panorama over the whole valley "_s.repeated(10);
  sample.add(longStem + u".JPG"_s, day + u"07:00:00.000+00:00"_s);
  sample.add(longStem + u".JPG"_s, day + u"07:01:00.000+00:00"_s);
  sample.add(longStem + u"with another end.JPG"_s, day + u"07:02:00.000+00:00"_s);
}

void addEqualNames(Sampler &sample) {
  const QString day = u"2024-05-03T"_s;
  sample.at(u"camera-01"_s, u"20240503"_s, u"09"_s);
  for (const QString &minute : {u"00"_s, u"01"_s, u"02"_s})
    sample.add(u"DSC00001.JPG"_s, day + u"09:"_s + minute + u":00.000+00:00"_s);
  // The counters go by date and hour over all devices, not device by device.
  sample.at(u"camera-03"_s, u"20240503"_s, u"08"_s);
  sample.add(u"DSC00001.JPG"_s, day + u"08:00:00.000+00:00"_s);
  sample.add(u"DSC00001_1.JPG"_s, day + u"08:01:00.000+00:00"_s);
}

void addTimes(Sampler &sample) {
  sample.at(u"camera-01"_s, u"20240504"_s, u"00"_s);
  sample.add(u"before midnight.JPG"_s, u"2024-05-03T23:59:59.000+00:00"_s);
  sample.add(u"after midnight.JPG"_s, u"2024-05-04T00:00:01.000+00:00"_s);
  sample.add(u"far east.JPG"_s, u"2024-05-04T08:30:00.500+09:00"_s);
  sample.add(u"far west.JPG"_s, u"2024-05-03T16:45:00.000-07:00"_s);
  sample.add(u"half hour zone.JPG"_s, u"2024-05-04T05:45:00.000+05:45"_s);
  sample.add(u"winter.JPG"_s, u"2023-12-31T23:30:00.000+01:00"_s);
  sample.add(u"zulu.JPG"_s, u"2024-02-29T12:00:00.000Z"_s);
  sample.at(u"camera-03"_s, u"20240504"_s, u"23"_s);
  sample.add(u"no capture time.JPG"_s, {});
  sample.add(u"no metadata.JPG"_s, {}).metadataDocument.reset();
  sample.add(u"metadata is no JSON.JPG"_s, {}).metadataDocument = "not a document";
}

void addNameless(Sampler &sample) {
  // Only in hours that a finished run leaves behind: in the newest one every run would fetch them anew.
  sample.at(u"camera-01"_s, u"20240505"_s, u"10"_s);
  sample.add({}, u"2024-05-05T10:00:00.000+00:00"_s).fileNameMetadata.reset();
  sample.add({}, u"2024-05-05T10:05:00.000+00:00"_s).fileNameMetadata.reset();
  sample.at(u"camera-03"_s, u"20240505"_s, u"11"_s);
  sample.add({}, {}).fileNameMetadata.reset();
}

void addSorted(Sampler &sample) {
  const QString day = u"2024-05-06T"_s;
  sample.at(u"camera-02"_s, u"20240506"_s, u"12"_s);
  sample.addSorted(u"BIRD_0001.JPG"_s, day + u"12:00:00.000+00:00"_s, {u"Birds"_s});
  sample.addSorted(u"BIRD_0002.JPG"_s, day + u"12:01:00.000+00:00"_s, {u"Birds"_s, u"Best of 2024"_s});
  sample.addSorted(u"OWL_0001.JPG"_s, day + u"12:02:00.000+00:00"_s, {u"Birds/Owls"_s});
  sample.addSorted(u"family.JPG"_s, day + u"12:03:00.000+00:00"_s, {u"家族"_s});
  sample.addSorted(u"BIRD_0001.JPG"_s, day + u"12:04:00.000+00:00"_s, {u"Birds"_s});
  sample.addSorted(u"sorted by upload hour.JPG"_s, {}, {u"Best of 2024"_s});
}

void addExpanded(Sampler &sample) {
  const QString day = u"2024-05-07T"_s;
  sample.at(u"camera-03"_s, u"20240507"_s, u"15"_s);
  sample.addExpanded(u"WIDE_0001.JPG"_s, day + u"15:00:00.000+00:00"_s);
  sample.addExpanded(u"WIDE_0002.JPG"_s, day + u"15:01:00.000+00:00"_s).expandMetadataDocument =
      metadataDocument(day + u"15:01:30.000+00:00"_s, {u"Landscapes"_s});
  sample.addExpanded(u"WIDE_0003.JPG"_s, {}).metadataDocument.reset();
}

QList<LibraryObject> gatheredSample() {
  Sampler sample;
  sample.at(u"camera-01"_s, u"20240501"_s, u"10"_s);
  sample.addSeries(1, 6, u"2024-05-01T10"_s, u"+00:00"_s);
  sample.at(u"camera-01"_s, u"20240501"_s, u"13"_s);
  sample.addSeries(7, 3, u"2024-05-01T13"_s, u"+00:00"_s, kLarge);
  sample.keepLong(3, {{storagePeriodTag(), u"365"_s}, {u"rating"_s, u"5"_s}});
  sample.at(u"camera-03"_s, u"20240501"_s, u"10"_s);
  sample.addSeries(501, 4, u"2024-05-01T10"_s, u"+02:00"_s);
  addNames(sample);
  addEqualNames(sample);
  addTimes(sample);
  addNameless(sample);
  addSorted(sample);
  addExpanded(sample);
  sample.at(u"camera-02"_s, u"20240508"_s, u"18"_s);
  sample.addSeries(900, 5, u"2024-05-08T18"_s, u"+00:00"_s);
  sample.at(u"camera-01"_s, u"20240508"_s, u"18"_s);
  sample.addSeries(10, 3, u"2024-05-08T18"_s, u"+00:00"_s);
  sample.keepLong(2, {}); // no tag at all does as well
  sample.at(sampleAliasDevice(), u"20240508"_s, u"19"_s);
  sample.addSeries(1, 2, u"2024-05-08T19"_s, u"+00:00"_s);
  sample.keepLong(1, {{storagePeriodTag(), u"3650"_s}});
  return sample.objects;
}

QList<SamplePreview> paintedPreviews() {
  constexpr QSize kReduced(320, 240);
  QList<SamplePreview> previews;
  const auto add = [&](const QString &fileName, const QString &shootingTime, const QString &uploadTime) {
    const int index = int(previews.size()) + 1;
    previews.append({.index = index,
                     .objectName = u"%1.JPG"_s.arg(index, 4, 10, QLatin1Char('0')),
                     .body = jpeg(quint32(index) + 2000, kReduced),
                     .fileName = fileName,
                     .shootingTime = shootingTime,
                     .uploadTime = uploadTime});
  };
  add(u"IMG_0007.JPG"_s, u"2024-05-01T13:00:07"_s, u"20240501/13"_s); // the name of a 10G image
  add(u"IMG_0008.JPG"_s, u"2024-05-02T23:59:59"_s, u"20240501/13"_s);
  const QString latest = u"20240508/18"_s;
  add(u"without a time.JPG"_s, {}, latest);
  add(u"写真 春.JPG"_s, u"2024-05-03T00:00:00"_s, latest);
  add(u"roll 3/frame 12.JPG"_s, u"2023-12-31T23:30:00"_s, latest);
  return previews;
}

QString previewKey(const QString &userId, const SamplePreview &preview) {
  return u"images/preview/"_s + userId + u'/' + preview.objectName;
}

} // namespace

const QList<LibraryObject> &sampleObjects() {
  static const QList<LibraryObject> objects = gatheredSample();
  return objects;
}

QString sampleAliasDevice() {
  return u"other-app-99"_s;
}

const QList<SamplePreview> &samplePreviews() {
  static const QList<SamplePreview> previews = paintedPreviews();
  return previews;
}

bool isUploadedBefore(const QString &uploadDate, const QString &uploadedBefore) {
  return uploadedBefore.isEmpty() || uploadDate.left(8) < uploadedBefore;
}

QString storagePeriodTag() {
  return u"x-strata-storage-period"_s;
}

void addPreviews(Library &library, const QList<SamplePreview> &previews) {
  QJsonArray data;
  for (const SamplePreview &preview : previews) {
    const QString key = previewKey(library.userId(), preview);
    library.addRaw(contentBucket(), key, {.body = preview.body, .contentType = "image/jpeg"});
    data.append(QJsonObject{{u"index"_s, preview.index},
                            {u"preview_object_key"_s, key},
                            {u"file_size"_s, preview.body.size()},
                            {u"original_file_name"_s, preview.fileName},
                            {u"shooting_time"_s, preview.shootingTime},
                            {u"upload_time"_s, preview.uploadTime}});
  }
  library.addRaw(previewListBucket(), library.userId() + u".json"_s,
                 {.body = compactJson({{u"data"_s, data}}), .contentType = "application/json"});
}

void fillSampleLibrary(Library &library, const QString &uploadedBefore) {
  for (const LibraryObject &object : sampleObjects())
    if (isUploadedBefore(object.date, uploadedBefore)) library.add(object);
  const QString root = u"images/original/"_s + library.userId() + u'/';
  for (const QString &marker : {root, root + u"camera-01/"_s, root + u"camera-01/20240501/"_s})
    library.addRaw(contentBucket(), marker, {.contentType = "application/x-directory"});
  library.setSettingsObject(compactJson({{u"applicationAliasIds"_s, QJsonArray{sampleAliasDevice()}},
                                         {u"kaLatestVersion"_s, u"1.0.0"_s},
                                         {u"isEnableDownload10GStorage"_s, true}}));
  QList<SamplePreview> previews = samplePreviews();
  previews.removeIf([&](const SamplePreview &each) { return !isUploadedBefore(each.uploadTime, uploadedBefore); });
  addPreviews(library, previews);
}

} // namespace sandbox
