// A queue of animations run to its end, beside Qt's ways to the same: a QSequentialAnimationGroup that is filled before
// it starts, and bare animations each of which starts the next one from its finished().
//
// Durations: 0 shows what the queue itself costs, which takes each animation as it comes, while the group knows all of
// them before. With 1 ms every animation takes one tick of the animation clock (16 ms) or more, and what is measured is
// the processor time. A group goes through several of its short animations in one tick; in the queue each is an
// animation of its own, as in the chain, and takes its tick.

#include "BenchmarkMain.h"

#include <UtilsSequentialAnimation.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QPropertyAnimation>
#include <QSequentialAnimationGroup>

#include <benchmark/benchmark.h>

namespace {

class Target : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value MEMBER value)

public:
    int value = 0;
};

QPropertyAnimation *makeAnimation(Target *target, int duration)
{
    auto *animation = new QPropertyAnimation(target, "value");
    animation->setStartValue(0);
    animation->setEndValue(100);
    animation->setDuration(duration);
    return animation;
}

void deleteFinished()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void queue(benchmark::State &state)
{
    Target target;
    for (auto _ : state) {
        UtilsSequentialAnimation animations;
        QEventLoop loop;
        QObject::connect(&animations, &UtilsSequentialAnimation::SignalAllAnimationsFinished, &loop, &QEventLoop::quit,
                         Qt::QueuedConnection);
        animations.AddAnimation(makeAnimation(&target, 1)); // holds the others until all of them wait
        for (qint64 i = 1; i < state.range(0); ++i)
            animations.AddAnimation(makeAnimation(&target, int(state.range(1))));
        loop.exec();
        deleteFinished();
    }
}

void group(benchmark::State &state)
{
    Target target;
    for (auto _ : state) {
        auto *animations = new QSequentialAnimationGroup;
        QEventLoop loop;
        QObject::connect(animations, &QAbstractAnimation::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        animations->addAnimation(makeAnimation(&target, 1));
        for (qint64 i = 1; i < state.range(0); ++i)
            animations->addAnimation(makeAnimation(&target, int(state.range(1))));
        animations->start(QAbstractAnimation::DeleteWhenStopped);
        loop.exec();
        deleteFinished();
    }
}

void chained(benchmark::State &state)
{
    Target target;
    for (auto _ : state) {
        QEventLoop loop;
        QPropertyAnimation *first = makeAnimation(&target, 1);
        QPropertyAnimation *last = first;
        for (qint64 i = 1; i < state.range(0); ++i) {
            QPropertyAnimation *next = makeAnimation(&target, int(state.range(1)));
            // Queued: animations of duration 0 would start one another until the stack is full.
            QObject::connect(
                last, &QAbstractAnimation::finished, next,
                [next] { next->start(QAbstractAnimation::DeleteWhenStopped); }, Qt::QueuedConnection);
            last = next;
        }
        QObject::connect(last, &QAbstractAnimation::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        first->start(QAbstractAnimation::DeleteWhenStopped);
        loop.exec();
        deleteFinished();
    }
}

void run(benchmark::State &state, void (*way)(benchmark::State &))
{
    way(state);
}

// Arguments: number of animations, duration of each in milliseconds.
void arguments(benchmark::internal::Benchmark *work)
{
    work->Args({1'000, 0})->Args({10'000, 0})->Args({30, 1})->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(run, UtilsSequentialAnimation, queue)->Apply(arguments);
BENCHMARK_CAPTURE(run, QSequentialAnimationGroup, group)->Apply(arguments);
BENCHMARK_CAPTURE(run, chained_QPropertyAnimations, chained)->Apply(arguments);

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}

#include "bench_utilssequentialanimation.moc"
