#pragma once

/// Shows all windows dark, or as the desktop's theme gives them. A theme that is dark already keeps its own colours,
/// also when light ones are wished for: those are the theme's to give. One that turns dark only once ours show, as
/// KDE's may, is not seen until they are to be light again.
void showWindowsDark(bool isDark);
