#ifndef UTILSFADE_H
#define UTILSFADE_H

#include "uniprogutils_export.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class QGraphicsOpacityEffect;
class QPropertyAnimation;
class QWidget;
class UtilsSequentialAnimation;

/// Fades one widget in or out by animating the opacity of a graphics effect. Fades asked for while one is running are
/// played after it.
///
/// Thread: GUI thread only. Ownership: the fade has no parent; it belongs to whoever creates it, or to nobody once
/// SelfDestroyEnabled(true) was called. Widget and receiver are not owned and may die first. The widget owns the
/// opacity effect. A widget has one graphics effect: creating a second fade for it, or setting another effect, ends the
/// fades that are running or waiting here, without "finished" for the receiver.
///
///     auto *fade = new UtilsFade(page, this, 150, 150);
///     fade->SelfDestroyEnabled(true);
///     fade->Out(SLOT(slotPageHidden()));
class UNIPROGUTILS_EXPORT UtilsFade : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsFade)

public:
    /// Gives \a widget an opacity effect, fully opaque until the first fade starts. \a receiver (may be null) has the
    /// slots that In() and Out() name. Durations are in milliseconds.
    UtilsFade(QWidget *widget, QObject *receiver, int inDuration, int outDuration);
    /// Leaves the effect to the widget. A fade that is running runs on to its end, waiting ones are dropped.
    ~UtilsFade() override;

    /// Queues a fade from the minimum to the maximum opacity. \a slot is null or a slot of the receiver as written by
    /// SLOT(); it is called when this fade reaches its end, but not for an in-duration of 0 with nothing else queued:
    /// such a fade has ended before the slot is connected.
    void In(const char *slot);
    /// Queues a fade from the maximum to the minimum opacity; \a slot as for In().
    void Out(const char *slot);

    /// Milliseconds, for fades queued afterwards.
    void SetInDuration(int duration);
    void SetOutDuration(int duration);

    /// Sets where a fade-in starts and a fade-out ends (\a minimum, initially 0.0), and where a fade-in ends and
    /// a fade-out starts (\a maximum, initially 1.0), for fades queued afterwards.
    void SetOpacity(double minimum, double maximum);

    /// When on, the fade deletes itself after its last queued fade has ended. Initially off.
    void SelfDestroyEnabled(bool enabled);

    /// Empties the queue: a fade that is running runs on to its end, waiting ones are dropped. Nothing is reported to
    /// this object, so self-destroy waits for the next fade.
    void ClearAnimationList();

public Q_SLOTS:
    /// The last queued fade has ended: schedules the deletion of this object when self-destroy is on.
    void SlotAllAnimationsFinished();

private:
    void addFade(int duration, double from, double to, const char *slot);

    QPointer<QObject> receiver;
    int inDuration;
    int outDuration;
    double maximumOpacity = 1.0;
    double minimumOpacity = 0.0;
    bool selfDestroy = false;
    QPointer<QWidget> widget;
    QPointer<QGraphicsOpacityEffect> opacityEffect;
    std::unique_ptr<UtilsSequentialAnimation> queue;

    QList<QPointer<QPropertyAnimation>> animations; // made here, not deleted yet
};

#endif // UTILSFADE_H
