#include "ui/Mnemonics.h"

#include "platform/NoDestructor.h"

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString withMnemonic(const QString &text, const QString &taken) {
  const auto isFree = [&taken](QChar letter) { return !taken.contains(letter, Qt::CaseInsensitive); };
  for (qsizetype at = 0; at < text.size(); ++at)
    if (text[at].isLetter() && text[at] < QChar(0x80) && isFree(text[at])) return QString(text).insert(at, u'&');
  QChar letter = u'A';
  while (!isFree(letter) && letter < u'Z')
    letter = QChar(letter.unicode() + 1);
  return QString(text).insert(text.endsWith(u'…') ? text.size() - 1 : text.size(), u"(&%1)"_s.arg(letter));
}

/// Without those of windows that belong to it, which have letters of their own.
template <class Widget> QList<Widget *> ownChildren(const QWidget &window) {
  QList<Widget *> own = window.findChildren<Widget *>();
  own.removeIf([&window](const Widget *child) { return child->window() != &window; });
  return own;
}

} // namespace

QString mnemonicOf(const QString &text) {
  const qsizetype mark = text.indexOf(u'&');
  return mark < 0 ? QString() : text.mid(mark + 1, 1).toLower();
}

QString spoken(QString text) {
  static const platform::NoDestructor<QRegularExpression> mark(uR"(\(&\w\)|&)"_s);
  return text.remove(*mark);
}

void giveMnemonics(const QWidget &window) {
  QString taken;
  for (const QLabel *const label : ownChildren<QLabel>(window))
    if (label->buddy()) taken += mnemonicOf(label->text());
  for (const QAbstractButton *const button : ownChildren<QAbstractButton>(window))
    taken += mnemonicOf(button->text());
  for (QPushButton *const button : ownChildren<QPushButton>(window)) {
    if (button->text().isEmpty() || !mnemonicOf(button->text()).isEmpty()) continue;
    button->setText(withMnemonic(button->text(), taken));
    taken += mnemonicOf(button->text());
  }
}
