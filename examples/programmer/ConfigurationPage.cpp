#include "ConfigurationPage.h"

#include "SwitchRow.h"

#include <UtilsToggleSwitch.h>

#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

constexpr int HertzPerKilohertz = 1000;
constexpr int FastestClock = 50000; // kHz

} // namespace

ConfigurationPage::ConfigurationPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("configurationPage"), tr("Settings"), QStringLiteral("programmer/settings.html"),
           parent)
{
    addText(tr("What the device keeps while it is not powered. Read it, change it, and store it."));
    setupForm();
    addOperations(ProgrammerSession::Subject::Configuration);
    body()->addStretch();
    connect(session, &ProgrammerSession::completed, this, &ConfigurationPage::showConfiguration);
    showConfiguration();
}

void ConfigurationPage::setupForm()
{
    form = new QWidget(this);
    body()->addWidget(form);
    auto *layout = new QFormLayout(form);
    layout->setContentsMargins(0, 0, 0, 0);
    nameEdit = new QLineEdit;
    nameEdit->setObjectName(QStringLiteral("deviceName"));
    layout->addRow(tr("&Name:"), nameEdit);
    clockBox = new QSpinBox;
    clockBox->setObjectName(QStringLiteral("debugClock"));
    clockBox->setRange(1, FastestClock);
    clockBox->setSuffix(tr(" kHz"));
    layout->addRow(tr("SWD and JTAG &clock:"), clockBox);
    wifiSwitch = SwitchRow::add(layout, QStringLiteral("wifiEnabled"), tr("&WiFi:"));
    networkEdit = new QLineEdit;
    networkEdit->setObjectName(QStringLiteral("networkName"));
    layout->addRow(tr("N&etwork:"), networkEdit);
    passwordEdit = new QLineEdit;
    passwordEdit->setObjectName(QStringLiteral("networkPassword"));
    passwordEdit->setEchoMode(QLineEdit::Password);
    layout->addRow(tr("&Password of the network:"), passwordEdit);

    for (const QLineEdit *edit : {nameEdit, networkEdit, passwordEdit})
        connect(edit, &QLineEdit::textEdited, this, &ConfigurationPage::takeChanges);
    connect(clockBox, &QSpinBox::valueChanged, this, &ConfigurationPage::takeChanges);
    connect(wifiSwitch, &UtilsToggleSwitch::toggled, this, &ConfigurationPage::takeChanges);
}

void ConfigurationPage::showConfiguration()
{
    form->setEnabled(session()->hasConfiguration());
    if (!session()->hasConfiguration())
        return;
    const TConfiguration configuration = session()->configuration();
    nameEdit->setText(configuration.deviceName);
    clockBox->setValue(int(configuration.debugClock / HertzPerKilohertz));
    wifiSwitch->setChecked(configuration.wifiEnabled);
    networkEdit->setText(configuration.networkName);
    passwordEdit->setText(configuration.networkPassword);
    session()->setConfiguration(configuration); // the first controls reported a change with the old texts of the others
}

void ConfigurationPage::takeChanges()
{
    TConfiguration configuration = session()->configuration();
    configuration.deviceName = nameEdit->text();
    configuration.networkName = networkEdit->text();
    configuration.networkPassword = passwordEdit->text();
    configuration.wifiEnabled = wifiSwitch->isChecked();
    // A clock that is no whole number of kilohertz stays as it is until another one is chosen.
    if (clockBox->value() != int(configuration.debugClock / HertzPerKilohertz))
        configuration.debugClock = quint32(clockBox->value() * HertzPerKilohertz);
    session()->setConfiguration(configuration);
}
