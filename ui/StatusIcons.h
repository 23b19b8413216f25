#pragma once

#include "ui/StatusTables.h"

#include <QIcon>

/// The picture of a frame, sharp in every size that trays use.
[[nodiscard]] const QIcon &statusIcon(StatusFrame frame);
