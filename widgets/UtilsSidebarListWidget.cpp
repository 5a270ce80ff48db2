#include "UtilsSidebarListWidget.h"

#include <QAccessibleWidget>
#include <QWheelEvent>

static constexpr QSize GridSize(0, 30);

/// A group of buttons. The items that a list usually tells of are empty here, and toggling one presses no button.
class UtilsSidebarListWidget::Accessible : public QAccessibleWidget
{
public:
    explicit Accessible(UtilsSidebarListWidget *list)
        : QAccessibleWidget(list, QAccessible::Grouping)
    { }

    static QAccessibleInterface *create(const QString &, QObject *object)
    {
        auto *list = qobject_cast<UtilsSidebarListWidget *>(object);
        return list ? new Accessible(list) : nullptr;
    }
};

UtilsSidebarListWidget::UtilsSidebarListWidget(QWidget *parent)
    : QListWidget(parent)
{
    static const bool accessible = (QAccessible::installFactory(&Accessible::create), true);
    Q_UNUSED(accessible)

    setProperty("background-color", QStringLiteral("transparent"));
    setMaximumHeight(0);
    setDropIndicatorShown(false);
    setWrapping(false);
    setSpacing(0);
    setGridSize(GridSize);

    // It is as high as its rows: a frame would take their room, and scroll bars would flicker while it opens.
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAutoScroll(false);
    // The buttons in it take no focus, and a closed list would take it where nobody sees it.
    setFocusPolicy(Qt::NoFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
}

UtilsSidebarListWidget::~UtilsSidebarListWidget() = default;

QSize UtilsSidebarListWidget::sizeHint() const
{
    return QSize(QListWidget::sizeHint().width(), count() * gridSize().height());
}

bool UtilsSidebarListWidget::event(QEvent *event)
{
    const bool isHandled = QListWidget::event(event);
    // The buttons in it would still count as shown, though nobody sees them.
    if (event->type() == QEvent::Resize)
        viewport()->setVisible(height() > 0);
    return isHandled;
}

void UtilsSidebarListWidget::wheelEvent(QWheelEvent *event)
{
    event->accept();
}
