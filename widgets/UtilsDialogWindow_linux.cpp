#include "FrameHitTest_p.h"

// The window manager resizes windows on its own and asks nobody.
std::optional<FrameHitTest> frameHitTestOf(const void *message)
{
    Q_UNUSED(message)
    return std::nullopt;
}
