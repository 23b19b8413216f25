#pragma once

#include <QStringView>

/// Whether @p candidate is the later of two versions: runs of digits compare as numbers, all else as text, and what
/// merely goes on is later ("1.10" after "1.9", "1.0.1" after "1.0").
[[nodiscard]] bool isLaterVersion(QStringView candidate, QStringView current);
