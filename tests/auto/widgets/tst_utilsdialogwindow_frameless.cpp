#include <FrameHitTest_p.h>
#include <UtilsDialogTitlebar.h>
#include <UtilsDialogWindow.h>
#include <UtilsMisc.h>

#include <UniProgTest.h>

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

static bool framelessAnswer = true;
static int framelessQuestions = 0;

// In the place of the library's own.
bool UtilsMisc::CheckIfFramelessUsed()
{
    ++framelessQuestions;
    return framelessAnswer;
}

// In the place of the system's: a message is the question itself, or another message when it is null.
std::optional<FrameHitTest> frameHitTestOf(const void *message)
{
    const auto *hitTest = static_cast<const FrameHitTest *>(message);
    return hitTest ? std::optional<FrameHitTest>(*hitTest) : std::nullopt;
}

/// As an application's class has it.
struct MemoryWindow : UtilsDialogWindow
{
    using UtilsDialogWindow::nativeEvent;
    using UtilsDialogWindow::UtilsDialogWindow;

    /// The answer to a question for the part at \a point of the window, or 0 when there is none.
    qintptr partAt(const QPoint &point)
    {
        FrameHitTest hitTest{geometry(), mapToGlobal(point)};
        QCursor::setPos(mapToGlobal(point));
        qintptr result = -1;
        const bool isHandled = nativeEvent("windows_generic_MSG", &hitTest, &result);
        return isHandled ? result : result == -1 ? 0 : -2;
    }

    QToolButton *maximizeButton()
    {
        return titlebar()->getMaximizeButton();
    }

    UtilsDialogTitlebar *titlebar()
    {
        return findChild<UtilsDialogTitlebar *>();
    }
};

// A window that draws its own frame.
class tst_UtilsDialogWindow_frameless : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theDecisionIsAskedForTwice_data();
    void theDecisionIsAskedForTwice();
    void theTitleBarStandsAboveTheContent();
    void setTitleSetsTheTitleBar();
    void theTitleBarClosesAndMovesTheWindow();

    void maximisedFillsTheScreen();
    void maximisedIsNoWiderThanTheMaximumWidth();
    void theGeometryBeforeIsRestored();
    void maximisingTwiceForgetsNothing();
    void restoringAWindowThatWasNotMaximisedChangesNothing();
    void theMaximiseButtonMaximises();
    void assistiveTechnologyMaximises();
    void aMaximisedWindowIsNotMoved();

    void edgesAndCornersAreAnswered_data();
    void edgesAndCornersAreAnswered();
    void aWindowOfFixedWidthHasNoSideEdges();
    void theBackgroundIsTheCaption();
    void aChildIsNotTheCaption();
    void aMaximisedWindowAnswersNothing();
    void otherMessagesAreNotAnswered();
    void theLongFormGivesTheSameAnswer();
};

void tst_UtilsDialogWindow_frameless::init()
{
    UniProgTest::init();
    framelessAnswer = true;
    framelessQuestions = 0;
}

void tst_UtilsDialogWindow_frameless::cleanup()
{
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsDialogWindow_frameless::theDecisionIsAskedForTwice_data()
{
    QTest::addColumn<bool>("frameless");
    QTest::newRow("frameless") << true;
    QTest::newRow("framed") << false;
}

void tst_UtilsDialogWindow_frameless::theDecisionIsAskedForTwice()
{
    QFETCH(bool, frameless);
    framelessAnswer = frameless;
    MemoryWindow window;
    QCOMPARE(framelessQuestions, 2);
    QCOMPARE(window.windowFlags().testFlag(Qt::FramelessWindowHint), frameless);
    QVERIFY(window.windowFlags().testFlag(Qt::Window));
    QCOMPARE(window.titlebar() != nullptr, frameless);

    const Qt::WindowFlags flags = window.windowFlags();
    QCOMPARE(window.setWindowsFlags(), frameless ? Qt::Window | Qt::FramelessWindowHint : Qt::WindowFlags(Qt::Window));
    QCOMPARE(window.windowFlags(), flags);
    window.setTitle("Memory");
    window.slotMaximize(true);
    window.partAt(QPoint(0, 0));
    QCOMPARE(framelessQuestions, 2); // once decided, a window stays as it is
}

void tst_UtilsDialogWindow_frameless::theTitleBarStandsAboveTheContent()
{
    MemoryWindow window;
    auto *content = new QLabel("content");
    window.setContent(content);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    UtilsDialogTitlebar *titlebar = window.titlebar();
    QVERIFY(titlebar->isVisible());
    QCOMPARE(titlebar->parentWidget()->layout()->indexOf(titlebar), 0);
    QCOMPARE(titlebar->height(), 36);
    QVERIFY(content->mapTo(&window, QPoint(0, 0)).y() >= titlebar->mapTo(&window, QPoint(0, 36)).y());
    QVERIFY(titlebar->getMovable());
    QVERIFY(!window.maximizeButton()->isChecked());
    QCOMPARE(window.windowModality(), Qt::ApplicationModal);
    QCOMPARE(window.height(), QGuiApplication::primaryScreen()->geometry().height() * 3 / 4);
}

void tst_UtilsDialogWindow_frameless::setTitleSetsTheTitleBar()
{
    MemoryWindow window;
    window.setTitle("Memory");
    QCOMPARE(window.findChild<QLabel *>("titleLabel")->text(), QStringLiteral("Memory"));
    QCOMPARE(window.windowTitle(), QString());
    window.show();
    QCOMPARE(QAccessible::queryAccessibleInterface(&window)->text(QAccessible::Name), QStringLiteral("Memory"));
}

void tst_UtilsDialogWindow_frameless::theTitleBarClosesAndMovesTheWindow()
{
    MemoryWindow window;
    window.move(50, 60);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mousePress(window.titlebar(), Qt::LeftButton, {}, QPoint(100, 10));
    QTest::mouseMove(window.titlebar(), QPoint(130, 30));
    QTRY_COMPARE(window.pos(), QPoint(80, 80));
    QTest::mouseRelease(window.titlebar(), Qt::LeftButton, {}, QPoint(100, 10));

    QTest::mouseClick(window.findChild<QToolButton *>("closeButton"), Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

void tst_UtilsDialogWindow_frameless::maximisedFillsTheScreen()
{
    MemoryWindow window;
    window.slotMaximize(true);
    QCOMPARE(window.geometry(), QGuiApplication::primaryScreen()->geometry());
    QVERIFY(!window.titlebar()->getMovable());
    QVERIFY(window.maximizeButton()->isChecked());
}

void tst_UtilsDialogWindow_frameless::maximisedIsNoWiderThanTheMaximumWidth()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    MemoryWindow window;
    window.setMaximumWidth(700);
    window.move(90, 80);
    window.slotMaximize(true);
    QVERIFY(screen.width() > 700);
    QCOMPARE(window.geometry(), QRect(screen.left(), screen.top(), 700, screen.height()));
}

void tst_UtilsDialogWindow_frameless::theGeometryBeforeIsRestored()
{
    MemoryWindow window;
    for (const QRect &geometry : {QRect(30, 40, 500, 400), QRect(70, 10, 640, 300)}) {
        window.setGeometry(geometry);
        window.slotMaximize(true);
        QVERIFY(window.geometry() != geometry);
        window.slotMaximize(false);
        QCOMPARE(window.geometry(), geometry);
        QVERIFY(window.titlebar()->getMovable());
        QVERIFY(!window.maximizeButton()->isChecked());
    }
}

void tst_UtilsDialogWindow_frameless::maximisingTwiceForgetsNothing()
{
    const QRect geometry(30, 40, 500, 400);
    MemoryWindow window;
    window.setGeometry(geometry);
    window.slotMaximize(true);
    window.slotMaximize(true);
    QCOMPARE(window.geometry(), QGuiApplication::primaryScreen()->geometry());
    window.slotMaximize(false);
    QCOMPARE(window.geometry(), geometry);
}

void tst_UtilsDialogWindow_frameless::restoringAWindowThatWasNotMaximisedChangesNothing()
{
    const QRect geometry(30, 40, 500, 400);
    MemoryWindow window;
    window.setGeometry(geometry);
    window.slotMaximize(false);
    QCOMPARE(window.geometry(), geometry);

    window.slotMaximize(true);
    window.slotMaximize(false);
    window.move(5, 6);
    window.slotMaximize(false);
    QCOMPARE(window.pos(), QPoint(5, 6));
}

void tst_UtilsDialogWindow_frameless::theMaximiseButtonMaximises()
{
    const QRect geometry(30, 40, 500, 400);
    MemoryWindow window;
    window.setGeometry(geometry);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseClick(window.maximizeButton(), Qt::LeftButton);
    QCOMPARE(window.geometry(), QGuiApplication::primaryScreen()->geometry());
    QTest::mouseClick(window.maximizeButton(), Qt::LeftButton);
    QCOMPARE(window.geometry(), geometry);
}

void tst_UtilsDialogWindow_frameless::assistiveTechnologyMaximises()
{
    const QRect geometry(30, 40, 500, 400);
    MemoryWindow window;
    window.setGeometry(geometry);
    window.show();
    QAccessibleActionInterface *actions
        = QAccessible::queryAccessibleInterface(window.maximizeButton())->actionInterface();
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(window.geometry(), QGuiApplication::primaryScreen()->geometry());
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(window.geometry(), geometry);
}

void tst_UtilsDialogWindow_frameless::aMaximisedWindowIsNotMoved()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.slotMaximize(true);
    QTest::mousePress(window.titlebar(), Qt::LeftButton, {}, QPoint(100, 10));
    QTest::mouseMove(window.titlebar(), QPoint(130, 30));
    QCOMPARE(window.geometry(), QGuiApplication::primaryScreen()->geometry());
    QTest::mouseRelease(window.titlebar(), Qt::LeftButton, {}, QPoint(130, 30));
}

void tst_UtilsDialogWindow_frameless::edgesAndCornersAreAnswered_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<qintptr>("part");
    const auto row
        = [](const char *name, int x, int y, int part) { QTest::newRow(name) << QPoint(x, y) << qintptr(part); };
    row("left", 3, 200, 10);
    row("right", 596, 200, 11);
    row("top", 300, 0, 12);
    row("top left", 0, 0, 13);
    row("top right", 599, 3, 14);
    row("bottom", 300, 399, 15);
    row("bottom left", 3, 396, 16);
    row("bottom right", 599, 399, 17);
}

void tst_UtilsDialogWindow_frameless::edgesAndCornersAreAnswered()
{
    QFETCH(QPoint, point);
    QFETCH(qintptr, part);
    MemoryWindow window;
    window.setGeometry(60, 50, 600, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.partAt(point), part);
}

void tst_UtilsDialogWindow_frameless::aWindowOfFixedWidthHasNoSideEdges()
{
    MemoryWindow window;
    window.setGeometry(60, 50, 600, 400);
    window.setFixedWidth(600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.partAt(QPoint(300, 0)), qintptr(12));
    QCOMPARE(window.partAt(QPoint(0, 0)), qintptr(12));
    QCOMPARE(window.partAt(QPoint(599, 0)), qintptr(12));
    QCOMPARE(window.partAt(QPoint(0, 399)), qintptr(15));
    QCOMPARE(window.partAt(QPoint(599, 399)), qintptr(15));
    // Beside the content the background shows.
    QCOMPARE(window.partAt(QPoint(0, 200)), qintptr(2));
    QCOMPARE(window.partAt(QPoint(599, 200)), qintptr(2));
}

void tst_UtilsDialogWindow_frameless::theBackgroundIsTheCaption()
{
    MemoryWindow window;
    window.setGeometry(60, 50, 600, 400);
    window.setFixedSize(600, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const QPoint &point : {QPoint(0, 0), QPoint(300, 0), QPoint(599, 399), QPoint(0, 200)})
        QCOMPARE(window.partAt(point), qintptr(2));

    // Where the content leaves room, it does as well.
    window.layout()->setContentsMargins(50, 50, 50, 50);
    window.layout()->activate();
    QCOMPARE(window.partAt(QPoint(30, 200)), qintptr(2));
}

void tst_UtilsDialogWindow_frameless::aChildIsNotTheCaption()
{
    MemoryWindow window;
    auto *content = new QLabel("content");
    window.setContent(content);
    window.setGeometry(60, 50, 600, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.partAt(QPoint(300, 200)), qintptr(0));
    QCOMPARE(window.partAt(window.titlebar()->geometry().center()), qintptr(0));
    QCOMPARE(window.partAt(content->mapTo(&window, content->rect().center())), qintptr(0));
}

void tst_UtilsDialogWindow_frameless::aMaximisedWindowAnswersNothing()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.slotMaximize(true);
    QCOMPARE(window.partAt(QPoint(0, 200)), qintptr(0));
    QCOMPARE(window.partAt(QPoint(0, 0)), qintptr(0));
    window.slotMaximize(false);
    QCOMPARE(window.partAt(QPoint(0, 200)), qintptr(10));
}

void tst_UtilsDialogWindow_frameless::otherMessagesAreNotAnswered()
{
    MemoryWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    qintptr result = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", nullptr, &result));
    QCOMPARE(result, qintptr(77));
}

void tst_UtilsDialogWindow_frameless::theLongFormGivesTheSameAnswer()
{
    MemoryWindow window;
    window.setGeometry(60, 50, 600, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    FrameHitTest hitTest{window.geometry(), QPoint(60, 50)};
    long result = 77;
    QVERIFY(window.nativeEvent("windows_generic_MSG", &hitTest, &result));
    QCOMPARE(result, 13L);

    QCursor::setPos(window.mapToGlobal(QPoint(300, 200)));
    hitTest.cursor = QPoint(360, 250);
    result = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", &hitTest, &result));
    QCOMPARE(result, 77L);
}

UNIPROG_TEST_MAIN(tst_UtilsDialogWindow_frameless)
#include "tst_utilsdialogwindow_frameless.moc"
