#include "SidebarPage.h"

#include "../EventMonitor.h"

#include <UtilsSidebar.h>
#include <UtilsSidebarWidget.h>
#include <UtilsStackedWidget.h>

#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int NavigationHeight = 370;
constexpr int ColumnHeight = 210;

} // namespace

SidebarPage::SidebarPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
    , m_sidebar(UtilsSidebar::getInstance(this))
{
    addSample(tr("Sections\nof its own"), [this](QWidget *page) { return newColumn(page); });
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, newNavigation());
}

SidebarPage::~SidebarPage()
{
    // There is one for the whole application; another window of the gallery makes its own.
    delete m_sidebar;
}

QWidget *SidebarPage::newNavigation()
{
    auto *navigation = new QWidget(this);
    navigation->setFixedHeight(NavigationHeight);
    auto *row = new QHBoxLayout(navigation);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_sidebar->getSidebarWidget());
    row->addWidget(m_sidebar->getUtilsStackedWidget(), 1);
    monitor()->watch(m_sidebar, &UtilsSidebar::signalWidgetShown, QStringLiteral("signalWidgetShown"));

    QWidget *first = nullptr;
    const auto addDemoPage = [&](const QString &name, int section) {
        auto *page = new QLabel(tr("The page \"%1\"").arg(name));
        page->setObjectName(name);
        page->setAlignment(Qt::AlignCenter);
        m_sidebar->addConnection(page, m_sidebar->getUtilsStackedWidget()->count(), section);
        if (!first)
            first = page;
    };
    addDemoPage(tr("Memory"), m_sidebar->getSidebarItemId_target());
    addDemoPage(tr("Registers"), m_sidebar->getSidebarItemId_target());
    addDemoPage(tr("Firmware"), m_sidebar->getSidebarItemId_uniProg());
    addDemoPage(tr("Supply"), m_sidebar->getSidebarItemId_power());
    addDemoPage(tr("Connection"), m_sidebar->getSidebarItemId_options());
    addDemoPage(tr("About"), m_sidebar->getSidebarItemId_help());
    m_sidebar->slotShowWidget(first);
    return navigation;
}

QWidget *SidebarPage::newColumn(QWidget *page)
{
    auto *column = new UtilsSidebarWidget(page);
    column->setFixedHeight(ColumnHeight);
    const int power = column->addItem(tr("POWER"), QStringLiteral(":/images/power_light.svg"),
                                      QStringLiteral(":/images/power_yellow.svg"));
    column->addItem(tr("HELP"), QStringLiteral(":/images/info_light.svg"), QStringLiteral(":/images/info_yellow.svg"));
    const int on = column->addChild(tr("On"), power, 0);
    column->addChild(tr("Off"), power, 1);
    column->checkChild(power, on);
    monitor()->watch(column, &UtilsSidebarWidget::SignalChildToggled, QStringLiteral("SignalChildToggled"));
    return column;
}
