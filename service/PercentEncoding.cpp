#include "service/PercentEncoding.h"

#include <QByteArray>

QString percentEncodedKey(const QString &key) {
  return QString::fromLatin1(key.toUtf8().toPercentEncoding("/"));
}

QString percentEncodedWhole(const QString &text) {
  return QString::fromLatin1(text.toUtf8().toPercentEncoding({}, "-._~"));
}
