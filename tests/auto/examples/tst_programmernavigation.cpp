#include "ProgrammerApplication.h"

#include <Page.h>
#include <UtilsHelpContextMenu.h>
#include <UtilsSidebarItem.h>
#include <UtilsToggleSwitch.h>

#include <UniProgTest.h>

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>
#include <QWindow>

#include <algorithm>
#include <memory>

using Operation = ProgrammerSession::Operation;

/// How the user of the programmer example gets around: the sidebar, keys, and what is there with which driver.
class tst_ProgrammerNavigation : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theSidebarLeadsToEveryPage();
    void keysLeadThroughAllPages();
    void keysLeadToTheSections();
    void keysOfMissingSectionsDoNothing();
    void everyControlIsReachedByTab();
    void everySwitchHasANameAndFollowsTheSpaceKey();
    void everyPageOffersHelp();
    void anOperationShowsItsPage();
    void anExternalDriverHasNoPagesOfAProgrammer();
    void anExternalDriverRunsOperationsOnTheTarget();

private:
    QTemporaryDir settings;
};

namespace {

const QStringList AllPages{
    QStringLiteral("targetPage"),        QStringLiteral("capturePage"),        QStringLiteral("devicesPage"),
    QStringLiteral("configurationPage"), QStringLiteral("deviceFirmwarePage"), QStringLiteral("wifiPage"),
    QStringLiteral("supplyPage"),        QStringLiteral("powerModulePage"),    QStringLiteral("optionsPage"),
    QStringLiteral("applicationPage"),   QStringLiteral("faultPage"),          QStringLiteral("guidePage"),
    QStringLiteral("aboutPage")};
const QStringList PagesWithExternalDriver{QStringLiteral("targetPage"),  QStringLiteral("devicesPage"),
                                          QStringLiteral("optionsPage"), QStringLiteral("applicationPage"),
                                          QStringLiteral("guidePage"),   QStringLiteral("aboutPage")};

bool activate(const ProgrammerApplication &application)
{
    application.window.windowHandle()->requestActivate();
    return QTest::qWaitForWindowActive(application.window.windowHandle());
}

/// Presses the key until the first page is there again.
QStringList walk(ProgrammerApplication &application, Qt::Key key)
{
    QStringList names;
    do {
        names.append(application.page()->objectName());
        QTest::keyClick(&application.window, key, Qt::ControlModifier);
    } while (application.page()->objectName() != names.constFirst() && names.size() <= AllPages.size());
    return names;
}

/// What a user works with; the parts of a larger control are left to it.
QList<QWidget *> controlsOf(const Page *page)
{
    QList<QWidget *> controls;
    const auto all = page->findChildren<QWidget *>();
    for (QWidget *widget : all) {
        const bool isControl = qobject_cast<QAbstractButton *>(widget) || qobject_cast<QLineEdit *>(widget)
            || qobject_cast<QComboBox *>(widget) || qobject_cast<QAbstractSpinBox *>(widget)
            || qobject_cast<QAbstractItemView *>(widget) || qobject_cast<QPlainTextEdit *>(widget);
        bool isPart = false;
        for (QWidget *parent = widget->parentWidget(); parent != page; parent = parent->parentWidget())
            isPart = isPart || qobject_cast<QAbstractItemView *>(parent) || qobject_cast<QComboBox *>(parent)
                || qobject_cast<QAbstractSpinBox *>(parent);
        if (isControl && !isPart && widget->isEnabled() && widget->isVisible())
            controls.append(widget);
    }
    return controls;
}

} // namespace

void tst_ProgrammerNavigation::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path()); // no trace in the user's own
}

void tst_ProgrammerNavigation::theSidebarLeadsToEveryPage()
{
    ProgrammerApplication application;
    QStringList names;
    const auto sections = application.window.findChildren<UtilsSidebarItem *>();
    QCOMPARE(sections.size(), 5);
    for (const UtilsSidebarItem *section : sections) {
        QVERIFY(section->isVisible());
        section->findChild<QToolButton *>(QStringLiteral("toolButton_main"))->setChecked(true);
        const auto buttons = section->findChildren<QToolButton *>();
        for (QToolButton *button : buttons) {
            if (button->objectName() == QLatin1String("toolButton_main"))
                continue;
            button->setChecked(true);
            QCOMPARE(button->text(), application.page()->windowTitle());
            QVERIFY(application.page()->isVisible());
            names.append(application.page()->objectName());
        }
    }
    QCOMPARE(names, AllPages);
}

void tst_ProgrammerNavigation::keysLeadThroughAllPages()
{
    ProgrammerApplication application;
    QVERIFY(activate(application));
    QCOMPARE(walk(application, Qt::Key_PageDown), AllPages);
    QStringList backwards = walk(application, Qt::Key_PageUp);
    std::reverse(backwards.begin() + 1, backwards.end());
    QCOMPARE(backwards, AllPages);
}

void tst_ProgrammerNavigation::keysLeadToTheSections()
{
    ProgrammerApplication application;
    QVERIFY(activate(application));
    const QStringList firstPages{QStringLiteral("targetPage"), QStringLiteral("devicesPage"),
                                 QStringLiteral("supplyPage"), QStringLiteral("optionsPage"),
                                 QStringLiteral("guidePage")};
    for (int section : {4, 0, 2, 1, 3}) {
        QTest::keyClick(&application.window, Qt::Key(Qt::Key_1 + section), Qt::ControlModifier);
        QCOMPARE(application.page()->objectName(), firstPages.at(section));
        QVERIFY(application.page()->isAncestorOf(QApplication::focusWidget()));
        QVERIFY(controlsOf(application.page()).isEmpty() || QApplication::focusWidget() != application.page());
    }
}

void tst_ProgrammerNavigation::keysOfMissingSectionsDoNothing()
{
    ProgrammerApplication application(std::make_unique<SimulatedProgrammer>());
    QVERIFY(activate(application));
    QTest::keyClick(&application.window, Qt::Key_3, Qt::ControlModifier);
    QCOMPARE(application.page()->objectName(), QStringLiteral("targetPage"));
}

void tst_ProgrammerNavigation::everyControlIsReachedByTab()
{
    ProgrammerApplication application;
    QVERIFY(activate(application));
    QVERIFY(application.loadImage());
    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    QVERIFY(application.runToSuccess(Operation::ReadLevels));
    QVERIFY(application.runToSuccess(Operation::Read));
    QVERIFY(activate(application));
    for (const QString &name : AllPages) {
        QTest::keyClick(&application.window, Qt::Key_PageDown, Qt::ControlModifier);
        const QList<QWidget *> controls = controlsOf(application.page());
        QSet<QWidget *> reached;
        QWidget *first = QApplication::focusWidget();
        do {
            reached.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && reached.size() <= 100);
        for (QWidget *control : controls)
            QVERIFY2(reached.contains(control),
                     qPrintable(application.page()->objectName() + u' ' + control->objectName()));
        QVERIFY2(AllPages.contains(application.page()->objectName()), qPrintable(name));
    }
}

void tst_ProgrammerNavigation::everySwitchHasANameAndFollowsTheSpaceKey()
{
    ProgrammerApplication application;
    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    const auto switches = application.window.findChildren<UtilsToggleSwitch *>();
    QCOMPARE(switches.size(), 6);
    QSet<QString> names;
    for (UtilsToggleSwitch *toggle : switches) {
        const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(toggle);
        QVERIFY(interface);
        const QString name = interface->text(QAccessible::Name);
        QVERIFY2(!name.isEmpty() && !name.contains(u'&') && !name.endsWith(u':'), qPrintable(name));
        names.insert(name);
        QCOMPARE(bool(interface->state().checked), toggle->isChecked());
        const bool before = toggle->isChecked();
        QTest::keyClick(toggle, Qt::Key_Space);
        QCOMPARE(toggle->isChecked(), !before);
        QCOMPARE(bool(interface->state().checked), !before);
    }
    QCOMPARE(names.size(), switches.size());
}

void tst_ProgrammerNavigation::everyPageOffersHelp()
{
    ProgrammerApplication application;
    for (const QString &name : AllPages) {
        const auto *page = application.window.findChild<Page *>(name);
        QVERIFY2(page, qPrintable(name));
        QCOMPARE(page->contextMenuPolicy(), Qt::CustomContextMenu);
        QVERIFY(page->findChild<UtilsHelpContextMenu *>(QString(), Qt::FindDirectChildrenOnly));
        QCOMPARE(page->accessibleName(), page->windowTitle());
    }
}

void tst_ProgrammerNavigation::anOperationShowsItsPage()
{
    ProgrammerApplication application;
    QVERIFY(application.runToSuccess(Operation::ReadLevels));
    QCOMPARE(application.page()->objectName(), QStringLiteral("supplyPage"));
    QVERIFY(application.runToSuccess(Operation::Detect));
    QCOMPARE(application.page()->objectName(), QStringLiteral("targetPage"));
}

void tst_ProgrammerNavigation::anExternalDriverHasNoPagesOfAProgrammer()
{
    ProgrammerApplication application(std::make_unique<SimulatedProgrammer>());
    QVERIFY(activate(application));
    QCOMPARE(walk(application, Qt::Key_PageDown), PagesWithExternalDriver);
    QStringList sections;
    const auto items = application.window.findChildren<UtilsSidebarItem *>();
    for (const UtilsSidebarItem *item : items) {
        if (item->isVisible())
            sections.append(item->findChild<QToolButton *>(QStringLiteral("toolButton_main"))->text().trimmed());
    }
    QCOMPARE(sections,
             QStringList({QStringLiteral("TARGET"), QStringLiteral("BRAMLOCK"), QStringLiteral("OPTIONS"),
                          QStringLiteral("HELP")}));
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QCOMPARE(application.find<QToolButton>(description.name) != nullptr,
                 description.subject == ProgrammerSession::Subject::Target);
    QVERIFY(!application.find<QComboBox>("faultEdit"));
    QVERIFY(!application.find<UtilsToggleSwitch>("overWiFi"));
}

void tst_ProgrammerNavigation::anExternalDriverRunsOperationsOnTheTarget()
{
    auto driver = std::make_unique<SimulatedProgrammer>();
    driver->setTimeScale(0);
    const SimulatedProgrammer *programmer = driver.get();
    ProgrammerApplication application(std::move(driver));
    QVERIFY(application.loadImage());
    QVERIFY(application.runToSuccess(Operation::Write));
    QCOMPARE(programmer->successCount(SimulatedProgrammer::Operation::WriteTarget), 1);
    QCOMPARE(application.session.programmer().callCount(SimulatedProgrammer::Operation::WriteTarget), 0);
}

UNIPROG_TEST_MAIN(tst_ProgrammerNavigation)

#include "tst_programmernavigation.moc"
