#include "UtilsTabWidget.h"

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

void UtilsTabWidget::setupForm()
{
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("UtilsTabWidget"));
    resize(InitialSize);
    setWindowTitle(tr("TabWidget"));
    setCurrentIndex(-1);
}
