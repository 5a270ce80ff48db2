#include "ProgressPage.h"

#include "../EventMonitor.h"

#include <UtilsProgressBar.h>
#include <WaitingSpinnerWidget.h>

namespace {

constexpr int Part = 40; // percent
constexpr int Full = 100;
constexpr int Seconds = 30;
constexpr unsigned int GlideDuration = 400; // milliseconds
constexpr int ThickLine = 6;
constexpr int ThickLineLength = 6;
constexpr int ThinBar = 6; // pixels

UtilsProgressBar *newBar(int value, EventMonitor *monitor, QWidget *parent)
{
    auto *bar = new UtilsProgressBar(parent);
    bar->setAnimationDuration(0);
    bar->setValue(value);
    bar->setAnimationDuration(GlideDuration);
    monitor->watch(bar, &UtilsProgressBar::valueChanged, QStringLiteral("valueChanged"));
    return bar;
}

/// A spinner is hidden until it is started, and takes no place in a layout then.
WaitingSpinnerWidget *newSpinner(QWidget *parent)
{
    auto *spinner = new WaitingSpinnerWidget(parent, false, false);
    spinner->start();
    return spinner;
}

} // namespace

ProgressPage::ProgressPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Empty"), [this](QWidget *page) { return newBar(0, monitor(), page); });
    addSample(tr("In part"), [this](QWidget *page) {
        UtilsProgressBar *bar = newBar(Part, monitor(), page);
        m_bars.append(bar);
        return bar;
    });
    addSample(tr("Full"), [this](QWidget *page) { return newBar(Full, monitor(), page); });
    addSample(tr("Busy"), [this](QWidget *page) {
        UtilsProgressBar *bar = newBar(0, monitor(), page);
        bar->setRange(0, 0);
        return bar;
    });
    addSample(tr("Thin"), [this](QWidget *page) {
        UtilsProgressBar *bar = newBar(Part, monitor(), page);
        bar->setTextVisible(false);
        bar->setFixedHeight(ThinBar);
        return bar;
    });
    addSample(tr("Spinner"), [this](QWidget *page) {
        WaitingSpinnerWidget *spinner = newSpinner(page);
        m_spinners.append(spinner);
        return spinner;
    });
    addSample(tr("Countdown"), [this](QWidget *page) {
        WaitingSpinnerWidget *spinner = newSpinner(page);
        spinner->setCountdown(Seconds); // which stands still until the next start
        m_countdowns.append(spinner);
        return spinner;
    });
    addSample(tr("Thick lines"), [](QWidget *page) {
        WaitingSpinnerWidget *spinner = newSpinner(page);
        spinner->setLineWidth(ThickLine);
        spinner->setLineLength(ThickLineLength);
        return spinner;
    });

    addButton(tr("Glide to 100"), [this] { glideTo(Full); });
    addButton(tr("Glide to 40"), [this] { glideTo(Part); });
    addButton(tr("Spinner on/off"), [this] { toggleSpinners(); });
    addButton(tr("Count down"), [this] { countDown(); });
}

ProgressPage::~ProgressPage() = default;

void ProgressPage::glideTo(int value)
{
    for (UtilsProgressBar *bar : std::as_const(m_bars))
        bar->setValue(value);
}

void ProgressPage::toggleSpinners()
{
    for (WaitingSpinnerWidget *spinner : std::as_const(m_spinners)) {
        if (spinner->isSpinning())
            spinner->stop();
        else
            spinner->start();
    }
}

void ProgressPage::countDown()
{
    for (WaitingSpinnerWidget *spinner : std::as_const(m_countdowns)) {
        spinner->stop();
        spinner->setCountdown(Seconds);
        spinner->start();
    }
}
