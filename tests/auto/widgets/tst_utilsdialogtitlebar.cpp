#include <UtilsDialogTitlebar.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalSpy>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

static const QColor Light("#e8eaed");
static const QColor Yellow("#ffc53d");

class tst_UtilsDialogTitlebar : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void theBarIsAsTheStyleExpects();
    void theFormStandsInOneRow();
    void theButtonsAreAsTheStyleExpects();
    void textsAreTranslatedInTheContextOfTheClass();
    void theBarKeepsItsHeightInAWindow();
    void buttonsStandAtTheEndInBothDirections_data();
    void buttonsStandAtTheEndInBothDirections();

    void everyImageIsNamedByTheStyleSheet_data();
    void everyImageIsNamedByTheStyleSheet();
    void buttonsShowTheImageOfTheirState_data();
    void buttonsShowTheImageOfTheirState();
    void aLogoLabelShowsTheLogo();

    void setTitleShowsTheTitle();
    void closeClosesTheWindow();
    void withoutAWindowTheBarStillWorks();
    void theWindowMayDieFirst();

    void draggingMovesTheWindow();
    void draggingGoesOnFromThePressedPoint();
    void nothingMovesTheWindow_data();
    void nothingMovesTheWindow();
    void aPressOutsideTheBarIsNoPress();
    void theBarIsHeardAndPressedByAssistiveTechnology();
};

/// A frameless window with a title bar and no more.
struct Window : QWidget
{
    Window()
    {
        setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        titlebar = new UtilsDialogTitlebar(this);
        layout->addWidget(titlebar);
        layout->addStretch();
        setGeometry(100, 100, 400, 200);
    }

    UtilsDialogTitlebar *titlebar;
};

static void send(QWidget *receiver, QEvent::Type type, const QPoint &position, Qt::MouseButton button,
                 Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, receiver->mapToGlobal(QPointF(position)), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(receiver, &event);
}

static void press(QWidget *receiver, const QPoint &position)
{
    send(receiver, QEvent::MouseButtonPress, position, Qt::LeftButton, Qt::LeftButton);
}

static void moveTo(QWidget *receiver, const QPoint &position, Qt::MouseButtons buttons = Qt::LeftButton)
{
    send(receiver, QEvent::MouseMove, position, Qt::NoButton, buttons);
}

static void release(QWidget *receiver, const QPoint &position)
{
    send(receiver, QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton);
}

void tst_UtilsDialogTitlebar::cleanup()
{
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsDialogTitlebar::theBarIsAsTheStyleExpects()
{
    QWidget window;
    const UtilsDialogTitlebar bar(&window);
    QVERIFY(!bar.parentWidget());
    QCOMPARE(bar.objectName(), QStringLiteral("UtilsDialogTitlebar"));
    QCOMPARE(bar.size(), QSize(533, 36));
    QCOMPARE(bar.minimumSize(), QSize(200, 36));
    QCOMPARE(bar.maximumHeight(), 36);
    QCOMPARE(bar.maximumWidth(), QWIDGETSIZE_MAX);
    QCOMPARE(bar.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(bar.property("background-color"), QVariant(QStringLiteral("window-frame")));
    QVERIFY(bar.getMovable());
}

void tst_UtilsDialogTitlebar::theFormStandsInOneRow()
{
    const UtilsDialogTitlebar bar(nullptr);
    auto *layout = bar.findChild<QHBoxLayout *>("horizontalLayout");
    QVERIFY(layout);
    QCOMPARE(bar.layout(), layout);
    QCOMPARE(layout->spacing(), 4);
    QCOMPARE(layout->contentsMargins(),
             QMargins(0, bar.style()->pixelMetric(QStyle::PM_LayoutTopMargin, nullptr, &bar), 0, 7));
    QCOMPARE(layout->count(), 5);

    const QList<QPair<int, QSizePolicy::Policy>> spacers{
        {0, QSizePolicy::Fixed}, {1, QSizePolicy::Preferred}, {3, QSizePolicy::Preferred}};
    for (const auto &[index, policy] : spacers) {
        const QSpacerItem *spacer = layout->itemAt(index)->spacerItem();
        QVERIFY(spacer);
        QCOMPARE(spacer->sizeHint(), index == 0 ? QSize(58, 20) : QSize(40, 20));
        QCOMPARE(spacer->sizePolicy().horizontalPolicy(), policy);
    }

    auto *title = bar.findChild<QLabel *>("titleLabel");
    QVERIFY(title);
    QCOMPARE(layout->itemAt(2)->widget(), title);
    QCOMPARE(title->minimumSize(), QSize(100, 20));
    QCOMPARE(title->maximumHeight(), 20);
    QCOMPARE(title->text(), QStringLiteral("TextLabel"));
    QCOMPARE(title->property("font-size"), QVariant(QStringLiteral("level4")));

    auto *holder = bar.findChild<QWidget *>("widget_buttonsHolder");
    QVERIFY(holder);
    QCOMPARE(layout->itemAt(4)->widget(), holder);
    auto *buttons = holder->findChild<QHBoxLayout *>("horizontalLayout_3");
    QVERIFY(buttons);
    QCOMPARE(holder->layout(), buttons);
    QCOMPARE(buttons->spacing(), 4);
    QCOMPARE(buttons->contentsMargins(), QMargins());
    QCOMPARE(buttons->count(), 2);
    QCOMPARE(buttons->itemAt(0)->widget()->objectName(), QStringLiteral("maximizeButton"));
    QCOMPARE(buttons->itemAt(1)->widget()->objectName(), QStringLiteral("closeButton"));
}

void tst_UtilsDialogTitlebar::theButtonsAreAsTheStyleExpects()
{
    const UtilsDialogTitlebar bar(nullptr);
    auto *maximize = bar.findChild<QToolButton *>("maximizeButton");
    auto *close = bar.findChild<QToolButton *>("closeButton");
    QVERIFY(maximize && close);
    QCOMPARE(bar.getMaximizeButton(), maximize);
    for (const QToolButton *button : {maximize, close}) {
        QCOMPARE(button->minimumSize(), QSize(27, 20));
        QCOMPARE(button->maximumSize(), QSize(27, 20));
        QCOMPARE(button->iconSize(), QSize(20, 20));
        QVERIFY(button->text().isEmpty());
        QVERIFY(button->isEnabled());
    }
    QVERIFY(maximize->isCheckable());
    QVERIFY(!maximize->isChecked());
    QVERIFY(!close->isCheckable());
    QCOMPARE(maximize->styleSheet(), QStringLiteral("QToolButton\n{\n\tpadding: 3px;\n}"));
    QCOMPARE(close->styleSheet(), QStringLiteral("QToolButton\n{\n\tpadding: 0px;\n}"));
}

void tst_UtilsDialogTitlebar::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsDialogTitlebar");
    const UtilsDialogTitlebar bar(nullptr);
    QCOMPARE(bar.windowTitle(), QStringLiteral("<Frame>"));
    QCOMPARE(bar.findChild<QLabel *>("titleLabel")->text(), QStringLiteral("<TextLabel>"));
    QCOMPARE(bar.getMaximizeButton()->accessibleName(), QStringLiteral("<Maximize>"));
    QCOMPARE(bar.findChild<QToolButton *>("closeButton")->accessibleName(), QStringLiteral("<Close>"));
}

void tst_UtilsDialogTitlebar::theBarKeepsItsHeightInAWindow()
{
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.titlebar->geometry(), QRect(0, 0, 400, 36));
    window.resize(600, 500);
    QTRY_COMPARE(window.titlebar->geometry(), QRect(0, 0, 600, 36));
}

void tst_UtilsDialogTitlebar::buttonsStandAtTheEndInBothDirections_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::addColumn<int>("closeX");
    QTest::addColumn<int>("maximizeX");
    QTest::newRow("left to right") << Qt::LeftToRight << 373 << 342;
    QTest::newRow("right to left") << Qt::RightToLeft << 0 << 31;
}

void tst_UtilsDialogTitlebar::buttonsStandAtTheEndInBothDirections()
{
    QFETCH(Qt::LayoutDirection, direction);
    QFETCH(int, closeX);
    QFETCH(int, maximizeX);
    Window window;
    window.setLayoutDirection(direction);
    window.titlebar->setTitle("Memory");
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    auto *title = window.findChild<QLabel *>("titleLabel");
    auto *close = window.findChild<QToolButton *>("closeButton");
    QToolButton *maximize = window.titlebar->getMaximizeButton();
    const auto xOf = [&window](const QWidget *widget) { return widget->mapTo(&window, QPoint(0, 0)).x(); };
    QCOMPARE(xOf(close), closeX);
    QCOMPARE(xOf(maximize), maximizeX);
    QVERIFY(qAbs(title->geometry().center().x() - window.rect().center().x()) <= window.titlebar->layout()->spacing());
}

void tst_UtilsDialogTitlebar::everyImageIsNamedByTheStyleSheet_data()
{
    QTest::addColumn<QString>("selector");
    QTest::addColumn<QString>("image");
    QTest::newRow("close") << "QToolButton#closeButton"
                           << ":/close";
    QTest::newRow("close, hover") << "QToolButton#closeButton:hover"
                                  << ":/close_yellow";
    QTest::newRow("maximize") << "QToolButton#maximizeButton"
                              << ":/maximize";
    QTest::newRow("maximize, hover") << "QToolButton#maximizeButton:hover"
                                     << ":/maximize_yellow";
    QTest::newRow("maximized") << "QToolButton#maximizeButton:checked"
                               << ":/restore";
    QTest::newRow("maximized, hover") << "QToolButton#maximizeButton:checked:hover"
                                      << ":/restore_yellow";
    QTest::newRow("minimize") << "QToolButton#minimizeButton"
                              << ":/minimize";
    QTest::newRow("minimize, hover") << "QToolButton#minimizeButton:hover"
                                     << ":/minimize_yellow";
    QTest::newRow("logo") << "QLabel#logoLabel"
                          << ":/logo";
}

void tst_UtilsDialogTitlebar::everyImageIsNamedByTheStyleSheet()
{
    QFETCH(QString, selector);
    QFETCH(QString, image);
    const UtilsDialogTitlebar bar(nullptr);
    const QString sheet = bar.styleSheet().simplified();
    const auto start = sheet.indexOf(selector + " {");
    QVERIFY(start >= 0);
    const QString rule = sheet.mid(start, sheet.indexOf('}', start) - start);
    QVERIFY2(rule.contains("image: url(\"" + image + "\");"), qPrintable(rule));
    QVERIFY2(rule.contains("border: none;"), qPrintable(rule));
    QCOMPARE(rule.contains("min-width: 100px;"), selector == "QLabel#logoLabel");
    QVERIFY2(QFile::exists(image), qPrintable(image));
}

/// The image in the middle of the button's picture that \a image gives at that size.
static bool shows(QWidget *button, const QString &image, int size)
{
    const QImage expected = QIcon(image).pixmap(QSize(size, size), 1.0).toImage();
    const QImage picture = button->grab().toImage();
    const QPoint origin((picture.width() - size) / 2, (picture.height() - size) / 2);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const QColor pixel = expected.pixelColor(x, y);
            if (pixel.alpha() == 255 && picture.pixelColor(origin + QPoint(x, y)).rgb() != pixel.rgb())
                return false;
        }
    }
    return !expected.isNull();
}

void tst_UtilsDialogTitlebar::buttonsShowTheImageOfTheirState_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("hover");
    QTest::addColumn<QString>("image");
    QTest::addColumn<int>("size");
    QTest::newRow("close") << "closeButton" << false << false << ":/close" << 20;
    QTest::newRow("close, hover") << "closeButton" << false << true << ":/close_yellow" << 20;
    QTest::newRow("maximize") << "maximizeButton" << false << false << ":/maximize" << 14;
    QTest::newRow("maximize, hover") << "maximizeButton" << false << true << ":/maximize_yellow" << 14;
    QTest::newRow("maximized") << "maximizeButton" << true << false << ":/restore" << 14;
    QTest::newRow("maximized, hover") << "maximizeButton" << true << true << ":/restore_yellow" << 14;
}

void tst_UtilsDialogTitlebar::buttonsShowTheImageOfTheirState()
{
    QFETCH(QString, name);
    QFETCH(bool, checked);
    QFETCH(bool, hover);
    QFETCH(QString, image);
    QFETCH(int, size);
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *button = window.findChild<QToolButton *>(name);
    button->setChecked(checked);
    QCOMPARE(button->isChecked(), checked);
    button->setAttribute(Qt::WA_UnderMouse, hover);
    QVERIFY(shows(button, image, size));
}

void tst_UtilsDialogTitlebar::aLogoLabelShowsTheLogo()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    Window window;
    auto *logo = new QLabel;
    logo->setObjectName("logoLabel");
    static_cast<QHBoxLayout *>(window.titlebar->layout())->insertWidget(0, logo);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(logo->width() >= 100);
    const QImage picture = logo->grab().toImage();
    int light = 0;
    int yellow = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            light += picture.pixelColor(x, y) == Light;
            yellow += picture.pixelColor(x, y) == Yellow;
        }
    }
    QVERIFY(light > 50);
    QVERIFY(yellow > 50);
}

void tst_UtilsDialogTitlebar::setTitleShowsTheTitle()
{
    UtilsDialogTitlebar bar(nullptr);
    bar.setTitle("Memory");
    QCOMPARE(bar.findChild<QLabel *>("titleLabel")->text(), QStringLiteral("Memory"));
    QCOMPARE(bar.windowTitle(), QStringLiteral("Frame"));
}

void tst_UtilsDialogTitlebar::closeClosesTheWindow()
{
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseClick(window.findChild<QToolButton *>("closeButton"), Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

void tst_UtilsDialogTitlebar::withoutAWindowTheBarStillWorks()
{
    UtilsDialogTitlebar bar(nullptr);
    bar.show();
    const QPoint place = bar.pos();
    press(&bar, QPoint(10, 10));
    moveTo(&bar, QPoint(50, 10));
    release(&bar, QPoint(50, 10));
    bar.findChild<QToolButton *>("closeButton")->click();
    QVERIFY(bar.isVisible());
    QCOMPARE(bar.pos(), place);
}

void tst_UtilsDialogTitlebar::theWindowMayDieFirst()
{
    auto *window = new QWidget;
    UtilsDialogTitlebar bar(window);
    press(&bar, QPoint(10, 10));
    delete window;
    moveTo(&bar, QPoint(50, 10));
    release(&bar, QPoint(50, 10));
    bar.findChild<QToolButton *>("closeButton")->click();
}

void tst_UtilsDialogTitlebar::draggingMovesTheWindow()
{
    Window window;
    window.show();
    press(window.titlebar, QPoint(150, 10));
    moveTo(window.titlebar, QPoint(180, 25));
    QCOMPARE(window.pos(), QPoint(130, 115));
    release(window.titlebar, QPoint(150, 10));
    moveTo(window.titlebar, QPoint(250, 30));
    QCOMPARE(window.pos(), QPoint(130, 115));
}

void tst_UtilsDialogTitlebar::draggingGoesOnFromThePressedPoint()
{
    Window window;
    window.show();
    press(window.titlebar, QPoint(150, 10));
    // The bar follows the window, so each time the pointer is off the pressed point by what it moved since.
    for (int i = 0; i < 10; ++i)
        moveTo(window.titlebar, QPoint(151, 12));
    QCOMPARE(window.pos(), QPoint(110, 120));
    moveTo(window.titlebar, QPoint(150, 10));
    QCOMPARE(window.pos(), QPoint(110, 120));
    moveTo(window.titlebar, QPoint(40, -110)); // the pointer may leave the bar
    QCOMPARE(window.pos(), QPoint(0, 0));
}

void tst_UtilsDialogTitlebar::nothingMovesTheWindow_data()
{
    QTest::addColumn<bool>("movable");
    QTest::addColumn<bool>("pressed");
    QTest::addColumn<Qt::MouseButtons>("buttons");
    QTest::newRow("not movable") << false << true << Qt::MouseButtons(Qt::LeftButton);
    QTest::newRow("not pressed") << true << false << Qt::MouseButtons(Qt::LeftButton);
    QTest::newRow("no button") << true << true << Qt::MouseButtons(Qt::NoButton);
    QTest::newRow("right button") << true << true << Qt::MouseButtons(Qt::RightButton);
}

void tst_UtilsDialogTitlebar::nothingMovesTheWindow()
{
    QFETCH(bool, movable);
    QFETCH(bool, pressed);
    QFETCH(Qt::MouseButtons, buttons);
    Window window;
    window.show();
    window.titlebar->setMovable(movable);
    QCOMPARE(window.titlebar->getMovable(), movable);
    if (pressed)
        press(window.titlebar, QPoint(150, 10));
    moveTo(window.titlebar, QPoint(180, 25), buttons);
    QCOMPARE(window.pos(), QPoint(100, 100));

    window.titlebar->setMovable(true);
    press(window.titlebar, QPoint(150, 10));
    moveTo(window.titlebar, QPoint(151, 10), Qt::LeftButton | Qt::RightButton);
    QCOMPARE(window.pos(), QPoint(101, 100));
}

void tst_UtilsDialogTitlebar::aPressOutsideTheBarIsNoPress()
{
    Window window;
    window.show();
    press(window.titlebar, QPoint(150, 40));
    moveTo(window.titlebar, QPoint(180, 25));
    QCOMPARE(window.pos(), QPoint(100, 100));
}

void tst_UtilsDialogTitlebar::theBarIsHeardAndPressedByAssistiveTechnology()
{
    Window window;
    window.show();
    QToolButton *maximize = window.titlebar->getMaximizeButton();
    QAccessibleInterface *maximizeInterface = QAccessible::queryAccessibleInterface(maximize);
    QCOMPARE(maximizeInterface->text(QAccessible::Name), QStringLiteral("Maximize"));
    QVERIFY(maximizeInterface->state().checkable);
    QVERIFY(maximizeInterface->state().focusable);
    QSignalSpy toggled(maximize, &QToolButton::toggled);
    maximizeInterface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(toggled.count(), 1);
    QVERIFY(maximizeInterface->state().checked);

    auto *close = window.findChild<QToolButton *>("closeButton");
    QAccessibleInterface *closeInterface = QAccessible::queryAccessibleInterface(close);
    QCOMPARE(closeInterface->text(QAccessible::Name), QStringLiteral("Close"));
    QVERIFY(closeInterface->state().focusable);
    close->setFocus();
    QTest::keyClick(close, Qt::Key_Space);
    QVERIFY(!window.isVisible());
}

UNIPROG_TEST_MAIN(tst_UtilsDialogTitlebar)
#include "tst_utilsdialogtitlebar.moc"
