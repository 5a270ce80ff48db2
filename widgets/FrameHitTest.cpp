#include "FrameHitTest_p.h"

static constexpr int BorderWidth = 4;

QPoint frameHitTestPoint(qintptr argument)
{
    // A screen to the left of the primary one has negative x. One above it would have negative y, and those are read
    // as large positive numbers all the same: no edge but the left and the right one is found there.
    const auto bits = static_cast<quint32>(argument);
    return QPoint(static_cast<qint16>(bits & 0xFFFFU), static_cast<quint16>(bits >> 16));
}

FramePart frameEdgeAt(const FrameHitTest &hitTest, const QSize &minimum, const QSize &maximum)
{
    const QRect &window = hitTest.window;
    const QPoint &cursor = hitTest.cursor;
    // The two directions are looked at apart: the system asks about points of the window, and the y of one may be
    // wrong.
    bool left = false;
    bool right = false;
    if (minimum.width() != maximum.width()) {
        left = cursor.x() >= window.left() && cursor.x() < window.left() + BorderWidth;
        right = cursor.x() <= window.right() && cursor.x() > window.right() - BorderWidth;
    }
    bool top = false;
    bool bottom = false;
    if (minimum.height() != maximum.height()) {
        top = cursor.y() >= window.top() && cursor.y() < window.top() + BorderWidth;
        bottom = cursor.y() <= window.bottom() && cursor.y() > window.bottom() - BorderWidth;
    }
    if (top)
        return left ? FrameTopLeft : right ? FrameTopRight : FrameTop;
    if (bottom)
        return left ? FrameBottomLeft : right ? FrameBottomRight : FrameBottom;
    return left ? FrameLeft : right ? FrameRight : NoFramePart;
}
