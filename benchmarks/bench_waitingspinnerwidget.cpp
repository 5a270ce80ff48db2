// A WaitingSpinnerWidget beside Qt's busy indicator, a QProgressBar with the range 0 to 0.
//
// "paint": one frame at 100, 200 and 300 % scale. "shown", "hidden", "stopped": what the event loop does while the
// widget is busy on the screen, busy on a hidden page, and at rest; "nothing" is the loop's own share. At 300 % Qt
// hands the translucent bars to its pool of threads.

#include "BenchmarkMain.h"
#include "WidgetWork.h"

#include <WaitingSpinnerWidget.h>

#include <QApplication>
#include <QProgressBar>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr QSize Size(40, 40); // of a spinner
constexpr QSize PageSize(200, 200);

std::unique_ptr<QWidget> makeSpinner(QWidget *parent, bool busy)
{
    auto spinner = std::make_unique<WaitingSpinnerWidget>(parent, false, false);
    spinner->start();
    if (!busy)
        spinner->stop();
    return spinner;
}

std::unique_ptr<QWidget> makeProgressBar(QWidget *parent, bool busy)
{
    auto bar = std::make_unique<QProgressBar>(parent);
    bar->setRange(0, busy ? 0 : 100);
    bar->setFixedSize(Size);
    bar->show();
    return bar;
}

std::unique_ptr<QWidget> makeNothing(QWidget *parent, bool)
{
    return std::make_unique<QWidget>(parent);
}

using Make = std::unique_ptr<QWidget> (*)(QWidget *, bool);

void paint(benchmark::State &state, Make make)
{
    drawFrames(state, make(nullptr, true).get());
}

void idle(benchmark::State &state, Make make, bool busy, bool visible)
{
    QWidget page;
    page.resize(PageSize);
    const auto widget = make(&page, busy);
    page.setVisible(visible);
    QApplication::processEvents();
    runEventLoop(state, widget.get());
}

void shown(benchmark::State &state, Make make)
{
    idle(state, make, true, true);
}

void hidden(benchmark::State &state, Make make)
{
    idle(state, make, true, false);
}

void stopped(benchmark::State &state, Make make)
{
    idle(state, make, false, true);
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

BENCHMARK_CAPTURE(paint, WaitingSpinnerWidget, makeSpinner)->Apply(scales);
BENCHMARK_CAPTURE(paint, QProgressBar, makeProgressBar)->Apply(scales);
BENCHMARK_CAPTURE(shown, WaitingSpinnerWidget, makeSpinner)->Apply(turns);
BENCHMARK_CAPTURE(shown, QProgressBar, makeProgressBar)->Apply(turns);
BENCHMARK_CAPTURE(hidden, WaitingSpinnerWidget, makeSpinner)->Apply(turns);
BENCHMARK_CAPTURE(hidden, QProgressBar, makeProgressBar)->Apply(turns);
BENCHMARK_CAPTURE(stopped, WaitingSpinnerWidget, makeSpinner)->Apply(turns);
BENCHMARK_CAPTURE(stopped, QProgressBar, makeProgressBar)->Apply(turns);
BENCHMARK_CAPTURE(stopped, nothing, makeNothing)->Apply(turns);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
