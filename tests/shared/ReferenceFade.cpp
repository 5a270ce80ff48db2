#include "ReferenceFade.h"

#include <QEasingCurve>
#include <QGraphicsOpacityEffect>

namespace {

constexpr double Rounding = 0.0001;

} // namespace

ReferenceFade::ReferenceFade(QGraphicsOpacityEffect *faded, double from, double to, int duration)
    : effect(faded)
{
    animation.setStartValue(from);
    animation.setEndValue(to);
    animation.setDuration(duration);
    animation.setEasingCurve(QEasingCurve::InOutQuad);
    QObject::connect(&animation, &QVariantAnimation::valueChanged, &animation,
                     [this](const QVariant &value) { compare(value.toDouble()); });
    animation.start();
}

bool ReferenceFade::hasEnded() const
{
    return animation.state() == QAbstractAnimation::Stopped;
}

bool ReferenceFade::agrees() const
{
    return furthestApart < Rounding;
}

void ReferenceFade::compare(double expected)
{
    if (effect)
        furthestApart = qMax(furthestApart, qAbs(effect->opacity() - expected));
}
