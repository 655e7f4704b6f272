#pragma once
// Where the session buttons stand in the window, in pixels from its top left corner. The form
// is laid out at fixed places, as a drawn form is, so a test under a virtual display can press
// the buttons where a person would.

namespace orbline::console {

struct Place {
    int x;
    int y;
    int width;
    int height;

    int centreX() const { return x + width / 2; }
    int centreY() const { return y + height / 2; }
};

inline constexpr Place kCmdOpen{372, 8, 84, 28};
inline constexpr Place kCmdKaijyo{372, 40, 84, 28};
inline constexpr Place kCmdEnd{372, 72, 84, 28};
inline constexpr Place kCmdLog{462, 8, 84, 28};

// The compact size the form opens with, and the size that shows every pane.
inline constexpr int kCompactWidth = 551;
inline constexpr int kCompactHeight = 273;
inline constexpr int kFullWidth = 558;
inline constexpr int kFullHeight = 566;

}  // namespace orbline::console
