#include "UtilsFade.h"

#include "UtilsSequentialAnimation.h"

#include <QEasingCurve>
#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QWidget>

#include <utility>

UtilsFade::UtilsFade(QWidget *fadedWidget, QObject *slotOwner, int inMilliseconds, int outMilliseconds)
    : receiver(slotOwner)
    , inDuration(inMilliseconds)
    , outDuration(outMilliseconds)
    , widget(fadedWidget)
    , queue(std::make_unique<UtilsSequentialAnimation>())
{
    if (widget) {
        opacityEffect = new QGraphicsOpacityEffect(widget);
        opacityEffect->setOpacity(maximumOpacity); // Qt begins with 0.7, which would show at once
        widget->setGraphicsEffect(opacityEffect);
    }
    connect(queue.get(), SIGNAL(SignalAllAnimationsFinished()), this, SLOT(SlotAllAnimationsFinished()));
}

UtilsFade::~UtilsFade()
{
    ClearAnimationList();
    opacityEffect.clear();
}

void UtilsFade::In(const char *slot)
{
    addFade(inDuration, minimumOpacity, maximumOpacity, slot);
}

void UtilsFade::Out(const char *slot)
{
    addFade(outDuration, maximumOpacity, minimumOpacity, slot);
}

void UtilsFade::SetInDuration(int duration)
{
    inDuration = duration;
}

void UtilsFade::SetOutDuration(int duration)
{
    outDuration = duration;
}

void UtilsFade::SetOpacity(double minimum, double maximum)
{
    minimumOpacity = minimum;
    maximumOpacity = maximum;
}

void UtilsFade::SelfDestroyEnabled(bool enabled)
{
    selfDestroy = enabled;
}

void UtilsFade::ClearAnimationList()
{
    queue->DestroyAllAnimations();
    // The queue deletes nothing, and an animation that never starts never deletes itself.
    for (const QPointer<QPropertyAnimation> &animation : std::exchange(animations, {})) {
        if (animation && animation->state() == QAbstractAnimation::Stopped)
            animation->deleteLater();
    }
}

void UtilsFade::SlotAllAnimationsFinished()
{
    if (selfDestroy)
        deleteLater();
}

void UtilsFade::addFade(int duration, double from, double to, const char *slot)
{
    const QPointer<QPropertyAnimation> animation = new QPropertyAnimation(opacityEffect, "opacity");
    animation->setDuration(duration);
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    animations.removeIf([](const QPointer<QPropertyAnimation> &made) { return made.isNull(); });
    animations.append(animation);

    // The queue's slot stands before the receiver's: the next fade has started when the receiver hears of this one.
    const QPointer<QObject> slotOwner = receiver; // who hears of the opacity may delete this object in the first step
    queue->AddAnimation(animation);
    if (animation && slotOwner && slot)
        connect(animation, SIGNAL(finished()), slotOwner, slot);
}
