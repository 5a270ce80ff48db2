#ifndef PROGRESSPAGE_H
#define PROGRESSPAGE_H

#include "../GalleryPage.h"

class UtilsProgressBar;
class WaitingSpinnerWidget;

/// Progress bars and spinners.
class ProgressPage : public GalleryPage
{
    Q_OBJECT

public:
    ProgressPage(EventMonitor *monitor, QWidget *parent);
    ~ProgressPage() override;

private:
    Q_DISABLE_COPY_MOVE(ProgressPage)

    void glideTo(int value);
    void toggleSpinners();
    void countDown();

    QList<UtilsProgressBar *> m_bars;
    QList<WaitingSpinnerWidget *> m_spinners;
    QList<WaitingSpinnerWidget *> m_countdowns;
};

#endif // PROGRESSPAGE_H
