#pragma once

#include <QDateTime>
#include <QString>

/// How an object is to be saved.
struct SaveOrder {
  QString defaultFilePath{};   ///< what it lands beside, under its own name; where it lands when it carries none
  qint64 refFileSize = 0;      ///< bytes that it has to have
  QDateTime modified{};        ///< the modification date that it gets; invalid for none
  bool bKeepWhatComes = false; ///< save it, too, when its size or name is not the right one
};
