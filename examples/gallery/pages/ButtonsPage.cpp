#include "ButtonsPage.h"

#include "../EventMonitor.h"

#include <UtilsButtonGroup.h>
#include <UtilsMisc.h>
#include <UtilsToggleSwitch.h>

namespace {

constexpr QSize SwitchSize(48, 24);
constexpr QSize SmallestButton(60, 28);
constexpr double HalfSeen = 0.5;

UtilsButtonGroup *newGroup(const QStringList &names, EventMonitor *monitor, QWidget *parent)
{
    auto *group = new UtilsButtonGroup(parent);
    for (const QString &name : names)
        group->addButton(name, group->count());
    group->setButtonsMinSize(SmallestButton.width(), SmallestButton.height());
    monitor->watch(group, &UtilsButtonGroup::signalButtonClicked, QStringLiteral("signalButtonClicked"));
    return group;
}

UtilsToggleSwitch *newSwitch(bool isOn, EventMonitor *monitor, QWidget *parent)
{
    auto *toggle = new UtilsToggleSwitch(parent);
    toggle->setFixedSize(SwitchSize);
    toggle->setChecked(isOn);
    monitor->watch(toggle, &UtilsToggleSwitch::toggled, QStringLiteral("toggled"));
    return toggle;
}

} // namespace

ButtonsPage::ButtonsPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Nothing chosen"), [this](QWidget *page) {
        return newGroup({tr("Read"), tr("Write"), tr("Verify")}, monitor(), page);
    });
    addSample(tr("One chosen"), [this](QWidget *page) {
        UtilsButtonGroup *group = newGroup({tr("1.8 V"), tr("3.3 V"), tr("5 V")}, monitor(), page);
        group->checkButton(1);
        return group;
    });
    addSample(tr("Two buttons"), [this](QWidget *page) {
        UtilsButtonGroup *group = newGroup({tr("Hex"), tr("Dec")}, monitor(), page);
        group->checkButton(0);
        return group;
    });
    addSample(tr("One button"), [this](QWidget *page) { return newGroup({tr("Erase")}, monitor(), page); });
    addSample(tr("Switch, off"), [this](QWidget *page) { return newSwitch(false, monitor(), page); });
    addSample(tr("Switch, on"), [this](QWidget *page) { return newSwitch(true, monitor(), page); });
    addSample(tr("Under the pointer"), [this](QWidget *page) {
        UtilsToggleSwitch *toggle = newSwitch(false, monitor(), page);
        UtilsMisc::SetProperty(toggle, "hover", true); // until the pointer has really been there
        return toggle;
    });
    addSample(tr("Half transparent"), [this](QWidget *page) {
        UtilsToggleSwitch *toggle = newSwitch(true, monitor(), page);
        toggle->setOpacity(HalfSeen);
        return toggle;
    });
    addSample(tr("Not by mouse"), [this](QWidget *page) {
        UtilsToggleSwitch *toggle = newSwitch(false, monitor(), page);
        toggle->toggleOnMouseClick(false);
        return toggle;
    });
}

ButtonsPage::~ButtonsPage() = default;
