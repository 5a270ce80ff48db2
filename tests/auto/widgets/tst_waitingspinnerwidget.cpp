#include "SpinnerTest.h"

#include <UniProgTest.h>

#include <QApplication>

#include <climits>
#include <limits>

using namespace SpinnerTest;

static constexpr qint64 LargestSide = QWIDGETSIZE_MAX - 1;

class tst_WaitingSpinnerWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreAsStated();
    void theDefaultsComeBack();
    void aWindowOfItsOwnIsFramelessAndTranslucent_data();
    void aWindowOfItsOwnIsFramelessAndTranslucent();
    void roundnessIsClamped_data();
    void roundnessIsClamped();
    void propertiesAreStored();
    void aStyleSheetMaySetTheColour();
    void theSizeFollowsTheLines_data();
    void theSizeFollowsTheLines();
    void aSpinnerHasTheLargestSizeAtMost();
    void moreLinesThanTheLargestNumberAreAsManyAsThat();
    void theIntervalIsThatOfAStep_data();
    void theIntervalIsThatOfAStep();

    void distancesAreCountedBackwards_data();
    void distancesAreCountedBackwards();
    void theTrailFades_data();
    void theTrailFades();
    void coloursOfUnusualTrails_data();
    void coloursOfUnusualTrails();

    void theOpaqueLineGoesRound();
    void theTimerTurnsTheRing();
    void aNewNumberOfLinesStartsAnew();
    void stoppingStartsAnew();
    void theRingIsDrawnAsStated();
    void theRingIsDrawnLineByLine_data();
    void theRingIsDrawnLineByLine();
    void noLinesAreNoDivision_data();
    void noLinesAreNoDivision();
    void theBackgroundIsLeftAlone();
};

void tst_WaitingSpinnerWidget::theDefaultsAreAsStated()
{
    QWidget parent;
    const WaitingSpinnerWidget spinner(&parent, true, true);
    QCOMPARE(spinner.parentWidget(), &parent);
    QVERIFY(!spinner.isWindow());
    QCOMPARE(spinner.color(), QColor(194, 194, 183, 255));
    QCOMPARE(spinner.roundness(), 70.0);
    QCOMPARE(spinner.minimumTrailOpacity(), 15.0);
    QCOMPARE(spinner.trailFadePercentage(), 70.0);
    QCOMPARE(spinner.revolutionsPersSecond(), 1.0);
    QCOMPARE(spinner.lineLength(), 10);
    QCOMPARE(spinner.lineWidth(), 4);
    QCOMPARE(spinner.innerRadius(), 10);
    QCOMPARE(spinner.size(), QSize(40, 40));
    QCOMPARE(spinner.minimumSize(), QSize(40, 40));
    QCOMPARE(spinner.maximumSize(), QSize(40, 40));
    QVERIFY(!spinner.isSpinning());
    QVERIFY(parent.isEnabled());
    QCOMPARE(spinner.findChildren<QTimer *>().size(), 1);
    QCOMPARE(rotationTimerOf(spinner)->interval(), 90);
    QVERIFY(!rotationTimerOf(spinner)->isActive());
}

void tst_WaitingSpinnerWidget::theDefaultsComeBack()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    const QImage fresh = imageOf(spinner);
    spinner.setColor(Qt::red);
    spinner.setRoundness(1);
    spinner.setMinimumTrailOpacity(2);
    spinner.setTrailFadePercentage(3);
    spinner.setRevolutionsPerSecond(4);
    spinner.setNumberOfLines(5);
    spinner.setLineLength(6);
    spinner.setLineWidth(7);
    spinner.setInnerRadius(8);
    spinner.setCountdown(9);
    spinner.rotate();
    spinner.setSpinnerDefaultProperties();
    QCOMPARE(spinner.color(), QColor(194, 194, 183));
    QCOMPARE(spinner.roundness(), 70.0);
    QCOMPARE(spinner.minimumTrailOpacity(), 15.0);
    QCOMPARE(spinner.trailFadePercentage(), 70.0);
    QCOMPARE(spinner.revolutionsPersSecond(), 1.0);
    QCOMPARE(spinner.lineLength(), 10);
    QCOMPARE(spinner.lineWidth(), 4);
    QCOMPARE(spinner.innerRadius(), 10);
    QCOMPARE(spinner.size(), QSize(40, 40));
    QCOMPARE(rotationTimerOf(spinner)->interval(), 90);
    QCOMPARE(imageOf(spinner), fresh);
}

void tst_WaitingSpinnerWidget::aWindowOfItsOwnIsFramelessAndTranslucent_data()
{
    QTest::addColumn<Qt::WindowModality>("modality");
    QTest::newRow("not modal") << Qt::NonModal;
    QTest::newRow("window") << Qt::WindowModal;
    QTest::newRow("application") << Qt::ApplicationModal;
}

void tst_WaitingSpinnerWidget::aWindowOfItsOwnIsFramelessAndTranslucent()
{
    QFETCH(Qt::WindowModality, modality);
    QWidget parent;
    WaitingSpinnerWidget spinner(modality, &parent, false, true);
    QCOMPARE(spinner.parentWidget(), &parent);
    QVERIFY(spinner.isWindow());
    QCOMPARE(spinner.windowType(), Qt::Dialog);
    QVERIFY(spinner.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(spinner.windowModality(), modality);
    QVERIFY(spinner.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(spinner.size(), QSize(40, 40));
    QCOMPARE(rotationTimerOf(spinner)->interval(), 90);
    parent.show();
    QVERIFY(!spinner.isVisible());
    spinner.start();
    QVERIFY(spinner.isVisible());
    QVERIFY(!parent.isEnabled());
    spinner.stop();
    QVERIFY(parent.isEnabled());
}

void tst_WaitingSpinnerWidget::roundnessIsClamped_data()
{
    QTest::addColumn<double>("set");
    QTest::addColumn<double>("stored");
    QTest::newRow("above") << 150.0 << 100.0;
    QTest::newRow("below") << -5.0 << 0.0;
    QTest::newRow("most") << 100.0 << 100.0;
    QTest::newRow("least") << 0.0 << 0.0;
    QTest::newRow("between") << 33.3 << 33.3;
}

void tst_WaitingSpinnerWidget::roundnessIsClamped()
{
    QFETCH(double, set);
    QFETCH(double, stored);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setRoundness(set);
    QCOMPARE(spinner.roundness(), stored);
}

void tst_WaitingSpinnerWidget::propertiesAreStored()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setColor(QColor(1, 2, 3, 4));
    spinner.setMinimumTrailOpacity(22.5);
    spinner.setTrailFadePercentage(33.5);
    spinner.setRevolutionsPerSecond(0.25);
    QCOMPARE(spinner.color(), QColor(1, 2, 3, 4));
    QCOMPARE(spinner.minimumTrailOpacity(), 22.5);
    QCOMPARE(spinner.trailFadePercentage(), 33.5);
    QCOMPARE(spinner.revolutionsPersSecond(), 0.25);
}

void tst_WaitingSpinnerWidget::aStyleSheetMaySetTheColour()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setStyleSheet(QStringLiteral("WaitingSpinnerWidget { qproperty-color: #010203; }"));
    spinner.start();
    QCOMPARE(spinner.color(), QColor(1, 2, 3));
}

void tst_WaitingSpinnerWidget::theSizeFollowsTheLines_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("radius");
    QTest::addColumn<int>("side");
    QTest::newRow("as usual") << 10 << 4 << 10 << 40;
    QTest::newRow("long lines") << 25 << 4 << 10 << 70;
    QTest::newRow("wide lines") << 10 << 30 << 10 << 40;
    QTest::newRow("a wide ring") << 10 << 4 << 31 << 82;
    QTest::newRow("a star") << 7 << 2 << 0 << 14;
    QTest::newRow("nothing") << 0 << 0 << 0 << 0;
    QTest::newRow("below nothing") << -20 << -3 << 5 << 0;
    QTest::newRow("the least") << INT_MIN << INT_MIN << INT_MIN << 0;
    QTest::newRow("opposites") << INT_MAX << INT_MIN << -INT_MAX << 0;
}

void tst_WaitingSpinnerWidget::theSizeFollowsTheLines()
{
    QFETCH(int, length);
    QFETCH(int, width);
    QFETCH(int, radius);
    QFETCH(int, side);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setLineLength(length);
    QCOMPARE(spinner.width(), int(qBound(qint64(0), 2 * (10 + qint64(length)), LargestSide)));
    spinner.setInnerRadius(radius);
    spinner.setMinimumSize(0, 0);
    spinner.setMaximumSize(500, 500);
    spinner.setLineWidth(width); // each of the three fixes the size
    QCOMPARE(spinner.minimumSize(), QSize(side, side));
    QCOMPARE(spinner.maximumSize(), QSize(side, side));
    QCOMPARE(spinner.lineLength(), length);
    QCOMPARE(spinner.lineWidth(), width);
    QCOMPARE(spinner.innerRadius(), radius);
    if (side > 0)
        imageOf(spinner);
}

void tst_WaitingSpinnerWidget::aSpinnerHasTheLargestSizeAtMost()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setLineLength(INT_MAX);
    QCOMPARE(spinner.size(), QSize(int(LargestSide), int(LargestSide)));
    spinner.setInnerRadius(INT_MAX);
    QCOMPARE(spinner.size(), QSize(int(LargestSide), int(LargestSide)));
    QCOMPARE(spinner.lineLength(), INT_MAX);
    QCOMPARE(spinner.innerRadius(), INT_MAX);
    spinner.setLineWidth(INT_MAX);
    QImage image(10, 10, QImage::Format_ARGB32_Premultiplied);
    spinner.render(&image); // far outside, but defined
}

void tst_WaitingSpinnerWidget::moreLinesThanTheLargestNumberAreAsManyAsThat()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    WaitingSpinnerWidget largest(nullptr, false, false);
    spinner.setNumberOfLines(INT_MAX);
    largest.setNumberOfLines(WaitingSpinnerWidget::LargestNumberOfLines);
    QCOMPARE(imageOf(spinner), imageOf(largest));
    largest.setNumberOfLines(WaitingSpinnerWidget::LargestNumberOfLines - 1);
    QVERIFY(imageOf(spinner) != imageOf(largest));
}

void tst_WaitingSpinnerWidget::theIntervalIsThatOfAStep_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<double>("revolutions");
    QTest::addColumn<int>("interval");
    QTest::newRow("default") << 11 << 1.0 << 90;
    QTest::newRow("twice as fast") << 11 << 2.0 << 45;
    QTest::newRow("truncated") << 7 << 1.5 << 95;
    QTest::newRow("slow") << 4 << 0.1 << 2500;
    QTest::newRow("one line") << 1 << 1.0 << 1000;
    QTest::newRow("no lines") << 0 << 1.0 << INT_MAX;
    QTest::newRow("fewer than none") << -3 << 1.0 << INT_MAX;
    QTest::newRow("no revolutions") << 11 << 0.0 << INT_MAX;
    QTest::newRow("neither") << 0 << 0.0 << INT_MAX;
    QTest::newRow("backwards") << 11 << -1.0 << INT_MAX;
    QTest::newRow("once in an age") << 11 << 1e-12 << INT_MAX;
    QTest::newRow("faster than the clock") << 11 << 1e6 << 1;
    QTest::newRow("infinitely fast") << 11 << std::numeric_limits<double>::infinity() << 1;
}

void tst_WaitingSpinnerWidget::theIntervalIsThatOfAStep()
{
    QFETCH(int, lines);
    QFETCH(double, revolutions);
    QFETCH(int, interval);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setNumberOfLines(lines);
    spinner.setRevolutionsPerSecond(revolutions);
    QCOMPARE(rotationTimerOf(spinner)->interval(), interval);
    QCOMPARE(spinner.revolutionsPersSecond(), revolutions);

    WaitingSpinnerWidget other(nullptr, false, false);
    other.setRevolutionsPerSecond(revolutions);
    other.setNumberOfLines(lines);
    QCOMPARE(rotationTimerOf(other)->interval(), interval);
}

void tst_WaitingSpinnerWidget::distancesAreCountedBackwards_data()
{
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("primary");
    QTest::addColumn<int>("distance");
    QTest::newRow("the leading one") << 4 << 4 << 0;
    QTest::newRow("behind") << 1 << 4 << 3;
    QTest::newRow("behind, over the seam") << 10 << 4 << 5;
    QTest::newRow("just ahead") << 5 << 4 << 10;
}

void tst_WaitingSpinnerWidget::distancesAreCountedBackwards()
{
    QFETCH(int, current);
    QFETCH(int, primary);
    QFETCH(int, distance);
    QCOMPARE(WaitingSpinnerWidget::lineCountDistanceFromPrimary(current, primary, 11), distance);
}

void tst_WaitingSpinnerWidget::theTrailFades_data()
{
    QTest::addColumn<int>("distance");
    QTest::addColumn<double>("alpha");
    // The threshold is 7: the trail falls by eighths of what is above the minimum.
    for (int distance = 0; distance <= 7; ++distance)
        QTest::addRow("%d, fading", distance) << distance << 1.0 - distance * 0.85 / 8;
    for (int distance = 8; distance <= 10; ++distance)
        QTest::addRow("%d, beyond", distance) << distance << 0.15;
}

void tst_WaitingSpinnerWidget::theTrailFades()
{
    QFETCH(int, distance);
    QFETCH(double, alpha);
    const QColor colour = WaitingSpinnerWidget::currentLineColor(distance, 11, 70.0, 15.0, QColor(194, 194, 183));
    QVERIFY2(qAbs(double(colour.alphaF()) - alpha) < 0.0001, qPrintable(QString::number(double(colour.alphaF()))));
    QCOMPARE(QColor(colour.rgb()), QColor(194, 194, 183));
}

void tst_WaitingSpinnerWidget::coloursOfUnusualTrails_data()
{
    QTest::addColumn<int>("distance");
    QTest::addColumn<int>("lines");
    QTest::addColumn<double>("fade");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("ownAlpha");
    QTest::addColumn<double>("alpha");
    // 25 x 28 / 100 is 7, but 25 x (28 / 100) is a little more.
    QTest::newRow("multiplied before divided") << 8 << 26 << 28.0 << 15.0 << 1.0 << 0.15;
    QTest::newRow("rounded up") << 1 << 11 << 1.0 << 0.0 << 1.0 << 0.5;
    QTest::newRow("no trail") << 1 << 11 << 0.0 << 20.0 << 1.0 << 0.2;
    QTest::newRow("the whole ring") << 10 << 11 << 100.0 << 0.0 << 1.0 << 1.0 / 11;
    QTest::newRow("longer than the ring") << 10 << 11 << 190.0 << 0.0 << 1.0 << 0.5;
    QTest::newRow("a see-through colour") << 4 << 11 << 70.0 << 0.0 << 0.5 << 0.25;
    QTest::newRow("a colour below the minimum") << 4 << 11 << 70.0 << 50.0 << 0.0 << 0.25;
    QTest::newRow("the leading one keeps its alpha") << 0 << 11 << 70.0 << 50.0 << 0.25 << 0.25;
    QTest::newRow("minimum above 1") << 9 << 11 << 70.0 << 250.0 << 1.0 << 1.0;
    QTest::newRow("minimum below 0") << 9 << 11 << 70.0 << -50.0 << 1.0 << 0.0;
    QTest::newRow("trail below 0") << 1 << 11 << -70.0 << 15.0 << 1.0 << 0.15;
    QTest::newRow("a single line") << 0 << 1 << 70.0 << 15.0 << 1.0 << 1.0;
}

void tst_WaitingSpinnerWidget::coloursOfUnusualTrails()
{
    QFETCH(int, distance);
    QFETCH(int, lines);
    QFETCH(double, fade);
    QFETCH(double, minimum);
    QFETCH(double, ownAlpha);
    QFETCH(double, alpha);
    QColor colour(10, 20, 30);
    colour.setAlphaF(float(ownAlpha));
    colour = WaitingSpinnerWidget::currentLineColor(distance, lines, fade, minimum, colour);
    QVERIFY2(qAbs(double(colour.alphaF()) - alpha) < 0.0001, qPrintable(QString::number(double(colour.alphaF()))));
}

void tst_WaitingSpinnerWidget::theOpaqueLineGoesRound()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    for (int step = 0; step < 2 * Lines + 1; ++step) {
        QCOMPARE(leadingLine(spinner), step % Lines);
        QVERIFY(QMetaObject::invokeMethod(&spinner, "rotate"));
    }
}

void tst_WaitingSpinnerWidget::theTimerTurnsTheRing()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.start();
    QTRY_COMPARE_WITH_TIMEOUT(leadingLine(spinner), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(leadingLine(spinner), 0, 30000);
}

void tst_WaitingSpinnerWidget::aNewNumberOfLinesStartsAnew()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    for (int i = 0; i < 9; ++i)
        spinner.rotate();
    QCOMPARE(leadingLine(spinner), 9);
    spinner.setNumberOfLines(6);
    QCOMPARE(leadingLine(spinner, 6), 0);
    spinner.rotate();
    QCOMPARE(leadingLine(spinner, 6), 1);
}

void tst_WaitingSpinnerWidget::stoppingStartsAnew()
{
    QWidget parent;
    WaitingSpinnerWidget spinner(&parent, false, false);
    spinner.setRevolutionsPerSecond(0.0001);
    parent.show();
    spinner.rotate();
    spinner.stop(); // not spinning: nothing to begin anew
    QCOMPARE(leadingLine(spinner), 1);
    spinner.start();
    QCOMPARE(leadingLine(spinner), 0);
    spinner.rotate();
    spinner.rotate();
    spinner.start();
    QCOMPARE(leadingLine(spinner), 2);
    spinner.stop();
    QCOMPARE(leadingLine(spinner), 0);
}

void tst_WaitingSpinnerWidget::theRingIsDrawnAsStated()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setColor(QColor(0, 0, 255));
    spinner.setRoundness(0);
    for (int i = 0; i < 3; ++i)
        spinner.rotate();
    const QImage image = imageOf(spinner);
    for (int line = 0; line < Lines; ++line) {
        const int distance = (3 - line + Lines) % Lines;
        const QColor expected = WaitingSpinnerWidget::currentLineColor(distance, Lines, 70, 15, QColor(0, 0, 255));
        const QColor drawn = colourOfLine(image, line);
        QVERIFY(qAbs(drawn.alpha() - expected.alpha()) <= 2);
        QVERIFY(qAbs(drawn.blue() - 255) <= 5);
    }
    // The first line points to the right, from the inner radius to the edge, two pixels above and below the middle.
    for (const QPoint &inside : {QPoint(30, 18), QPoint(39, 18), QPoint(30, 21), QPoint(39, 21)})
        QVERIFY(image.pixelColor(inside).alpha() > 0);
    for (const QPoint &outside : {QPoint(28, 20), QPoint(35, 16), QPoint(35, 23), QPoint(20, 20), QPoint(0, 0)})
        QCOMPARE(image.pixelColor(outside).alpha(), 0);

    spinner.setRoundness(100);
    QVERIFY(imageOf(spinner).pixelColor(39, 18).alpha() < image.pixelColor(39, 18).alpha());
}

void tst_WaitingSpinnerWidget::theRingIsDrawnLineByLine_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("radius");
    QTest::addColumn<double>("roundness");
    QTest::newRow("as usual") << 11 << 10 << 4 << 10 << 70.0;
    QTest::newRow("an odd width") << 7 << 12 << 5 << 9 << 100.0;
    QTest::newRow("square lines that touch") << 4 << 3 << 8 << 0 << 0.0;
}

void tst_WaitingSpinnerWidget::theRingIsDrawnLineByLine()
{
    QFETCH(int, lines);
    QFETCH(int, length);
    QFETCH(int, width);
    QFETCH(int, radius);
    QFETCH(double, roundness);
    constexpr int Leading = 2;
    const QColor colour(10, 120, 240, 200);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setColor(colour);
    spinner.setNumberOfLines(lines);
    spinner.setLineLength(length);
    spinner.setLineWidth(width);
    spinner.setInnerRadius(radius);
    spinner.setRoundness(roundness);
    for (int i = 0; i < Leading; ++i)
        spinner.rotate();

    QImage expected(spinner.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int line = 0; line < lines; ++line) {
        const int distance = WaitingSpinnerWidget::lineCountDistanceFromPrimary(line, Leading, lines);
        painter.save();
        painter.translate(radius + length, radius + length);
        painter.rotate(360.0 * line / lines);
        painter.translate(radius, 0);
        painter.setBrush(WaitingSpinnerWidget::currentLineColor(distance, lines, 70.0, 15.0, colour));
        painter.drawRoundedRect(QRect(0, -width / 2, length, width), roundness, roundness, Qt::RelativeSize);
        painter.restore();
    }
    painter.end();
    QCOMPARE(imageOf(spinner), expected.convertToFormat(QImage::Format_ARGB32));
}

void tst_WaitingSpinnerWidget::noLinesAreNoDivision_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<double>("revolutions");
    QTest::newRow("no lines") << 0 << 1.0;
    QTest::newRow("fewer") << -7 << 1.0;
    QTest::newRow("no revolutions") << 11 << 0.0;
    QTest::newRow("neither") << 0 << 0.0;
}

void tst_WaitingSpinnerWidget::noLinesAreNoDivision()
{
    QFETCH(int, lines);
    QFETCH(double, revolutions);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setNumberOfLines(lines);
    spinner.setRevolutionsPerSecond(revolutions);
    spinner.start();
    spinner.rotate();
    const bool isEmpty = imageOf(spinner) == [] {
        QImage empty(40, 40, QImage::Format_ARGB32);
        empty.fill(Qt::transparent);
        return empty;
    }();
    QCOMPARE(isEmpty, lines <= 0);
    spinner.setCountdown(3);
    QVERIFY(isNumberDrawn(spinner));
    spinner.stop();
}

void tst_WaitingSpinnerWidget::theBackgroundIsLeftAlone()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    QImage image(spinner.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    spinner.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    QCOMPARE(image.pixelColor(20, 20), QColor(Qt::red));
}

UNIPROG_TEST_MAIN(tst_WaitingSpinnerWidget)

#include "tst_waitingspinnerwidget.moc"
