#include "WidgetWork.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

namespace {

constexpr int Turn = 500; // milliseconds

class PaintCounter : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

} // namespace

void drawFrames(benchmark::State &state, QWidget *widget)
{
    const int scale = int(state.range(0));
    QImage image(widget->size() * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    for (auto _ : state) {
        image.fill(Qt::transparent);
        widget->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    }
}

void runEventLoop(benchmark::State &state, QWidget *widget)
{
    PaintCounter counter;
    widget->installEventFilter(&counter);
    qint64 wakeUps = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counter,
                     [&wakeUps] { ++wakeUps; });
    double seconds = 0;
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        QEventLoop loop;
        QTimer::singleShot(Turn, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
        seconds += double(clock.nsecsElapsed()) / 1e9;
    }
    state.counters["wakeups_per_s"] = double(wakeUps) / seconds;
    state.counters["paints_per_s"] = counter.paints / seconds;
}
