#include "OptionsPage.h"

#include "SwitchRow.h"

#include <UtilsOption.h>
#include <UtilsToggleSwitch.h>

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QVBoxLayout>

namespace {

constexpr unsigned short EraseEverything = 0;
constexpr unsigned short EraseWhatIsNeeded = 2; // value of the operation option "erase mode"

} // namespace

OptionsPage::OptionsPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("optionsPage"), tr("Operations"), QStringLiteral("programmer/options.html"), parent)
{
    addEraseMode();
    auto *group = new QGroupBox(tr("Target"), this);
    body()->addWidget(group);
    auto *form = new QFormLayout(group);
    TargetOptions *operation = &session->operationOptions();
    addSwitch(form, QStringLiteral("leaveRunning"), tr("&Leave the target running:"), operation,
              TargetOptionsOperation::LeaveRunning);
    addSwitch(form, QStringLiteral("verifyAfterWrite"), tr("&Verify after a write:"), operation,
              TargetOptionsOperation::VerifyAfterWrite);
    addSwitch(form, QStringLiteral("haltAfterReset"), tr("&Halt after a reset:"), &session->connectionOptions(),
              TargetOptionsConnection::HaltAfterReset);
    body()->addStretch();
}

OptionsPage::~OptionsPage() = default;

void OptionsPage::addEraseMode()
{
    TargetOptions *options = &session()->operationOptions();
    UtilsOption *erase = list.addOption(tr("Erase before a write"));
    erase->selectItemByValue(static_cast<unsigned short>(options->getIntValue(TargetOptionsOperation::EraseMode)));
    erase->addItem(EraseEverything, tr("The whole target"));
    erase->addItem(EraseWhatIsNeeded, tr("What the image needs"));

    auto *group = new QGroupBox(tr("Erasing"), this);
    body()->addWidget(group);
    QWidget *panel = list.createGraphicInterface(group);
    panel->layout()->setContentsMargins(0, 0, 0, 0);
    (new QVBoxLayout(group))->addWidget(panel);
    auto *box = panel->findChild<QComboBox *>();
    box->setObjectName(QStringLiteral("eraseMode"));
    box->setAccessibleName(erase->getName());
    // After the option's own slot. A value from elsewhere that no item stands for stays, until the user picks another.
    connect(box, &QComboBox::currentTextChanged, this,
            [=] { options->setIntValue(TargetOptionsOperation::EraseMode, erase->getSelectedItemValue()); });
}

/// Every value but 0 is on; one that is not 1 stays until the switch is used.
void OptionsPage::addSwitch(QFormLayout *form, const QString &name, const QString &label, TargetOptions *options,
                            int number)
{
    UtilsToggleSwitch *toggle = SwitchRow::add(form, name, label);
    toggle->setChecked(options->getIntValue(number) != 0);
    connect(toggle, &UtilsToggleSwitch::toggled, this,
            [=](bool checked) { options->setIntValue(number, checked ? 1 : 0); });
}
