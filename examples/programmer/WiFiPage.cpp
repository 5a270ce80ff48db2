#include "WiFiPage.h"

#include "SwitchRow.h"

#include <UtilsToggleSwitch.h>

#include <QFormLayout>
#include <QVBoxLayout>

WiFiPage::WiFiPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("wifiPage"), tr("WiFi"), QStringLiteral("programmer/wifi.html"), parent)
{
    auto *form = new QFormLayout;
    body()->addLayout(form);
    linkSwitch = SwitchRow::add(form, QStringLiteral("overWiFi"), tr("&Reach the device by WiFi:"));
    connect(linkSwitch, &UtilsToggleSwitch::toggled, this, &WiFiPage::chooseLink);
    addText(tr("The device answers over WiFi once its settings name a network and its server has been started. A link "
               "with a password asks for it at the next operation."));
    addOperations(ProgrammerSession::Subject::WiFiServer);
    body()->addStretch();
    connect(session, &ProgrammerSession::linkChanged, this, &WiFiPage::showLink);
    showLink();
}

void WiFiPage::chooseLink(bool overWiFi)
{
    const TSelectedDevice::Link link = overWiFi ? TSelectedDevice::WiFi : TSelectedDevice::Usb;
    if (session()->link() != link && !session()->selectLink(link)) {
        showLink();
        Q_EMIT failed(tr("The link cannot be changed now."));
    }
}

void WiFiPage::showLink()
{
    linkSwitch->setChecked(session()->link() == TSelectedDevice::WiFi);
}
