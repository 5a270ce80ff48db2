#include <UtilsDialogTitlebar.h>
#include <UtilsDialogWindow.h>
#include <UtilsMisc.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QLayout>

#include <qt_windows.h>

static bool framelessAnswer = true;

// In the place of the library's own, which never chooses a window that draws its own frame.
bool UtilsMisc::CheckIfFramelessUsed()
{
    return framelessAnswer;
}

namespace {

constexpr QRect Geometry(60, 50, 400, 300); // on the screen with twice the pixels too: the cursor stays on it
constexpr int Border = 4; // pixels of the screen

/// As an application's class has it.
struct MemoryWindow : UtilsDialogWindow
{
    using UtilsDialogWindow::nativeEvent;

    MemoryWindow()
    {
        setContent(content);
        setGeometry(Geometry);
    }

    HWND handle() const
    {
        return reinterpret_cast<HWND>(winId());
    }

    /// In pixels of the screen.
    QRect rectangle() const
    {
        RECT rectangle = {};
        GetWindowRect(handle(), &rectangle);
        return QRect(QPoint(rectangle.left, rectangle.top), QPoint(rectangle.right - 1, rectangle.bottom - 1));
    }

    /// The system's question with the cursor at \a point of the screen, in its pixels.
    LRESULT askAt(const QPoint &point) const
    {
        SetCursorPos(point.x(), point.y());
        return SendMessageW(handle(), WM_NCHITTEST, 0, MAKELPARAM(point.x(), point.y()));
    }

    /// \a point is one of the window's rectangle; what is negative counts from the right and the bottom.
    LRESULT ask(const QPoint &point) const
    {
        const QRect window = rectangle();
        const int x = point.x() < 0 ? window.right() + 1 : window.left();
        const int y = point.y() < 0 ? window.bottom() + 1 : window.top();
        return askAt(QPoint(x, y) + point);
    }

    QLabel *const content = new QLabel("content");
};

QPoint middle(const QRect &rectangle)
{
    return QPoint(rectangle.width() / 2, rectangle.height() / 2);
}

} // namespace

/// Real messages to a window that draws its own frame, on the system's own platform plugin.
class tst_UtilsDialogWindow_native : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void everyPartIsAnswered_data();
    void everyPartIsAnswered();
    void theBorderIsFourPixelsOfTheScreen();
    void aChildIsNotTheCaption();
    void aWindowOfFixedWidthHasTopAndBottomOnly();
    void aWindowOfFixedHeightHasLeftAndRightOnly();
    void aWindowOfFixedSizeIsMovedOnly();
    void aMaximisedWindowIsLeftToTheSystem();
    void aWindowLeftOfTheScreenIsHit();
    void aWindowAboveTheScreenHasItsSideEdgesOnly();
    void aFramedWindowIsLeftToTheSystem();
    void otherMessagesAreNotAnswered();
    void theLongFormGivesTheSameAnswer();
    void theEdgesFollowTheWindow();
};

void tst_UtilsDialogWindow_native::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("windows"));
}

void tst_UtilsDialogWindow_native::init()
{
    UniProgTest::init();
    framelessAnswer = true;
}

void tst_UtilsDialogWindow_native::cleanup()
{
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsDialogWindow_native::everyPartIsAnswered_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("part");
    const auto row = [](const char *name, int x, int y, int part) { QTest::newRow(name) << QPoint(x, y) << part; };
    row("left", 0, 150, HTLEFT);
    row("right", -1, 150, HTRIGHT);
    row("top", 200, 0, HTTOP);
    row("bottom", 200, -1, HTBOTTOM);
    row("top left", 0, 0, HTTOPLEFT);
    row("top right", -1, 0, HTTOPRIGHT);
    row("bottom left", 0, -1, HTBOTTOMLEFT);
    row("bottom right", -1, -1, HTBOTTOMRIGHT);
    row("caption", 20, 150, HTCAPTION);
}

void tst_UtilsDialogWindow_native::everyPartIsAnswered()
{
    QFETCH(QPoint, point);
    QFETCH(int, part);
    MemoryWindow window;
    window.layout()->setContentsMargins(40, 40, 40, 40); // so that the background shows
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.ask(point), LRESULT(part));
}

void tst_UtilsDialogWindow_native::theBorderIsFourPixelsOfTheScreen()
{
    MemoryWindow window;
    window.layout()->setContentsMargins(40, 40, 40, 40);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.rectangle().size(), Geometry.size() * window.devicePixelRatio());
    QCOMPARE(window.ask(QPoint(Border - 1, 150)), LRESULT(HTLEFT));
    QCOMPARE(window.ask(QPoint(Border, 150)), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(QPoint(-Border, 150)), LRESULT(HTRIGHT));
    QCOMPARE(window.ask(QPoint(-Border - 1, 150)), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(QPoint(200, Border - 1)), LRESULT(HTTOP));
    QCOMPARE(window.ask(QPoint(200, Border)), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(QPoint(200, -Border)), LRESULT(HTBOTTOM));
    QCOMPARE(window.ask(QPoint(200, -Border - 1)), LRESULT(HTCAPTION));
}

void tst_UtilsDialogWindow_native::aChildIsNotTheCaption()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.ask(middle(window.rectangle())), LRESULT(HTCLIENT));
    const auto *titlebar = window.findChild<UtilsDialogTitlebar *>();
    const QPoint onTheTitlebar = titlebar->mapTo(&window, titlebar->rect().center()) * window.devicePixelRatio();
    QCOMPARE(window.ask(onTheTitlebar), LRESULT(HTCLIENT));
}

void tst_UtilsDialogWindow_native::aWindowOfFixedWidthHasTopAndBottomOnly()
{
    MemoryWindow window;
    window.setFixedWidth(Geometry.width());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const int x : {0, 200, -1}) {
        QCOMPARE(window.ask(QPoint(x, 0)), LRESULT(HTTOP));
        QCOMPARE(window.ask(QPoint(x, -1)), LRESULT(HTBOTTOM));
    }
    // Beside the content the background shows. Qt rounds the cursor to its own pixels, on a scaled screen out of the
    // window for the last of the screen's pixels.
    QCOMPARE(window.ask(QPoint(0, 150)), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(QPoint(-2, 150)), LRESULT(HTCAPTION));
}

void tst_UtilsDialogWindow_native::aWindowOfFixedHeightHasLeftAndRightOnly()
{
    MemoryWindow window;
    window.setFixedHeight(Geometry.height());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const int y : {0, 150, -1}) {
        QCOMPARE(window.ask(QPoint(0, y)), LRESULT(HTLEFT));
        QCOMPARE(window.ask(QPoint(-1, y)), LRESULT(HTRIGHT));
    }
    QCOMPARE(window.ask(QPoint(200, 0)), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(QPoint(200, -2)), LRESULT(HTCAPTION));
}

void tst_UtilsDialogWindow_native::aWindowOfFixedSizeIsMovedOnly()
{
    MemoryWindow window;
    window.setFixedSize(Geometry.size());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const QPoint &point : {QPoint(0, 0), QPoint(200, 0), QPoint(-2, 150), QPoint(-2, -2)})
        QCOMPARE(window.ask(point), LRESULT(HTCAPTION));
    QCOMPARE(window.ask(middle(window.rectangle())), LRESULT(HTCLIENT));
}

void tst_UtilsDialogWindow_native::aMaximisedWindowIsLeftToTheSystem()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.slotMaximize(true);
    QTRY_COMPARE(window.rectangle().topLeft(), QPoint(0, 0));
    for (const QPoint &point : {QPoint(0, 0), QPoint(0, 150), QPoint(200, 0), QPoint(-1, 150), QPoint(200, -1)})
        QCOMPARE(window.ask(point), LRESULT(HTCLIENT));
    window.slotMaximize(false);
    QTRY_COMPARE(window.geometry(), Geometry);
    QCOMPARE(window.ask(QPoint(0, 150)), LRESULT(HTLEFT));
}

void tst_UtilsDialogWindow_native::aWindowLeftOfTheScreenIsHit()
{
    MemoryWindow window;
    window.move(-100, 50);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect rectangle = window.rectangle();
    QVERIFY(rectangle.left() < 0);
    QCOMPARE(window.askAt(QPoint(rectangle.left(), 150)), LRESULT(HTLEFT));
    QCOMPARE(window.askAt(rectangle.topLeft()), LRESULT(HTTOPLEFT));
    QCOMPARE(window.askAt(rectangle.bottomLeft()), LRESULT(HTBOTTOMLEFT));
    QCOMPARE(window.askAt(QPoint(-10, rectangle.top())), LRESULT(HTTOP));
    QCOMPARE(window.askAt(rectangle.topRight()), LRESULT(HTTOPRIGHT));
}

// Their y is negative, and is read as a large positive number all the same.
void tst_UtilsDialogWindow_native::aWindowAboveTheScreenHasItsSideEdgesOnly()
{
    MemoryWindow window;
    window.move(100, -80);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect rectangle = window.rectangle();
    QVERIFY(rectangle.top() < 0);
    QCOMPARE(window.askAt(rectangle.topLeft()), LRESULT(HTLEFT));
    QCOMPARE(window.askAt(QPoint(rectangle.left(), -20)), LRESULT(HTLEFT));
    QCOMPARE(window.askAt(QPoint(rectangle.right(), -20)), LRESULT(HTRIGHT));
    const LRESULT onTop = window.askAt(QPoint(rectangle.center().x(), rectangle.top()));
    QVERIFY2(onTop < HTLEFT || onTop > HTBOTTOMRIGHT, qPrintable(QString::number(onTop)));
    QCOMPARE(window.askAt(rectangle.bottomLeft()), LRESULT(HTBOTTOMLEFT)); // which is on the screen
}

void tst_UtilsDialogWindow_native::aFramedWindowIsLeftToTheSystem()
{
    framelessAnswer = false;
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    POINT corner = {0, 0};
    ClientToScreen(window.handle(), &corner);
    QCOMPARE(window.askAt(QPoint(corner.x, corner.y)), LRESULT(HTCLIENT));
    QVERIFY(corner.y > window.rectangle().top()); // the system draws a frame around it
    QCOMPARE(window.askAt(QPoint(corner.x + 100, corner.y - 10)), LRESULT(HTCAPTION));

    MSG message = {};
    message.hwnd = window.handle();
    message.message = WM_NCHITTEST;
    message.lParam = MAKELPARAM(window.rectangle().left(), window.rectangle().top());
    qintptr result = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", &message, &result));
    QCOMPARE(result, qintptr(77));
}

void tst_UtilsDialogWindow_native::otherMessagesAreNotAnswered()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    MSG message = {};
    message.hwnd = window.handle();
    message.lParam = MAKELPARAM(window.rectangle().left(), window.rectangle().top());
    for (const UINT other : {WM_NULL, WM_NCHITTEST - 1, WM_NCHITTEST + 1, WM_NCMOUSEMOVE, WM_MOUSEMOVE, WM_USER}) {
        message.message = other;
        qintptr result = 77;
        QVERIFY(!window.nativeEvent("windows_generic_MSG", &message, &result));
        QCOMPARE(result, qintptr(77));
    }
    // A window that is gone has no rectangle.
    message.message = WM_NCHITTEST;
    message.hwnd = nullptr;
    qintptr result = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", &message, &result));
    QCOMPARE(result, qintptr(77));
}

void tst_UtilsDialogWindow_native::theLongFormGivesTheSameAnswer()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    MSG message = {};
    message.hwnd = window.handle();
    message.message = WM_NCHITTEST;
    message.lParam = MAKELPARAM(window.rectangle().left(), window.rectangle().top());
    long result = 77;
    QVERIFY(window.nativeEvent("windows_generic_MSG", &message, &result));
    QCOMPARE(result, long(HTTOPLEFT));
}

void tst_UtilsDialogWindow_native::theEdgesFollowTheWindow()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(SetWindowPos(window.handle(), nullptr, 80, 70, 700, 500, SWP_NOZORDER | SWP_NOACTIVATE));
    QTRY_COMPARE(window.geometry().size() * window.devicePixelRatio(), QSize(700, 500));
    QCOMPARE(window.askAt(QPoint(80, 70)), LRESULT(HTTOPLEFT));
    QCOMPARE(window.askAt(QPoint(779, 569)), LRESULT(HTBOTTOMRIGHT));
}

UNIPROG_TEST_MAIN(tst_UtilsDialogWindow_native)
#include "tst_utilsdialogwindow_native.moc"
