#include "UtilsUniProgStatus.h"

#include "UniProgInterface.h"
#include "UtilsDialog.h"

#include "DeviceStatus_p.h"

#include <QToolButton>

UtilsUniProgStatus::UtilsUniProgStatus(UniProgInterface *driver, QFlags<STATUS_FLAG> flags, QObject *parent)
    : QObject(parent)
    , uniProg(driver)
    , statusFlags(flags)
{ }

UtilsUniProgStatus::~UtilsUniProgStatus() = default;

void UtilsUniProgStatus::Start(int status, QString message, QWidget *parent)
{
    statusCode = status;
    statusMessage = message;
    dialogParent = parent;
    switch (status) {
    case DeviceStatus::Success:
        StatusOkHandler();
        break;
    case DeviceStatus::WifiConfigAuthenticationFailed:
    case DeviceStatus::WifiDebugAuthenticationFailed:
        StatusErrorAuthHandler(status);
        break;
    default:
        // WifiAuthenticationFailed too: it does not name the link, so nobody could say which password to ask for.
        StatusErrorMiscHandler(status);
        break;
    }
}

void UtilsUniProgStatus::StatusOkHandler()
{
    Q_EMIT SignalStatusDialogClosed();
}

void UtilsUniProgStatus::StatusErrorAuthHandler(int)
{
    if (!statusFlags.testFlag(STATUS_FLAG_AUTHENTICATION))
        return;
    if (uniProg)
        ShowPasswordDialog();
    else
        ShowDialog(); // nobody would take the password
}

void UtilsUniProgStatus::StatusErrorMiscHandler(int)
{
    if (statusFlags.testFlag(STATUS_FLAG_ERROR))
        ShowDialog();
}

void UtilsUniProgStatus::ShowDialog()
{
    auto *dialog = new UtilsDialog(dialogParent);
    dialog->setMessage(statusMessage);
    dialog->getCancelButton()->hide(); // it only informs
    connect(dialog, &UtilsDialogFrame::signalDialogClosed, this, &UtilsUniProgStatus::SignalStatusDialogClosed);
    dialog->show();
}

void UtilsUniProgStatus::ShowPasswordDialog()
{
    auto *dialog = new UtilsDialog(dialogParent);
    dialog->setMessage(statusMessage);
    dialog->addLineEdit(true);
    connect(dialog, qOverload<QString>(&UtilsDialog::accepted), this, &UtilsUniProgStatus::SlotStatusDialogClosed);
    connect(dialog, &UtilsDialogFrame::signalDialogClosed, this, &UtilsUniProgStatus::SignalStatusDialogClosed);
    dialog->show();
}

void UtilsUniProgStatus::SlotStatusDialogClosed(QString argPassword)
{
    if (!uniProg)
        return;
    const bool debugLink = statusCode == DeviceStatus::WifiDebugAuthenticationFailed;
    if (debugLink || statusCode == DeviceStatus::WifiConfigAuthenticationFailed)
        uniProg->SetWiFiLinkPassword(argPassword, debugLink);
}
