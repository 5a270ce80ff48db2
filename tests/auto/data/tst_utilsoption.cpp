#include <UtilsOption.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QComboBox>

using Items = QMap<unsigned short, QString>;

class tst_UtilsOption : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewOptionHasNoItemsAndTheValueZero();
    void itemsAreOrderedByValue();
    void anItemOfTheSameValueGetsTheNewName();
    void theItemsAreACopy();
    void selectingByName_data();
    void selectingByName();
    void anyValueCanBeSelected_data();
    void anyValueCanBeSelected();
    void renamingTheSelectedItemShows();
    void lookingUpAddsNothing();
    void aComboBoxSelectsThroughTheReceiver();
    void thereIsNoMetaObjectOfItsOwn();
};

void tst_UtilsOption::aNewOptionHasNoItemsAndTheValueZero()
{
    const UtilsOption option("Speed");
    QCOMPARE(option.getName(), QString("Speed"));
    QCOMPARE(option.getItems(), Items());
    QCOMPARE(option.getSelectedItemValue(), 0);
    QCOMPARE(option.getSelectedItemName(), QString());
    QVERIFY(!option.parent());
}

void tst_UtilsOption::itemsAreOrderedByValue()
{
    UtilsOption option("Speed");
    option.addItem(5, "five");
    option.addItem(1, "one");
    option.addItem(65535, "most");
    option.addItem(3, "three");
    QCOMPARE(option.getItems().keys(), (QList<unsigned short>{1, 3, 5, 65535}));
    QCOMPARE(option.getItems().values(), (QList<QString>{"one", "three", "five", "most"}));
    QCOMPARE(option.getSelectedItemValue(), 0); // adding selects nothing
}

void tst_UtilsOption::anItemOfTheSameValueGetsTheNewName()
{
    UtilsOption option("Speed");
    option.addItem(3, "A");
    option.addItem(3, "B");
    QCOMPARE(option.getItems(), (Items{{3, "B"}}));
}

void tst_UtilsOption::theItemsAreACopy()
{
    UtilsOption option("Speed");
    option.addItem(3, "A");
    Items items = option.getItems();
    items.insert(4, "B");
    QCOMPARE(option.getItems(), (Items{{3, "A"}}));
}

void tst_UtilsOption::selectingByName_data()
{
    QTest::addColumn<Items>("items");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("expected");

    const Items items{{1, "one"}, {3, "same"}, {4, ""}, {9, "same"}, {65535, "most"}};
    QTest::newRow("the only one of the name") << items << "one" << 1;
    QTest::newRow("the lowest value of two") << items << "same" << 3;
    QTest::newRow("an empty name") << items << "" << 4;
    QTest::newRow("the largest value") << items << "most" << 65535;
    QTest::newRow("unknown") << items << "none" << 0;
    QTest::newRow("another case") << items << "One" << 0;
    QTest::newRow("only a part") << items << "on" << 0;
    QTest::newRow("without items") << Items() << "one" << 0;
    QTest::newRow("unknown, with an item of value 0") << Items{{0, "zero"}, {7, "seven"}} << "none" << 0;
}

void tst_UtilsOption::selectingByName()
{
    QFETCH(Items, items);
    QFETCH(QString, name);
    QFETCH(int, expected);
    for (const bool throughTheSlot : {false, true}) {
        UtilsOption option("Speed");
        for (auto item = items.cbegin(); item != items.cend(); ++item)
            option.addItem(item.key(), item.value());
        option.selectItemByValue(7);
        if (throughTheSlot)
            option.slotChangeSelected(name);
        else
            option.selectItemByName(name);
        QCOMPARE(int(option.getSelectedItemValue()), expected);
        QCOMPARE(option.getSelectedItemName(), items.value(static_cast<unsigned short>(expected)));
    }
}

void tst_UtilsOption::anyValueCanBeSelected_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");

    QTest::newRow("of an item") << 3 << "three";
    QTest::newRow("of no item") << 7 << "";
    QTest::newRow("0") << 0 << "";
    QTest::newRow("the largest") << 65535 << "";
}

void tst_UtilsOption::anyValueCanBeSelected()
{
    QFETCH(int, value);
    QFETCH(QString, name);
    UtilsOption option("Speed");
    option.addItem(3, "three");
    option.selectItemByValue(static_cast<unsigned short>(value));
    QCOMPARE(int(option.getSelectedItemValue()), value);
    QCOMPARE(option.getSelectedItemName(), name);
}

void tst_UtilsOption::renamingTheSelectedItemShows()
{
    UtilsOption option("Speed");
    option.selectItemByValue(7);
    option.addItem(7, "seven");
    QCOMPARE(option.getSelectedItemName(), QString("seven"));
    option.addItem(7, "sieben");
    QCOMPARE(option.getSelectedItemName(), QString("sieben"));
    QCOMPARE(option.getSelectedItemValue(), 7);
}

void tst_UtilsOption::lookingUpAddsNothing()
{
    UtilsOption option("Speed");
    option.addItem(3, "three");
    option.selectItemByValue(7);
    QCOMPARE(option.getSelectedItemName(), QString());
    option.selectItemByName("none");
    QCOMPARE(option.getItems(), (Items{{3, "three"}}));
}

void tst_UtilsOption::aComboBoxSelectsThroughTheReceiver()
{
    QComboBox box;
    {
        UtilsOption option("Speed");
        option.addItem(3, "three");
        option.addItem(4, "four");
        box.addItems(option.getItems().values());
        connect(&box, &QComboBox::currentTextChanged, &option, &UtilsOption::slotChangeSelected);
        box.setCurrentIndex(1);
        QCOMPARE(option.getSelectedItemValue(), 4);
    }
    box.setCurrentIndex(0); // the option is gone, and its connection with it
    QCOMPARE(box.currentText(), QString("three"));
}

void tst_UtilsOption::thereIsNoMetaObjectOfItsOwn()
{
    const UtilsOption option("Speed");
    QCOMPARE(option.metaObject(), &QObject::staticMetaObject);
}

UNIPROG_TEST_MAIN(tst_UtilsOption)
#include "tst_utilsoption.moc"
