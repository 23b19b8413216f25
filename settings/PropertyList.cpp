#include "settings/PropertyList.h"

#include "platform/ReleasedBy.h"

#include <QXmlStreamReader>

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

using platform::ReleasedBy;
using Node = std::unique_ptr<void, ReleasedBy<&plist_free>>;
using Xml = std::unique_ptr<char, ReleasedBy<&plist_to_xml_free>>;
using Key = std::unique_ptr<char, ReleasedBy<&std::free>>;
using DictionaryIterator = std::unique_ptr<void, ReleasedBy<&std::free>>;

Node makeNode(const QString &text) {
  return Node(plist_new_string(text.toUtf8().constData()));
}

Node makeNode(qint64 number) {
  return Node(plist_new_uint(static_cast<quint64>(number)));
}

std::optional<QString> textOf(plist_t node) {
  uint64_t length = 0;
  const char *const bytes = plist_get_string_ptr(node, &length);
  // A damaged file may hold a NUL, where a path would end.
  if (!bytes || QByteArrayView(bytes, static_cast<qsizetype>(length)).contains('\0')) return std::nullopt;
  return length == 0 ? u""_s : QString::fromUtf8(bytes, static_cast<qsizetype>(length));
}

/// The library writes characters as they are, and the name of a folder may hold some that XML forbids.
QString readableXml(const QByteArray &xml) {
  QString text = QString::fromUtf8(xml);
  for (QChar &character : text) {
    const char16_t code = character.unicode();
    const bool isControl = code < 0x20 && code != u'\t' && code != u'\n' && code != u'\r';
    if (isControl || code >= 0xFFFE) character = u'?';
  }
  return text;
}

/// The library takes a document of any depth apart by recursion. Ours has three levels, and no entities.
bool isFlat(const QByteArray &xml) {
  constexpr int kDeepest = 16;
  QXmlStreamReader reader(readableXml(xml));
  for (int depth = 0; !reader.atEnd();) {
    const auto token = reader.readNext();
    if (token == QXmlStreamReader::StartElement && ++depth > kDeepest) return false;
    if (token == QXmlStreamReader::EndElement) --depth;
    if (!reader.entityDeclarations().isEmpty()) return false;
  }
  return !reader.hasError();
}

/// Unsigned in the library's interface alone: a negative number comes back as it was.
qint64 integerOf(plist_t node) {
  uint64_t value = 0;
  plist_get_uint_val(node, &value);
  return static_cast<qint64>(value);
}

} // namespace

QString PropertyList::text(QLatin1StringView key) const {
  for (const auto &[name, value] : entries)
    if (name == key && std::holds_alternative<QString>(value)) return std::get<QString>(value);
  return {};
}

qint64 PropertyList::integer(QLatin1StringView key) const {
  for (const auto &[name, value] : entries)
    if (name == key && std::holds_alternative<qint64>(value)) return std::get<qint64>(value);
  return 0;
}

std::optional<QByteArray> PropertyList::toXml() const {
  const Node root(plist_new_dict());
  if (!root) return std::nullopt;
  for (const auto &[name, value] : entries) {
    Node node = std::visit([](const auto &content) { return makeNode(content); }, value);
    if (!node) return std::nullopt;
    plist_dict_set_item(root.get(), name.toUtf8().constData(), node.release()); // the dictionary owns it now
  }
  char *bytes = nullptr;
  uint32_t length = 0;
  plist_to_xml(root.get(), &bytes, &length);
  const Xml xml(bytes);
  if (!xml || length == 0) return std::nullopt;
  return QByteArray(xml.get(), static_cast<qsizetype>(length));
}

std::optional<PropertyList> PropertyList::fromXml(const QByteArray &xml) {
  // The library takes the length in 32 bits.
  if (xml.isEmpty() || xml.size() > std::numeric_limits<int>::max() || !isFlat(xml)) return std::nullopt;
  plist_t document = nullptr;
  plist_from_xml(xml.constData(), static_cast<uint32_t>(xml.size()), &document);
  const Node root(document);
  if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return std::nullopt;

  PropertyList list;
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(root.get(), &position);
  const DictionaryIterator owner(position);
  for (;;) {
    char *key = nullptr;
    plist_t node = nullptr;
    plist_dict_next_item(root.get(), position, &key, &node);
    const Key name(key);
    if (!node) return list;
    const QString entry = QString::fromUtf8(name.get());
    if (const auto text = textOf(node)) list.entries.emplace_back(entry, *text);
    if (plist_get_node_type(node) == PLIST_UINT) list.entries.emplace_back(entry, integerOf(node));
  }
}
