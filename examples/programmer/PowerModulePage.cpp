#include "PowerModulePage.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int MajorVersionShift = 8;
constexpr int MinorVersionMask = 0xFF;

} // namespace

PowerModulePage::PowerModulePage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("powerModulePage"), tr("Power module"), QStringLiteral("programmer/power.html"),
           parent)
    , infoLabel(new QLabel(this))
{
    infoLabel->setObjectName(QStringLiteral("powerModuleInfo"));
    infoLabel->setWordWrap(true);
    body()->addWidget(infoLabel);
    addOperations(ProgrammerSession::Subject::PowerInfo);
    addText(tr("The firmware of the power module comes with the application. Activate the bootloader, check that it "
               "answers, and write: the module starts again by itself. Reset it when an update was not finished."));
    addOperations(ProgrammerSession::Subject::PowerModule);
    body()->addStretch();
    connect(session, &ProgrammerSession::completed, this, &PowerModulePage::showInfo);
    showInfo();
}

void PowerModulePage::showInfo()
{
    const TPowerInfo info = session()->powerInfo();
    if (info.channelCount == 0) {
        infoLabel->setText(tr("The module has not been asked yet."));
        return;
    }
    const QString battery = info.batteryPresent ? tr("battery at %1 %").arg(info.batteryLevel) : tr("no battery");
    infoLabel->setText(tr("Firmware %1.%2, %3 channels, %4")
                           .arg(info.firmwareVersion >> MajorVersionShift)
                           .arg(info.firmwareVersion & MinorVersionMask)
                           .arg(info.channelCount)
                           .arg(battery));
}
