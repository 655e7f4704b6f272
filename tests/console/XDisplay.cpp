#include "XDisplay.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace orbline::test {

namespace {

Display* Of(void* display) {
    return static_cast<Display*>(display);
}

std::string Title(Display* display, Window window) {
    const Atom netName = XInternAtom(display, "_NET_WM_NAME", False);
    const Atom utf8 = XInternAtom(display, "UTF8_STRING", False);
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    std::string title;
    if (XGetWindowProperty(display, window, netName, 0, 1024, False, utf8, &type, &format, &count,
                           &after, &data) == Success &&
        data != nullptr) {
        title.assign(reinterpret_cast<const char*>(data), count);
        XFree(data);
    }
    return title;
}

}  // namespace

std::unique_ptr<XDisplay> XDisplay::open(const std::string& name) {
    Display* display = XOpenDisplay(name.c_str());
    if (display == nullptr) return nullptr;
    return std::unique_ptr<XDisplay>(new XDisplay(display));
}

XDisplay::~XDisplay() {
    XCloseDisplay(Of(display_));
}

std::optional<unsigned long> XDisplay::findWindow(const std::string& titleStart) {
    Display* display = Of(display_);
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    std::optional<unsigned long> found;
    if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count) == 0)
        return found;
    for (unsigned int i = 0; i < count && !found; ++i) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display, children[i], &attributes) != 0 &&
            attributes.map_state == IsViewable &&
            Title(display, children[i]).starts_with(titleStart))
            found = children[i];
    }
    if (children != nullptr) XFree(children);
    return found;
}

void XDisplay::click(unsigned long window, int x, int y) {
    Display* display = Of(display_);
    int rootX = 0;
    int rootY = 0;
    Window child = 0;
    XTranslateCoordinates(display, window, DefaultRootWindow(display), x, y, &rootX, &rootY,
                          &child);
    XTestFakeMotionEvent(display, DefaultScreen(display), rootX, rootY, CurrentTime);
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XFlush(display);
}

void XDisplay::requestClose(unsigned long window) {
    Display* display = Of(display_);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, window, False, NoEventMask, &event);
    XFlush(display);
}

}  // namespace orbline::test
