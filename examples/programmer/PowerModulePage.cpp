#include "PowerModulePage.h"

#include "OperationButtons.h"

#include <QLabel>
#include <QVBoxLayout>

PowerModulePage::PowerModulePage(ProgrammerSession *session, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("powerModulePage"));
    auto *layout = new QVBoxLayout(this);
    auto *hint = new QLabel(tr("The firmware of the power module comes with the application. Activate the bootloader, "
                               "check that it answers, and write: the module starts again by itself. Reset it when an "
                               "update was not finished."),
                            this);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    layout->addStretch();
    auto *buttons = new OperationButtons(session, ProgrammerSession::Subject::PowerModule, this);
    connect(buttons, &OperationButtons::requested, this, &PowerModulePage::requested);
    layout->addWidget(buttons);
}
