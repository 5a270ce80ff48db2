#include "UtilsProgressBar.h"

#include "UtilsMisc.h"
#include "UtilsSequentialAnimation.h"

#include <QPropertyAnimation>
#include <QVariant>

#include <limits>
#include <utility>

namespace {

constexpr unsigned int DefaultDuration = 100;
constexpr unsigned int ResetDuration = 1; ///< of a change to 0: a bar that starts anew does not run backwards first
constexpr unsigned int MaximumDuration = std::numeric_limits<int>::max(); ///< an animation takes no more

constexpr char TypeProperty[] = "progressbar-type";
constexpr char RegularType[] = "regular";
constexpr char InfiniteType[] = "infinite";

} // namespace

UtilsProgressBar::UtilsProgressBar(QWidget *parent)
    : QProgressBar(parent)
    , animationQueue(new UtilsSequentialAnimation)
    , animationDuration(DefaultDuration)
{
    QProgressBar::setValue(0); // a fresh QProgressBar stands below its minimum
    setProperty(TypeProperty, RegularType);
}

UtilsProgressBar::~UtilsProgressBar()
{
    delete animationQueue;
}

void UtilsProgressBar::setAnimationDuration(unsigned int ms)
{
    animationDuration = ms;
}

void UtilsProgressBar::setRange(int minimum, int maximum)
{
    // The style is told first: a style sheet that knows the new type lays the bar out only once.
    UtilsMisc::SetProperty(this, TypeProperty, minimum == 0 && maximum == 0 ? InfiniteType : RegularType);
    update();
    QProgressBar::setRange(minimum, maximum);
}

void UtilsProgressBar::setValue(int value)
{
    const unsigned int duration = value != 0 ? animationDuration : ResetDuration;

    // The animation drives the property of QProgressBar, not this function.
    currentAnimation = new QPropertyAnimation(this, "value");
    currentAnimation->setDuration(int(qMin(duration, MaximumDuration)));
    // The value counts as requested before it is shown: whoever hears of it may request the next one.
    currentAnimation->setStartValue(std::exchange(lastTargetValue, value));
    currentAnimation->setEndValue(value);
    // An animation that has started deletes itself; one that still waits when the bar goes has nobody else.
    connect(this, &QObject::destroyed, currentAnimation, &QObject::deleteLater);
    animationQueue->AddAnimation(currentAnimation);
}
