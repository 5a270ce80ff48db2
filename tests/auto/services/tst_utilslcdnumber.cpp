#include <UtilsLcdNumber.h>

#include <AccessibleEvents.h>
#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QLCDNumber>
#include <QLocale>

#include <climits>
#include <limits>

class tst_UtilsLcdNumber : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStated();
    void aNameOfTheOwnerIsKept();
    void theTitleIsTranslatedInTheContextOfTheClass();
    void integersAreShownAsTheyAre_data();
    void integersAreShownAsTheyAre();
    void realNumbersHaveOneDecimal_data();
    void realNumbersHaveOneDecimal();
    void theConstructorShowsARealNumber();
    void theReadOutFitsItsNumber();
    void numbersAreShownAlikeInEveryLocale();
    void unusualNumbersAreNoTrouble_data();
    void unusualNumbersAreNoTrouble();
    void theValueIsHeard();
};

static QLCDNumber *lcdOf(const UtilsLcdNumber &number)
{
    return number.findChild<QLCDNumber *>(QStringLiteral("lcdNumber"));
}

void tst_UtilsLcdNumber::theFormIsAsStated()
{
    QWidget parent;
    const UtilsLcdNumber number(&parent, 0.0);
    QCOMPARE(number.parentWidget(), &parent);
    QCOMPARE(number.objectName(), QStringLiteral("UtilsLcdNumber"));
    QCOMPARE(number.size(), QSize(104, 25));
    QCOMPARE(number.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(number.sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(number.frameShape(), QFrame::StyledPanel);
    QCOMPARE(number.frameShadow(), QFrame::Raised);
    QCOMPARE(number.windowTitle(), QStringLiteral("Frame"));

    auto *layout = qobject_cast<QHBoxLayout *>(number.layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("horizontalLayout"));
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins(6, 1, 0, 1));
    QCOMPARE(layout->count(), 2);

    const QLCDNumber *lcd = lcdOf(number);
    QVERIFY(lcd);
    QCOMPARE(layout->itemAt(0)->widget(), lcd);
    QCOMPARE(lcd->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(lcd->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QVERIFY(!lcd->smallDecimalPoint());
    QCOMPARE(lcd->segmentStyle(), QLCDNumber::Flat);

    const QSpacerItem *spacer = layout->itemAt(1)->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), QSize(0, 20));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
}

void tst_UtilsLcdNumber::aNameOfTheOwnerIsKept()
{
    UtilsLcdNumber number(nullptr, 0.0);
    number.setObjectName(QStringLiteral("voltage"));
    number.setValue(3);
    QCOMPARE(number.objectName(), QStringLiteral("voltage"));
}

void tst_UtilsLcdNumber::theTitleIsTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsLcdNumber");
    const UtilsLcdNumber number(nullptr, 0.0);
    QCOMPARE(number.windowTitle(), QStringLiteral("<Frame>"));
}

void tst_UtilsLcdNumber::integersAreShownAsTheyAre_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("digits");
    QTest::newRow("zero") << 0 << 1;
    QTest::newRow("four digits") << 1234 << 4;
    QTest::newRow("negative") << -56 << 3;
    QTest::newRow("most") << INT_MAX << 10;
    QTest::newRow("least") << INT_MIN << 11;
}

void tst_UtilsLcdNumber::integersAreShownAsTheyAre()
{
    QFETCH(int, value);
    QFETCH(int, digits);
    UtilsLcdNumber number(nullptr, 99999.9);
    number.setValue(value);
    QCOMPARE(lcdOf(number)->digitCount(), digits);
    QCOMPARE(lcdOf(number)->value(), double(value));
}

void tst_UtilsLcdNumber::realNumbersHaveOneDecimal_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("shown");
    QTest::addColumn<int>("digits");
    QTest::newRow("cut") << 3.14159 << 3.1 << 3;
    QTest::newRow("rounded") << 9.96 << 10.0 << 4;
    QTest::newRow("whole") << 5.0 << 5.0 << 3;
    QTest::newRow("zero") << 0.0 << 0.0 << 3;
    QTest::newRow("negative") << -12.34 << -12.3 << 5;
    QTest::newRow("never an exponent") << 1e9 << 1e9 << 12;
}

void tst_UtilsLcdNumber::realNumbersHaveOneDecimal()
{
    QFETCH(double, value);
    QFETCH(double, shown);
    QFETCH(int, digits);
    UtilsLcdNumber number(nullptr, 0.0);
    number.setValue(7);
    number.setValue(value);
    QCOMPARE(lcdOf(number)->digitCount(), digits);
    QCOMPARE(lcdOf(number)->value(), shown);
}

void tst_UtilsLcdNumber::theConstructorShowsARealNumber()
{
    const UtilsLcdNumber number(nullptr, 42);
    QCOMPARE(lcdOf(number)->digitCount(), 4);
    QCOMPARE(lcdOf(number)->value(), 42.0);
    QCOMPARE(lcdOf(UtilsLcdNumber())->digitCount(), 3);
}

void tst_UtilsLcdNumber::theReadOutFitsItsNumber()
{
    UtilsLcdNumber number(nullptr, 1.5);
    number.resize(400, 40);
    number.show();
    const QLCDNumber *lcd = lcdOf(number);
    QTRY_COMPARE(lcd->size(), lcd->sizeHint());
    const int narrow = lcd->width();
    number.setValue(123456);
    QTRY_COMPARE(lcd->size(), lcd->sizeHint());
    QVERIFY(lcd->width() > narrow);
    number.setValue(1.5);
    QTRY_COMPARE(lcd->width(), narrow);
    QCOMPARE(lcd->x(), number.contentsRect().left() + 6); // what is left of the width is behind it
}

void tst_UtilsLcdNumber::numbersAreShownAlikeInEveryLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const UtilsLcdNumber number(nullptr, 1234.5);
    QLocale::setDefault(before);
    QCOMPARE(lcdOf(number)->digitCount(), 6);
    QCOMPARE(lcdOf(number)->value(), 1234.5);
}

void tst_UtilsLcdNumber::unusualNumbersAreNoTrouble_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("digits");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 3;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 3;
    QTest::newRow("more digits than there are") << 1e200 << 99;
}

void tst_UtilsLcdNumber::unusualNumbersAreNoTrouble()
{
    QFETCH(double, value);
    QFETCH(int, digits);
    UtilsLcdNumber number(nullptr, value);
    QCOMPARE(lcdOf(number)->digitCount(), digits);
    number.setValue(1);
    QCOMPARE(lcdOf(number)->digitCount(), 1);
}

void tst_UtilsLcdNumber::theValueIsHeard()
{
    AccessibleEvents events;
    UtilsLcdNumber number(nullptr, 3.3);
    events.clear();
    number.setValue(5);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(lcdOf(number));
    QCOMPARE(interface->role(), QAccessible::StaticText);
    QCOMPARE(interface->text(QAccessible::Name), QStringLiteral("5"));

    if (!AccessibleEvents::isAvailable())
        QSKIP("Qt's private headers are missing.");
    QAccessibleEvent change(lcdOf(number), QAccessible::NameChanged);
    QVERIFY(events.contains(&change));
}

UNIPROG_TEST_MAIN(tst_UtilsLcdNumber)

#include "tst_utilslcdnumber.moc"
