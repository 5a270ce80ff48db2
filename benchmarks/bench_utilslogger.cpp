// Lines added to a UtilsLogger with a limit of 1000, beside a QListWidget with an item widget per row, as the logger's
// form has it, and a QPlainTextEdit with a block limit, which has neither widgets nor animations.
//
// "burst": all lines in one turn of the event loop. "turns": each line in a turn of its own, painted, as messages of
// a worker thread arrive. The counter "longest_turn_ms" is the longest time that the event loop was held.

#include "BenchmarkMain.h"

#include <UtilsLogger.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

namespace {

constexpr int LineLimit = 1000;
constexpr int NoAnimation = 0;
constexpr int Reveal = 250; // ms, as in the processing dialog
constexpr QSize PaneSize(350, 105); // as in the processing dialog

struct Pane
{
    std::unique_ptr<QWidget> widget;
    std::function<void(const QString &)> addLine;
};

Pane makeLogger(int duration)
{
    auto logger = std::make_unique<UtilsLogger>(nullptr, duration, LineLimit);
    UtilsLogger *pane = logger.get();
    return {std::move(logger),
            [pane](const QString &text) { pane->addSingleLineMessage(text, LOGGER_MESSAGE_DEFAULT); }};
}

Pane makePlainLogger()
{
    return makeLogger(NoAnimation);
}

Pane makeAnimatedLogger()
{
    return makeLogger(Reveal);
}

// The same rows, limit and view of the end, in the way a QListWidget offers itself.
Pane makeListWidget()
{
    auto list = std::make_unique<QListWidget>();
    QListWidget *pane = list.get();
    pane->setAutoScroll(false);
    pane->setSelectionMode(QAbstractItemView::NoSelection);
    pane->setGridSize(QSize(0, 19));
    pane->setUniformItemSizes(true);
    return {std::move(list), [pane](const QString &text) {
                if (pane->count() == LineLimit)
                    delete pane->takeItem(0);
                auto *item = new QListWidgetItem(pane);
                auto *line = new QWidget;
                auto *layout = new QVBoxLayout(line);
                layout->setContentsMargins(0, 0, 0, 0);
                auto *label = new QLabel;
                label->setStyleSheet(QStringLiteral("border: 0px; padding: 0px;"));
                label->setText(text);
                layout->addWidget(label);
                pane->setItemWidget(item, line);
                pane->scrollToBottom();
            }};
}

Pane makePlainTextEdit()
{
    auto edit = std::make_unique<QPlainTextEdit>();
    QPlainTextEdit *pane = edit.get();
    pane->setReadOnly(true);
    pane->setMaximumBlockCount(LineLimit);
    return {std::move(edit), [pane](const QString &text) { pane->appendPlainText(text); }};
}

qint64 runEventLoop()
{
    QElapsedTimer clock;
    clock.start();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    return clock.nsecsElapsed();
}

enum class Turns { OneForAll, OneForEach };

void addLines(benchmark::State &state, Pane (*makePane)(), Turns turns)
{
    const qint64 count = state.range(0);
    qint64 longest = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Pane pane = makePane();
        pane.widget->resize(PaneSize);
        pane.widget->show();
        runEventLoop();
        QElapsedTimer clock;
        state.ResumeTiming();

        clock.start();
        for (qint64 i = 0; i < count; ++i) {
            pane.addLine(QStringLiteral("Line %1 of an operation on the device").arg(i));
            if (turns == Turns::OneForEach || i == count - 1) {
                runEventLoop();
                longest = qMax(longest, clock.nsecsElapsed());
                clock.start();
            }
        }

        state.PauseTiming();
        pane.widget.reset();
        runEventLoop();
        state.ResumeTiming();
    }
    state.counters["per_line"] = benchmark::Counter(
        double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["longest_turn_ms"] = double(longest) / 1e6;
}

void burst(benchmark::State &state, Pane (*makePane)())
{
    addLines(state, makePane, Turns::OneForAll);
}

void turns(benchmark::State &state, Pane (*makePane)())
{
    addLines(state, makePane, Turns::OneForEach);
}

void fewLines(benchmark::internal::Benchmark *work)
{
    work->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);
}

void manyLines(benchmark::internal::Benchmark *work)
{
    work->Apply(fewLines)->Arg(100'000);
}

} // namespace

BENCHMARK_CAPTURE(burst, UtilsLogger, makePlainLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(burst, UtilsLogger_animated, makeAnimatedLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(burst, QListWidget, makeListWidget)->Apply(fewLines); // 100,000 take minutes
BENCHMARK_CAPTURE(burst, QPlainTextEdit, makePlainTextEdit)->Apply(manyLines);
BENCHMARK_CAPTURE(turns, UtilsLogger, makePlainLogger)->Apply(fewLines);
BENCHMARK_CAPTURE(turns, UtilsLogger_animated, makeAnimatedLogger)->Apply(fewLines);
BENCHMARK_CAPTURE(turns, QListWidget, makeListWidget)->Apply(fewLines);
BENCHMARK_CAPTURE(turns, QPlainTextEdit, makePlainTextEdit)->Apply(fewLines);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
