#ifndef UTILSDIALOGPROCESSING_H
#define UTILSDIALOGPROCESSING_H

#include "UtilsDialogFrame.h"
#include "UtilsLoggerMessageType.h"
#include "uniprogutils_export.h"

#include <QPointer>

class QTimer;
class UtilsDialogProcessingContent;

/// The modal window that accompanies one device procedure: message, animated log, progress, and a Close button that
/// slides in only when the user may close. After a success it closes by itself, unless it is told to stay.
///
/// \image html processing-running.png
///
/// It is driven by the signals of a UtilsUniProgThread. Thread: GUI thread only; the signals of the worker arrive
/// through queued connections. Ownership: create it with new; it deletes itself once it is closed (UtilsDialogFrame).
/// The auto-close switch belongs to the application and must outlive the dialog.
///
///     auto *dialog = new UtilsDialogProcessing(window, &settings.autoClose);
///     connect(thread, &UtilsUniProgThread::SignalOperationLogMessage, dialog, &UtilsDialogProcessing::slotUpdateLog);
///     connect(thread, &UtilsUniProgThread::SignalOperationProgress,
///             dialog, &UtilsDialogProcessing::slotUpdateProgressbar);
///     connect(thread, &UtilsUniProgThread::SignalProcedureCompleted,
///             dialog, &UtilsDialogProcessing::slotProcedureCompleted);
///     dialog->setMessage(tr("Writing flash"));
///     dialog->show();
class UNIPROGUTILS_EXPORT UtilsDialogProcessing : public UtilsDialogFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsDialogProcessing)

public:
    /// Over the active window, with a busy progress bar and no way to close. \a autoClose says whether the dialog
    /// closes by itself after a success; it is read only when the procedure has ended and the last line is shown, so
    /// it may change until then. Null is the same as a pointer to true.
    explicit UtilsDialogProcessing(QWidget *parent = nullptr, bool *autoClose = nullptr);
    ~UtilsDialogProcessing() override;

    /// Sets the text of the message line.
    void setMessage(QString message);

    /// When on, a success leaves the dialog open as a failure does. Initially off.
    void enableShowingSuccessfulProcess(bool enable);

    /// True when the dialog stays open after the procedure: successes are to be shown, or the status is not 0, or the
    /// auto-close switch is off. The status is 0 until slotProcedureCompleted() is called.
    bool shouldShowResult() const;

    /// For failures found outside the procedure: the user may close at once. The status stays as it is.
    void errorHandler();

public Q_SLOTS:
    /// The end of the procedure has been shown to its last line. Empties the progress bar; then the dialog closes in
    /// a second or, when shouldShowResult(), lets the user close it.
    void slotLoggerAnimationsCompleted();
    /// Rejects the dialog.
    void slotClose();
    /// Progress in percent, passed on as it is; a negative one makes the bar busy.
    void slotUpdateProgressbar(int percent);
    /// Adds a message to the log, one line for each of its lines.
    void slotUpdateLog(QString message, LOGGER_MESSAGE_TYPE messageType);
    /// The procedure has ended with \a status, 0 for success. What follows waits until the log has shown its last line.
    /// \a errorMessage is not shown: the text of a failure reaches the user through the log.
    void slotProcedureCompleted(int status, QString errorMessage);

protected:
    /// Escape closes once closing is allowed. Every other key is swallowed.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showResult();

    UtilsDialogProcessingContent *content;
    int procedureStatus = 0;
    bool *autoCloseFlag;
    bool showSuccessfulProcess = false;
    bool closeAllowed = false;

    QPointer<QTimer> closeTimer;
};

#endif // UTILSDIALOGPROCESSING_H
