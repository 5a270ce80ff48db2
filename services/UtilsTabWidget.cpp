#include "UtilsTabWidget.h"

#include <QStyleOptionTabWidgetFrame>
#include <QTabBar>

namespace {

constexpr QSize InitialSize(400, 300);

} // namespace

UtilsTabWidget::UtilsTabWidget(QWidget *parent)
    : QTabWidget(parent)
{
    setupForm();
}

UtilsTabWidget::~UtilsTabWidget() = default;

void UtilsTabWidget::resizeEvent(QResizeEvent *event)
{
    tabBar()->setFixedWidth(width());
    QTabWidget::resizeEvent(event);
}

// The style places the bar by the width it asks for. Read from right to left, one of a larger width would begin in the
// middle of the widget and end outside of it.
void UtilsTabWidget::initStyleOption(QStyleOptionTabWidgetFrame *option) const
{
    QTabWidget::initStyleOption(option);
    if (tabPosition() == North || tabPosition() == South)
        option->tabBarSize.setWidth(width());
}

void UtilsTabWidget::setupForm()
{
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("UtilsTabWidget"));
    resize(InitialSize);
    setWindowTitle(tr("TabWidget"));
    setCurrentIndex(-1);
}
