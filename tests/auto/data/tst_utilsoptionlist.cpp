#include <UtilsOption.h>
#include <UtilsOptionList.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QStyleFactory>

class tst_UtilsOptionList : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewListIsEmpty();
    void optionsStayInTheOrderOfAddition();
    void optionsOfTheSameNameAreTwoOptions();
    void theListDeletesItsOptions();
    void thereIsNoMetaObjectOfItsOwn();
    void thePanelHasARowAnOption();
    void thePanelOfAnEmptyListIsEmpty();
    void entriesStandInTheOrderOfTheirValues();
    void theSelectedItemIsShown_data();
    void theSelectedItemIsShown();
    void pickingAnEntrySelectsTheItem();
    void pickingAnEntryOfASharedNameSelectsTheLowerValue();
    void buildingAPanelChangesNoOption();
    void theComboBoxIsPolishedAnewBeforeItIsFilled();
    void laterChangesAreNotShown();
    void twoPanelsSelectInTheSameOption();
    void aPanelOutlivesTheList();
    void theListOutlivesAPanel();
};

static QWidget *cell(QWidget *panel, int row, int column)
{
    auto *grid = qobject_cast<QGridLayout *>(panel->layout());
    QLayoutItem *item = grid ? grid->itemAtPosition(row, column) : nullptr;
    return item ? item->widget() : nullptr;
}

static QLabel *labelOf(QWidget *panel, int row)
{
    return qobject_cast<QLabel *>(cell(panel, row, 0));
}

static QComboBox *boxOf(QWidget *panel, int row)
{
    return qobject_cast<QComboBox *>(cell(panel, row, 1));
}

static QList<QString> entriesOf(const QComboBox *box)
{
    QList<QString> entries;
    for (int i = 0; i < box->count(); ++i)
        entries.append(box->itemText(i));
    return entries;
}

// A style whose own spacing nobody takes for the panel's.
class WideStyle : public QProxyStyle
{
public:
    WideStyle()
        : QProxyStyle(QStyleFactory::create("fusion"))
    { }

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        if (metric == PM_LayoutHorizontalSpacing || metric == PM_LayoutVerticalSpacing)
            return 50;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

void tst_UtilsOptionList::aNewListIsEmpty()
{
    const UtilsOptionList list;
    QCOMPARE(list.getListOfOptions().size(), 0);
    QVERIFY(!list.parent());
}

void tst_UtilsOptionList::optionsStayInTheOrderOfAddition()
{
    UtilsOptionList list;
    UtilsOption *speed = list.addOption("Speed");
    UtilsOption *clock = list.addOption("Clock");
    UtilsOption *alarm = list.addOption("Alarm");
    QCOMPARE(list.getListOfOptions(), (QList<UtilsOption *>{speed, clock, alarm}));
    QCOMPARE(speed->getName(), QString("Speed"));
    QVERIFY(!speed->parent());
}

void tst_UtilsOptionList::optionsOfTheSameNameAreTwoOptions()
{
    UtilsOptionList list;
    UtilsOption *one = list.addOption("Speed");
    UtilsOption *two = list.addOption("Speed");
    QVERIFY(one != two);
    QCOMPARE(list.getListOfOptions().size(), 2);
}

void tst_UtilsOptionList::theListDeletesItsOptions()
{
    auto *list = new UtilsOptionList;
    const QPointer<UtilsOption> one = list->addOption("Speed");
    const QPointer<UtilsOption> two = list->addOption("Clock");
    delete list;
    QVERIFY(!one);
    QVERIFY(!two);
}

void tst_UtilsOptionList::thereIsNoMetaObjectOfItsOwn()
{
    const UtilsOptionList list;
    QCOMPARE(list.metaObject(), &QObject::staticMetaObject);
}

void tst_UtilsOptionList::thePanelHasARowAnOption()
{
    UtilsOptionList list;
    list.addOption("Speed")->addItem(1, "Slow");
    list.addOption("Clock");
    WideStyle style;
    QWidget parent;
    QWidget *panel = list.createGraphicInterface(&parent);
    panel->setStyle(&style);
    QCOMPARE(panel->parentWidget(), &parent);
    QCOMPARE(panel->minimumWidth(), 260);
    auto *grid = qobject_cast<QGridLayout *>(panel->layout());
    QVERIFY(grid);
    QCOMPARE(grid->verticalSpacing(), 6);
    QCOMPARE(grid->horizontalSpacing(), 12);
    QCOMPARE(grid->count(), 4);

    const QList<QString> names{"Speed:", "Clock:"};
    for (int row = 0; row < names.size(); ++row) {
        const QLabel *label = labelOf(panel, row);
        QVERIFY(label);
        QCOMPARE(label->text(), names.at(row));
        QCOMPARE(label->parentWidget(), panel);
        QCOMPARE(label->property("title").typeId(), int(QMetaType::Bool));
        QVERIFY(label->property("title").toBool());
        QCOMPARE(label->sizePolicy(), QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
        const QComboBox *box = boxOf(panel, row);
        QVERIFY(box);
        QCOMPARE(box->parentWidget(), panel);
        QCOMPARE(box->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(box->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
        QCOMPARE(grid->itemAtPosition(row, 0)->alignment(), Qt::Alignment());
        QCOMPARE(grid->itemAtPosition(row, 1)->alignment(), Qt::Alignment());
    }
    QCOMPARE(boxOf(panel, 0)->itemData(0), QVariant());
    QVERIFY(boxOf(panel, 0)->itemIcon(0).isNull());
    QCOMPARE(boxOf(panel, 1)->count(), 0); // an option without items has its row all the same
}

void tst_UtilsOptionList::thePanelOfAnEmptyListIsEmpty()
{
    UtilsOptionList list;
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    QVERIFY(!panel->parent());
    QVERIFY(qobject_cast<QGridLayout *>(panel->layout()));
    QCOMPARE(panel->layout()->count(), 0);
}

void tst_UtilsOptionList::entriesStandInTheOrderOfTheirValues()
{
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(5, "five");
    option->addItem(1, "one");
    option->addItem(3, "three");
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    QCOMPARE(entriesOf(boxOf(panel.data(), 0)), (QList<QString>{"one", "three", "five"}));
}

void tst_UtilsOptionList::theSelectedItemIsShown_data()
{
    QTest::addColumn<int>("selected");
    QTest::addColumn<int>("index");

    QTest::newRow("the first item") << 1 << 0;
    QTest::newRow("the last item") << 5 << 2;
    QTest::newRow("a value of no item shows the first entry") << 7 << 0;
    QTest::newRow("the higher of two of the same name shows the lower") << 9 << 2;
}

void tst_UtilsOptionList::theSelectedItemIsShown()
{
    QFETCH(int, selected);
    QFETCH(int, index);
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(1, "one");
    option->addItem(3, "three");
    option->addItem(5, "same");
    option->addItem(9, "same");
    option->selectItemByValue(static_cast<unsigned short>(selected));
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    QCOMPARE(boxOf(panel.data(), 0)->currentIndex(), index);
    QCOMPARE(int(option->getSelectedItemValue()), selected);
}

void tst_UtilsOptionList::pickingAnEntrySelectsTheItem()
{
    UtilsOptionList list;
    UtilsOption *speed = list.addOption("Speed");
    speed->addItem(1, "Slow");
    speed->addItem(4, "Fast");
    UtilsOption *clock = list.addOption("Clock");
    clock->addItem(1, "Slow");
    clock->addItem(4, "Fast");
    clock->selectItemByValue(1);
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    panel->show();
    QTest::keyClick(boxOf(panel.data(), 0), Qt::Key_Down);
    QCOMPARE(speed->getSelectedItemValue(), 4);
    QCOMPARE(speed->getSelectedItemName(), QString("Fast"));
    QCOMPARE(clock->getSelectedItemValue(), 1);
}

void tst_UtilsOptionList::pickingAnEntryOfASharedNameSelectsTheLowerValue()
{
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(1, "one");
    option->addItem(5, "same");
    option->addItem(9, "same");
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    boxOf(panel.data(), 0)->setCurrentIndex(2);
    QCOMPARE(option->getSelectedItemValue(), 5);
}

void tst_UtilsOptionList::buildingAPanelChangesNoOption()
{
    UtilsOptionList list;
    UtilsOption *unselected = list.addOption("Speed");
    unselected->addItem(3, "three");
    UtilsOption *strange = list.addOption("Clock");
    strange->addItem(3, "three");
    strange->selectItemByValue(7);
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    QCOMPARE(unselected->getSelectedItemValue(), 0);
    QCOMPARE(strange->getSelectedItemValue(), 7);
    QCOMPARE(strange->getItems().size(), 1);
}

// Keeps the order in which combo boxes are polished and unpolished, and how many entries they had.
class PolishLog : public QProxyStyle
{
    Q_OBJECT

public:
    PolishLog()
        : QProxyStyle(QStyleFactory::create("fusion"))
    { }

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget *widget) override
    {
        note("polish", widget);
        QProxyStyle::polish(widget);
    }

    void unpolish(QWidget *widget) override
    {
        note("unpolish", widget);
        QProxyStyle::unpolish(widget);
    }

    QList<QString> log;

private:
    void note(const QString &what, const QWidget *widget)
    {
        if (const auto *box = qobject_cast<const QComboBox *>(widget))
            log.append(what + ' ' + QString::number(box->count()));
    }
};

void tst_UtilsOptionList::theComboBoxIsPolishedAnewBeforeItIsFilled()
{
    auto *style = new PolishLog;
    QApplication::setStyle(style);
    UtilsOptionList list;
    list.addOption("Speed")->addItem(1, "Slow");
    {
        const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
        QVERIFY(style->log.size() >= 2);
        QCOMPARE(style->log.at(0), QString("unpolish 0"));
        QCOMPARE(style->log.at(1), QString("polish 0"));
    }
    QApplication::setStyle("fusion");
}

void tst_UtilsOptionList::laterChangesAreNotShown()
{
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(1, "Slow");
    option->addItem(4, "Fast");
    const QScopedPointer<QWidget> panel(list.createGraphicInterface(nullptr));
    option->addItem(9, "Faster");
    option->selectItemByName("Fast");
    list.addOption("Clock");
    QCOMPARE(boxOf(panel.data(), 0)->count(), 2);
    QCOMPARE(boxOf(panel.data(), 0)->currentIndex(), 0);
    QCOMPARE(panel->layout()->count(), 2);
}

void tst_UtilsOptionList::twoPanelsSelectInTheSameOption()
{
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(1, "Slow");
    option->addItem(4, "Fast");
    const QScopedPointer<QWidget> one(list.createGraphicInterface(nullptr));
    const QScopedPointer<QWidget> two(list.createGraphicInterface(nullptr));
    boxOf(one.data(), 0)->setCurrentIndex(1);
    QCOMPARE(option->getSelectedItemValue(), 4);
    QCOMPARE(boxOf(two.data(), 0)->currentIndex(), 0);
}

void tst_UtilsOptionList::aPanelOutlivesTheList()
{
    auto *list = new UtilsOptionList;
    UtilsOption *option = list->addOption("Speed");
    option->addItem(1, "Slow");
    option->addItem(4, "Fast");
    const QScopedPointer<QWidget> panel(list->createGraphicInterface(nullptr));
    delete list;
    boxOf(panel.data(), 0)->setCurrentIndex(1);
    QCOMPARE(boxOf(panel.data(), 0)->currentText(), QString("Fast"));
}

void tst_UtilsOptionList::theListOutlivesAPanel()
{
    UtilsOptionList list;
    UtilsOption *option = list.addOption("Speed");
    option->addItem(4, "Fast");
    delete list.createGraphicInterface(nullptr);
    option->selectItemByName("Fast");
    QCOMPARE(option->getSelectedItemValue(), 4);
}

UNIPROG_TEST_MAIN(tst_UtilsOptionList)
#include "tst_utilsoptionlist.moc"
