#include "UtilsHelpContextMenu.h"

#include "UtilsHelpAssistant.h"

#include <QAction>

UtilsHelpContextMenu::UtilsHelpContextMenu(QWidget *parent, QString keyword)
    : QMenu(parent)
    , helpKeyword(keyword)
    , widget(parent)
{
    widget->setContextMenuPolicy(Qt::CustomContextMenu);
    helpAction = new QAction(tr("Help"), widget);
    connect(widget, &QWidget::customContextMenuRequested, this, &UtilsHelpContextMenu::slotShowContextMenu);
}

UtilsHelpContextMenu::~UtilsHelpContextMenu()
{
    if (helpAction)
        helpAction->deleteLater();
}

void UtilsHelpContextMenu::slotShowContextMenu(const QPoint &position)
{
    clear();
    if (!helpAction || !parentWidget())
        return;
    addAction(helpAction);
    // Made anew on every showing and never removed: one click sends the page command once for each time the menu has
    // been shown. The receiver is not the menu, because clear() disconnects its actions from the menu itself.
    connect(helpAction, &QAction::triggered, &clickReceiver, [this](bool checked) { slotCallHelpAssistant(checked); });
    exec(parentWidget()->mapToGlobal(position));
}

void UtilsHelpContextMenu::slotCallHelpAssistant(bool checked)
{
    Q_UNUSED(checked)
    Q_EMIT UtilsHelpAssistant::getInstance()->signalOpenHelpKeyword(helpKeyword);
}
