#include "SequentialAnimationTest.h"

#include <functional>
#include <utility>

using namespace SequentialAnimationTest;

namespace {

/// Runs an action once, from any signal.
class Trigger : public QObject
{
    Q_OBJECT

public:
    explicit Trigger(std::function<void()> todo)
        : action(std::move(todo))
    { }

public Q_SLOTS:
    void fire()
    {
        if (const std::function<void()> todo = std::exchange(action, nullptr))
            todo();
    }

private:
    std::function<void()> action;
};

} // namespace

// Queues that are deleted, emptied and refilled, and event loops that run, in slots of the queue's own signals.
class tst_UtilsSequentialAnimation_reentry : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theQueueMayBeDeletedInsideASignal_data();
    void theQueueMayBeDeletedInsideASignal();
    void theQueueMayBeEmptiedInsideTheAnnouncement();
    void theQueueMayBeRefilledInsideTheAnnouncement();
    void theQueueMayBeRefilledWhenItRunsDry();
    void theAnnouncedAnimationMayBeDeletedByTheReceiver();
    void aNestedEventLoopInsideASlotDoesNotHoldTheQueue_data();
    void aNestedEventLoopInsideASlotDoesNotHoldTheQueue();
};

void tst_UtilsSequentialAnimation_reentry::theQueueMayBeDeletedInsideASignal_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<int>("duration");
    QTest::newRow("announcement") << QByteArray(SIGNAL(SignalNewAnimationStarts())) << Short;
    QTest::newRow("announcement of nothing long") << QByteArray(SIGNAL(SignalNewAnimationStarts())) << 0;
    QTest::newRow("all finished") << QByteArray(SIGNAL(SignalAllAnimationsFinished())) << Short;
    QTest::newRow("all finished inside the call") << QByteArray(SIGNAL(SignalAllAnimationsFinished())) << 0;
    QTest::newRow("finished of the animation") << QByteArray(SIGNAL(finished())) << Short;
    QTest::newRow("finished inside the call") << QByteArray(SIGNAL(finished())) << 0;
    QTest::newRow("state of the animation")
        << QByteArray(SIGNAL(stateChanged(QAbstractAnimation::State, QAbstractAnimation::State))) << Short;
}

void tst_UtilsSequentialAnimation_reentry::theQueueMayBeDeletedInsideASignal()
{
    QFETCH(QByteArray, signal);
    QFETCH(int, duration);
    Target target;
    auto *queue = new UtilsSequentialAnimation;
    const QPointer<UtilsSequentialAnimation> guard(queue);
    Trigger deletion([queue] { delete queue; });
    QPropertyAnimation *animation = makeAnimation(&target, duration, &target);
    const bool fromAnimation
        = signal != SIGNAL(SignalNewAnimationStarts()) && signal != SIGNAL(SignalAllAnimationsFinished());
    connect(fromAnimation ? static_cast<QObject *>(animation) : queue, signal.constData(), &deletion, SLOT(fire()));
    queue->AddAnimation(animation);
    QTRY_VERIFY(!guard);
    QCoreApplication::processEvents();
}

void tst_UtilsSequentialAnimation_reentry::theQueueMayBeEmptiedInsideTheAnnouncement()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, &queue,
            &UtilsSequentialAnimation::DestroyAllAnimations);
    QPropertyAnimation *animation = makeAnimation(&target, Short, &target);
    queue.AddAnimation(animation);
    QCOMPARE(animation->state(), QAbstractAnimation::Stopped);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCOMPARE(finished.count(), 0);
}

void tst_UtilsSequentialAnimation_reentry::theQueueMayBeRefilledInsideTheAnnouncement()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *forgotten = makeAnimation(&target, Short, &target);
    const QPointer<QPropertyAnimation> instead = makeAnimation(&target, Short);
    Trigger refill([&] {
        queue.DestroyAllAnimations();
        queue.AddAnimation(instead);
        QCOMPARE(instead->state(), QAbstractAnimation::Running);
    });
    connect(&queue, SIGNAL(SignalNewAnimationStarts()), &refill, SLOT(fire()));
    queue.AddAnimation(forgotten);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(forgotten->state(), QAbstractAnimation::Stopped);
    QTRY_VERIFY(!instead);
}

void tst_UtilsSequentialAnimation_reentry::theQueueMayBeRefilledWhenItRunsDry()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    Trigger refill([&] {
        QPropertyAnimation *again = makeAnimation(&target, Short);
        queue.AddAnimation(again);
        QCOMPARE(again->state(), QAbstractAnimation::Running);
    });
    connect(&queue, SIGNAL(SignalAllAnimationsFinished()), &refill, SLOT(fire()));
    queue.AddAnimation(makeAnimation(&target, 0));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QTRY_COMPARE(finished.count(), 2);
}

void tst_UtilsSequentialAnimation_reentry::theAnnouncedAnimationMayBeDeletedByTheReceiver()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *animation = makeAnimation(&target, Short);
    connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, this, [animation] { delete animation; });
    queue.AddAnimation(animation);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
}

void tst_UtilsSequentialAnimation_reentry::aNestedEventLoopInsideASlotDoesNotHoldTheQueue_data()
{
    QTest::addColumn<bool>("inAnnouncement");
    QTest::newRow("in the announcement") << true;
    QTest::newRow("in the state change") << false;
}

void tst_UtilsSequentialAnimation_reentry::aNestedEventLoopInsideASlotDoesNotHoldTheQueue()
{
    QFETCH(bool, inAnnouncement);
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *first = makeAnimation(&target, Short);
    QPropertyAnimation *second = makeAnimation(&target, Short);
    QPropertyAnimation *third = makeAnimation(&target, Short);
    const QPointer<QPropertyAnimation> last = third;
    int ends = 0;
    for (QPropertyAnimation *animation : {first, second, third})
        connect(animation, &QAbstractAnimation::finished, this, [&ends] { ++ends; });

    bool nested = false;
    const auto runLoop = [&] {
        if (std::exchange(nested, true))
            return;
        if (inAnnouncement) {
            // What this loop delivers must not take the announced animation for one that has stopped.
            QCoreApplication::processEvents();
        } else {
            queue.AddAnimation(second);
            queue.AddAnimation(third);
            QTRY_COMPARE(finished.count(), 1);
        }
    };
    if (!inAnnouncement)
        connect(first, &QAbstractAnimation::stateChanged, this, runLoop);
    queue.AddAnimation(first);
    if (inAnnouncement) {
        queue.AddAnimation(second);
        queue.AddAnimation(third);
        connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, this, runLoop);
    }
    QTRY_COMPARE(finished.count(), 1);
    QTRY_VERIFY(!last);
    QCOMPARE(ends, 3);
    QVERIFY(nested);
}

UNIPROG_TEST_MAIN(tst_UtilsSequentialAnimation_reentry)
#include "tst_utilssequentialanimation_reentry.moc"
