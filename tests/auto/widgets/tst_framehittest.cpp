#include <FrameHitTest_p.h>

#include <UniProgTest.h>

#include <QApplication>

Q_DECLARE_METATYPE(FramePart)

// 1000 pixels wide and 600 high, from (200, 100): the last pixels inside are x 1199 and y 699.
static constexpr QRect WindowRect(200, 100, 1000, 600);
static constexpr QSize Small(300, 200);
static constexpr QSize Large(2000, 1500);
static constexpr int MiddleX = 700;
static constexpr int MiddleY = 400;

class tst_FrameHitTest : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void partsHaveTheNumbersOfTheSystem();
    void theBorderIsFourPixelsWide_data();
    void theBorderIsFourPixelsWide();
    void aFixedDirectionHasNoEdgeAndNoCorner_data();
    void aFixedDirectionHasNoEdgeAndNoCorner();
    void windowsOnOtherScreensAreHitToo();
    void aScreenAboveHasOnlyItsSideEdges();
    void theArgumentGivesSignedXAndUnsignedY_data();
    void theArgumentGivesSignedXAndUnsignedY();
};

void tst_FrameHitTest::partsHaveTheNumbersOfTheSystem()
{
    QCOMPARE(int(NoFramePart), 0);
    QCOMPARE(int(FrameCaption), 2);
    QCOMPARE(int(FrameLeft), 10);
    QCOMPARE(int(FrameRight), 11);
    QCOMPARE(int(FrameTop), 12);
    QCOMPARE(int(FrameTopLeft), 13);
    QCOMPARE(int(FrameTopRight), 14);
    QCOMPARE(int(FrameBottom), 15);
    QCOMPARE(int(FrameBottomLeft), 16);
    QCOMPARE(int(FrameBottomRight), 17);
}

void tst_FrameHitTest::theBorderIsFourPixelsWide_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<FramePart>("part");
    const auto row
        = [](const char *name, int x, int y, FramePart part) { QTest::newRow(name) << QPoint(x, y) << part; };
    row("left, outside", 199, MiddleY, NoFramePart);
    row("left, first", 200, MiddleY, FrameLeft);
    row("left, last", 203, MiddleY, FrameLeft);
    row("left, inside", 204, MiddleY, NoFramePart);
    row("right, inside", 1195, MiddleY, NoFramePart);
    row("right, first", 1196, MiddleY, FrameRight);
    row("right, last", 1199, MiddleY, FrameRight);
    row("right, outside", 1200, MiddleY, NoFramePart);
    row("top, outside", MiddleX, 99, NoFramePart);
    row("top, first", MiddleX, 100, FrameTop);
    row("top, last", MiddleX, 103, FrameTop);
    row("top, inside", MiddleX, 104, NoFramePart);
    row("bottom, inside", MiddleX, 695, NoFramePart);
    row("bottom, first", MiddleX, 696, FrameBottom);
    row("bottom, last", MiddleX, 699, FrameBottom);
    row("bottom, outside", MiddleX, 700, NoFramePart);
    row("top left", 200, 100, FrameTopLeft);
    row("top left, inner", 203, 103, FrameTopLeft);
    row("top right", 1199, 100, FrameTopRight);
    row("top right, inner", 1196, 103, FrameTopRight);
    row("bottom left", 200, 699, FrameBottomLeft);
    row("bottom left, inner", 203, 696, FrameBottomLeft);
    row("bottom right", 1199, 699, FrameBottomRight);
    row("bottom right, inner", 1196, 696, FrameBottomRight);
    row("beside the top left corner", 204, 103, FrameTop);
    row("below the top left corner", 203, 104, FrameLeft);
    row("middle", MiddleX, MiddleY, NoFramePart);
}

void tst_FrameHitTest::theBorderIsFourPixelsWide()
{
    QFETCH(QPoint, cursor);
    QFETCH(FramePart, part);
    QCOMPARE(frameEdgeAt({WindowRect, cursor}, Small, Large), part);
}

void tst_FrameHitTest::aFixedDirectionHasNoEdgeAndNoCorner_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<FramePart>("fixedWidth");
    QTest::addColumn<FramePart>("fixedHeight");
    QTest::newRow("left") << QPoint(200, MiddleY) << NoFramePart << FrameLeft;
    QTest::newRow("right") << QPoint(1199, MiddleY) << NoFramePart << FrameRight;
    QTest::newRow("top") << QPoint(MiddleX, 100) << FrameTop << NoFramePart;
    QTest::newRow("bottom") << QPoint(MiddleX, 699) << FrameBottom << NoFramePart;
    QTest::newRow("top left") << QPoint(200, 100) << FrameTop << FrameLeft;
    QTest::newRow("top right") << QPoint(1199, 100) << FrameTop << FrameRight;
    QTest::newRow("bottom left") << QPoint(200, 699) << FrameBottom << FrameLeft;
    QTest::newRow("bottom right") << QPoint(1199, 699) << FrameBottom << FrameRight;
}

void tst_FrameHitTest::aFixedDirectionHasNoEdgeAndNoCorner()
{
    QFETCH(QPoint, cursor);
    QFETCH(FramePart, fixedWidth);
    QFETCH(FramePart, fixedHeight);
    const FrameHitTest hitTest{WindowRect, cursor};
    QCOMPARE(frameEdgeAt(hitTest, QSize(1000, 200), QSize(1000, 1500)), fixedWidth);
    QCOMPARE(frameEdgeAt(hitTest, QSize(300, 600), QSize(2000, 600)), fixedHeight);
    QCOMPARE(frameEdgeAt(hitTest, WindowRect.size(), WindowRect.size()), NoFramePart);
}

void tst_FrameHitTest::windowsOnOtherScreensAreHitToo()
{
    const QRect left(-1900, 100, 1000, 600);
    QCOMPARE(frameEdgeAt({left, QPoint(-1900, 100)}, Small, Large), FrameTopLeft);
    QCOMPARE(frameEdgeAt({left, QPoint(-901, 400)}, Small, Large), FrameRight);
}

void tst_FrameHitTest::aScreenAboveHasOnlyItsSideEdges()
{
    const QRect above(200, -900, 1000, 600);
    const auto partAt = [&above](qint16 x, qint16 y) {
        const quint32 argument = (quint32(quint16(y)) << 16) | quint16(x);
        return frameEdgeAt({above, frameHitTestPoint(argument)}, Small, Large);
    };
    QCOMPARE(partAt(200, -600), FrameLeft);
    QCOMPARE(partAt(1199, -600), FrameRight);
    QCOMPARE(partAt(700, -900), NoFramePart);
    QCOMPARE(partAt(200, -900), FrameLeft);
    QCOMPARE(partAt(700, -301), NoFramePart);
}

void tst_FrameHitTest::theArgumentGivesSignedXAndUnsignedY_data()
{
    QTest::addColumn<qint64>("argument");
    QTest::addColumn<QPoint>("point");
    QTest::newRow("zero") << qint64(0) << QPoint(0, 0);
    QTest::newRow("positive") << qint64(0x01900320) << QPoint(800, 400);
    QTest::newRow("negative x") << qint64(0x0190FFFF) << QPoint(-1, 400);
    QTest::newRow("smallest x") << qint64(0x00008000) << QPoint(-32768, 0);
    QTest::newRow("largest x") << qint64(0x00007FFF) << QPoint(32767, 0);
    QTest::newRow("y of a screen above") << qint64(0xFFFF0000) << QPoint(0, 65535);
    QTest::newRow("sign-extended argument") << qint64(-1) << QPoint(-1, 65535);
    QTest::newRow("bits beyond 32") << qint64(0x1234567800010002) << QPoint(2, 1);
}

void tst_FrameHitTest::theArgumentGivesSignedXAndUnsignedY()
{
    QFETCH(qint64, argument);
    QFETCH(QPoint, point);
    QCOMPARE(frameHitTestPoint(static_cast<qintptr>(argument)), point);
}

UNIPROG_TEST_MAIN(tst_FrameHitTest)
#include "tst_framehittest.moc"
