// Lines added to a UtilsLogger with a limit of 1000, beside a QListWidget with an item widget per row, as the logger's
// form has it, and a QPlainTextEdit with a block limit, which has neither widgets nor animations and is the cheaper one
// as long as no line leaves before it is shown.
//
// "burst": all lines from one slot. "queued": all lines in queued calls that are delivered in one go, as when a worker
// thread was faster than the event loop. "turns": each line in a turn of the event loop of its own, painted. All of
// them go on until the last line is there. The counter "longest_turn_ms" is the longest that the event loop was held,
// in processor time, so that other programs do not count.
//
// Up to the limit every line has a widget of its own, which an edit has not. "without_limit" keeps all of them, and Qt
// goes through all children of a viewport for each frame and for each widget that appears; its longest turn is the one
// that adds the rows, which cost what those of a QListWidget do. In "turns" an animated logger has few lines to take
// away at first, and from the limit on one for each that comes.

#include "BenchmarkMain.h"

#include <UtilsLogger.h>
#include <UtilsLoggerLine.h>

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

#include <ctime>
#include <functional>
#include <memory>

namespace {

constexpr int LineLimit = 1000;
constexpr int NoLimit = 0;
constexpr int NoAnimation = 0;
constexpr int Reveal = 250; // ms, as in the processing dialog
constexpr QSize PaneSize(350, 105); // as in the processing dialog

struct Pane
{
    std::unique_ptr<QWidget> widget;
    std::function<void(const QString &)> addLine;
    std::function<bool()> isComplete = [] { return true; };
};

// Asking the logger itself would complete the lines that wait.
bool lastRowHas(const QListWidget *list, const QString &text)
{
    const auto *line = qobject_cast<UtilsLoggerLine *>(list->itemWidget(list->item(list->count() - 1)));
    return line && line->getText() == text;
}

Pane makeLogger(int duration, int limit)
{
    auto logger = std::make_unique<UtilsLogger>(nullptr, duration, limit);
    UtilsLogger *pane = logger.get();
    const auto *list = pane->findChild<QListWidget *>();
    const auto lastText = std::make_shared<QString>();
    return {std::move(logger),
            [pane, lastText](const QString &text) {
                *lastText = text;
                pane->addSingleLineMessage(text, LOGGER_MESSAGE_DEFAULT);
            },
            [list, lastText] { return lastRowHas(list, *lastText); }};
}

Pane makePlainLogger()
{
    return makeLogger(NoAnimation, LineLimit);
}

Pane makeAnimatedLogger()
{
    return makeLogger(Reveal, LineLimit);
}

Pane makeEndlessLogger()
{
    return makeLogger(NoAnimation, NoLimit);
}

Pane makeAnimatedEndlessLogger()
{
    return makeLogger(Reveal, NoLimit);
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

void runEventLoop()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

double processorMilliseconds()
{
    return 1e3 * double(std::clock()) / CLOCKS_PER_SEC;
}

/// Notes how long the event loop is held from turn to turn.
class TurnWatch
{
public:
    void start()
    {
        m_turnStart = processorMilliseconds();
    }
    void turn()
    {
        runEventLoop();
        m_longest = qMax(m_longest, processorMilliseconds() - m_turnStart);
        start();
    }
    double longest() const
    {
        return m_longest;
    }

private:
    double m_turnStart = 0;
    double m_longest = 0;
};

enum class Road { OneSlot, QueuedCalls, TurnForEach };

void addLines(benchmark::State &state, Pane (*makePane)(), Road road)
{
    const qint64 count = state.range(0);
    TurnWatch watch;
    for (auto _ : state) {
        state.PauseTiming();
        Pane pane = makePane();
        pane.widget->resize(PaneSize);
        pane.widget->show();
        runEventLoop();
        state.ResumeTiming();

        watch.start();
        for (qint64 i = 0; i < count; ++i) {
            const QString text = QStringLiteral("Line %1 of an operation on the device").arg(i);
            if (road == Road::QueuedCalls)
                QMetaObject::invokeMethod(
                    pane.widget.get(), [&pane, text] { pane.addLine(text); }, Qt::QueuedConnection);
            else
                pane.addLine(text);
            if (road == Road::TurnForEach)
                watch.turn();
        }
        if (road == Road::QueuedCalls)
            watch.start(); // it was another thread that had the work so far
        do
            watch.turn();
        while (!pane.isComplete());

        state.PauseTiming();
        pane.widget.reset();
        runEventLoop();
        state.ResumeTiming();
    }
    state.counters["per_line"] = benchmark::Counter(
        double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["longest_turn_ms"] = watch.longest();
}

void burst(benchmark::State &state, Pane (*makePane)())
{
    addLines(state, makePane, Road::OneSlot);
}

void queued(benchmark::State &state, Pane (*makePane)())
{
    addLines(state, makePane, Road::QueuedCalls);
}

void turns(benchmark::State &state, Pane (*makePane)())
{
    addLines(state, makePane, Road::TurnForEach);
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
BENCHMARK_CAPTURE(burst, UtilsLogger_without_limit, makeEndlessLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(burst, UtilsLogger_without_limit_animated, makeAnimatedEndlessLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(burst, QListWidget, makeListWidget)->Apply(fewLines); // 100,000 take minutes
BENCHMARK_CAPTURE(burst, QPlainTextEdit, makePlainTextEdit)->Apply(manyLines);
BENCHMARK_CAPTURE(queued, UtilsLogger, makePlainLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(queued, UtilsLogger_animated, makeAnimatedLogger)->Apply(manyLines);
BENCHMARK_CAPTURE(queued, QPlainTextEdit, makePlainTextEdit)->Apply(manyLines);
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
