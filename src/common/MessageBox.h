#pragma once
// The message boxes titled "KV_Orbline". Only a shown console can put one on the screen; it
// names its handler at start. Without one nobody could click a box, so callers fall back to
// the log and standard error.

#include <QString>

namespace orbline {

enum class BoxIcon { Information, Critical };

using MessageBoxHandler = void (*)(const QString& text, BoxIcon icon);
void SetMessageBoxHandler(MessageBoxHandler handler);
// Shows the box and waits for the click. False when no console is there to show it.
bool ShowMessageBox(const QString& text, BoxIcon icon);

}  // namespace orbline
