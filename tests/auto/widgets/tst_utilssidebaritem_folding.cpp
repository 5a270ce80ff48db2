#include "SidebarSection.h"

#include <ReferenceAnimation.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QButtonGroup>

// How a section's list of children opens and closes, whatever comes in between.
class tst_UtilsSidebarItem_folding : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void openingEmitsNothing();
    void closingSaysThatTheItemIsOff();
    void foldingTakesItsTime();
    void theSectionStaysOpenWhenNothingChanges();
    void theGroupIsExclusiveWhileOpen();
    void openedAndClosedInOneTurnItIsClosed();
    void closedAndOpenedInOneTurnItIsOpen();
    void aChildOfAnOpenSectionGrowsTheList();
    void aChildOfAClosedSectionChangesNothing();
    void aChildThatComesWhileTheListOpensIsShown();
    void aChildThatComesWhileTheListClosesStaysHidden();
    void aChildOfASelectedSectionStaysHidden();
    void aRemovedChildShrinksTheList();
    void theLastChildMayBeRemovedWhileOpen();
    void theChildrenOfAnOpenSectionMayBeExchanged();
    void theSectionMayDieWhileItOpens();
};

void tst_UtilsSidebarItem_folding::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A widget was left behind.");
}

/// Waits until a section that begins to open now is open: what was begun before is at its end by then, too.
static void settle()
{
    const Section later(1);
    later.main()->click();
    QTRY_COMPARE(later.height(), 30);
}

void tst_UtilsSidebarItem_folding::openingEmitsNothing()
{
    Section section(3);
    section.main()->click();
    QVERIFY(section.main()->isChecked());
    QVERIFY(section.main()->isEnabled());
    QTRY_COMPARE(section.height(), 90);
    QCOMPARE(section.log, QStringList());
}

void tst_UtilsSidebarItem_folding::closingSaysThatTheItemIsOff()
{
    Section section(3);
    section.main()->click();
    QTRY_COMPARE(section.height(), 90);
    section.main()->click();
    QVERIFY(!section.main()->isChecked());
    QTRY_COMPARE(section.height(), 0);
    QCOMPARE(section.log, QStringList("item off"));
}

void tst_UtilsSidebarItem_folding::foldingTakesItsTime()
{
    constexpr int Duration = 150; // ms
    Section section(3);
    section.main()->click();
    {
        const ReferenceAnimation opens(section.list(), "maximumHeight", 0, 90, Duration, QEasingCurve::Linear);
        QTRY_VERIFY(opens.hasEnded());
        QVERIFY(opens.agrees());
    }
    section.item->addChild("another", 3);
    {
        const ReferenceAnimation grows(section.list(), "maximumHeight", 90, 120, Duration, QEasingCurve::Linear);
        QTRY_VERIFY(grows.hasEnded());
        QVERIFY(grows.agrees());
    }
    section.item->removeChild(1);
    {
        const ReferenceAnimation shrinks(section.list(), "maximumHeight", 120, 90, Duration, QEasingCurve::Linear);
        QTRY_VERIFY(shrinks.hasEnded());
        QVERIFY(shrinks.agrees());
    }
    section.main()->click();
    {
        const ReferenceAnimation closes(section.list(), "maximumHeight", 90, 0, Duration, QEasingCurve::Linear);
        QTRY_VERIFY(closes.hasEnded());
        QVERIFY(closes.agrees());
    }
}

void tst_UtilsSidebarItem_folding::theSectionStaysOpenWhenNothingChanges()
{
    Section section(2);
    section.main()->click();
    QTRY_COMPARE(section.height(), 60);
    section.item->on_toolButton_main_toggled(true); // there already: nothing to animate
    QCOMPARE(section.height(), 60);
    QCOMPARE(section.log, QStringList());
}

void tst_UtilsSidebarItem_folding::theGroupIsExclusiveWhileOpen()
{
    const Section section(2);
    auto *group = section.item->findChild<QButtonGroup *>();
    QVERIFY(!group->exclusive());
    section.main()->click();
    QVERIFY(group->exclusive());
    section.main()->click();
    QVERIFY(!group->exclusive());
    // Also when there is no child any more, so that one that comes later can be unchecked.
    section.main()->click();
    section.item->removeChild(1);
    section.item->removeChild(2);
    section.main()->setChecked(false);
    QVERIFY(!group->exclusive());
}

void tst_UtilsSidebarItem_folding::openedAndClosedInOneTurnItIsClosed()
{
    const Section section(3);
    section.main()->setChecked(true);
    section.main()->setChecked(false);
    settle();
    QCOMPARE(section.height(), 0);
}

void tst_UtilsSidebarItem_folding::closedAndOpenedInOneTurnItIsOpen()
{
    const Section section(3);
    section.main()->setChecked(true);
    QTRY_COMPARE(section.height(), 90);
    section.main()->setChecked(false);
    section.main()->setChecked(true);
    settle();
    QCOMPARE(section.height(), 90);
}

void tst_UtilsSidebarItem_folding::aChildOfAnOpenSectionGrowsTheList()
{
    const Section section(2);
    section.main()->click();
    QTRY_COMPARE(section.height(), 60);
    section.item->addChild("another", 2);
    QCOMPARE(section.height(), 60); // not at once
    QTRY_COMPARE(section.height(), 90);
}

void tst_UtilsSidebarItem_folding::aChildOfAClosedSectionChangesNothing()
{
    const Section section(2);
    section.item->addChild("another", 2);
    settle();
    QCOMPARE(section.height(), 0);
    section.main()->click();
    QTRY_COMPARE(section.height(), 90);
}

void tst_UtilsSidebarItem_folding::aChildThatComesWhileTheListOpensIsShown()
{
    const Section section(2);
    section.main()->click();
    section.item->addChild("another", 2);
    QTRY_COMPARE(section.height(), 90);
    settle();
    QCOMPARE(section.height(), 90);
}

void tst_UtilsSidebarItem_folding::aChildThatComesWhileTheListClosesStaysHidden()
{
    const Section section(2);
    section.main()->click();
    QTRY_COMPARE(section.height(), 60);
    section.main()->click();
    section.item->addChild("another", 2);
    settle();
    QCOMPARE(section.height(), 0);
}

void tst_UtilsSidebarItem_folding::aChildOfASelectedSectionStaysHidden()
{
    Section section;
    section.main()->click();
    section.item->addChild("late", 0);
    settle();
    QCOMPARE(section.height(), 0);
    QVERIFY(section.main()->isChecked());
    section.item->reset();
    section.main()->click();
    QTRY_COMPARE(section.height(), 30);
}

void tst_UtilsSidebarItem_folding::aRemovedChildShrinksTheList()
{
    const Section section(3);
    section.main()->click();
    QTRY_COMPARE(section.height(), 90);
    section.item->removeChild(2);
    QTRY_COMPARE(section.height(), 60);
    QCOMPARE(section.captions(), (QStringList{"child 1", "child 3"}));

    section.main()->click();
    QTRY_COMPARE(section.height(), 0);
    section.item->removeChild(1);
    section.main()->click();
    QTRY_COMPARE(section.height(), 30);
}

void tst_UtilsSidebarItem_folding::theLastChildMayBeRemovedWhileOpen()
{
    Section section(1);
    section.item->checkChild(1);
    QTRY_COMPARE(section.height(), 30);
    section.item->removeChild(1);
    QTRY_COMPARE(section.height(), 0);
    section.item->reset();
    QVERIFY(section.main()->isEnabled());

    // The section is an ordinary one again.
    QCOMPARE(section.item->addChild("new", 0), 2);
    section.takeLog();
    section.item->checkChild(2);
    QTRY_COMPARE(section.height(), 30);
    section.item->reset();
    QVERIFY(!section.childAt(0)->isChecked());
}

void tst_UtilsSidebarItem_folding::theChildrenOfAnOpenSectionMayBeExchanged()
{
    Section section(2);
    section.item->checkChild(1);
    QTRY_COMPARE(section.height(), 60);
    section.item->removeChild(1);
    section.item->removeChild(2);
    section.item->addChild("new", 0);
    section.item->addChild("newer", 1);
    QTRY_COMPARE(section.height(), 60);

    section.item->removeChild(3);
    section.item->removeChild(4);
    QTRY_VERIFY(section.height() < 60);
    section.item->addChild("newest", 0);
    QTRY_COMPARE(section.height(), 30);
    settle();
    QCOMPARE(section.height(), 30);
}

void tst_UtilsSidebarItem_folding::theSectionMayDieWhileItOpens()
{
    Section section(3);
    section.main()->click();
    QTRY_VERIFY(section.height() > 0);
    section.item.reset();
    settle();
}

UNIPROG_TEST_MAIN(tst_UtilsSidebarItem_folding)
#include "tst_utilssidebaritem_folding.moc"
