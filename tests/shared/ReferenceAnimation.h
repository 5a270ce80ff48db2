#ifndef REFERENCEANIMATION_H
#define REFERENCEANIMATION_H

#include <QByteArray>
#include <QEasingCurve>
#include <QPointer>
#include <QVariantAnimation>

/// Goes side by side with an animation of a property that starts in the same turn of the event loop, as slowly and as
/// evenly as that one is meant to go. One clock drives all animations, so the two are never apart, however slow the
/// machine is.
///
///     fade.In(nullptr);
///     ReferenceAnimation reference(effect, "opacity", 0.0, 1.0, 200);
///     QTRY_VERIFY(reference.hasEnded());
///     QVERIFY(reference.agrees());
class ReferenceAnimation
{
public:
    /// \a from and \a to have the type of the property.
    ReferenceAnimation(QObject *animated, const char *property, const QVariant &from, const QVariant &to, int duration,
                       QEasingCurve::Type easing = QEasingCurve::InOutQuad);

    bool hasEnded() const;
    /// Whether the property has never been elsewhere when it was looked at. A machine that is busy looks seldom.
    bool agrees() const;

private:
    void compare(double expected);

    QPointer<QObject> object;
    QByteArray propertyName;
    QVariantAnimation animation;
    double furthestApart = 0.0;
};

#endif // REFERENCEANIMATION_H
