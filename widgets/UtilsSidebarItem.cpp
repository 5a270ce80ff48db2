#include "UtilsSidebarItem.h"

#include "UtilsSidebarListWidget.h"
#include "UtilsSidebarWidget.h"

#include <QButtonGroup>
#include <QGraphicsDropShadowEffect>
#include <QPropertyAnimation>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>
#include <QVBoxLayout>

static constexpr QSize InitialSize(309, 58);
static constexpr int MainButtonHeight = 58;
static constexpr QSize MainIconSize(21, 21);
static constexpr int ChildButtonHeight = 30; // that of a row of the list
static constexpr int FoldDuration = 150; // milliseconds
static constexpr qreal ShadowBlurRadius = 8.0;
static constexpr qreal ShadowOffset = 0.0;
static constexpr int NoId = -1;

// The scales of screens that an icon has a picture of its own for, so that none is scaled to fit the button.
static constexpr qreal IconScales[] = {1.0, 1.25, 1.5, 1.75, 2.0, 2.25, 2.5, 3.0};

namespace {

/// Painted as any QToolButton, which it is to a style sheet. But what has a graphics effect is painted by Qt 6.4 as if
/// it were read from left to right: the text would stand at the far end of the button, away from its icon.
class MainButton : public QToolButton
{
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        QStylePainter painter(this);
        painter.setLayoutDirection(layoutDirection());
        painter.drawComplexControl(QStyle::CC_ToolButton, option);
    }
};

} // namespace

static QIcon iconFrom(const QString &path)
{
    // As pixmaps: the engine for SVG would grey the picture for a disabled button, and disabled is what the selected
    // section is.
    const QIcon drawing(path);
    QIcon icon;
    for (const qreal scale : IconScales) {
        const QPixmap picture = drawing.pixmap(MainIconSize * scale, 1.0);
        icon.addPixmap(picture, QIcon::Active, QIcon::On);
        icon.addPixmap(picture, QIcon::Disabled, QIcon::On);
    }
    return icon;
}

UtilsSidebarItem::UtilsSidebarItem(UtilsSidebarWidget *receiver, QWidget *parent)
    : QWidget(parent)
    , m_childGroup(new QButtonGroup(this))
    , m_receiver(receiver)
    , m_shadow(new QGraphicsDropShadowEffect(this))
{
    setupForm();
    m_childGroup->setExclusive(false); // the section is closed

    m_shadow->setBlurRadius(ShadowBlurRadius);
    m_shadow->setOffset(ShadowOffset);
    m_shadow->setColor(Qt::black);
    m_mainButton->setGraphicsEffect(m_shadow);

    connect(m_mainButton, &QToolButton::toggled, this, &UtilsSidebarItem::on_toolButton_main_toggled);
    if (m_receiver)
        connect(this, &UtilsSidebarItem::SignalItemToggled, m_receiver, &UtilsSidebarWidget::SlotItemToggled);
}

UtilsSidebarItem::~UtilsSidebarItem()
{
    if (m_heightAnimation)
        m_heightAnimation->stop(); // which deletes it
    if (m_openSignals == 0)
        return;
    // A receiver deletes the section inside one of its signals, and so inside the change of a button. QAbstractButton
    // goes on with that button when it has said so: the buttons stay until the event loop comes to them.
    for (QToolButton *button : findChildren<QToolButton *>()) {
        button->disconnect(this);
        button->setParent(nullptr);
        button->deleteLater();
    }
}

void UtilsSidebarItem::setupForm()
{
    setObjectName(QStringLiteral("UtilsSidebarItem"));
    resize(InitialSize);
    setWindowTitle(tr("Form"));
    // A column gives its spare height to what is below the sections.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);

    auto *outerLayout = new QVBoxLayout(this);
    outerLayout->setObjectName(QStringLiteral("verticalLayout"));
    outerLayout->setSpacing(0);
    outerLayout->setContentsMargins(0, 0, 0, 0);

    auto *widget = new QWidget(this);
    widget->setObjectName(QStringLiteral("widget"));
    outerLayout->addWidget(widget);
    auto *layout = new QVBoxLayout(widget);
    layout->setObjectName(QStringLiteral("verticalLayout_2"));
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);

    m_mainButton = new MainButton(widget);
    m_mainButton->setObjectName(QStringLiteral("toolButton_main"));
    m_mainButton->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_mainButton->setMinimumHeight(MainButtonHeight);
    m_mainButton->setCheckable(true);
    m_mainButton->setText(tr("PARENT BUTTON"));
    layout->addWidget(m_mainButton);

    m_childList = new UtilsSidebarListWidget(widget);
    m_childList->setObjectName(QStringLiteral("listWidget_children"));
    layout->addWidget(m_childList);
}

void UtilsSidebarItem::setUp(const QString &caption, const QString &uncheckedIcon, const QString &checkedIcon)
{
    m_uncheckedIcon = uncheckedIcon;
    m_checkedIcon = checkedIcon;
    m_uncheckedPicture = iconFrom(m_uncheckedIcon);
    m_checkedPicture = iconFrom(m_checkedIcon);

    setCaption(caption);
    m_mainButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_mainButton->setIconSize(MainIconSize);
    m_mainButton->setIcon(m_mainButton->isChecked() ? m_checkedPicture : m_uncheckedPicture);
    m_mainButton->setProperty("sidebarItem-elementType", QStringLiteral("main-button"));
    m_mainButton->setStyleSheet(
        QStringLiteral("padding-left: 9px; padding-right: 0px;padding-top: 1px; padding-bottom: 1px;"));
    m_mainButton->setFocusPolicy(Qt::NoFocus);
}

void UtilsSidebarItem::setCaption(const QString &caption)
{
    m_mainButton->setText(QLatin1Char(' ') + caption); // the blank keeps it off the icon
    m_mainButton->setAccessibleName(caption);
    m_childList->setAccessibleName(caption);
}

int UtilsSidebarItem::addChild(const QString &caption, int row)
{
    QToolButton *button = createChildButton(caption);
    auto *item = new QListWidgetItem;
    item->setSizeHint(QSize(0, ChildButtonHeight));
    m_childList->insertItem(row, item);
    m_childList->setItemWidget(item, button);
    // Assistive technology reads the buttons in the order of the widgets, not of the rows.
    if (QListWidgetItem *next = m_childList->item(m_childList->row(item) + 1))
        button->stackUnder(m_childList->itemWidget(next));
    m_childGroup->addButton(button);
    connect(button, &QToolButton::toggled, this, &UtilsSidebarItem::SlotChildButtonToggled);

    setStyleSheet(styleSheet()); // a sheet of the section's own sees the properties of the new button

    // Not the button's own height: the next layout of the list gives it that of its row.
    m_childrenHeight += ChildButtonHeight;
    // A list that folds because its last button has gone opens again; one whose section was closed does not.
    if (targetHeight() != 0 || (m_childList->maximumHeight() != 0 && m_mainButton->isChecked()))
        animateHeight(m_childrenHeight);

    ++m_childCount;
    m_childButtons.insert(m_childCount, button);
    return m_childCount;
}

QToolButton *UtilsSidebarItem::createChildButton(const QString &caption)
{
    auto *button = new QToolButton;
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    button->setMinimumHeight(ChildButtonHeight);
    button->setFocusPolicy(Qt::NoFocus);
    button->setCheckable(true);
    button->setText(caption);
    button->setProperty("sidebarItem-elementType", QStringLiteral("child-button"));
    button->setProperty("sidebarItem-elementActionStatus", QStringLiteral("action-exist"));
    return button;
}

void UtilsSidebarItem::removeChild(int childId)
{
    QToolButton *button = m_childButtons.take(childId);
    if (!button)
        return;
    // It lives until the next turn of the event loop, and nothing is to hear of it any more.
    button->disconnect(this);
    m_childGroup->removeButton(button);

    m_childrenHeight -= ChildButtonHeight;
    if (targetHeight() != 0)
        animateHeight(m_childrenHeight);
    delete m_childList->takeItem(rowOf(button));
}

void UtilsSidebarItem::setChildCaption(int childId, const QString &caption)
{
    if (QToolButton *button = m_childButtons.value(childId))
        button->setText(caption);
}

// Whoever hears that something was toggled may delete the section: each operation looks for that after its signals.

void UtilsSidebarItem::checkChild(int childId)
{
    if (!m_childButtons.contains(childId))
        return;
    const QPointer<UtilsSidebarItem> self(this);
    m_mainButton->setChecked(true);
    if (!self)
        return;
    if (QToolButton *button = m_childButtons.value(childId)) // who heard of the opening may have removed it
        button->setChecked(true);
}

void UtilsSidebarItem::reset()
{
    // The main button first: while it is checked, the group keeps one of its buttons checked.
    const QList<int> ids = m_childButtons.keys();
    const QPointer<UtilsSidebarItem> self(this);
    m_mainButton->setChecked(false);
    for (const int id : ids) {
        if (!self)
            return;
        if (QToolButton *button = m_childButtons.value(id)) // as above
            button->setChecked(false);
    }
}

void UtilsSidebarItem::on_toolButton_main_toggled(bool checked)
{
    if (!checked) {
        m_mainButton->setEnabled(true);
        if (!sayToggled(false))
            return;
    }
    // Without children too, for those that come while the section is checked.
    m_childGroup->setExclusive(checked);
    if (!m_childButtons.isEmpty()) {
        animateHeight(checked ? m_childrenHeight : 0);
    } else if (checked) {
        m_mainButton->setEnabled(false); // it stays selected: another click does nothing
        if (!sayToggled(true))
            return;
    }
    m_mainButton->setIcon(m_mainButton->isChecked() ? m_checkedPicture : m_uncheckedPicture);
}

void UtilsSidebarItem::SlotChildButtonToggled(bool checked)
{
    const int id = m_childButtons.key(qobject_cast<QToolButton *>(sender()), NoId);
    m_mainButton->setEnabled(!checked);
    if (!sayToggled(checked))
        return;
    const QPointer<UtilsSidebarItem> self(this);
    ++m_openSignals;
    Q_EMIT SignalChildToggled(id, checked);
    if (self)
        --m_openSignals;
}

/// False when a receiver has deleted the section.
bool UtilsSidebarItem::sayToggled(bool checked)
{
    const QPointer<UtilsSidebarItem> self(this);
    ++m_openSignals;
    Q_EMIT SignalItemToggled(this, checked);
    if (self)
        --m_openSignals;
    return self;
}

int UtilsSidebarItem::rowOf(const QToolButton *button) const
{
    int row = m_childList->count() - 1;
    while (row >= 0 && m_childList->itemWidget(m_childList->item(row)) != button)
        --row;
    return row;
}

int UtilsSidebarItem::targetHeight() const
{
    return m_heightAnimation ? m_heightAnimation->endValue().toInt() : m_childList->maximumHeight();
}

void UtilsSidebarItem::animateHeight(int target)
{
    // One at a time: an animation that opens would go on after the section was closed again in the same turn, when
    // there is no height yet to close from.
    if (m_heightAnimation)
        m_heightAnimation->stop();
    m_heightAnimation = nullptr;

    const int current = m_childList->maximumHeight();
    if (target == current)
        return;
    m_heightAnimation = new QPropertyAnimation(m_childList, "maximumHeight");
    m_heightAnimation->setDuration(FoldDuration);
    m_heightAnimation->setStartValue(current);
    m_heightAnimation->setEndValue(target);
    m_heightAnimation->start(QAbstractAnimation::DeleteWhenStopped);
}
