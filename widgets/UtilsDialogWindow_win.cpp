#include "FrameHitTest_p.h"

#include <qt_windows.h>

std::optional<FrameHitTest> frameHitTestOf(const void *message)
{
    const auto *event = static_cast<const MSG *>(message);
    RECT window;
    if (event->message != WM_NCHITTEST || !GetWindowRect(event->hwnd, &window))
        return std::nullopt;
    return FrameHitTest{QRect(window.left, window.top, window.right - window.left, window.bottom - window.top),
                        frameHitTestPoint(event->lParam)};
}
