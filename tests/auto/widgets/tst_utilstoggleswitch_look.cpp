#include "ToggleSwitchTest.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QHBoxLayout>

#include <functional>

using namespace ToggleSwitchTest;

class tst_UtilsToggleSwitch_look : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aStyleSheetMayShowThatItIsDisabled();

    void coloursAreProperties_data();
    void coloursAreProperties();
    void setColorsLeavesTheOnColourAndTheBorder();
    void theTrackHasTheColourOfTheState();
    void theBorderHasItsOwnAlpha_data();
    void theBorderHasItsOwnAlpha();
    void theOpacityIsForTheTrackOnly();
    void theThumbIsACircleAtItsPosition();
    void theCornersAreRound();
    void trackAndThumbAreDrawnAsStated_data();
    void trackAndThumbAreDrawnAsStated();
    void everyChangeOfLookRepaints_data();
    void everyChangeOfLookRepaints();
    void rightToLeftChangesNothing();
    void theFocusIsShownToTheKeyboard();
};

void tst_UtilsToggleSwitch_look::aStyleSheetMayShowThatItIsDisabled()
{
    QWidget window;
    window.setStyleSheet(QStringLiteral("UtilsToggleSwitch { qproperty-thumbColor: #010203; }"
                                        "UtilsToggleSwitch[enabled=\"false\"] { qproperty-thumbColor: #0a0b0c; }"));
    UtilsToggleSwitch toggle(&window);
    window.show();
    QCOMPARE(toggle.getThumbColor(), QColor(1, 2, 3));
    window.setEnabled(false);
    QCOMPARE(toggle.getThumbColor(), QColor(10, 11, 12));
    window.setEnabled(true);
    QCOMPARE(toggle.getThumbColor(), QColor(1, 2, 3));
}

void tst_UtilsToggleSwitch_look::coloursAreProperties_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"thumbColor", "borderColor", "backgroundColorOff", "backgroundColorOn"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_UtilsToggleSwitch_look::coloursAreProperties()
{
    QFETCH(QByteArray, name);
    UtilsToggleSwitch toggle;
    const QList<QByteArray> names{"thumbColor", "borderColor", "backgroundColorOff", "backgroundColorOn"};
    QVERIFY(toggle.setProperty(name, QColor(1, 2, 3, 4)));
    const QList<QColor> colours{toggle.getThumbColor(), toggle.getBorderColor(), toggle.getBackgroundColorOff(),
                                toggle.getBackgroundColorOn()};
    for (int i = 0; i < names.size(); ++i) {
        QCOMPARE(toggle.property(names.at(i)).value<QColor>(), colours.at(i));
        QCOMPARE(colours.at(i) == QColor(1, 2, 3, 4), names.at(i) == name);
    }
    QVERIFY(toggle.setProperty("thumbXPos", 13));
    QCOMPARE(toggle.getThumbXPos(), 13);
    QCOMPARE(toggle.property("thumbXPos"), QVariant(13));
}

void tst_UtilsToggleSwitch_look::setColorsLeavesTheOnColourAndTheBorder()
{
    UtilsToggleSwitch toggle;
    toggle.setBackgroundColorOn(Qt::green);
    toggle.setBorderColor(Qt::gray);
    toggle.setColors(Qt::red, Qt::blue);
    QCOMPARE(toggle.getBackgroundColorOff(), QColor(Qt::red));
    QCOMPARE(toggle.getThumbColor(), QColor(Qt::blue));
    QCOMPARE(toggle.getBackgroundColorOn(), QColor(Qt::green));
    QCOMPARE(toggle.getBorderColor(), QColor(Qt::gray));
}

void tst_UtilsToggleSwitch_look::theTrackHasTheColourOfTheState()
{
    ShownSwitch toggle;
    toggle.setBackgroundColorOff(Qt::red);
    toggle.setBackgroundColorOn(Qt::blue);
    toggle.setThumbColor(Qt::green);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(imageOf(toggle).pixelColor(25, 10), QColor(Qt::red));
    QCOMPARE(imageOf(toggle).pixelColor(Off, 10), QColor(Qt::green));
    toggle.setChecked(true);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(imageOf(toggle).pixelColor(15, 10), QColor(Qt::blue));
    QCOMPARE(imageOf(toggle).pixelColor(On, 10), QColor(Qt::green));
}

void tst_UtilsToggleSwitch_look::theBorderHasItsOwnAlpha_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QColor>("drawn");
    QTest::newRow("opaque") << QColor(255, 0, 0) << QColor(255, 0, 0);
    QTest::newRow("see-through") << QColor(0, 0, 255, 3) << QColor(0, 0, 255);
    QTest::newRow("none") << QColor() << QColor(Qt::black);
}

void tst_UtilsToggleSwitch_look::theBorderHasItsOwnAlpha()
{
    QFETCH(QColor, colour);
    QFETCH(QColor, drawn);
    ShownSwitch toggle;
    toggle.setBackgroundColorOff(Qt::transparent);
    toggle.setThumbColor(Qt::transparent);
    toggle.setBorderColor(colour);
    QCOMPARE(toggle.getBorderColor(), colour);
    // Half of the line of one pixel is inside.
    const QColor line = imageOf(toggle).pixelColor(20, 0);
    QVERIFY2(qAbs(line.alpha() - 100) <= 2, qPrintable(QString::number(line.alpha())));
    QVERIFY(qAbs(line.red() - drawn.red()) <= 3);
    QVERIFY(qAbs(line.blue() - drawn.blue()) <= 3);
    QCOMPARE(imageOf(toggle).pixelColor(20, 5).alpha(), 0);
}

void tst_UtilsToggleSwitch_look::theOpacityIsForTheTrackOnly()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    QCOMPARE(imageOf(toggle).pixelColor(25, 10).alpha(), 255);
    toggle.setOpacity(0.5);
    const QImage image = imageOf(toggle);
    QVERIFY(qAbs(image.pixelColor(25, 10).alpha() - 128) <= 1);
    QCOMPARE(image.pixelColor(Off, 10), QColor(Qt::white));
}

void tst_UtilsToggleSwitch_look::theThumbIsACircleAtItsPosition()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    toggle.setThumbXPos(20);
    const QImage image = imageOf(toggle);
    // As wide as high; beyond it the black track.
    QCOMPARE(image.pixelColor(11, 10), QColor(Qt::white));
    QCOMPARE(image.pixelColor(28, 10), QColor(Qt::white));
    QCOMPARE(image.pixelColor(20, 1), QColor(Qt::white));
    QCOMPARE(image.pixelColor(20, 18), QColor(Qt::white));
    QCOMPARE(image.pixelColor(9, 10), QColor(Qt::black));
    QCOMPARE(image.pixelColor(30, 10), QColor(Qt::black));
    QCOMPARE(image.pixelColor(11, 1), QColor(Qt::black));
    QCOMPARE(image.pixelColor(28, 18), QColor(Qt::black));
}

void tst_UtilsToggleSwitch_look::theCornersAreRound()
{
    ShownSwitch toggle;
    const QImage image = imageOf(toggle);
    for (const QPoint &corner : {QPoint(0, 0), QPoint(39, 0), QPoint(0, 19), QPoint(39, 19), QPoint(37, 1)})
        QCOMPARE(image.pixelColor(corner).alpha(), 0);
    QVERIFY(image.pixelColor(39, 10).alpha() > 200);
}

void tst_UtilsToggleSwitch_look::trackAndThumbAreDrawnAsStated_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<double>("opacity");
    QTest::newRow("off") << false << 1.0;
    QTest::newRow("on") << true << 1.0;
    QTest::newRow("half transparent") << true << 0.5;
}

void tst_UtilsToggleSwitch_look::trackAndThumbAreDrawnAsStated()
{
    QFETCH(bool, on);
    QFETCH(double, opacity);
    ShownSwitch toggle;
    toggle.setBackgroundColorOff(Qt::darkGray);
    toggle.setBackgroundColorOn(Qt::darkGreen);
    toggle.setBorderColor(Qt::red);
    toggle.setThumbColor(Qt::yellow);
    toggle.setOpacity(opacity);
    toggle.setChecked(on);
    QVERIFY(isAtRest(toggle));

    QImage expected(Size, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity);
    painter.setPen(QPen(QColor(255, 0, 0, 200), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.setBrush(on ? Qt::darkGreen : Qt::darkGray);
    painter.drawRoundedRect(QRect(QPoint(), Size), 10, 10);
    painter.setOpacity(1.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::yellow);
    painter.drawEllipse(QPoint(on ? On : Off, 10), 10, 10);
    painter.end();
    QCOMPARE(imageOf(toggle), expected.convertToFormat(QImage::Format_ARGB32));
}

void tst_UtilsToggleSwitch_look::everyChangeOfLookRepaints_data()
{
    using Change = std::function<void(UtilsToggleSwitch &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("thumb") << Change([](UtilsToggleSwitch &toggle) { toggle.setThumbColor(Qt::red); });
    QTest::newRow("border") << Change([](UtilsToggleSwitch &toggle) { toggle.setBorderColor(Qt::red); });
    QTest::newRow("track, off") << Change([](UtilsToggleSwitch &toggle) { toggle.setBackgroundColorOff(Qt::red); });
    QTest::newRow("track, on") << Change([](UtilsToggleSwitch &toggle) { toggle.setBackgroundColorOn(Qt::red); });
    QTest::newRow("both") << Change([](UtilsToggleSwitch &toggle) { toggle.setColors(Qt::red, Qt::blue); });
    QTest::newRow("opacity") << Change([](UtilsToggleSwitch &toggle) { toggle.setOpacity(0.3); });
    QTest::newRow("position") << Change([](UtilsToggleSwitch &toggle) { toggle.setThumbXPos(12); });
}

void tst_UtilsToggleSwitch_look::everyChangeOfLookRepaints()
{
    using Change = std::function<void(UtilsToggleSwitch &)>;
    QFETCH(Change, change);
    class PaintCounter : public UtilsToggleSwitch
    {
    public:
        int paints = 0;

    protected:
        void paintEvent(QPaintEvent *event) override
        {
            ++paints;
            UtilsToggleSwitch::paintEvent(event);
        }
    } toggle;
    toggle.resize(Size);
    toggle.show();
    QVERIFY(QTest::qWaitForWindowExposed(&toggle));
    QVERIFY(isAtRest(toggle));
    QCoreApplication::processEvents();
    const int before = toggle.paints;
    QVERIFY(before > 0);
    change(toggle);
    QTRY_COMPARE(toggle.paints, before + 1);
}

void tst_UtilsToggleSwitch_look::rightToLeftChangesNothing()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    const QImage leftToRight = imageOf(toggle);
    toggle.setLayoutDirection(Qt::RightToLeft);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(toggle.getThumbXPos(), Off);
    QCOMPARE(imageOf(toggle), leftToRight);
}

void tst_UtilsToggleSwitch_look::theFocusIsShownToTheKeyboard()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *first = new UtilsToggleSwitch;
    auto *second = new UtilsToggleSwitch;
    for (UtilsToggleSwitch *toggle : {first, second}) {
        toggle->setFixedSize(Size);
        layout->addWidget(toggle);
    }
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    second->setFocus(Qt::MouseFocusReason);
    QVERIFY(isAtRest(*first));
    QVERIFY(isAtRest(*second));
    const QImage plain = imageOf(*first);
    QCOMPARE(imageOf(*second), plain);
    QTest::keyClick(&window, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), first);
    QVERIFY(imageOf(*first) != plain);
    QCOMPARE(imageOf(*second), plain);
}

UNIPROG_TEST_MAIN(tst_UtilsToggleSwitch_look)

#include "tst_utilstoggleswitch_look.moc"
