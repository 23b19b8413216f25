#pragma once

#include "sandbox/Library.h"

/// An image of one device with its name and a capture time.
[[nodiscard]] inline sandbox::LibraryObject image(const QString &hour, const QString &fileName,
                                                  const QByteArray &body = QByteArray(5000, 'p')) {
  return {.deviceId = QStringLiteral("dev1"),
          .date = QStringLiteral("20240501"),
          .hour = hour,
          .fileName = fileName,
          .body = body,
          .fileNameMetadata = sandbox::fileNameHeader(fileName),
          .metadataDocument = R"({"captureTime":"2024-04-30T12:00:00.000Z"})"};
}
