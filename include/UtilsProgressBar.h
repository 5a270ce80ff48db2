#ifndef UTILSPROGRESSBAR_H
#define UTILSPROGRESSBAR_H

#include "uniprogutils_export.h"

#include <QPointer>
#include <QProgressBar>

class QPropertyAnimation;
class UtilsSequentialAnimation;

/// A progress bar that glides from value to value and tells the style sheet whether it shows progress or is busy.
///
/// \image html progress.png
///
/// Its dynamic property "progressbar-type" is "regular" or, while the range is 0 to 0, "infinite"; a style sheet
/// selects on it:
///
///     UtilsProgressBar[progressbar-type="regular"]::chunk { background: #35c26a; }
///     UtilsProgressBar[progressbar-type="infinite"]::chunk { background: #3584e4; }
///
/// setRange() and setValue() hide the operations of QProgressBar, which are not virtual: through a QProgressBar
/// pointer, or a connection made by name, the plain ones are called, which neither glide nor change the type.
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *bar = new UtilsProgressBar(this);
///     bar->setRange(0, 0);   // busy
///     bar->setRange(0, 100);
///     bar->setValue(40);     // glides from 0 to 40
class UNIPROGUTILS_EXPORT UtilsProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    /// A regular bar of range 0 to 100 that stands at 0 and takes 100 ms for a change of its value.
    explicit UtilsProgressBar(QWidget *parent = nullptr);
    ~UtilsProgressBar() override;

    /// How long the changes requested from now on take, in milliseconds; those already queued keep their time.
    /// 0 makes them immediate; more than an int holds counts as its largest value.
    void setAnimationDuration(unsigned int ms);

    /// Sets the range, and the type by it: busy for 0 to 0, regular for every other range. A value outside the new
    /// range resets the bar, as with a QProgressBar.
    void setRange(int minimum, int maximum);

    /// Lets the bar glide to \a value, from the value requested last (0 at first), after the changes requested before:
    /// none is dropped. A change to 0 takes 1 ms, so that a bar which starts anew is empty at once. Values outside the
    /// range are not shown.
    void setValue(int value);

private:
    Q_DISABLE_COPY_MOVE(UtilsProgressBar)

    QPointer<QPropertyAnimation> currentAnimation; ///< of the value requested last; deletes itself when it has run
    UtilsSequentialAnimation *animationQueue;
    qint32 lastTargetValue = 0;
    quint32 animationDuration;
};

#endif // UTILSPROGRESSBAR_H
