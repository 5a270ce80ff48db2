#include <UtilsTabWidget.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QTabBar>
#include <QVBoxLayout>

class tst_UtilsTabWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStated();
    void theTitleIsTranslatedInTheContextOfTheClass();
    void theTabBarTakesTheWholeWidth_data();
    void theTabBarTakesTheWholeWidth();
    void theTabBarFollowsEveryResize();
    void theTabsShareTheWidth();
    void aReplacedTabBarFollowsToo();
};

namespace {

class OwnBar : public UtilsTabWidget
{
public:
    OwnBar()
    {
        setTabBar(new QTabBar);
    }
};

} // namespace

void tst_UtilsTabWidget::theFormIsAsStated()
{
    QWidget parent;
    const UtilsTabWidget tabs(&parent);
    QCOMPARE(tabs.parentWidget(), &parent);
    QCOMPARE(tabs.objectName(), QStringLiteral("UtilsTabWidget"));
    QCOMPARE(tabs.size(), QSize(400, 300));
    QCOMPARE(tabs.windowTitle(), QStringLiteral("TabWidget"));
    QCOMPARE(tabs.currentIndex(), -1);
    QCOMPARE(tabs.count(), 0);
}

void tst_UtilsTabWidget::theTitleIsTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsTabWidget");
    const UtilsTabWidget tabs;
    QCOMPARE(tabs.windowTitle(), QStringLiteral("<TabWidget>"));
}

void tst_UtilsTabWidget::theTabBarTakesTheWholeWidth_data()
{
    QTest::addColumn<QTabWidget::TabPosition>("position");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("tabs above") << QTabWidget::North << Qt::LeftToRight;
    QTest::newRow("tabs below") << QTabWidget::South << Qt::LeftToRight;
    QTest::newRow("right to left") << QTabWidget::North << Qt::RightToLeft;
    QTest::newRow("right to left, tabs below") << QTabWidget::South << Qt::RightToLeft;
}

void tst_UtilsTabWidget::theTabBarTakesTheWholeWidth()
{
    QFETCH(QTabWidget::TabPosition, position);
    QFETCH(Qt::LayoutDirection, direction);
    UtilsTabWidget tabs;
    tabs.setTabPosition(position);
    tabs.setLayoutDirection(direction);
    tabs.addTab(new QWidget, QStringLiteral("A"));
    tabs.show();
    QCOMPARE(tabs.tabBar()->minimumWidth(), 400);

    tabs.resize(640, 300);
    QCOMPARE(tabs.tabBar()->minimumWidth(), 640);
    QCOMPARE(tabs.tabBar()->maximumWidth(), 640);
    QCOMPARE(tabs.tabBar()->width(), 640);
    QCOMPARE(tabs.tabBar()->x(), 0);

    // Whatever lays the tabs out anew, their bar stays where it is.
    tabs.addTab(new QWidget, QStringLiteral("B"));
    tabs.setTabText(0, QStringLiteral("A longer text"));
    QCoreApplication::processEvents();
    QCOMPARE(tabs.tabBar()->x(), 0);
    QCOMPARE(tabs.tabBar()->width(), 640);
}

void tst_UtilsTabWidget::theTabBarFollowsEveryResize()
{
    // The fixed width of the bar must not keep a layout from making the tab widget smaller again.
    QWidget window;
    window.resize(700, 200);
    auto *page = new QWidget(&window);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *tabs = new UtilsTabWidget;
    tabs->addTab(new QWidget, QStringLiteral("A"));
    layout->addWidget(tabs);
    window.show();
    for (const int width : {640, 200, 320}) {
        page->resize(width, 200);
        QTRY_COMPARE(tabs->width(), width);
        QTRY_COMPARE(tabs->tabBar()->width(), width);
    }
}

void tst_UtilsTabWidget::theTabsShareTheWidth()
{
    UtilsTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("A"));
    tabs.addTab(new QWidget, QStringLiteral("A"));
    tabs.resize(640, 300);
    tabs.show();
    QTRY_COMPARE(tabs.tabBar()->tabRect(0).width(), 320);
    QCOMPARE(tabs.tabBar()->tabRect(1).width(), 320);
}

void tst_UtilsTabWidget::aReplacedTabBarFollowsToo()
{
    OwnBar tabs;
    tabs.addTab(new QWidget, QStringLiteral("A"));
    tabs.resize(640, 300);
    tabs.show();
    QTRY_COMPARE(tabs.tabBar()->width(), 640);
}

UNIPROG_TEST_MAIN(tst_UtilsTabWidget)

#include "tst_utilstabwidget.moc"
