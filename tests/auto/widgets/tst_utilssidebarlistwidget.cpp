#include <UtilsSidebarListWidget.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

class tst_UtilsSidebarListWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theListIsAsTheStyleExpects();
    void theListIsAsHighAsItsRows();
    void theWheelScrollsNothing_data();
    void theWheelScrollsNothing();
    void theKeyboardDoesNotReachAClosedList();
};

void tst_UtilsSidebarListWidget::theListIsAsTheStyleExpects()
{
    const UtilsSidebarListWidget list;
    QCOMPARE(list.maximumHeight(), 0);
    QCOMPARE(list.property("showDropIndicator"), QVariant(false));
    QCOMPARE(list.property("isWrapping"), QVariant(false));
    QCOMPARE(list.spacing(), 0);
    QCOMPARE(list.gridSize(), QSize(0, 30));
    QCOMPARE(list.property("background-color"), QVariant(QStringLiteral("transparent")));
    QCOMPARE(list.count(), 0);
}

void tst_UtilsSidebarListWidget::theListIsAsHighAsItsRows()
{
    UtilsSidebarListWidget list;
    QCOMPARE(list.sizeHint().height(), 0);
    list.addItems({"one", "two", "three"});
    QCOMPARE(list.sizeHint().height(), 90);

    list.setMaximumHeight(QWIDGETSIZE_MAX);
    list.resize(200, 90);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    QCOMPARE(list.viewport()->size(), list.size());
    for (int row = 0; row < 3; ++row)
        QCOMPARE(list.visualItemRect(list.item(row)).topLeft(), QPoint(0, row * 30));
    QCOMPARE(list.verticalScrollBar()->maximum(), 0);
    QVERIFY(!list.verticalScrollBar()->isVisible());
}

void tst_UtilsSidebarListWidget::theWheelScrollsNothing_data()
{
    QTest::addColumn<QPoint>("turn");
    for (const QPoint &turn : {QPoint(0, -120), QPoint(0, 120), QPoint(120, 0), QPoint(-120, -1200)})
        QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(turn.x()).arg(turn.y()))) << turn;
}

void tst_UtilsSidebarListWidget::theWheelScrollsNothing()
{
    QFETCH(QPoint, turn);
    QScrollArea area; // what is behind the list
    auto *page = new QWidget;
    page->setFixedSize(300, 1000);
    area.setWidget(page);
    area.resize(310, 300);
    auto *list = new UtilsSidebarListWidget(page);
    for (int i = 0; i < 20; ++i)
        list->addItem(QString::number(i));
    list->setMaximumHeight(100); // as while it opens
    list->resize(200, 100);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QVERIFY(list->verticalScrollBar()->maximum() > 0);
    list->verticalScrollBar()->setValue(5);
    area.verticalScrollBar()->setValue(50);

    const QPointF position(50, 50);
    QWheelEvent event(position, list->viewport()->mapToGlobal(position), {}, turn, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    event.ignore();
    QApplication::sendEvent(list->viewport(), &event);
    QVERIFY(event.isAccepted()); // so it goes no further
    QCOMPARE(list->verticalScrollBar()->value(), 5);
    QCOMPARE(area.verticalScrollBar()->value(), 50);
}

void tst_UtilsSidebarListWidget::theKeyboardDoesNotReachAClosedList()
{
    const UtilsSidebarListWidget list;
    QCOMPARE(list.focusPolicy(), Qt::NoFocus);
}

UNIPROG_TEST_MAIN(tst_UtilsSidebarListWidget)
#include "tst_utilssidebarlistwidget.moc"
