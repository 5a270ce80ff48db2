#include "UtilsSidebarWidget.h"

#include "UtilsSidebarItem.h"

#include <QEvent>
#include <QVBoxLayout>

static constexpr QSize InitialSize(342, 296);
static constexpr int NoId = -1;

UtilsSidebarWidget::UtilsSidebarWidget(QWidget *parent)
    : QWidget(parent)
{
    setupForm();
    installEventFilter(this);
}

UtilsSidebarWidget::~UtilsSidebarWidget() = default;

void UtilsSidebarWidget::setupForm()
{
    setObjectName(QStringLiteral("UtilsSidebarWidget"));
    resize(InitialSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setWindowTitle(tr("Form"));

    m_layout = new QVBoxLayout(this);
    m_layout->setObjectName(QStringLiteral("verticalLayout"));
    m_layout->setSpacing(0);
    m_layout->setContentsMargins(0, 0, 0, 0);

    // The empty part of the column looks like a button, so it is a plain QWidget, which a style sheet paints.
    m_filler = new QWidget(this);
    m_filler->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_filler->setProperty("sidebarItem-elementType", QStringLiteral("main-button"));
    m_filler->setProperty("border-radius", false);
    m_layout->addWidget(m_filler);
}

int UtilsSidebarWidget::addItem(const QString &caption, const QString &uncheckedIcon, const QString &checkedIcon)
{
    auto *item = new UtilsSidebarItem(this, this);
    connect(item, &UtilsSidebarItem::SignalChildToggled, this, &UtilsSidebarWidget::SlotChildToggled);
    m_items.append(item);
    ++m_itemCount;
    m_itemsById.insert(m_itemCount, item);
    item->setUp(caption, uncheckedIcon, checkedIcon);
    m_layout->insertWidget(m_layout->indexOf(m_filler), item);
    return m_itemCount;
}

void UtilsSidebarWidget::setItemCaption(int itemId, const QString &caption)
{
    if (UtilsSidebarItem *item = m_itemsById.value(itemId))
        item->setCaption(caption);
}

int UtilsSidebarWidget::getItemIdForChild(int itemId) const
{
    return m_itemsById.contains(itemId) ? itemId : m_itemCount;
}

int UtilsSidebarWidget::addChild(const QString &caption, int itemId, int row)
{
    UtilsSidebarItem *item = m_itemsById.value(getItemIdForChild(itemId));
    return item && row >= 0 ? item->addChild(caption, row) : NoId;
}

void UtilsSidebarWidget::removeChild(int itemId, int childId)
{
    if (UtilsSidebarItem *item = m_itemsById.value(itemId))
        item->removeChild(childId);
}

void UtilsSidebarWidget::setChildCaption(int itemId, int childId, const QString &caption)
{
    if (UtilsSidebarItem *item = m_itemsById.value(itemId))
        item->setChildCaption(childId, caption);
}

void UtilsSidebarWidget::checkChild(int itemId, int childId)
{
    if (UtilsSidebarItem *item = m_itemsById.value(itemId))
        item->checkChild(childId);
}

void UtilsSidebarWidget::SlotItemToggled(UtilsSidebarItem *item, bool checked)
{
    if (!checked)
        return;
    m_currentItem = item;
    resetAllButCurrent();
}

void UtilsSidebarWidget::SlotChildToggled(int childId, bool checked)
{
    const int itemId = m_itemsById.key(qobject_cast<UtilsSidebarItem *>(sender()), NoId);
    Q_EMIT SignalChildToggled(itemId, childId, checked);
}

bool UtilsSidebarWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == this && event->type() == QEvent::Leave) {
        resetAllButCurrent();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void UtilsSidebarWidget::resetAllButCurrent()
{
    const QPointer<UtilsSidebarWidget> self(this);
    const QList<QPointer<UtilsSidebarItem>> items = m_items;
    for (const QPointer<UtilsSidebarItem> &item : items) {
        if (item && item != m_currentItem)
            item->reset();
        if (!self)
            return; // whoever heard of it has deleted the column
    }
}
