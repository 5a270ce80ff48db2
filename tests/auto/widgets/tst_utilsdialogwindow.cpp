#include <UtilsDialogTitlebar.h>
#include <UtilsDialogWindow.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QSignalSpy>
#include <QVBoxLayout>

// What every window does, and what one with the system's frame leaves out.
class tst_UtilsDialogWindow : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void theWindowHasTheSystemsFrame();
    void theHeightIsThreeQuartersOfTheScreen();
    void theWindowIsCentredOnItsParent_data();
    void theWindowIsCentredOnItsParent();
    void withoutAParentNothingIsCentred();

    void theContentFillsTheWindow();
    void contentIsAddedBelowContent();
    void setTitleSetsTheWindowTitle();
    void slotMaximizeIsIgnored();
    void nativeMessagesAreNotTouched();

    void theWidthFollowsTheContent();
    void theWidthIsResizableAgain();
    void limitsGoWithTheWidthOfTheContent();
    void limitsStayWhenTheWidthWasResizable();
};

/// As an application's class has it.
struct MemoryWindow : UtilsDialogWindow
{
    using UtilsDialogWindow::nativeEvent;
    using UtilsDialogWindow::UtilsDialogWindow;
};

void tst_UtilsDialogWindow::cleanup()
{
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsDialogWindow::theWindowHasTheSystemsFrame()
{
    UtilsDialogWindow window;
    QVERIFY(window.windowFlags().testFlag(Qt::Window));
    QVERIFY(!window.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(window.setWindowsFlags(), QFlags<Qt::WindowType>(Qt::Window));
    QCOMPARE(window.windowModality(), Qt::ApplicationModal);
    QVERIFY(!window.findChild<UtilsDialogTitlebar *>());
    QVERIFY(!window.isVisible());
    QVERIFY(!window.parentWidget());
}

void tst_UtilsDialogWindow::theHeightIsThreeQuartersOfTheScreen()
{
    const UtilsDialogWindow window;
    QCOMPARE(window.height(), QGuiApplication::primaryScreen()->geometry().height() * 3 / 4);
    QCOMPARE(window.width(), 640);
}

void tst_UtilsDialogWindow::theWindowIsCentredOnItsParent_data()
{
    QTest::addColumn<QRect>("parentGeometry");
    QTest::newRow("even") << QRect(100, 200, 600, 500);
    QTest::newRow("odd") << QRect(101, 203, 599, 501);
    QTest::newRow("left of the screen") << QRect(-900, 10, 600, 400);
}

void tst_UtilsDialogWindow::theWindowIsCentredOnItsParent()
{
    QFETCH(QRect, parentGeometry);
    QWidget parent;
    parent.setGeometry(parentGeometry);
    const UtilsDialogWindow window(&parent);
    QCOMPARE(window.parentWidget(), &parent);
    QCOMPARE(window.mapToGlobal(window.rect().center()), parent.mapToGlobal(parent.rect().center()));

    // The parent may be any widget, not only a window.
    QWidget child(&parent);
    child.setGeometry(20, 30, 100, 80);
    const UtilsDialogWindow childsWindow(&child);
    QCOMPARE(childsWindow.mapToGlobal(childsWindow.rect().center()), child.mapToGlobal(child.rect().center()));
}

void tst_UtilsDialogWindow::withoutAParentNothingIsCentred()
{
    const QDialog plain;
    const UtilsDialogWindow window;
    QCOMPARE(window.pos(), plain.pos());
    QVERIFY(!window.testAttribute(Qt::WA_Moved));
}

void tst_UtilsDialogWindow::theContentFillsTheWindow()
{
    UtilsDialogWindow window;
    auto *content = new QWidget;
    window.setContent(content);
    QCOMPARE(content->window(), &window);
    QVERIFY(content->parentWidget() && content->parentWidget()->layout());
    QVERIFY(content->parentWidget()->layout()->indexOf(content) >= 0);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(content->width() > window.width() * 9 / 10);
    QVERIFY(content->height() > window.height() * 9 / 10);

    window.setContent(nullptr);
    QPointer<QWidget> guard(content);
    delete content; // it may go before the window
    QVERIFY(!guard);
    QVERIFY(window.isVisible());
}

void tst_UtilsDialogWindow::contentIsAddedBelowContent()
{
    UtilsDialogWindow window;
    auto *first = new QLabel("first");
    auto *second = new QLabel("second");
    window.setContent(first);
    window.setContent(second);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(second->y() >= first->y() + first->height());
    QCOMPARE(second->x(), first->x());
}

void tst_UtilsDialogWindow::setTitleSetsTheWindowTitle()
{
    UtilsDialogWindow window;
    window.setTitle("Memory");
    QCOMPARE(window.windowTitle(), QStringLiteral("Memory"));
}

void tst_UtilsDialogWindow::slotMaximizeIsIgnored()
{
    UtilsDialogWindow window;
    const QRect geometry = window.geometry();
    QVERIFY(QMetaObject::invokeMethod(&window, "slotMaximize", Q_ARG(bool, true)));
    QCOMPARE(window.geometry(), geometry);
    window.slotMaximize(false);
    QCOMPARE(window.geometry(), geometry);
}

void tst_UtilsDialogWindow::nativeMessagesAreNotTouched()
{
    MemoryWindow window;
    // No message of any system: looking at it would end the test.
    void *const message = reinterpret_cast<void *>(1);
    qintptr result = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", message, &result));
    QCOMPARE(result, qintptr(77));
    long longResult = 77;
    QVERIFY(!window.nativeEvent("windows_generic_MSG", message, &longResult));
    QCOMPARE(longResult, 77L);
}

static QWidget *contentOfWidth(int minimum, int maximum)
{
    auto *content = new QWidget;
    content->setMinimumSize(minimum, 100);
    content->setMaximumWidth(maximum);
    return content;
}

void tst_UtilsDialogWindow::theWidthFollowsTheContent()
{
    UtilsDialogWindow window;
    QWidget *content = contentOfWidth(300, 300);
    window.setContent(content);
    window.setResizableWidth(false);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto marginsOf = [&window](int contentWidth) { return window.width() - contentWidth; };
    QTRY_VERIFY(marginsOf(300) < 60);
    const int margins = marginsOf(300);
    QCOMPARE(window.minimumWidth(), 300 + margins);
    QCOMPARE(window.maximumWidth(), 300 + margins);
    QVERIFY(window.minimumHeight() < window.maximumHeight());
    window.resize(500, window.height());
    QCOMPARE(window.width(), 300 + margins);

    content->setFixedWidth(420);
    QTRY_COMPARE(window.width(), 420 + margins);

    for (const char *const name : {"widget_main", "widget_content"}) {
        const QWidget *widget = window.findChild<QWidget *>(name);
        QCOMPARE(widget->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
        QCOMPARE(widget->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(widget->layout()->sizeConstraint(), QLayout::SetMaximumSize);
    }
    QCOMPARE(window.layout()->sizeConstraint(), QLayout::SetMinAndMaxSize);
}

void tst_UtilsDialogWindow::theWidthIsResizableAgain()
{
    UtilsDialogWindow window;
    QWidget *content = contentOfWidth(300, 300);
    window.setContent(content);
    window.setResizableWidth(false);
    window.show();
    QTRY_COMPARE(window.minimumWidth(), window.maximumWidth());

    window.setResizableWidth(true);
    content->setMinimumWidth(200);
    content->setMaximumWidth(QWIDGETSIZE_MAX);
    for (const int width : {700, 250, 900}) {
        window.resize(width, window.height());
        QTRY_COMPARE(window.width(), width);
        QTRY_COMPARE(content->width(),
                     width - (window.width() - content->parentWidget()->width())
                         - content->parentWidget()->contentsMargins().left()
                         - 2 * content->parentWidget()->layout()->contentsMargins().left());
    }
    QCOMPARE(window.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    for (const char *const name : {"widget_main", "widget_content"}) {
        const QWidget *widget = window.findChild<QWidget *>(name);
        QCOMPARE(widget->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(widget->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(widget->layout()->sizeConstraint(), QLayout::SetDefaultConstraint);
    }
    QCOMPARE(window.layout()->sizeConstraint(), QLayout::SetDefaultConstraint);

    // The window's minimum follows the content as before.
    content->setMinimumWidth(1000);
    QTRY_VERIFY(window.minimumWidth() >= 1000);
    content->setMinimumWidth(200);
    QTRY_VERIFY(window.minimumWidth() < 300);
}

void tst_UtilsDialogWindow::limitsGoWithTheWidthOfTheContent()
{
    UtilsDialogWindow window;
    QWidget *content = contentOfWidth(300, 300);
    window.setContent(content);
    window.setMinimumWidth(500);
    window.setMaximumWidth(700);
    window.setResizableWidth(false);
    window.show();
    QTRY_COMPARE(window.minimumWidth(), window.maximumWidth());
    QVERIFY(window.maximumWidth() < 500);

    window.setResizableWidth(true);
    content->setMaximumWidth(QWIDGETSIZE_MAX);
    content->setMinimumWidth(800);
    QTRY_VERIFY(window.minimumWidth() >= 800);
    QCOMPARE(window.maximumWidth(), QWIDGETSIZE_MAX);
}

void tst_UtilsDialogWindow::limitsStayWhenTheWidthWasResizable()
{
    UtilsDialogWindow window;
    window.setMinimumWidth(400);
    window.setMaximumWidth(700);
    window.setResizableWidth(true);
    QCOMPARE(window.minimumWidth(), 400);
    QCOMPARE(window.maximumWidth(), 700);
}

UNIPROG_TEST_MAIN(tst_UtilsDialogWindow)
#include "tst_utilsdialogwindow.moc"
