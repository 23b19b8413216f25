#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace platform {

/// Small files of ours that only the user may read. Any thread.

/// Replaces @p path as a whole: after a crash it holds the old content or the new one. Its folder must exist.
[[nodiscard]] bool writePrivateFile(const QString &path, const QByteArray &content);
/// Absent when there is no such ordinary file or it cannot be read.
[[nodiscard]] std::optional<QByteArray> readPrivateFile(const QString &path);

} // namespace platform
