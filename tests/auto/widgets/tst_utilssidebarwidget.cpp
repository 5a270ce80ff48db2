#include <UtilsSidebarItem.h>
#include <UtilsSidebarListWidget.h>
#include <UtilsSidebarWidget.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

static const QString CheckedIcon = QStringLiteral(":/images/power_yellow.svg");
static const QString UncheckedIcon = QStringLiteral(":/images/power_light.svg");

/// Sections of a column by their ids, with the log of its signal.
struct Column
{
    explicit Column(const QList<int> &childrenOfSections = {})
    {
        for (const int children : childrenOfSections) {
            const int id = widget.addItem(QStringLiteral("SECTION"), UncheckedIcon, CheckedIcon);
            for (int i = 0; i < children; ++i)
                widget.addChild(QStringLiteral("child %1").arg(i + 1), id, i);
        }
        QObject::connect(
            &widget, &UtilsSidebarWidget::SignalChildToggled, [this](int itemId, int childId, bool checked) {
                log.append(QStringLiteral("%1.%2 %3").arg(itemId).arg(childId).arg(checked ? "on" : "off"));
            });
    }

    UtilsSidebarItem *item(int id) const
    {
        return widget.findChildren<UtilsSidebarItem *>().at(id - 1);
    }
    QToolButton *main(int id) const
    {
        return item(id)->findChild<QToolButton *>("toolButton_main");
    }
    UtilsSidebarListWidget *list(int id) const
    {
        return item(id)->findChild<UtilsSidebarListWidget *>("listWidget_children");
    }
    QToolButton *child(int id, int row) const
    {
        return qobject_cast<QToolButton *>(list(id)->itemWidget(list(id)->item(row)));
    }
    /// Which main buttons are checked.
    QList<int> checked() const
    {
        QList<int> ids;
        for (int id = 1; id <= widget.findChildren<UtilsSidebarItem *>().size(); ++id) {
            if (main(id)->isChecked())
                ids.append(id);
        }
        return ids;
    }
    bool leave()
    {
        QEvent event(QEvent::Leave);
        return QApplication::sendEvent(&widget, &event);
    }
    QStringList takeLog()
    {
        return std::exchange(log, {});
    }

    UtilsSidebarWidget widget;
    QStringList log;
};

class tst_UtilsSidebarWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsTheStyleExpects();
    void theTitleIsTranslatedInTheContextOfTheClass();
    void theFillerIsAlwaysLast();
    void sectionsAreCountedFromOne();
    void sectionsStandOneBelowTheOther();

    void childrenGoToTheirSection();
    void childrenOfAnUnknownSectionGoToTheLast();
    void aNegativeRowMakesNoChild();
    void withoutSectionsThereAreNoChildren();
    void unknownIdsAreIgnored();
    void captionsAreRenamed();

    void openingASectionLeavesTheOthers();
    void checkingAChildResetsTheOthers();
    void selectingASectionWithoutChildrenResetsTheOthers();
    void aSelectionChangesHands();
    void checkChildOpensAndSelects();
    void aWholeRunIsReported();
    void aToggleOfNoSectionHasNoId();
    void uncheckedSectionsAreNotMadeCurrent();
    void openedAndClosedInOneTurnByAnother();

    void thePointerThatLeavesClosesWhatIsNotCurrent();
    void thePointerThatLeavesClosesAllWhenNoneIsCurrent();
    void onlyLeaveEventsOfTheColumnAreConsumed();
    void theWheelOnAChildListScrollsNothing();
};

void tst_UtilsSidebarWidget::theFormIsAsTheStyleExpects()
{
    QWidget parent;
    const UtilsSidebarWidget widget(&parent);
    QCOMPARE(widget.parentWidget(), &parent);
    QCOMPARE(widget.objectName(), QStringLiteral("UtilsSidebarWidget"));
    QCOMPARE(widget.size(), QSize(342, 296));
    QCOMPARE(widget.windowTitle(), QStringLiteral("Form"));
    auto *layout = widget.findChild<QVBoxLayout *>("verticalLayout");
    QVERIFY(layout);
    QCOMPARE(widget.layout(), layout);
    QCOMPARE(layout->count(), 1);
    const QWidget *filler = layout->itemAt(0)->widget();
    QVERIFY(filler->metaObject() == &QWidget::staticMetaObject);
    QCOMPARE(filler->property("sidebarItem-elementType"), QVariant(QStringLiteral("main-button")));
    QCOMPARE(filler->property("border-radius"), QVariant(false));
    QCOMPARE(filler->property("border-radius").typeId(), int(QMetaType::Bool));
    for (const QWidget *expanding : {static_cast<const QWidget *>(&widget), filler}) {
        QCOMPARE(expanding->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        QCOMPARE(expanding->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    }
}

void tst_UtilsSidebarWidget::theTitleIsTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsSidebarWidget");
    QCOMPARE(UtilsSidebarWidget().windowTitle(), QStringLiteral("<Form>"));
}

void tst_UtilsSidebarWidget::theFillerIsAlwaysLast()
{
    UtilsSidebarWidget widget;
    QLayout *layout = widget.layout();
    const QWidget *filler = layout->itemAt(0)->widget();
    for (int i = 1; i <= 3; ++i) {
        widget.addItem(QStringLiteral("SECTION"), UncheckedIcon, CheckedIcon);
        QCOMPARE(layout->count(), i + 1);
        QCOMPARE(layout->itemAt(i)->widget(), filler);
    }
}

void tst_UtilsSidebarWidget::sectionsAreCountedFromOne()
{
    UtilsSidebarWidget widget;
    for (int i = 1; i <= 7; ++i)
        QCOMPARE(widget.addItem(QStringLiteral("SECTION"), UncheckedIcon, CheckedIcon), i);
}

void tst_UtilsSidebarWidget::sectionsStandOneBelowTheOther()
{
    Column column({0, 2, 0});
    column.main(1)->setText(" FIRST");
    column.widget.resize(200, 400);
    column.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&column.widget));
    for (int id = 1; id <= 3; ++id)
        QCOMPARE(column.item(id)->geometry(), QRect(0, (id - 1) * 58, 200, 58));
    column.main(2)->click();
    QTRY_COMPARE(column.item(2)->geometry(), QRect(0, 58, 200, 118));
    QCOMPARE(column.item(3)->geometry(), QRect(0, 176, 200, 58));
    QCOMPARE(column.widget.layout()->itemAt(3)->widget()->geometry(), QRect(0, 234, 200, 166));
}

void tst_UtilsSidebarWidget::childrenGoToTheirSection()
{
    Column column({0, 0});
    QCOMPARE(column.widget.addChild("a", 2, 0), 1);
    QCOMPARE(column.widget.addChild("b", 1, 0), 1);
    QCOMPARE(column.widget.addChild("c", 2, 0), 2);
    QCOMPARE(column.child(2, 0)->text(), QStringLiteral("c"));
    QCOMPARE(column.child(2, 1)->text(), QStringLiteral("a"));
    QCOMPARE(column.child(1, 0)->text(), QStringLiteral("b"));
    column.widget.removeChild(2, 1);
    QCOMPARE(column.list(2)->count(), 1);
    QCOMPARE(column.widget.addChild("d", 2, 1), 3);
}

void tst_UtilsSidebarWidget::childrenOfAnUnknownSectionGoToTheLast()
{
    Column column({1, 0});
    for (const int unknown : {-1, 0, 3, 77}) {
        QCOMPARE(column.widget.getItemIdForChild(unknown), 2);
        const int before = column.list(2)->count();
        QCOMPARE(column.widget.addChild("stray", unknown, 0), before + 1);
        QCOMPARE(column.list(2)->count(), before + 1);
    }
    QCOMPARE(column.widget.getItemIdForChild(1), 1);
    QCOMPARE(column.list(1)->count(), 1);
}

void tst_UtilsSidebarWidget::aNegativeRowMakesNoChild()
{
    Column column({0});
    QCOMPARE(column.widget.addChild("a", 1, -1), -1);
    QCOMPARE(column.widget.addChild("a", 1, -100), -1);
    QCOMPARE(column.list(1)->count(), 0);
    QCOMPARE(column.widget.addChild("b", 1, 0), 1);
}

void tst_UtilsSidebarWidget::withoutSectionsThereAreNoChildren()
{
    UtilsSidebarWidget widget;
    QCOMPARE(widget.getItemIdForChild(1), 0);
    QCOMPARE(widget.addChild("a", 1, 0), -1);
    widget.checkChild(1, 1);
    widget.removeChild(1, 1);
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

void tst_UtilsSidebarWidget::unknownIdsAreIgnored()
{
    Column column({1});
    const QList<QPair<int, int>> unknown{{1, 2}, {1, -1}, {2, 1}, {0, 1}, {-1, -1}};
    for (const auto &[itemId, childId] : unknown) {
        column.widget.removeChild(itemId, childId);
        column.widget.checkChild(itemId, childId);
        column.widget.setChildCaption(itemId, childId, "nobody");
    }
    column.widget.setItemCaption(2, "NOBODY");
    QCOMPARE(column.list(1)->count(), 1);
    QCOMPARE(column.child(1, 0)->text(), QStringLiteral("child 1"));
    QCOMPARE(column.checked(), QList<int>());
    QCOMPARE(column.log, QStringList());
}

void tst_UtilsSidebarWidget::captionsAreRenamed()
{
    Column column({1, 1});
    column.widget.setItemCaption(2, "ENERGY");
    column.widget.setChildCaption(2, 1, "Channels");
    QCOMPARE(column.main(1)->text(), QStringLiteral(" SECTION"));
    QCOMPARE(column.main(2)->text(), QStringLiteral(" ENERGY"));
    QCOMPARE(column.child(1, 0)->text(), QStringLiteral("child 1"));
    QCOMPARE(column.child(2, 0)->text(), QStringLiteral("Channels"));
}

void tst_UtilsSidebarWidget::openingASectionLeavesTheOthers()
{
    Column column({2, 2, 0});
    column.main(1)->click();
    column.main(2)->click();
    QCOMPARE(column.checked(), (QList<int>{1, 2}));
    QTRY_COMPARE(column.list(1)->maximumHeight(), 60);
    QTRY_COMPARE(column.list(2)->maximumHeight(), 60);
    column.main(1)->click();
    QCOMPARE(column.checked(), QList<int>{2});
    QCOMPARE(column.log, QStringList());
}

void tst_UtilsSidebarWidget::checkingAChildResetsTheOthers()
{
    Column column({2, 2, 0});
    column.main(1)->click();
    column.main(2)->click();
    QTRY_COMPARE(column.list(2)->maximumHeight(), 60);
    column.child(1, 0)->click();
    QCOMPARE(column.checked(), QList<int>{1});
    QTRY_COMPARE(column.list(2)->maximumHeight(), 0);
    QCOMPARE(column.log, QStringList("1.1 on"));
}

void tst_UtilsSidebarWidget::selectingASectionWithoutChildrenResetsTheOthers()
{
    Column column({2, 0, 0});
    column.widget.checkChild(1, 2);
    QCOMPARE(column.takeLog(), QStringList("1.2 on"));
    column.main(2)->click();
    QCOMPARE(column.checked(), QList<int>{2});
    QVERIFY(!column.child(1, 1)->isChecked());
    QVERIFY(column.main(1)->isEnabled());
    QCOMPARE(column.takeLog(), QStringList("1.2 off"));
    column.main(3)->click();
    QCOMPARE(column.checked(), QList<int>{3});
    QVERIFY(column.main(2)->isEnabled());
    QCOMPARE(column.takeLog(), QStringList());
}

void tst_UtilsSidebarWidget::aSelectionChangesHands()
{
    Column column({2, 2});
    column.widget.checkChild(1, 1);
    column.takeLog();
    column.main(2)->click();
    column.child(2, 1)->click();
    QCOMPARE(column.takeLog(), (QStringList{"1.1 off", "2.2 on"}));
    QCOMPARE(column.checked(), QList<int>{2});
    QVERIFY(!column.main(2)->isEnabled());
    QVERIFY(column.main(1)->isEnabled());
    QTRY_COMPARE(column.list(1)->maximumHeight(), 0);
}

void tst_UtilsSidebarWidget::checkChildOpensAndSelects()
{
    Column column({3, 3});
    column.widget.checkChild(2, 3);
    QCOMPARE(column.checked(), QList<int>{2});
    QVERIFY(column.child(2, 2)->isChecked());
    QCOMPARE(column.takeLog(), QStringList("2.3 on"));
    QTRY_COMPARE(column.list(2)->maximumHeight(), 90);
    column.widget.checkChild(2, 3);
    QCOMPARE(column.takeLog(), QStringList());
}

void tst_UtilsSidebarWidget::aWholeRunIsReported()
{
    Column column({2, 1, 0});
    column.main(1)->click();
    column.child(1, 0)->click();
    column.child(1, 1)->click();
    column.main(2)->click();
    column.child(2, 0)->click();
    column.main(3)->click();
    column.widget.checkChild(1, 1);
    QCOMPARE(column.takeLog(), (QStringList{"1.1 on", "1.1 off", "1.2 on", "1.2 off", "2.1 on", "2.1 off", "1.1 on"}));
    QCOMPARE(column.checked(), QList<int>{1});
}

void tst_UtilsSidebarWidget::aToggleOfNoSectionHasNoId()
{
    Column column({1});
    column.widget.SlotChildToggled(4, true);
    UtilsSidebarItem stranger(nullptr);
    QObject::connect(&stranger, &UtilsSidebarItem::SignalChildToggled, &column.widget,
                     &UtilsSidebarWidget::SlotChildToggled);
    Q_EMIT stranger.SignalChildToggled(5, false);
    QCOMPARE(column.takeLog(), (QStringList{"-1.4 on", "-1.5 off"}));
}

void tst_UtilsSidebarWidget::uncheckedSectionsAreNotMadeCurrent()
{
    Column column({2, 2});
    column.widget.checkChild(1, 1);
    column.widget.SlotItemToggled(column.item(2), false);
    QCOMPARE(column.checked(), QList<int>{1});
    column.leave();
    QCOMPARE(column.checked(), QList<int>{1});
    column.widget.SlotItemToggled(column.item(2), true);
    QCOMPARE(column.checked(), QList<int>());
}

void tst_UtilsSidebarWidget::openedAndClosedInOneTurnByAnother()
{
    Column column({2, 3});
    column.main(1)->click();
    column.widget.checkChild(2, 1);
    QTRY_COMPARE(column.list(2)->maximumHeight(), 90);
    QVERIFY(!column.main(1)->isChecked());
    QCOMPARE(column.list(1)->maximumHeight(), 0);
}

void tst_UtilsSidebarWidget::thePointerThatLeavesClosesWhatIsNotCurrent()
{
    Column column({2, 2, 2});
    column.widget.checkChild(1, 1);
    column.main(2)->click();
    column.main(3)->click();
    QTRY_COMPARE(column.list(3)->maximumHeight(), 60);
    column.takeLog();
    QVERIFY(column.leave());
    QCOMPARE(column.checked(), QList<int>{1});
    QVERIFY(column.child(1, 0)->isChecked());
    QTRY_COMPARE(column.list(2)->maximumHeight(), 0);
    QTRY_COMPARE(column.list(3)->maximumHeight(), 0);
    QCOMPARE(column.list(1)->maximumHeight(), 60);
    QCOMPARE(column.takeLog(), QStringList());
}

void tst_UtilsSidebarWidget::thePointerThatLeavesClosesAllWhenNoneIsCurrent()
{
    Column column({2, 2});
    column.main(1)->click();
    column.main(2)->click();
    column.leave();
    QCOMPARE(column.checked(), QList<int>());
    QTRY_COMPARE(column.list(1)->maximumHeight(), 0);
}

/// Counts the events that reach the column's own handlers.
struct CountingColumn : UtilsSidebarWidget
{
    bool event(QEvent *event) override
    {
        leaves += event->type() == QEvent::Leave;
        enters += event->type() == QEvent::Enter;
        return UtilsSidebarWidget::event(event);
    }

    int leaves = 0;
    int enters = 0;
};

void tst_UtilsSidebarWidget::onlyLeaveEventsOfTheColumnAreConsumed()
{
    CountingColumn column;
    QEvent leave(QEvent::Leave);
    QVERIFY(QApplication::sendEvent(&column, &leave));
    QCOMPARE(column.leaves, 0);
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&column, &enter);
    QCOMPARE(column.enters, 1);

    // The leave event of a section is no reason to close one.
    const int id = column.addItem(QStringLiteral("SECTION"), UncheckedIcon, CheckedIcon);
    column.addChild("child", id, 0);
    auto *item = column.findChild<UtilsSidebarItem *>();
    auto *main = item->findChild<QToolButton *>("toolButton_main");
    main->click();
    QApplication::sendEvent(item, &leave);
    QVERIFY(main->isChecked());
}

void tst_UtilsSidebarWidget::theWheelOnAChildListScrollsNothing()
{
    Column column({20});
    column.widget.resize(200, 300); // too low for all children
    column.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&column.widget));
    column.main(1)->click();
    QTRY_COMPARE(column.list(1)->maximumHeight(), 600);
    QWidget *child = column.child(1, 1);
    const QPointF position(20, 10);
    QWheelEvent event(position, child->mapToGlobal(position), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(child, &event);
    QCOMPARE(column.list(1)->verticalScrollBar()->value(), 0);
}

UNIPROG_TEST_MAIN(tst_UtilsSidebarWidget)
#include "tst_utilssidebarwidget.moc"
