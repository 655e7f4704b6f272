#include "app/CloseRequest.h"

#include <windows.h>

namespace orbline {

namespace {

CloseHandler closeHandler = nullptr;
HWND closeWindow = nullptr;

// Messages of the thread's windows are dispatched by the event loop's yield, so WM_CLOSE runs
// the handler on the logic thread, nested in the dialogue like any other event.
LRESULT CALLBACK CloseWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // Windows ending the session asks every top-level window to close, as a parent does.
    const bool closing = message == WM_CLOSE || (message == WM_ENDSESSION && wParam != FALSE);
    if (closing) {
        if (closeHandler != nullptr) closeHandler();
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

bool InstallCloseRequest(CloseHandler handler) {
    closeHandler = handler;
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = CloseWindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"KV_Orbline_Form";
    if (RegisterClassW(&windowClass) == 0) return false;
    // A top-level window that is never shown: the parent's WM_CLOSE reaches an unattended
    // process through it.
    closeWindow = CreateWindowExW(0, windowClass.lpszClassName, L"", WS_OVERLAPPEDWINDOW, 0, 0, 0,
                                  0, nullptr, nullptr, windowClass.hInstance, nullptr);
    return closeWindow != nullptr;
}

void SetCloseRequestCaption(const std::u16string& caption) {
    if (closeWindow == nullptr) return;
    const std::wstring text(caption.begin(), caption.end());
    SetWindowTextW(closeWindow, text.c_str());
}

}  // namespace orbline
