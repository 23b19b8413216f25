// A property list; and any path as a value of one.
#include "settings/PropertyList.h"

#include "fuzz/Fuzz.h"

using namespace Qt::StringLiterals;

namespace {

void requireSame(const QString &text, qint64 number) {
  PropertyList list;
  list.set("ParentFolder"_L1, text);
  list.set("ChildFolder"_L1, number);
  const auto xml = list.toXml();
  require(xml.has_value(), "a list can be written");
  const auto again = PropertyList::fromXml(*xml);
  require(again.has_value(), "what was written can be read");
  require(again->text("ParentFolder"_L1) == text, "a text is read as it was written");
  require(again->integer("ChildFolder"_L1) == number, "a number is read as it was written");
}

} // namespace

void tryInput(const QByteArray &input) {
  if (const auto list = PropertyList::fromXml(input))
    requireSame(u'/' + list->text("ParentFolder"_L1), list->integer("ChildFolder"_L1));
  // No path holds a NUL.
  requireSame(u'/' + QString::fromUtf8(input).remove(QChar(u'\0')), input.toLongLong());
}
