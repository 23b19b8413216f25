#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// How a downloaded object gets its name on disk. Lengths count UTF-8 bytes where the file system does: see .cpp.

/// The name inside a base64url "x-amz-meta-file-name" header; absent when it cannot be decoded.
[[nodiscard]] std::optional<QString> decodeFileNameHeader(const QByteArray &header);

/// The path to save under: @p name beside @p defaultFilePath, or the default path itself when the name is empty or
/// ".". Names of over @p longest bytes lose the end of their stem, never their extension.
[[nodiscard]] QString targetFilePath(const QString &defaultFilePath, const QString &name, qsizetype longest = 255);

/// The candidate for the @p counter-th collision (1, 2, 3 …) of @p targetPath: "STEM_COUNTER.EXTENSION".
[[nodiscard]] QString numberedFilePath(const QString &targetPath, unsigned counter, qsizetype longest = 255);
