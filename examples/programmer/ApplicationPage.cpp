#include "ApplicationPage.h"

#include "Appearance.h"
#include "SwitchRow.h"

#include <UtilsToggleSwitch.h>

#include <QComboBox>
#include <QFormLayout>
#include <QVBoxLayout>

ApplicationPage::ApplicationPage(ProgrammerSession *session, bool autoClose, QWidget *parent)
    : Page(session, QStringLiteral("applicationPage"), tr("Application"), QStringLiteral("programmer/application.html"),
           parent)
{
    auto *form = new QFormLayout;
    body()->addLayout(form);
    autoCloseSwitch = SwitchRow::add(form, QStringLiteral("autoClose"), tr("&Close dialogs after a success:"));
    autoCloseSwitch->setChecked(autoClose);
    connect(autoCloseSwitch, &UtilsToggleSwitch::toggled, this, &ApplicationPage::autoCloseChanged);

    auto *theme = new QComboBox;
    theme->setObjectName(QStringLiteral("theme"));
    theme->addItems(Appearance::themes());
    theme->setCurrentText(Appearance::current());
    connect(theme, &QComboBox::currentTextChanged, this, &Appearance::apply);
    form->addRow(tr("&Theme:"), theme);
    body()->addStretch();
}

void ApplicationPage::setAutoClose(bool enabled)
{
    autoCloseSwitch->setChecked(enabled);
}
