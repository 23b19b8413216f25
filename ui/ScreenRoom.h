#pragma once

class QSize;
class QWidget;

/// The largest size that @p window can have with its frame around it on the screen it is on, beside the desktop's
/// panels.
[[nodiscard]] QSize roomOnScreen(const QWidget &window);

/// Moves an open window that has grown beyond an edge of its screen back onto it.
void moveOntoScreen(QWidget &window);
