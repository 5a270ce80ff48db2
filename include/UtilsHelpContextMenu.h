#ifndef UTILSHELPCONTEXTMENU_H
#define UTILSHELPCONTEXTMENU_H

#include "uniprogutils_export.h"

#include <QMenu>
#include <QPointer>
#include <QString>

/// Gives a widget a context menu with one entry, "Help", that shows the help page which belongs to the widget.
///
/// Creating the menu is all: it takes over the widget's context menu policy and goes with the widget.
///
///     new UtilsHelpContextMenu(ui->powerGroup, "device/power.html");
///
/// GUI thread only. The page is shown by UtilsHelpAssistant.
class UNIPROGUTILS_EXPORT UtilsHelpContextMenu : public QMenu
{
    Q_OBJECT

public:
    /// A menu for \a parent, which must not be null and becomes the menu's parent. \a keyword is the page's path in
    /// the help collection. The widget's context menu policy becomes Qt::CustomContextMenu.
    UtilsHelpContextMenu(QWidget *parent, QString keyword);
    ~UtilsHelpContextMenu() override;

public Q_SLOTS:
    /// Shows the menu at \a position, in the widget's coordinates, until the user has chosen or dismissed it. Each
    /// showing adds one page request to what a click on "Help" sends: after n showings it sends n.
    void slotShowContextMenu(const QPoint &position);
    /// Requests the help page. \a checked does not matter.
    void slotCallHelpAssistant(bool checked);

private:
    Q_DISABLE_COPY_MOVE(UtilsHelpContextMenu)

    QString helpKeyword;
    QPointer<QAction> helpAction; ///< the widget's, and may go before the menu does
    QPointer<QWidget> widget;
    QObject clickReceiver; ///< stands in for the menu where QMenu disconnects itself
};

#endif // UTILSHELPCONTEXTMENU_H
