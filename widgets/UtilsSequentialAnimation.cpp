#include "UtilsSequentialAnimation.h"

#include <QPropertyAnimation>

UtilsSequentialAnimation::UtilsSequentialAnimation() = default;

UtilsSequentialAnimation::~UtilsSequentialAnimation()
{
    DestroyAllAnimations();
}

void UtilsSequentialAnimation::AddAnimation(QPropertyAnimation *animation)
{
    // The connection stands exactly as long as the entry does, so a second one means a second entry.
    if (!animation
        || !connect(animation, &QObject::destroyed, this, &UtilsSequentialAnimation::entryDestroyed,
                    Qt::UniqueConnection)) {
        return;
    }
    queue.append(animation);
    connect(animation, SIGNAL(finished()), this, SLOT(SlotAnimationFinished()));
    connect(animation, &QAbstractAnimation::stateChanged, this, &UtilsSequentialAnimation::entryStateChanged);
    finishedIsOwed = true;
    if (queue.size() == 1)
        startFirst();
}

void UtilsSequentialAnimation::DestroyAllAnimations()
{
    while (!queue.isEmpty())
        dropEntry(0);
    finishedIsOwed = false;
}

int UtilsSequentialAnimation::NumberOfWaitingAnimations() const
{
    return int(queue.size());
}

void UtilsSequentialAnimation::SlotAnimationFinished()
{
    qsizetype index = 0;
    // The sender is asked for only when it matters: Qt searches all connections of this object for it.
    if (!firstHasStopped()) {
        const QObject *animation = sender();
        while (animation && index < queue.size() && queue.at(index) != animation)
            ++index;
    }
    if (index < queue.size())
        dropEntry(index);
    startFirst();
}

// An animation says finished() only when it reaches its end. One that stops before, because it or its target dies, says
// no more than this. What follows waits for the event loop: when this comes before finished(), that goes first, and who
// deletes the targets and then empties the queue hears nothing of the entries that died on the way.
void UtilsSequentialAnimation::entryStateChanged(QAbstractAnimation::State newState)
{
    if (newState == QAbstractAnimation::Stopped)
        scheduleAdvance();
}

void UtilsSequentialAnimation::entryDestroyed()
{
    for (qsizetype index = 0; index < queue.size(); ++index) {
        if (!queue.at(index)) {
            dropEntry(index);
            scheduleAdvance(); // one whose signals are blocked has said nothing before
            return;
        }
    }
}

void UtilsSequentialAnimation::scheduleAdvance()
{
    if (advanceIsScheduled)
        return;
    advanceIsScheduled = true;
    QMetaObject::invokeMethod(this, &UtilsSequentialAnimation::advance, Qt::QueuedConnection);
}

void UtilsSequentialAnimation::advance()
{
    advanceIsScheduled = false;
    // A start() that is still on the stack has an event loop running inside it and cannot go on by itself.
    insideStart = false;
    if (firstHasStopped())
        dropEntry(0);
    startFirst();
}

bool UtilsSequentialAnimation::firstHasStopped() const
{
    const QPropertyAnimation *first = queue.value(0);
    return first && firstEntry == Started && first->state() == QAbstractAnimation::Stopped;
}

// Starts the first entry unless it runs already, and says so when there is none. An animation of duration 0 finishes
// inside start(); it comes back here through SlotAnimationFinished(), and the loop goes on instead of the recursion.
void UtilsSequentialAnimation::startFirst()
{
    if (insideStart)
        return;
    const QPointer<UtilsSequentialAnimation> self(this);
    while (!queue.isEmpty() && firstEntry == Waiting) {
        const QPointer<QPropertyAnimation> next = queue.constFirst();
        if (!next || !next->targetObject()) {
            dropEntry(0);
            if (next)
                next->deleteLater(); // it never starts, so it would never delete itself
            continue;
        }
        firstEntry = Announced;
        Q_EMIT SignalNewAnimationStarts();
        if (!self)
            return;
        if (!next || firstEntry != Announced || queue.constFirst() != next)
            continue;
        firstEntry = Started;
        insideStart = true;
        next->start(QAbstractAnimation::DeleteWhenStopped);
        if (!self)
            return;
        insideStart = false;
    }
    if (queue.isEmpty() && finishedIsOwed) {
        finishedIsOwed = false;
        Q_EMIT SignalAllAnimationsFinished();
    }
}

void UtilsSequentialAnimation::dropEntry(qsizetype index)
{
    const QPointer<QPropertyAnimation> animation = queue.takeAt(index);
    if (animation)
        animation->disconnect(this);
    if (index == 0)
        firstEntry = Waiting;
}
