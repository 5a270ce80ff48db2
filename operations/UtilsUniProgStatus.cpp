#include "UtilsUniProgStatus.h"

#include "UniProgInterface.h"
#include "UtilsDialog.h"

#include <QToolButton>

// Status 4, a failed link authentication without the link's name, is an error as any other: nobody could say which
// password to ask for.
static constexpr int StatusOk = 0;
static constexpr int StatusLinkConfigAuthentication = 13;
static constexpr int StatusLinkDebugAuthentication = 14;

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
    case StatusOk:
        StatusOkHandler();
        break;
    case StatusLinkConfigAuthentication:
    case StatusLinkDebugAuthentication:
        StatusErrorAuthHandler(status);
        break;
    default:
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
    if (statusCode == StatusLinkConfigAuthentication || statusCode == StatusLinkDebugAuthentication)
        uniProg->SetWiFiLinkPassword(argPassword, statusCode == StatusLinkDebugAuthentication);
}
