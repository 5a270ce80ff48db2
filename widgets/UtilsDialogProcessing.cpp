#include "UtilsDialogProcessing.h"

#include "UtilsDialogProcessingContent.h"
#include "UtilsLogger.h"
#include "UtilsProgressBar.h"

#include <QKeyEvent>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int CloseDelay = 1000; // milliseconds between the last line of a success and the end of the dialog
constexpr int FullProgress = 100; // percent

} // namespace

UtilsDialogProcessing::UtilsDialogProcessing(QWidget *parent, bool *autoClose)
    : UtilsDialogFrame(parent)
    , autoCloseFlag(autoClose)
{
    disableInputControls();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

    content = new UtilsDialogProcessingContent(this);
    content->getProgressBar()->setRange(0, 0);
    content->getProgressBar()->setValue(0);
    connect(content->getButton(), &QToolButton::clicked, this, &UtilsDialogProcessing::slotClose);
    setContent(content);
}

UtilsDialogProcessing::~UtilsDialogProcessing() = default;

void UtilsDialogProcessing::setMessage(QString message)
{
    content->setMessage(message);
}

void UtilsDialogProcessing::enableShowingSuccessfulProcess(bool enable)
{
    showSuccessfulProcess = enable;
}

bool UtilsDialogProcessing::shouldShowResult() const
{
    return showSuccessfulProcess || procedureStatus != 0 || (autoCloseFlag && !*autoCloseFlag);
}

void UtilsDialogProcessing::errorHandler()
{
    showResult();
}

void UtilsDialogProcessing::slotLoggerAnimationsCompleted()
{
    content->getProgressBar()->setRange(0, FullProgress);
    content->getProgressBar()->setValue(0);
    if (shouldShowResult()) {
        showResult();
        return;
    }
    if (!closeTimer) {
        closeTimer = new QTimer(this);
        connect(closeTimer, &QTimer::timeout, this, &UtilsDialogProcessing::slotClose);
    }
    closeTimer->start(CloseDelay); // anew when a line came late: the user sees the last one for this long
}

void UtilsDialogProcessing::slotClose()
{
    handleClick(&UtilsDialogFrame::reject); // the Close button is connected to this slot
}

void UtilsDialogProcessing::slotUpdateProgressbar(int percent)
{
    if (percent < 0) {
        content->getProgressBar()->setRange(0, 0);
        content->getProgressBar()->setValue(0);
    } else {
        content->getProgressBar()->setRange(0, FullProgress);
        content->getProgressBar()->setValue(percent);
    }
}

void UtilsDialogProcessing::slotUpdateLog(QString message, LOGGER_MESSAGE_TYPE messageType)
{
    content->getLogger()->addMessage(message, messageType);
}

void UtilsDialogProcessing::slotProcedureCompleted(int status, QString errorMessage)
{
    Q_UNUSED(errorMessage) // the log has it
    procedureStatus = status;
    if (content->getLogger()->isAllAnimationsCompleted()) {
        slotLoggerAnimationsCompleted();
        return;
    }
    // Made anew at every call and never removed: the end is handled each time the log has shown its last line.
    connect(content->getLogger(), &UtilsLogger::signalLoggerAnimationsCompleted, this,
            &UtilsDialogProcessing::slotLoggerAnimationsCompleted);
}

// A dialog that was about to close by itself stays: the user has something to read now.
void UtilsDialogProcessing::showResult()
{
    if (closeTimer)
        closeTimer->stop();
    closeAllowed = true;
    content->expandButton();
}

void UtilsDialogProcessing::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    if (event->key() == Qt::Key_Escape && closeAllowed)
        reject();
}
