#pragma once

#include <QString>

/// What is opened for the user, who is told when it does not open. Nothing here blocks. Main thread.
/// @{
void openPageOrSay(const QString &url);
void openFolderOrSay(const QString &path);
/// @}

/// What there is to open.
enum class Openable { Page, Folder };

/// Says in a window of its own that something could not be opened, with its address to copy, if it has one. Where such
/// a window stands already it gets the new address, so there is one of each kind at most. Main thread.
void showNotOpened(Openable what, const QString &address);
