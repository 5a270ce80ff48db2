#include "SwitchRow.h"

#include <UtilsToggleSwitch.h>

#include <QFormLayout>

namespace {

constexpr QSize SwitchSize(40, 20);

} // namespace

UtilsToggleSwitch *SwitchRow::add(QFormLayout *form, const QString &name, const QString &label)
{
    auto *toggle = new UtilsToggleSwitch;
    toggle->setObjectName(name);
    toggle->setFixedSize(SwitchSize);
    toggle->setFocusPolicy(Qt::StrongFocus);
    toggle->setAccessibleName(QString(label).remove(u'&').remove(u':'));
    form->addRow(label, toggle);
    return toggle;
}
