#pragma once

class QString;
class QWidget;

/// The letter that a text marks as its mnemonic, in lower case; empty when it marks none.
[[nodiscard]] QString mnemonicOf(const QString &text);

/// A text as it is read out: without the mark, and without the letter that scripts of other kinds add for it.
[[nodiscard]] QString spoken(QString text);

/// Marks a letter in each button of @p window that has none, one that no other text of the window has: its own first
/// free one, or one that is added, where its script has no such letters.
void giveMnemonics(const QWidget &window);
