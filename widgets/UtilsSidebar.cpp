#include "UtilsSidebar.h"

#include "UtilsSidebarWidget.h"
#include "UtilsStackedWidget.h"

#include <utility>

// A static build of the library has its resources only when they are asked for; the macro wants the global namespace.
static void initResources()
{
    Q_INIT_RESOURCE(uniprogutils_icons);
}

static constexpr int NoId = -1;

// The stack says when its current page changes, and a receiver may delete this object then.

UtilsSidebar *UtilsSidebar::getInstance(QWidget *parent)
{
    static QPointer<UtilsSidebar> instance;
    if (!instance)
        instance = new UtilsSidebar(parent);
    return instance;
}

UtilsSidebar::UtilsSidebar(QWidget *parent)
    : m_sidebarWidget(new UtilsSidebarWidget(parent))
    , m_stackedWidget(new UtilsStackedWidget(parent))
{
    initResources();
    addSections();
    connect(m_sidebarWidget, &UtilsSidebarWidget::SignalChildToggled, this, &UtilsSidebar::slotSidebarChildToggled);
}

UtilsSidebar::~UtilsSidebar()
{
    if (m_sidebarWidget)
        m_sidebarWidget->deleteLater();
    if (m_stackedWidget)
        m_stackedWidget->deleteLater();
}

void UtilsSidebar::addSections()
{
    const auto addSection = [this](const QString &caption, const QString &icon) {
        const QString path = QStringLiteral(":/images/") + icon;
        return m_sidebarWidget->addItem(caption, path + QStringLiteral("_light.svg"),
                                        path + QStringLiteral("_yellow.svg"));
    };
    setSidebarItemId_target(addSection(tr("TARGET"), QStringLiteral("target_mcu")));
    setSidebarItemId_uniProg(addSection(tr("BRAMLOCK"), QStringLiteral("bramlock_device")));
    setSidebarItemId_power(addSection(tr("POWER"), QStringLiteral("power")));
    setSidebarItemId_options(addSection(tr("OPTIONS"), QStringLiteral("options")));
    setSidebarItemId_help(addSection(tr("HELP"), QStringLiteral("info")));
}

int UtilsSidebar::getSidebarItemId_target() const
{
    return m_itemIdTarget;
}

int UtilsSidebar::getSidebarItemId_uniProg() const
{
    return m_itemIdUniProg;
}

int UtilsSidebar::getSidebarItemId_power() const
{
    return m_itemIdPower;
}

int UtilsSidebar::getSidebarItemId_options() const
{
    return m_itemIdOptions;
}

int UtilsSidebar::getSidebarItemId_help() const
{
    return m_itemIdHelp;
}

void UtilsSidebar::setSidebarItemId_target(int itemId)
{
    m_itemIdTarget = itemId;
}

void UtilsSidebar::setSidebarItemId_uniProg(int itemId)
{
    m_itemIdUniProg = itemId;
}

void UtilsSidebar::setSidebarItemId_power(int itemId)
{
    m_itemIdPower = itemId;
}

void UtilsSidebar::setSidebarItemId_options(int itemId)
{
    m_itemIdOptions = itemId;
}

void UtilsSidebar::setSidebarItemId_help(int itemId)
{
    m_itemIdHelp = itemId;
}

UtilsSidebarWidget *UtilsSidebar::getSidebarWidget()
{
    return m_sidebarWidget;
}

UtilsStackedWidget *UtilsSidebar::getUtilsStackedWidget()
{
    return m_stackedWidget;
}

void UtilsSidebar::addConnection(QWidget *page, int childIndex, int itemId)
{
    if (!page || !m_sidebarWidget || !m_stackedWidget)
        return;
    const QPointer<UtilsSidebar> self(this);
    addToStack(page);
    if (!self)
        return;
    const int buttonItemId = m_sidebarWidget->getItemIdForChild(itemId);
    const int childId = m_sidebarWidget->addChild(page->objectName(), buttonItemId, childIndex);
    m_connections.append({page, itemId, childId, buttonItemId});
}

void UtilsSidebar::addToStack(QWidget *page)
{
    if (m_stackedWidget->indexOf(page) < 0)
        m_stackedWidget->addWidget(page);
    connect(page, &QObject::destroyed, this, &UtilsSidebar::forget, Qt::UniqueConnection);
}

void UtilsSidebar::removeConnection(QWidget *page)
{
    if (!connectionOf(page))
        return;
    const QPointer<UtilsSidebar> self(this);
    page->deleteLater();
    if (m_stackedWidget)
        m_stackedWidget->removeWidget(page);
    if (self)
        forget(page);
}

/// Whoever deleted it: a page that is gone leaves no record and no button behind.
void UtilsSidebar::forget(const QObject *page)
{
    for (qsizetype i = m_connections.size() - 1; i >= 0; --i) {
        const Connection connection = m_connections.at(i);
        if (connection.page && connection.page.data() != page)
            continue;
        m_connections.removeAt(i);
        if (m_sidebarWidget)
            m_sidebarWidget->removeChild(connection.buttonItemId, connection.childId);
    }
}

void UtilsSidebar::replaceConnection(QWidget *oldPage, QWidget *newPage)
{
    if (!connectionOf(oldPage) || !newPage || newPage == oldPage || !m_stackedWidget)
        return;
    for (Connection &connection : m_connections) {
        if (connection.page == oldPage)
            connection.page = newPage;
    }
    const QPointer<UtilsSidebar> self(this);
    addToStack(newPage);
    if (!self || m_stackedWidget->indexOf(oldPage) < 0)
        return;
    oldPage->deleteLater();
    if (m_stackedWidget->currentWidget() == oldPage)
        m_stackedWidget->setCurrentWidget(newPage); // the button, which both have, is still checked
    if (self && m_stackedWidget)
        m_stackedWidget->removeWidget(oldPage);
}

QWidget *UtilsSidebar::updateConnection(QWidget *newPage, QWidget *oldPage, int childIndex, int itemId)
{
    if (oldPage && newPage)
        replaceConnection(oldPage, newPage);
    else if (oldPage)
        removeConnection(oldPage);
    else if (newPage)
        addConnection(newPage, childIndex, itemId);
    return newPage;
}

const UtilsSidebar::Connection *UtilsSidebar::connectionOf(const QWidget *page) const
{
    for (const Connection &connection : m_connections) {
        if (page && connection.page == page)
            return &connection;
    }
    return nullptr;
}

void UtilsSidebar::getIdsFromMap(QWidget *page, int *itemId, int *childId)
{
    const Connection *connection = connectionOf(page);
    if (itemId)
        *itemId = connection ? connection->itemId : NoId;
    if (childId)
        *childId = connection ? connection->childId : NoId;
}

QWidget *UtilsSidebar::getWidgetFromMap(int itemId, int childId)
{
    for (const Connection &connection : std::as_const(m_connections)) {
        if (connection.itemId == itemId && connection.childId == childId)
            return connection.page;
    }
    return nullptr;
}

void UtilsSidebar::setCaption(QWidget *page, QString caption)
{
    for (const Connection &connection : std::as_const(m_connections)) {
        if (page && connection.page == page && m_sidebarWidget)
            m_sidebarWidget->setChildCaption(connection.buttonItemId, connection.childId, caption);
    }
}

void UtilsSidebar::setCaptionForMainButton(int itemId, QString caption)
{
    if (m_sidebarWidget)
        m_sidebarWidget->setItemCaption(itemId, caption);
}

void UtilsSidebar::setWidgetSize(QWidget *widget)
{
    if (widget && m_stackedWidget)
        widget->resize(m_stackedWidget->size());
}

void UtilsSidebar::slotShowWidget(QWidget *widget)
{
    int itemId = NoId;
    int childId = NoId;
    getIdsFromMap(widget, &itemId, &childId);
    if (itemId >= 0 && childId >= 0 && m_sidebarWidget)
        m_sidebarWidget->checkChild(itemId, childId);
}

void UtilsSidebar::slotSidebarChildToggled(int itemId, int childId, bool checked)
{
    if (!checked)
        return;
    const QPointer<QWidget> page = getWidgetFromMap(itemId, childId);
    if (!page || !m_stackedWidget)
        return;
    const QPointer<UtilsSidebar> self(this);
    m_stackedWidget->setCurrentWidget(page);
    if (self && page) // a receiver of currentChanged() may have deleted either
        Q_EMIT signalWidgetShown(page);
}
