#include "SidebarTest.h"

#include <UtilsFade.h>

#include <QGraphicsOpacityEffect>
#include <QPointer>
#include <QSignalSpy>

// Pages that are removed, replaced or deleted by others, and the ends of sidebar and parent.
class tst_UtilsSidebar_lifetimes : public SidebarTest
{
    Q_OBJECT

private Q_SLOTS:
    void deletingTheObjectDeletesColumnAndStackLater();
    void theObjectSurvivesItsParent();
    void aRemovedPageLeavesNothing();
    void aPageMayBeRemovedWhenItIsShown();
    void aPageMayBeDeletedWhenItBecomesCurrent();
    void aPageThatFadesMayBeRemoved();
    void aPageThatOthersDeleteIsForgotten();
    void aPageMayBeRegisteredAgain();
    void aReplacedPageHandsItsPlaceOver();
    void theCurrentPageIsReplacedInView();
    void aPageOutsideTheStackIsNotDeleted();
    void whatCannotBeReplacedStays();
    void updateConnectionDecidesByWhatThereIs();
};

void tst_UtilsSidebar_lifetimes::deletingTheObjectDeletesColumnAndStackLater()
{
    const QPointer<QWidget> column = sidebar->getSidebarWidget();
    const QPointer<QWidget> stack = sidebar->getUtilsStackedWidget();
    const QPointer<QWidget> page = addPage("Flash", 0, Target);
    delete sidebar;
    QVERIFY(column && stack && page);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!column && !stack && !page);

    sidebar = UtilsSidebar::getInstance(window.get());
    QCOMPARE(sidebar->getSidebarItemId_help(), 5);
    QCOMPARE(sidebar->getSidebarWidget()->parentWidget(), window.get());
}

void tst_UtilsSidebar_lifetimes::theObjectSurvivesItsParent()
{
    QPointer<QWidget> page = addPage("Flash", 0, Target);
    sidebar->slotShowWidget(page);
    window.reset();
    QVERIFY(!page);
    QVERIFY(!sidebar->getSidebarWidget());
    QVERIFY(!sidebar->getUtilsStackedWidget());
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);

    QLabel label;
    sidebar->addConnection(&label, 0, Target);
    sidebar->removeConnection(&label);
    sidebar->updateConnection(&label, nullptr, 0, Target);
    sidebar->slotShowWidget(&label);
    sidebar->slotSidebarChildToggled(1, 1, true);
    sidebar->setCaption(&label, "caption");
    sidebar->setCaptionForMainButton(1, "CAPTION");
    sidebar->setWidgetSize(&label);
    QCOMPARE(ids(&label), qMakePair(-1, -1));
}

void tst_UtilsSidebar_lifetimes::aRemovedPageLeavesNothing()
{
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->slotShowWidget(flash);
    QTRY_COMPARE(list(Target)->maximumHeight(), 60);
    sidebar->removeConnection(flash);
    QVERIFY(flash); // deleted later
    QCOMPARE(sidebar->getUtilsStackedWidget()->indexOf(flash), -1);
    QCOMPARE(ids(flash), qMakePair(-1, -1));
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);
    QCOMPARE(captions(Target), QStringList("Memory"));
    QCOMPARE(ids(memory), qMakePair(1, 2));
    sidebar->removeConnection(flash);
    QTRY_VERIFY(!flash);
    QTRY_COMPARE(list(Target)->maximumHeight(), 30);
    QCOMPARE(ids(addPage("New", 0, Target)), qMakePair(1, 3));

    QLabel stranger;
    sidebar->removeConnection(&stranger);
    QCOMPARE(captions(Target), (QStringList{"New", "Memory"}));
}

void tst_UtilsSidebar_lifetimes::aPageMayBeRemovedWhenItIsShown()
{
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    addPage("Memory", 1, Target);
    connect(sidebar, &UtilsSidebar::signalWidgetShown, sidebar, &UtilsSidebar::removeConnection);
    sidebar->slotShowWidget(flash);
    QCOMPARE(captions(Target), QStringList("Memory"));
    QTRY_VERIFY(!flash);
}

void tst_UtilsSidebar_lifetimes::aPageMayBeDeletedWhenItBecomesCurrent()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    addPage("Flash", 0, Target);
    QPointer<QLabel> memory = addPage("Memory", 1, Target);
    connect(sidebar->getUtilsStackedWidget(), &QStackedWidget::currentChanged, this, [&memory] { delete memory; });
    sidebar->slotShowWidget(memory);
    QVERIFY(!memory);
    QCOMPARE(shown.count(), 0);
    QCOMPARE(captions(Target), QStringList("Flash"));
}

void tst_UtilsSidebar_lifetimes::aPageThatFadesMayBeRemoved()
{
    window->setCentralWidget(sidebar->getUtilsStackedWidget());
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    QPointer<UtilsFade> fade = new UtilsFade(flash, nullptr, 5000, 5000);
    fade->SelfDestroyEnabled(true);
    fade->Out(nullptr);
    QTRY_VERIFY(qobject_cast<QGraphicsOpacityEffect *>(flash->graphicsEffect())->opacity() < 1);
    sidebar->removeConnection(flash);
    QTRY_VERIFY(!flash);
    QTRY_VERIFY(!fade);
    sidebar->slotShowWidget(memory);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QVERIFY(memory->isVisible());
}

void tst_UtilsSidebar_lifetimes::aPageThatOthersDeleteIsForgotten()
{
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->addConnection(flash, 0, Power);
    sidebar->slotShowWidget(flash);
    delete flash;
    QCOMPARE(captions(Target), QStringList("Memory"));
    QCOMPARE(list(Power)->count(), 0);
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);
    QCOMPARE(ids(memory), qMakePair(1, 2));
    sidebar->slotSidebarChildToggled(1, 1, true);
    sidebar->slotShowWidget(memory);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QCOMPARE(ids(addPage("New", 0, Target)), qMakePair(1, 3));
}

void tst_UtilsSidebar_lifetimes::aPageMayBeRegisteredAgain()
{
    auto *page = new QLabel;
    sidebar->addConnection(page, 0, Target);
    QStackedWidget *stack = sidebar->getUtilsStackedWidget();
    stack->removeWidget(page); // by others
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    sidebar->slotShowWidget(page);
    QCOMPARE(stack->currentWidget(), nullptr);
    sidebar->addConnection(page, 0, Options);
    QCOMPARE(stack->indexOf(page), 0);
}

void tst_UtilsSidebar_lifetimes::aReplacedPageHandsItsPlaceOver()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QPointer<QLabel> oldPage = addPage("Old", 0, Target);
    QLabel *other = addPage("Other", 1, Target);
    sidebar->slotShowWidget(other);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QVERIFY(oldPage);
    QCOMPARE(ids(oldPage), qMakePair(-1, -1));
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), newPage);
    QCOMPARE(sidebar->getUtilsStackedWidget()->indexOf(oldPage), -1);
    QVERIFY(sidebar->getUtilsStackedWidget()->indexOf(newPage) >= 0);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), other);
    QCOMPARE(captions(Target), (QStringList{"Old", "Other"}));
    QTRY_VERIFY(!oldPage);

    QCOMPARE(ids(newPage), qMakePair(1, 1));
    child(Target, 0)->click();
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), newPage);
    QCOMPARE(shown.count(), 2);
}

void tst_UtilsSidebar_lifetimes::theCurrentPageIsReplacedInView()
{
    addPage("First", 0, Target);
    QLabel *oldPage = addPage("Old", 1, Target);
    addPage("Last", 2, Target);
    sidebar->slotShowWidget(oldPage);
    QSignalSpy changed(sidebar->getUtilsStackedWidget(), &QStackedWidget::currentChanged);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), newPage);
    QCOMPARE(changed.count(), 1); // no other page in between
    QVERIFY(child(Target, 1)->isChecked());
}

void tst_UtilsSidebar_lifetimes::aPageOutsideTheStackIsNotDeleted()
{
    QPointer<QLabel> oldPage = addPage("Old", 0, Target);
    sidebar->getUtilsStackedWidget()->removeWidget(oldPage);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(oldPage);
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    delete oldPage; // it is nobody's page any more
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    QCOMPARE(captions(Target), QStringList("Old"));
}

void tst_UtilsSidebar_lifetimes::whatCannotBeReplacedStays()
{
    QPointer<QLabel> page = addPage("Page", 0, Target);
    QLabel stranger;
    QLabel newPage;
    sidebar->replaceConnection(&stranger, &newPage);
    sidebar->replaceConnection(page, nullptr);
    sidebar->replaceConnection(page, page);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(page);
    QCOMPARE(ids(page), qMakePair(1, 1));
    QCOMPARE(ids(&newPage), qMakePair(-1, -1));
    QCOMPARE(sidebar->getUtilsStackedWidget()->count(), 1);
}

void tst_UtilsSidebar_lifetimes::updateConnectionDecidesByWhatThereIs()
{
    QPointer<QLabel> first = new QLabel;
    first->setObjectName("First");
    QCOMPARE(sidebar->updateConnection(first, nullptr, 0, Options), first);
    QCOMPARE(ids(first), qMakePair(4, 1));

    QPointer<QLabel> second = new QLabel;
    QCOMPARE(sidebar->updateConnection(second, first, 3, Help), second);
    QCOMPARE(ids(second), qMakePair(4, 1));
    QTRY_VERIFY(!first);

    QCOMPARE(sidebar->updateConnection(nullptr, second, 0, Options), nullptr);
    QCOMPARE(list(Options)->count(), 0);
    QTRY_VERIFY(!second);
}

UNIPROG_TEST_MAIN(tst_UtilsSidebar_lifetimes)
#include "tst_utilssidebar_lifetimes.moc"
