#include "engine/PreviewList.h"

#include "log/KaLogUtility.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <istream>
#include <optional>
#include <streambuf>
#include <string>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What an entry has said so far; absent: nothing, or nothing of the right type.
struct Entry {
  std::optional<qint64> index{};
  std::optional<qint64> size{};
  std::optional<QString> key{};
  std::optional<QString> name{};
  std::optional<QString> shot{};
  std::optional<QString> uploaded{};
};
constexpr std::pair<const char *, std::optional<qint64> Entry::*> kNumbers[] = {{"index", &Entry::index},
                                                                                {"file_size", &Entry::size}};
constexpr std::pair<const char *, std::optional<QString> Entry::*> kTexts[] = {{"preview_object_key", &Entry::key},
                                                                               {"original_file_name", &Entry::name},
                                                                               {"shooting_time", &Entry::shot},
                                                                               {"upload_time", &Entry::uploaded}};

/// Absent unless it is whole. Its times need not be known.
std::optional<KaPreview> previewOf(const Entry &entry) {
  if (!entry.index || !entry.size || !entry.key || !entry.name) return std::nullopt;
  return KaPreview{*entry.index,
                   *entry.key,
                   *entry.size,
                   *entry.name,
                   entry.shot.value_or(QString()),
                   entry.uploaded.value_or(QString())};
}

/// Hands out what stands directly in the array "data" of an object, while the document is being read.
class EntryReader final : public nlohmann::json_sax<nlohmann::json> {
public:
  /// Absent: no whole entry. False ends the reading.
  using Taker = std::function<bool(const std::optional<KaPreview> &)>;

  explicit EntryReader(const Taker &taker) : take(taker) {}

  bool null() override { return leaf(); }
  bool boolean(bool) override { return leaf(); }
  bool number_integer(number_integer_t value) override { return number(value); }
  bool number_unsigned(number_unsigned_t value) override {
    return std::in_range<qint64>(value) ? number(qint64(value)) : leaf();
  }
  bool number_float(number_float_t value, const string_t &) override {
    constexpr double kWholeUpTo = 9007199254740992; // beyond it not every number is one of these
    return std::trunc(value) == value && std::abs(value) < kWholeUpTo ? number(qint64(value)) : leaf();
  }
  bool string(string_t &value) override {
    if (text) *text = QString::fromStdString(value);
    return leaf();
  }
  bool binary(binary_t &) override { return leaf(); }
  bool key(string_t &name) override {
    dataIsNext = name == "data";
    if (!isData || depth != kInEntry) return true;
    // Of a member that is there twice the last one counts.
    for (const auto &[known, member] : kNumbers)
      if (name == known) (numeric = &(entry.*member))->reset();
    for (const auto &[known, member] : kTexts)
      if (name == known) (text = &(entry.*member))->reset();
    return true;
  }
  bool start_object(std::size_t) override { return open(); }
  bool start_array(std::size_t) override {
    if (depth == 1) isData = dataIsNext;
    return open();
  }
  bool end_object() override {
    --depth;
    return !isElement() || take(previewOf(entry));
  }
  bool end_array() override {
    --depth;
    if (depth == 1) isData = false;
    return leaf();
  }
  bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override { return false; }

private:
  static constexpr int kInData = 2;
  static constexpr int kInEntry = 3;

  [[nodiscard]] bool isElement() const { return isData && depth == kInData; }
  bool open() {
    if (isElement()) entry = {};
    forgetMember();
    ++depth;
    return true;
  }
  bool number(qint64 value) {
    if (numeric) *numeric = value;
    return leaf();
  }
  /// The end of a value that is no object.
  bool leaf() {
    forgetMember();
    return !isElement() || take(std::nullopt);
  }
  void forgetMember() {
    numeric = nullptr;
    text = nullptr;
  }

  const Taker &take;
  Entry entry;
  std::optional<qint64> *numeric = nullptr; ///< the member of the entry whose value comes next, if it is one of these
  std::optional<QString> *text = nullptr;
  int depth = 0;
  bool dataIsNext = false;
  bool isData = false;
};

/// What the parser reads a file through.
class FileBuffer final : public std::streambuf {
public:
  explicit FileBuffer(QIODevice &device) : source(device) {}

private:
  int_type underflow() override {
    const qint64 count = source.read(bytes.data(), qint64(bytes.size()));
    if (count <= 0) return traits_type::eof();
    setg(bytes.data(), bytes.data(), bytes.data() + count);
    return traits_type::to_int_type(bytes.front());
  }

  QIODevice &source;
  std::array<char, 64 * 1024> bytes{};
};

/// @return whether the document is a whole one, read to its end.
bool readEntries(QIODevice &document, const EntryReader::Taker &take) {
  if (!document.seek(0)) return false;
  FileBuffer buffer(document);
  std::istream stream(&buffer);
  EntryReader reader(take);
  return nlohmann::json::sax_parse(stream, &reader);
}

/// Lets by what comes from the first new entry on.
class Front {
public:
  explicit Front(qint64 threshold) : above(threshold) {}
  [[nodiscard]] bool isBehind(const KaPreview &preview) {
    behind = behind || preview.index > above;
    return behind;
  }

private:
  const qint64 above;
  bool behind = false;
};

KaResultCode faultOf(const QFileDevice &file) {
  return file.error() == QFileDevice::ResourceError ? KaResultCode::DiskFull : KaResultCode::FileNotSaved;
}

} // namespace

bool PreviewList::takePiece(const char *bytes, std::size_t count) {
  if (!file) file = std::make_unique<QTemporaryFile>();
  if (!file->isOpen() && !file->open()) {
    kept = faultOf(*file);
  } else if (file->pos() + qint64(count) > mostBytes) {
    kept = KaResultCode::NoBody;
  } else if (file->write(bytes, qint64(count)) != qint64(count) || !file->flush()) {
    kept = faultOf(*file);
  }
  return kept == KaResultCode::Success;
}

void PreviewList::close(qint64 threshold) {
  above = threshold;
  Front front(above);
  qsizetype found = 0;
  qsizetype passedOver = 0;
  const auto count = [&](const std::optional<KaPreview> &preview) {
    if (!preview) ++passedOver;
    if (preview && front.isBehind(*preview)) ++found;
    return true;
  };
  const bool isRead = file && readEntries(*file, count);
  if (isRead) newCount = found;
  if (file && !isRead) KaLogUtility::writeInfoLog(u"GetPreviewList"_s, {u"The list cannot be read."_s});
  if (newCount == 0) file.reset();
  if (passedOver > 0)
    KaLogUtility::writeInfoLog(u"GetPreviewList"_s, {u"Incomplete entries passed over: %1"_s.arg(passedOver)});
}

void PreviewList::visit(const std::function<bool(const KaPreview &preview)> &take) const {
  if (!file) return;
  Front front(above);
  static_cast<void>(readEntries(*file, [&](const std::optional<KaPreview> &preview) {
    return !preview || !front.isBehind(*preview) || take(*preview);
  }));
}
