#ifndef UTILSSIDEBAR_H
#define UTILSSIDEBAR_H

#include "uniprogutils_export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;
class UtilsSidebarWidget;
class UtilsStackedWidget;

/// The navigation of the application: the five sections TARGET, BRAMLOCK, POWER, OPTIONS and HELP beside a stack of
/// pages. Every registered page has a child button in its section, and checking the button shows the page.
///
/// \image html sidebar.png
///
///     UtilsSidebar *sidebar = UtilsSidebar::getInstance(&mainWindow);
///     layout->addWidget(sidebar->getSidebarWidget());
///     layout->addWidget(sidebar->getUtilsStackedWidget());
///     memoryPage->setObjectName(tr("Memory"));
///     sidebar->addConnection(memoryPage, 0, sidebar->getSidebarItemId_target());
///     sidebar->slotShowWidget(memoryPage);
///
/// Thread: GUI thread only. Ownership: there is one object in the process, which lives until the application deletes
/// it. Column and stack belong to the parent given to getInstance(), and go with the object as well; once its parent
/// has deleted one of them, the getter returns null and what would need it does nothing. Pages belong to the stack. A
/// page that is deleted elsewhere is forgotten, and its button goes.
class UNIPROGUTILS_EXPORT UtilsSidebar : public QObject
{
    Q_OBJECT

public:
    /// The object. The first call creates it, with column and stack as children of \a parent; the parent of a later
    /// call is ignored. After the application has deleted the object, the next call makes a new one.
    static UtilsSidebar *getInstance(QWidget *parent = nullptr);
    ~UtilsSidebar() override;

    // The ids of the sections, 1 to 5, as other operations take them; BRAMLOCK is the uniProg one. Setting one changes
    // what its getter returns, and no section.

    int getSidebarItemId_target() const;
    int getSidebarItemId_uniProg() const;
    int getSidebarItemId_power() const;
    int getSidebarItemId_options() const;
    int getSidebarItemId_help() const;
    void setSidebarItemId_target(int itemId);
    void setSidebarItemId_uniProg(int itemId);
    void setSidebarItemId_power(int itemId);
    void setSidebarItemId_options(int itemId);
    void setSidebarItemId_help(int itemId);

    UtilsSidebarWidget *getSidebarWidget();
    UtilsStackedWidget *getUtilsStackedWidget();

    /// Registers \a page and adds it to the stack, with a child button in the section \a itemId whose caption is the
    /// page's object name. \a childIndex is the row of the button, limited to those there are; a negative one makes no
    /// button. When no section has that id, the button goes to the section added last, where it shows nothing, and
    /// \a itemId is still what getIdsFromMap() answers. A page that is registered twice has two buttons. Null is
    /// ignored.
    void addConnection(QWidget *page, int childIndex, int itemId);
    /// Takes \a page out of the stack and deletes it later, and removes its buttons at once. A page that is not
    /// registered is ignored.
    void removeConnection(QWidget *page);
    /// Puts \a newPage in the place of \a oldPage, whose button shows it from now on and keeps its caption. The old
    /// page is deleted later when it is in the stack, and when it is the current one, the new one becomes that. Ignored
    /// when \a oldPage is not registered, \a newPage is null or both are the same.
    void replaceConnection(QWidget *oldPage, QWidget *newPage);
    /// What there is decides: without \a oldPage, \a newPage is registered with \a childIndex and \a itemId; with both,
    /// the old one is replaced; without \a newPage, the old one is removed. Returns \a newPage.
    QWidget *updateConnection(QWidget *newPage, QWidget *oldPage, int childIndex, int itemId);

    /// The ids with which \a page was registered first, -1 and -1 when it is not. The child id of a page without a
    /// button is -1. A null pointer takes no answer.
    void getIdsFromMap(QWidget *page, int *itemId, int *childId);
    /// The page that was registered first with these ids, or null.
    QWidget *getWidgetFromMap(int itemId, int childId);

    /// Renames the child buttons of \a page.
    void setCaption(QWidget *page, QString caption);
    /// Renames the main button of a section.
    void setCaptionForMainButton(int itemId, QString caption);
    /// Gives \a widget the size of the stack.
    void setWidgetSize(QWidget *widget);

Q_SIGNALS:
    /// The page \a widget has become current because its button was checked.
    void signalWidgetShown(QWidget *widget);

public Q_SLOTS:
    /// Opens the section of \a widget and checks its button, which shows the page. Nothing happens for a page without
    /// a button, for one that is not registered, and when the button is checked already.
    void slotShowWidget(QWidget *widget);
    /// Shows the page with these ids when \a checked.
    void slotSidebarChildToggled(int itemId, int childId, bool checked);

private:
    Q_DISABLE_COPY_MOVE(UtilsSidebar)

    struct Connection
    {
        QPointer<QWidget> page;
        int itemId;
        int childId;
        int buttonItemId; // the section that has the button, which may be another one than was asked for
    };

    explicit UtilsSidebar(QWidget *parent);
    void addSections();
    void addToStack(QWidget *page);
    void forget(const QObject *page);
    const Connection *connectionOf(const QWidget *page) const;

    int m_itemIdTarget = -1;
    int m_itemIdUniProg = -1;
    int m_itemIdPower = -1;
    int m_itemIdOptions = -1;
    int m_itemIdHelp = -1;
    QPointer<UtilsSidebarWidget> m_sidebarWidget;
    QPointer<UtilsStackedWidget> m_stackedWidget;
    QList<Connection> m_connections;
};

#endif // UTILSSIDEBAR_H
