#pragma once

class QMessageBox;

/// What every message box of ours has besides its words: the application's own icon, since good news comes this way,
/// too, and wants no warning beside it; plain text; a mnemonic on each button. Once it has its buttons.
void dressMessageBox(QMessageBox &box);
