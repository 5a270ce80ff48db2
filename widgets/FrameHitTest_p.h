#ifndef FRAMEHITTEST_P_H
#define FRAMEHITTEST_P_H

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

/// The parts of a window's frame, with the numbers that Windows gives them.
enum FramePart {
    NoFramePart = 0,
    FrameCaption = 2,
    FrameLeft = 10,
    FrameRight = 11,
    FrameTop = 12,
    FrameTopLeft = 13,
    FrameTopRight = 14,
    FrameBottom = 15,
    FrameBottomLeft = 16,
    FrameBottomRight = 17
};

/// The system's question which part of a window's frame is at a point; all in its own pixels.
struct FrameHitTest
{
    QRect window;
    QPoint cursor;
};

/// The question that \a message is, or nothing when it is something else. Each system has its own.
std::optional<FrameHitTest> frameHitTestOf(const void *message);

/// The point in the last argument of the Windows message: x is signed, y is not.
QPoint frameHitTestPoint(qintptr argument);

/// The edge or corner of \a hitTest's window at its cursor: the border is 4 pixels wide, inside the window. A side
/// counts only when the window can be resized in its direction, as \a minimum and \a maximum differ there, and a corner
/// only when it can be in both.
FramePart frameEdgeAt(const FrameHitTest &hitTest, const QSize &minimum, const QSize &maximum);

#endif // FRAMEHITTEST_P_H
