#include "OptionsPanel.h"

#include "ProgrammerSession.h"

#include <UtilsOption.h>

#include <QComboBox>
#include <QVBoxLayout>

namespace {

constexpr unsigned short EraseEverything = 0;
constexpr unsigned short EraseWhatIsNeeded = 2; // value of the operation option "erase mode"

} // namespace

OptionsPanel::OptionsPanel(ProgrammerSession *session, QWidget *parent)
    : QGroupBox(tr("Options"), parent)
    , layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("optionsPanel"));
    TargetOptions *operation = &session->operationOptions();
    UtilsOption *erase = add(tr("Erase before a write"), operation, TargetOptionsOperation::EraseMode);
    erase->addItem(EraseEverything, tr("The whole target"));
    erase->addItem(EraseWhatIsNeeded, tr("What the image needs"));
    addSwitch(tr("Leave target running"), operation, TargetOptionsOperation::LeaveRunning);
    addSwitch(tr("Verify after a write"), operation, TargetOptionsOperation::VerifyAfterWrite);
    addSwitch(tr("Halt after a reset"), &session->connectionOptions(), TargetOptionsConnection::HaltAfterReset);

    QWidget *panel = list.createGraphicInterface(this);
    layout->addWidget(panel);
    layout->addStretch();
    const auto boxes = panel->findChildren<QComboBox *>();
    for (qsizetype i = 0; i < boxes.size(); ++i) {
        boxes.at(i)->setAccessibleName(entries.at(i).choice->getName());
        connect(boxes.at(i), &QComboBox::currentTextChanged, this, &OptionsPanel::store); // after the option's own
    }
}

OptionsPanel::~OptionsPanel() = default;

void OptionsPanel::addBelow(QWidget *widget)
{
    layout->addWidget(widget);
}

UtilsOption *OptionsPanel::add(const QString &name, TargetOptions *options, int number)
{
    UtilsOption *option = list.addOption(name);
    option->selectItemByValue(static_cast<unsigned short>(options->getIntValue(number)));
    entries.append({options, number, option});
    return option;
}

void OptionsPanel::addSwitch(const QString &name, TargetOptions *options, int number)
{
    UtilsOption *option = add(name, options, number);
    option->addItem(0, tr("No"));
    option->addItem(1, tr("Yes"));
}

void OptionsPanel::store()
{
    for (const Entry &entry : std::as_const(entries)) {
        const unsigned short value = entry.choice->getSelectedItemValue();
        // A value from elsewhere that no item stands for stays as it is, until the user picks another.
        if (value != static_cast<unsigned short>(entry.options->getIntValue(entry.number)))
            entry.options->setIntValue(entry.number, value);
    }
}
