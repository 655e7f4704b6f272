#pragma once
// How the parent's request to close reaches the form: SIGTERM, SIGINT or SIGHUP on POSIX;
// WM_CLOSE to a hidden top-level window that bears the form's caption on Windows. Either way
// the handler runs on the logic thread at the next yield, never inside a signal handler.
//
// Free of Qt in this header: the Windows sibling is checked with a cross compiler without Qt.

#include <string>

namespace orbline {

using CloseHandler = void (*)();

// Once, after the application object exists and before the load event. False when the
// platform refused (the process then ends on a close request by the default action).
bool InstallCloseRequest(CloseHandler handler);
// The caption by which a parent finds the process (the hidden window on Windows).
void SetCloseRequestCaption(const std::u16string& caption);

}  // namespace orbline
