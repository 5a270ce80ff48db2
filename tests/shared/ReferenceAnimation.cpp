#include "ReferenceAnimation.h"

#include <QVariant>

namespace {

constexpr double Rounding = 0.0001;

} // namespace

ReferenceAnimation::ReferenceAnimation(QObject *animated, const char *property, const QVariant &from,
                                       const QVariant &to, int duration, QEasingCurve::Type easing)
    : object(animated)
    , propertyName(property)
{
    animation.setStartValue(from);
    animation.setEndValue(to);
    animation.setDuration(duration);
    animation.setEasingCurve(easing);
    QObject::connect(&animation, &QVariantAnimation::valueChanged, &animation,
                     [this](const QVariant &value) { compare(value.toDouble()); });
    animation.start();
}

bool ReferenceAnimation::hasEnded() const
{
    return animation.state() == QAbstractAnimation::Stopped;
}

bool ReferenceAnimation::agrees() const
{
    return furthestApart < Rounding;
}

void ReferenceAnimation::compare(double expected)
{
    if (object)
        furthestApart = qMax(furthestApart, qAbs(object->property(propertyName).toDouble() - expected));
}
