#pragma once
// The console window of a process started with ShowMode 1: a view over the form model. The
// program installs it once, before the load event; the load event then shows it.

namespace orbline::console {

// Names the window as the form's view and the message boxes' owner. Needs a QApplication.
void InstallConsole();

}  // namespace orbline::console
