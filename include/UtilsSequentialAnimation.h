#ifndef UTILSSEQUENTIALANIMATION_H
#define UTILSSEQUENTIALANIMATION_H

#include "uniprogutils_export.h"

#include <QAbstractAnimation>
#include <QList>
#include <QObject>
#include <QPointer>

class QPropertyAnimation;

/// A queue that runs property animations strictly one after another and says when it has run dry. Use it where several
/// changes must be seen in order, such as the lines of a log. QSequentialAnimationGroup is the better choice for
/// a fixed sequence that is known before it starts.
///
/// Thread: GUI thread only. Ownership: the queue has no parent and belongs to whoever creates it. It does not own the
/// animations; each one is started with QAbstractAnimation::DeleteWhenStopped and deletes itself. An animation that is
/// stopped early, or that dies, or whose target dies, never blocks the queue: the next one is started from the event
/// loop. One whose target is gone before its turn comes is skipped and deleted. The queue may be deleted, emptied or
/// refilled inside its own signals and inside those of its animations.
///
///     auto *slide = new QPropertyAnimation(panel, "pos");
///     slide->setEndValue(QPoint(0, 0));
///     queue->AddAnimation(slide);   // starts at once when the queue was idle
class UNIPROGUTILS_EXPORT UtilsSequentialAnimation : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsSequentialAnimation)

public:
    /// An idle queue without parent.
    UtilsSequentialAnimation();
    /// Does what DestroyAllAnimations() does.
    ~UtilsSequentialAnimation() override;

    /// Appends \a animation and connects its finished() to SlotAnimationFinished(). In an idle queue it starts at once,
    /// after SignalNewAnimationStarts(); otherwise it waits for its turn. An animation of duration 0 ends inside this
    /// call. Null, and an animation that stands in the queue already, are ignored.
    void AddAnimation(QPropertyAnimation *animation);

    /// Forgets all entries and is idle then; no signal is emitted. Nothing is stopped or deleted: the running animation
    /// runs on, unheard, and the waiting ones are left to their owner. Callers delete the targets first.
    void DestroyAllAnimations();

    /// Length of the queue, the running animation included; 0 when idle.
    int NumberOfWaitingAnimations() const;

public Q_SLOTS:
    /// Drops the entry that sent finished() (the first one when called without a sender) and starts the next one after
    /// SignalNewAnimationStarts(), or emits SignalAllAnimationsFinished() when none is left. Does nothing on an idle
    /// queue and for a sender that stands in the queue no more.
    void SlotAnimationFinished();

Q_SIGNALS:
    /// The last entry has gone. Emitted once each time the queue runs dry, but not by DestroyAllAnimations().
    void SignalAllAnimationsFinished();
    /// The first entry is about to be started.
    void SignalNewAnimationStarts();

private:
    void entryStateChanged(QAbstractAnimation::State newState);
    void entryDestroyed();
    void scheduleAdvance();
    void advance();
    bool firstHasStopped() const;
    void startFirst();
    void dropEntry(qsizetype index);

    QList<QPointer<QPropertyAnimation>> queue;
    enum { Waiting, Announced, Started } firstEntry = Waiting; // how far this queue has come with the first entry
    bool insideStart = false; // start() of the first entry is on the stack
    bool finishedIsOwed = false; // entries came since the last SignalAllAnimationsFinished()
    bool advanceIsScheduled = false;
};

#endif // UTILSSEQUENTIALANIMATION_H
