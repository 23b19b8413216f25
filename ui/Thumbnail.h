#pragma once

#include <QImage>

/// Once, before there are other threads: bounds what reading one picture may take, in all of the process. Main thread.
void limitThumbnails();

/// The middle of a picture, as its camera was held, in a square of @p edge pixels at most. Reads little more than it
/// shows into memory. Any thread; may take its time.
/// @return null for what is missing, broken, huge or no picture of a kind that is known.
[[nodiscard]] QImage thumbnailOf(const QString &path, int edge);
