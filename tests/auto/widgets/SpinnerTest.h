#ifndef SPINNERTEST_H
#define SPINNERTEST_H

#include <WaitingSpinnerWidget.h>

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <QtMath>

/// What the tests of WaitingSpinnerWidget share: its timers, and what it draws with its default sizes.
namespace SpinnerTest {

constexpr int Lines = 11;
constexpr int Radius = 10;
constexpr int Length = 10;

inline QTimer *rotationTimerOf(const WaitingSpinnerWidget &spinner)
{
    return spinner.findChild<QTimer *>();
}

inline QList<QTimer *> countdownTimersOf(const WaitingSpinnerWidget &spinner)
{
    return spinner.findChildren<QTimer *>().mid(1);
}

inline void tick(QTimer *timer)
{
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
}

inline QImage imageOf(WaitingSpinnerWidget &spinner)
{
    QImage image(spinner.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    spinner.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image.convertToFormat(QImage::Format_ARGB32);
}

inline QColor colourOfLine(const QImage &image, int line, int lines = Lines)
{
    const double angle = 2 * M_PI * line / lines;
    const double distance = Radius + Length / 2.0;
    const double middle = Radius + Length;
    return image.pixelColor(int(middle + distance * qCos(angle)), int(middle + distance * qSin(angle)));
}

inline int leadingLine(WaitingSpinnerWidget &spinner, int lines = Lines)
{
    const QImage image = imageOf(spinner);
    QList<int> opaque;
    for (int line = 0; line < lines; ++line) {
        if (colourOfLine(image, line, lines).alpha() == 255)
            opaque.append(line);
    }
    return opaque.size() == 1 ? opaque.first() : -1;
}

// The lines begin at the inner radius.
inline bool isNumberDrawn(WaitingSpinnerWidget &spinner)
{
    const QImage image = imageOf(spinner);
    for (int y = 14; y < 26; ++y) {
        for (int x = 14; x < 26; ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                return true;
        }
    }
    return false;
}

} // namespace SpinnerTest

#endif // SPINNERTEST_H
