#pragma once

/// Shows all windows dark, or as the desktop's theme gives them. A theme that is dark itself keeps its own colours.
void showWindowsDark(bool isDark);
