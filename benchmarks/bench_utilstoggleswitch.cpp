// A UtilsToggleSwitch beside a button that paints and moves the same two shapes with QPainter and QVariantAnimation,
// and beside a QCheckBox, which has no animation and no curves: its style copies a few straight lines.
//
// "paint": one frame at 100, 200 and 300 % scale, of 4 and 9 times as many pixels as the first. "rest", "hidden": what
// the event loop does while nobody touches the button, on the screen and on a hidden page. "toggling": a toggle every
// half second, with its animation. From 200 % on Qt hands the translucent border to its pool of threads, which costs
// more than it saves.

#include "BenchmarkMain.h"
#include "WidgetWork.h"

#include <UtilsToggleSwitch.h>

#include <QApplication>
#include <QCheckBox>
#include <QEventLoop>
#include <QPainter>
#include <QTimer>
#include <QVariantAnimation>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr QSize Size(40, 20);
constexpr QSize PageSize(200, 200);
constexpr int ThumbDuration = 120; // milliseconds
constexpr int TogglePeriod = 500; // milliseconds
constexpr int AnimationTime = 300; // more than any animation of the buttons takes

class BareSwitch : public QAbstractButton
{
public:
    explicit BareSwitch(QWidget *parent)
        : QAbstractButton(parent)
    {
        setCheckable(true);
        animation.setDuration(ThumbDuration);
        animation.setEasingCurve(QEasingCurve::InOutQuad);
        connect(&animation, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
        connect(this, &QAbstractButton::toggled, this, [this](bool checked) {
            animation.stop();
            animation.setStartValue(thumbX());
            animation.setEndValue(end(checked));
            animation.start();
        });
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const double radius = height() / 2.0;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor(128, 128, 128, 200)); // as dear as any that lets something through
        painter.setBrush(isChecked() ? Qt::green : Qt::gray);
        painter.drawRoundedRect(rect(), radius, radius);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QPointF(thumbX(), radius), radius, radius);
    }

private:
    int end(bool checked) const
    {
        return checked ? width() - height() / 2 : height() / 2;
    }
    int thumbX() const
    {
        return animation.currentValue().isValid() ? animation.currentValue().toInt() : end(isChecked());
    }

    QVariantAnimation animation;
};

std::unique_ptr<QAbstractButton> makeBareSwitch(QWidget *parent)
{
    return std::make_unique<BareSwitch>(parent);
}

std::unique_ptr<QAbstractButton> makeSwitch(QWidget *parent)
{
    return std::make_unique<UtilsToggleSwitch>(parent);
}

std::unique_ptr<QAbstractButton> makeCheckBox(QWidget *parent)
{
    return std::make_unique<QCheckBox>(parent);
}

using Make = std::unique_ptr<QAbstractButton> (*)(QWidget *);

void waitForAnimations()
{
    QEventLoop loop;
    QTimer::singleShot(AnimationTime, &loop, &QEventLoop::quit);
    loop.exec();
}

void paint(benchmark::State &state, Make make)
{
    const auto button = make(nullptr);
    button->setFixedSize(Size);
    button->setChecked(true);
    drawFrames(state, button.get());
}

void idle(benchmark::State &state, Make make, bool visible, bool toggles)
{
    QWidget page;
    page.resize(PageSize);
    const auto button = make(&page);
    button->setFixedSize(Size);
    page.setVisible(visible);
    waitForAnimations();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, button.get(), &QAbstractButton::toggle);
    if (toggles)
        timer.start(TogglePeriod);
    runEventLoop(state, button.get());
}

void rest(benchmark::State &state, Make make)
{
    idle(state, make, true, false);
}

void hidden(benchmark::State &state, Make make)
{
    idle(state, make, false, false);
}

void toggling(benchmark::State &state, Make make)
{
    idle(state, make, true, true);
}

void scales(benchmark::internal::Benchmark *work)
{
    work->DenseRange(1, 3)->Unit(benchmark::kMicrosecond);
}

void turns(benchmark::internal::Benchmark *work)
{
    work->Iterations(4)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(paint, UtilsToggleSwitch, makeSwitch)->Apply(scales);
BENCHMARK_CAPTURE(paint, bare_QPainter, makeBareSwitch)->Apply(scales);
BENCHMARK_CAPTURE(paint, QCheckBox, makeCheckBox)->Apply(scales);
BENCHMARK_CAPTURE(rest, UtilsToggleSwitch, makeSwitch)->Apply(turns);
BENCHMARK_CAPTURE(rest, bare_QPainter, makeBareSwitch)->Apply(turns);
BENCHMARK_CAPTURE(rest, QCheckBox, makeCheckBox)->Apply(turns);
BENCHMARK_CAPTURE(hidden, UtilsToggleSwitch, makeSwitch)->Apply(turns);
BENCHMARK_CAPTURE(hidden, bare_QPainter, makeBareSwitch)->Apply(turns);
BENCHMARK_CAPTURE(hidden, QCheckBox, makeCheckBox)->Apply(turns);
BENCHMARK_CAPTURE(toggling, UtilsToggleSwitch, makeSwitch)->Apply(turns);
BENCHMARK_CAPTURE(toggling, bare_QPainter, makeBareSwitch)->Apply(turns);
BENCHMARK_CAPTURE(toggling, QCheckBox, makeCheckBox)->Apply(turns);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
