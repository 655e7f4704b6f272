#pragma once
// A person at a virtual display: finds a top-level window by the start of its title, presses
// the mouse button at a place in it, and asks it to close as a window manager's close button
// does. Xlib stays in the source file; its macros would clash with Qt and GoogleTest.

#include <memory>
#include <optional>
#include <string>

namespace orbline::test {

class XDisplay {
  public:
    // Empty when no display of that name answers.
    static std::unique_ptr<XDisplay> open(const std::string& name);
    ~XDisplay();
    XDisplay(const XDisplay&) = delete;
    XDisplay& operator=(const XDisplay&) = delete;

    std::optional<unsigned long> findWindow(const std::string& titleStart);
    // A press and release of the first button at (x, y) from the window's top left corner.
    void click(unsigned long window, int x, int y);
    // WM_DELETE_WINDOW, the close button of the window's frame.
    void requestClose(unsigned long window);

  private:
    explicit XDisplay(void* display) : display_(display) {}
    void* display_;
};

}  // namespace orbline::test
