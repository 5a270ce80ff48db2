#ifndef UTILSUNIPROGSTATUS_H
#define UTILSUNIPROGSTATUS_H

#include "uniprogutils_export.h"

#include <QFlags>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;
class UniProgInterface;

/// Explains to the user how a device procedure ended: it says nothing, shows the error text, or asks for the password
/// of the WiFi link and hands it to the driver, so that the user can try again. Give it what
/// UtilsUniProgThread::SignalProcedureCompleted() carried.
///
/// Thread: GUI thread only. Ownership: the driver is not owned and must outlive this object. The dialogs belong to
/// their parent widget and delete themselves when they are closed; they may stay open when this object dies.
///
///     auto *status = new UtilsUniProgStatus(&driver, UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION
///                                                        | UtilsUniProgStatus::STATUS_FLAG_ERROR, this);
///     connect(programmer, &UtilsUniProgThread::SignalProcedureCompleted, this,
///             [=](int code, const QString &message) { status->Start(code, message, window); });
class UNIPROGUTILS_EXPORT UtilsUniProgStatus : public QObject
{
    Q_OBJECT

public:
    /// Which kinds of status get a dialog.
    enum STATUS_FLAG {
        STATUS_FLAG_OK = 0x1, ///< not looked at here: success is told by the signal, without a dialog
        STATUS_FLAG_AUTHENTICATION = 0x2, ///< 13 and 14: the WiFi link wants a password
        STATUS_FLAG_ERROR = 0x4 ///< every other status but 0
    };
    Q_DECLARE_FLAGS(STATUS_FLAGS, STATUS_FLAG)
    Q_FLAG(STATUS_FLAGS)

    /// \a uniProg receives new link passwords. Null is allowed: authentication failures are then shown as errors.
    UtilsUniProgStatus(UniProgInterface *uniProg, QFlags<STATUS_FLAG> flags, QObject *parent);
    ~UtilsUniProgStatus() override;

    /// Explains \a status with the text \a message, in a dialog on \a parent (may be null):
    /// - 0: no dialog; SignalStatusDialogClosed() is emitted before this returns, whatever the flags;
    /// - 13 (configuration link) and 14 (debug link), with STATUS_FLAG_AUTHENTICATION: asks for the password, or shows
    ///   the text when there is no driver;
    /// - any other, 4 included, with STATUS_FLAG_ERROR: shows the text.
    ///
    /// Without its flag a status is passed over: there is no dialog and no signal.
    void Start(int status, QString message, QWidget *parent);

Q_SIGNALS:
    /// There is nothing to explain, or the dialog was closed, by either button; one that the window
    /// system closes says so twice (see UtilsDialogFrame::signalDialogClosed()). Not emitted when nothing is shown for
    /// an error, nor when the dialog dies with its parent.
    void SignalStatusDialogClosed();

public Q_SLOTS:
    /// Hands \a argPassword to the driver: for the configuration link when the last status was 13, for the debug link
    /// when it was 14. After any other status it does nothing.
    void SlotStatusDialogClosed(QString argPassword);

private:
    Q_DISABLE_COPY_MOVE(UtilsUniProgStatus)

    void StatusOkHandler();
    void StatusErrorAuthHandler(int status);
    void StatusErrorMiscHandler(int status);
    void ShowDialog();
    void ShowPasswordDialog();

    UniProgInterface *uniProg;
    QFlags<STATUS_FLAG> statusFlags;
    int statusCode = 0;
    QString statusMessage;
    QPointer<QWidget> dialogParent;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(UtilsUniProgStatus::STATUS_FLAGS)

#endif // UTILSUNIPROGSTATUS_H
