#pragma once

class QDialog;
class QWidget;

/// Shows a window, one that stands too, in front of the others, by the leave of whoever asked for it
/// (platform/ActivationToken.h). Every window of ours that is not opened out of another comes this way. Main thread.
void showInFront(QWidget &window);
/// The same, and waits for the answer.
void execInFront(QDialog &dialog);
