#include "SequentialAnimationTest.h"

using namespace SequentialAnimationTest;

static /// What is left to hear of it is that it was destroyed.
    void
    stopInSilence(QPropertyAnimation *animation)
{
    animation->blockSignals(true);
    animation->stop();
}

class tst_UtilsSequentialAnimation : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewQueueIsIdle();
    void anAnimationAddedToAnIdleQueueStartsAtOnce();
    void threeAnimationsRunOneAfterAnother();
    void theStartIsAnnouncedBeforeTheAnimationRuns();
    void theNextAnimationHasStartedWhenLaterReceiversHearOfTheEnd();
    void theQueueCanBeUsedAgainAfterItRanDry();
    void aFinishedAnimationDeletesItself();

    void anAnimationOfDurationZeroEndsInsideTheCall();
    void manyAnimationsOfDurationZeroDoNotOverflowTheStack();

    void destroyAllAnimationsForgetsWithoutASignal();
    void destroyAllAnimationsNeitherStopsNorDeletes();
    void deletedTargetsAreNotReportedAfterTheQueueWasEmptied();
    void theDestructorLeavesTheAnimationsAlone();

    void theQueueGoesOn_data();
    void theQueueGoesOn();
    void aWaitingAnimationWhoseTargetDiedIsSkippedAndDeleted();
    void aDeletedWaitingAnimationLeavesTheQueueAtOnce();
    void anAnimationWithoutTargetIsSkipped();

    void nullIsIgnored();
    void anAnimationAddedTwiceStandsInTheQueueOnce();
    void aWaitingAnimationThatEndsByItselfIsTheOneThatLeaves();

    void theSlotOnAnIdleQueueDoesNothing();
    void theSlotWithoutASenderDropsTheFirstEntry();
    void aForgottenAnimationDropsNothing();
    void aForgottenAnimationMayBeQueuedAgain();
    void aForgottenAnimationThatEndsInsideTheAnnouncementDropsNothing();
};

void tst_UtilsSequentialAnimation::aNewQueueIsIdle()
{
    UtilsSequentialAnimation queue;
    QCOMPARE(queue.parent(), nullptr);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    queue.DestroyAllAnimations();
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
}

void tst_UtilsSequentialAnimation::anAnimationAddedToAnIdleQueueStartsAtOnce()
{
    Target target;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *first = makeAnimation(&target, Endless, &target);
    QPropertyAnimation *second = makeAnimation(&target, Endless, &target);

    queue.AddAnimation(first);
    QCOMPARE(first->state(), QAbstractAnimation::Running);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1); // the running one counts

    queue.AddAnimation(second);
    QCOMPARE(second->state(), QAbstractAnimation::Stopped);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 2);
}

void tst_UtilsSequentialAnimation::threeAnimationsRunOneAfterAnother()
{
    Target target;
    UtilsSequentialAnimation queue;
    QStringList log;
    connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, this, [&log] { log << "starts"; });
    connect(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished, this, [&log] { log << "all finished"; });
    for (const char *name : {"a", "b", "c"}) {
        QPropertyAnimation *animation = makeAnimation(&target, Short);
        connect(animation, &QAbstractAnimation::stateChanged, this, [&log, name](QAbstractAnimation::State state) {
            log << QString::fromLatin1(name) + (state == QAbstractAnimation::Running ? " runs" : " stops");
        });
        queue.AddAnimation(animation);
    }
    QCOMPARE(queue.NumberOfWaitingAnimations(), 3);
    QTRY_COMPARE(queue.NumberOfWaitingAnimations(), 0);
    const QStringList expected{"starts",  "a runs", "a stops", "starts",  "b runs",
                               "b stops", "starts", "c runs",  "c stops", "all finished"};
    QCOMPARE(log, expected);
    QCoreApplication::processEvents();
    QCOMPARE(log, expected);
}

void tst_UtilsSequentialAnimation::theStartIsAnnouncedBeforeTheAnimationRuns()
{
    Target target;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *animation = makeAnimation(&target, Endless, &target);
    bool announced = false;
    connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, this, [&] {
        announced = true;
        QCOMPARE(animation->state(), QAbstractAnimation::Stopped);
        QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    });
    queue.AddAnimation(animation);
    QVERIFY(announced);
}

void tst_UtilsSequentialAnimation::theNextAnimationHasStartedWhenLaterReceiversHearOfTheEnd()
{
    Target target;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *first = makeAnimation(&target, Short);
    QPropertyAnimation *second = makeAnimation(&target, Endless, &target);
    QAbstractAnimation::State before = QAbstractAnimation::Paused;
    QAbstractAnimation::State after = QAbstractAnimation::Paused;
    connect(first, &QAbstractAnimation::finished, this, [&] { before = second->state(); });
    queue.AddAnimation(first);
    queue.AddAnimation(second);
    connect(first, &QAbstractAnimation::finished, this, [&] { after = second->state(); });
    QTRY_COMPARE(after, QAbstractAnimation::Running);
    QCOMPARE(before, QAbstractAnimation::Stopped);
}

void tst_UtilsSequentialAnimation::theQueueCanBeUsedAgainAfterItRanDry()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    for (int round = 1; round <= 3; ++round) {
        queue.AddAnimation(makeAnimation(&target, Short));
        QTRY_COMPARE(finished.count(), round);
        QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    }
}

void tst_UtilsSequentialAnimation::aFinishedAnimationDeletesItself()
{
    Target target;
    UtilsSequentialAnimation queue;
    const QPointer<QPropertyAnimation> animation = makeAnimation(&target, Short);
    queue.AddAnimation(animation);
    QTRY_VERIFY(!animation);
}

void tst_UtilsSequentialAnimation::anAnimationOfDurationZeroEndsInsideTheCall()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.AddAnimation(makeAnimation(&target, 0));
    QCOMPARE(target.value, 10);
    QCOMPARE(starts.count(), 1);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(finished.count(), 1);
}

void tst_UtilsSequentialAnimation::manyAnimationsOfDurationZeroDoNotOverflowTheStack()
{
    constexpr int Count = 50'000; // deep enough for any stack, were they to start one another
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.AddAnimation(makeAnimation(&target, Short));
    for (int i = 0; i < Count; ++i)
        queue.AddAnimation(makeAnimation(&target, 0));
    QCOMPARE(queue.NumberOfWaitingAnimations(), Count + 1);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(starts.count(), Count + 1);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
}

void tst_UtilsSequentialAnimation::destroyAllAnimationsForgetsWithoutASignal()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    const QPointer<QPropertyAnimation> running = makeAnimation(&target, Short);
    queue.AddAnimation(running);
    queue.AddAnimation(makeAnimation(&target, Short, &target));
    queue.DestroyAllAnimations();
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QTRY_VERIFY(!running);
    QCOMPARE(starts.count(), 1);
    QCOMPARE(finished.count(), 0);
}

void tst_UtilsSequentialAnimation::destroyAllAnimationsNeitherStopsNorDeletes()
{
    Target target;
    UtilsSequentialAnimation queue;
    const QPointer<QPropertyAnimation> running = makeAnimation(&target, Endless, &target);
    const QPointer<QPropertyAnimation> waiting = makeAnimation(&target, Endless, &target);
    queue.AddAnimation(running);
    queue.AddAnimation(waiting);
    queue.DestroyAllAnimations();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QVERIFY(running && waiting);
    QCOMPARE(running->state(), QAbstractAnimation::Running);
    QCOMPARE(waiting->state(), QAbstractAnimation::Stopped);
}

void tst_UtilsSequentialAnimation::deletedTargetsAreNotReportedAfterTheQueueWasEmptied()
{
    auto *targets = new QObject;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    for (int i = 0; i < 3; ++i) {
        auto *target = new Target;
        target->setParent(targets);
        queue.AddAnimation(makeAnimation(target, Endless, target));
    }
    delete targets;
    queue.DestroyAllAnimations();
    QCoreApplication::processEvents();
    QCOMPARE(starts.count(), 1);
    QCOMPARE(finished.count(), 0);
}

void tst_UtilsSequentialAnimation::theDestructorLeavesTheAnimationsAlone()
{
    Target target;
    const QPointer<QPropertyAnimation> running = makeAnimation(&target, Short);
    const QPointer<QPropertyAnimation> waiting = makeAnimation(&target, Short, &target);
    {
        UtilsSequentialAnimation queue;
        queue.AddAnimation(running);
        queue.AddAnimation(waiting);
    }
    QVERIFY(running && waiting);
    QTRY_VERIFY(!running); // it reached its end unheard
    QCOMPARE(waiting->state(), QAbstractAnimation::Stopped);
}

void tst_UtilsSequentialAnimation::theQueueGoesOn_data()
{
    QTest::addColumn<QString>("accident");
    QTest::addColumn<int>("entry");
    for (const char *accident : {"stopped", "animation deleted", "target deleted", "stopped in silence"}) {
        for (int entry = 0; entry < 3; ++entry)
            QTest::addRow("entry %d %s", entry, accident) << QString::fromLatin1(accident) << entry;
    }
}

void tst_UtilsSequentialAnimation::theQueueGoesOn()
{
    QFETCH(QString, accident);
    QFETCH(int, entry);
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    Target *targets[3];
    QPropertyAnimation *animations[3];
    QObject owner;
    int reachedEnd = 0;
    for (int i = 0; i < 3; ++i) {
        targets[i] = new Target;
        targets[i]->setParent(&owner);
        animations[i] = makeAnimation(targets[i], i == entry ? Endless : Short);
        connect(animations[i], &QAbstractAnimation::finished, this, [&reachedEnd] { ++reachedEnd; });
        queue.AddAnimation(animations[i]);
    }
    QTRY_VERIFY_WITH_TIMEOUT(animations[entry]->state() == QAbstractAnimation::Running, 30'000);
    if (accident == "stopped")
        animations[entry]->stop();
    else if (accident == "animation deleted")
        delete animations[entry];
    else if (accident == "target deleted")
        delete targets[entry];
    else
        stopInSilence(animations[entry]);
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30'000);
    QCOMPARE(reachedEnd, 2);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(finished.count(), 1);
}

void tst_UtilsSequentialAnimation::aWaitingAnimationWhoseTargetDiedIsSkippedAndDeleted()
{
    Target target;
    auto *dying = new Target;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.AddAnimation(makeAnimation(&target, Short));
    const QPointer<QPropertyAnimation> skipped = makeAnimation(dying, Short);
    queue.AddAnimation(skipped);
    queue.AddAnimation(makeAnimation(&target, Short));
    delete dying;
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(starts.count(), 2);
    QTRY_VERIFY(!skipped);
}

void tst_UtilsSequentialAnimation::aDeletedWaitingAnimationLeavesTheQueueAtOnce()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *running = makeAnimation(&target, Endless, &target);
    QPropertyAnimation *waiting = makeAnimation(&target, Endless);
    queue.AddAnimation(running);
    queue.AddAnimation(waiting);
    delete waiting;
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(running->state(), QAbstractAnimation::Running);
    QCOMPARE(finished.count(), 0);
}

void tst_UtilsSequentialAnimation::anAnimationWithoutTargetIsSkipped()
{
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    const QPointer<QPropertyAnimation> animation = makeAnimation(nullptr, Short);
    queue.AddAnimation(animation);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCOMPARE(starts.count(), 0);
    QCOMPARE(finished.count(), 1);
    QTRY_VERIFY(!animation);
}

void tst_UtilsSequentialAnimation::nullIsIgnored()
{
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.AddAnimation(nullptr);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCOMPARE(starts.count() + finished.count(), 0);
}

void tst_UtilsSequentialAnimation::anAnimationAddedTwiceStandsInTheQueueOnce()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy starts(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts);
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *first = makeAnimation(&target, Short);
    QPropertyAnimation *second = makeAnimation(&target, Short);
    queue.AddAnimation(first);
    queue.AddAnimation(second);
    queue.AddAnimation(first);
    queue.AddAnimation(second);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 2);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(starts.count(), 2);
}

void tst_UtilsSequentialAnimation::aWaitingAnimationThatEndsByItselfIsTheOneThatLeaves()
{
    Target target;
    Target other;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *running = makeAnimation(&target, Endless, &target);
    QPropertyAnimation *early = makeAnimation(&other, 0, &other);
    QPropertyAnimation *waiting = makeAnimation(&target, Endless, &target);
    for (QPropertyAnimation *animation : {running, early, waiting})
        queue.AddAnimation(animation);
    early->start();
    QCOMPARE(queue.NumberOfWaitingAnimations(), 2);
    QCOMPARE(running->state(), QAbstractAnimation::Running);
    QCOMPARE(waiting->state(), QAbstractAnimation::Stopped);
}

void tst_UtilsSequentialAnimation::theSlotOnAnIdleQueueDoesNothing()
{
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.SlotAnimationFinished();
    QCOMPARE(finished.count(), 0);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
}

void tst_UtilsSequentialAnimation::theSlotWithoutASenderDropsTheFirstEntry()
{
    Target target;
    Target other;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    QPropertyAnimation *first = makeAnimation(&target, Endless, &target);
    QPropertyAnimation *second = makeAnimation(&other, Endless, &other);
    queue.AddAnimation(first);
    queue.AddAnimation(second);
    queue.SlotAnimationFinished();
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QCOMPARE(second->state(), QAbstractAnimation::Running);
    queue.SlotAnimationFinished();
    QCOMPARE(queue.NumberOfWaitingAnimations(), 0);
    QCOMPARE(finished.count(), 1);
}

void tst_UtilsSequentialAnimation::aForgottenAnimationDropsNothing()
{
    Target target;
    Target other;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *forgotten = makeAnimation(&target, Short);
    const QPointer<QPropertyAnimation> guard = forgotten;
    queue.AddAnimation(forgotten);
    queue.DestroyAllAnimations();
    connect(forgotten, SIGNAL(finished()), &queue, SLOT(SlotAnimationFinished())); // heard again, by hand
    queue.AddAnimation(makeAnimation(&other, Endless, &other));
    QTRY_VERIFY(!guard);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
}

void tst_UtilsSequentialAnimation::aForgottenAnimationMayBeQueuedAgain()
{
    Target target;
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    queue.AddAnimation(makeAnimation(&target, Endless, &target));
    QPropertyAnimation *waiting = makeAnimation(&target, Short);
    queue.AddAnimation(waiting);
    queue.DestroyAllAnimations();
    queue.AddAnimation(waiting);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QCOMPARE(waiting->state(), QAbstractAnimation::Running);
    QTRY_COMPARE(finished.count(), 1);
}

void tst_UtilsSequentialAnimation::aForgottenAnimationThatEndsInsideTheAnnouncementDropsNothing()
{
    Target target;
    Target other;
    UtilsSequentialAnimation queue;
    QPropertyAnimation *stranger = makeAnimation(&other, 0, &other);
    connect(stranger, SIGNAL(finished()), &queue, SLOT(SlotAnimationFinished()));
    connect(&queue, &UtilsSequentialAnimation::SignalNewAnimationStarts, stranger, [stranger] { stranger->start(); });
    QPropertyAnimation *animation = makeAnimation(&target, Endless, &target);
    queue.AddAnimation(animation);
    QCOMPARE(queue.NumberOfWaitingAnimations(), 1);
    QCOMPARE(animation->state(), QAbstractAnimation::Running);
}

UNIPROG_TEST_MAIN(tst_UtilsSequentialAnimation)
#include "tst_utilssequentialanimation.moc"
