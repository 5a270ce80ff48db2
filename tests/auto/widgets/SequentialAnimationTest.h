#ifndef SEQUENTIALANIMATIONTEST_H
#define SEQUENTIALANIMATIONTEST_H

#include <UtilsSequentialAnimation.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QPropertyAnimation>
#include <QSignalSpy>

// What the tests of UtilsSequentialAnimation share.
namespace SequentialAnimationTest {

constexpr int Short = 20; // ms
constexpr int Endless = 600'000; // ms, longer than any test

/// What the animations write to. A set value is of no interest, only who is running.
class Target : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int value MEMBER value)

public:
    int value = 0;
};

inline QPropertyAnimation *makeAnimation(QObject *target, int duration, QObject *parent = nullptr)
{
    auto *animation = new QPropertyAnimation(target, "value", parent);
    animation->setStartValue(0);
    animation->setEndValue(10);
    animation->setDuration(duration);
    return animation;
}

} // namespace SequentialAnimationTest

#endif // SEQUENTIALANIMATIONTEST_H
