#ifndef REFERENCEFADE_H
#define REFERENCEFADE_H

#include <QPointer>
#include <QVariantAnimation>

class QGraphicsOpacityEffect;

/// Goes side by side with a fade that starts in the same turn of the event loop, as slowly and as evenly as that one is
/// meant to go. One clock drives all animations, so the two are never apart, however slow the machine is.
///
///     fade.In(nullptr);
///     ReferenceFade reference(effect, 0.0, 1.0, 200);
///     QTRY_VERIFY(reference.hasEnded());
///     QVERIFY(reference.agrees());
class ReferenceFade
{
public:
    ReferenceFade(QGraphicsOpacityEffect *faded, double from, double to, int duration);

    bool hasEnded() const;
    /// Whether the fade has never been elsewhere when it was looked at. A machine that is busy looks seldom.
    bool agrees() const;

private:
    void compare(double expected);

    QPointer<QGraphicsOpacityEffect> effect;
    QVariantAnimation animation;
    double furthestApart = 0.0;
};

#endif // REFERENCEFADE_H
