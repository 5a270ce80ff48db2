#include "InputsPage.h"

#include "../EventMonitor.h"

#include <UtilsIpEdit.h>
#include <UtilsLcdNumber.h>
#include <UtilsOption.h>
#include <UtilsOptionList.h>

#include <QLineEdit>

namespace {

constexpr unsigned int Address = 0xC0A80114; // 192.168.1.20
constexpr unsigned int LargestAddress = 0xFFFFFFFF;
constexpr double Voltage = 3.31;
constexpr int Counter = 128000;
constexpr int FieldHeight = 30;

UtilsIpEdit *newAddress(unsigned int address, EventMonitor *monitor, QWidget *parent)
{
    auto *edit = new UtilsIpEdit(parent, address);
    edit->setMaximumHeight(FieldHeight);
    monitor->watch(edit, &UtilsIpEdit::signalTextChanged, QStringLiteral("signalTextChanged"));
    return edit;
}

/// The options live as long as the panel that shows them.
QWidget *newOptions(QWidget *parent)
{
    auto *options = new UtilsOptionList;
    UtilsOption *speed = options->addOption(InputsPage::tr("Speed"));
    speed->addItem(1, InputsPage::tr("Slow"));
    speed->addItem(2, InputsPage::tr("Medium"));
    speed->addItem(3, InputsPage::tr("Fast"));
    speed->selectItemByValue(2);
    UtilsOption *reset = options->addOption(InputsPage::tr("Reset"));
    reset->addItem(0, InputsPage::tr("By the pin"));
    reset->addItem(1, InputsPage::tr("By a command"));
    QWidget *panel = options->createGraphicInterface(parent);
    options->setParent(panel);
    return panel;
}

} // namespace

InputsPage::InputsPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Empty address"), [this](QWidget *page) { return newAddress(0, monitor(), page); });
    addSample(tr("Address"), [this](QWidget *page) { return newAddress(Address, monitor(), page); });
    addSample(tr("Largest address"), [this](QWidget *page) { return newAddress(LargestAddress, monitor(), page); });
    addSample(tr("Options"), &newOptions);
    addSample(tr("Number"), [](QWidget *page) { return new UtilsLcdNumber(page, Voltage); });
    addSample(tr("Large number"), [](QWidget *page) {
        auto *number = new UtilsLcdNumber(page);
        number->setValue(Counter);
        return number;
    });
}

InputsPage::~InputsPage() = default;
