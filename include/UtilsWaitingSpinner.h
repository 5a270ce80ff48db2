#ifndef UTILSWAITINGSPINNER_H
#define UTILSWAITINGSPINNER_H

#include "UtilsDialogFrame.h"

class QHBoxLayout;
class QLabel;
class QVBoxLayout;
class WaitingSpinnerWidget;

/// A modal dialog that asks the user to wait: a message above a turning spinner. It has no buttons, and no key closes
/// it.
///
/// \image html dialogs-waiting.png
///
/// Thread: GUI thread only. Ownership: create it with new. It stays until its owner closes it,
/// or the user by way of the window system (Alt+F4), which deletes it later.
///
///     QPointer<UtilsWaitingSpinner> waiting = new UtilsWaitingSpinner(window, tr("Starting the WiFi server..."));
///     waiting->setCountdown(30);
///     waiting->show();
///     connect(device, &Device::serverStarted, waiting, &QDialog::accept);
class UNIPROGUTILS_EXPORT UtilsWaitingSpinner : public UtilsDialogFrame
{
    Q_OBJECT

public:
    UtilsWaitingSpinner(QWidget *parent, QString message);
    ~UtilsWaitingSpinner() override;

    /// Also the accessible name of the dialog.
    void setMessage(QString message);
    /// The seconds that the spinner counts down from when the dialog is shown; 0, as at first, for none. The dialog
    /// stays when they are over. See WaitingSpinnerWidget::setCountdown().
    void setCountdown(int seconds);

protected:
    /// Starts the spinner as well.
    void showEvent(QShowEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsWaitingSpinner)

    QWidget *m_content;
    QVBoxLayout *m_contentLayout;
    QLabel *m_message;
    WaitingSpinnerWidget *m_spinner;
    QHBoxLayout *m_spinnerLayout;
};

#endif // UTILSWAITINGSPINNER_H
