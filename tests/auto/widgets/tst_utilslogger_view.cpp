#include "LoggerTest.h"

#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>

using namespace LoggerTest;

static constexpr int RowHeight = 19; // pixels

/// What the user sees of a logger and does with it: colours, scrolling, keys, menu and clipboard.
class tst_UtilsLogger_view : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theBackgroundColorGoesToAllLines_data();
    void theBackgroundColorGoesToAllLines();
    void theBackgroundColorIsUnsetByTheIntegerZeroOnly_data();
    void theBackgroundColorIsUnsetByTheIntegerZeroOnly();
    void anotherPropertyIsSetOnTheLoggerOnly();
    void aNewBackgroundColorIsStyledAtOnce();
    void contentsMarginsAreThoseOfTheLayout();
    void theListTakesOverTheFocusPolicy();

    void theViewFollowsTheEnd();
    void theViewStaysWhereTheUserScrolledTo();
    void rowsStandWhereTheListSaysTheyDo();
    void aListWithoutAGridIsLaidOut_data();
    void aListWithoutAGridIsLaidOut();

    void keysMoveTheCurrentRow_data();
    void keysMoveTheCurrentRow();
    void homeAndEndMoveTheScrollBar();
    void homeAndEndMoveTheScrollBarOfTheApplication();
    void otherKeysAndWidgetsAreNotConsumed();

    void copySelectedTakesTheCurrentLine();
    void copyAllTakesAllLines();
    void theCopyShortcutWorksInTheWindowOfTheLogger();
    void theContextMenuOffersToCopy();
    void theLoggerMayBeDeletedWhileItsMenuIsOpen();
};

void tst_UtilsLogger_view::theBackgroundColorGoesToAllLines_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("background-color") << QByteArray("background-color");
    QTest::newRow("a longer name") << QByteArray("background-color-extra");
}

void tst_UtilsLogger_view::theBackgroundColorGoesToAllLines()
{
    QFETCH(QByteArray, name);
    UtilsLogger logger(nullptr, Endless);
    UtilsLoggerLine *before = logger.addLine("before", LOGGER_MESSAGE_DEFAULT);
    QVERIFY(logger.setProperty(name.constData(), "main"));
    QCOMPARE(logger.property(name.constData()), QVariant("main"));
    QCOMPARE(listOf(logger)->property(name.constData()), QVariant("main"));
    QCOMPARE(before->property(name.constData()), QVariant("main"));
    QCOMPARE(before->findChild<QLabel *>()->property(name.constData()), QVariant("main"));

    // What is remembered for later lines is the plain property, whatever the name went on with.
    UtilsLoggerLine *after = logger.addLine("after", LOGGER_MESSAGE_DEFAULT);
    const QList<QFrame *> parts = after->findChildren<QFrame *>();
    QCOMPARE(parts.size(), 2); // label and hiding frame
    QCOMPARE(after->property("background-color"), QVariant("main"));
    for (const QFrame *part : parts)
        QCOMPARE(part->property("background-color"), QVariant("main"));
}

void tst_UtilsLogger_view::theBackgroundColorIsUnsetByTheIntegerZeroOnly_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("passedOn");
    QTest::newRow("role name") << QVariant("main") << true;
    QTest::newRow("empty text") << QVariant("") << true;
    QTest::newRow("integer 1") << QVariant(1) << true;
    QTest::newRow("integer 0") << QVariant(0) << false;
}

void tst_UtilsLogger_view::theBackgroundColorIsUnsetByTheIntegerZeroOnly()
{
    QFETCH(QVariant, value);
    QFETCH(bool, passedOn);
    UtilsLogger logger(nullptr, 0);
    QVERIFY(!logger.addLine("a", LOGGER_MESSAGE_DEFAULT)->property("background-color").isValid());
    logger.setProperty("background-color", "first");
    QVERIFY(logger.setProperty("background-color", value));
    const QVariant seen = logger.addLine("b", LOGGER_MESSAGE_DEFAULT)->property("background-color");
    QCOMPARE(seen, passedOn ? value : QVariant());
}

void tst_UtilsLogger_view::anotherPropertyIsSetOnTheLoggerOnly()
{
    UtilsLogger logger(nullptr, 0);
    UtilsLoggerLine *line = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    QVERIFY(!logger.setProperty("background", "main")); // a new dynamic property
    QCOMPARE(logger.property("background"), QVariant("main"));
    QVERIFY(!listOf(logger)->property("background").isValid());
    QVERIFY(!line->property("background").isValid());
    QVERIFY(logger.setProperty("windowTitle", "title"));
    QCOMPARE(logger.windowTitle(), "title");
}

void tst_UtilsLogger_view::aNewBackgroundColorIsStyledAtOnce()
{
    QWidget window;
    window.setStyleSheet("*[background-color=\"dark\"] { background-color: #203040; }"
                         "*[background-color=\"light\"] { background-color: #d0e0f0; }");
    UtilsLogger logger(&window, 0);
    logger.setGeometry(0, 0, 200, 100);
    logger.setProperty("background-color", "dark");
    UtilsLoggerLine *line = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    const auto colorAtEnd = [line] { return line->grab().toImage().pixelColor(line->width() - 5, 8).name(); };
    QCOMPARE(colorAtEnd(), "#203040");
    logger.setProperty("background-color", "light");
    QCOMPARE(colorAtEnd(), "#d0e0f0");
}

void tst_UtilsLogger_view::contentsMarginsAreThoseOfTheLayout()
{
    UtilsLogger logger;
    const QMargins frame = logger.contentsMargins();
    logger.setContentsMargins(1, 2, 3, 4);
    QCOMPARE(logger.layout()->contentsMargins(), QMargins(1, 2, 3, 4));
    QCOMPARE(logger.contentsMargins(), frame);

    logger.setContentsMargins(QMargins(5, 6, 7, 8)); // the overload of the base class
    QCOMPARE(logger.layout()->contentsMargins(), QMargins(1, 2, 3, 4));
    QVERIFY(logger.contentsMargins() != frame);
}

void tst_UtilsLogger_view::theListTakesOverTheFocusPolicy()
{
    UtilsLogger logger;
    logger.setFocusPolicy(Qt::ClickFocus);
    QCOMPARE(listOf(logger)->focusPolicy(), Qt::StrongFocus);
    logger.show();
    QCOMPARE(listOf(logger)->focusPolicy(), Qt::ClickFocus);
}

void tst_UtilsLogger_view::theViewFollowsTheEnd()
{
    for (const int duration : {0, 1}) {
        UtilsLogger logger(nullptr, duration, 60);
        logger.resize(200, 100);
        layOut(logger);
        QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
        const QScrollBar *bar = listOf(logger)->verticalScrollBar();
        for (int round = 1; round <= 4; ++round) { // beyond the line limit too
            addLines(logger, 20);
            if (duration > 0)
                QTRY_COMPARE(completed.count(), round);
            QTRY_VERIFY(bar->maximum() > 0);
            QCoreApplication::processEvents();
            QCOMPARE(bar->value(), bar->maximum());
        }
    }
}

void tst_UtilsLogger_view::theViewStaysWhereTheUserScrolledTo()
{
    UtilsLogger logger(nullptr, 0);
    logger.resize(200, 100);
    layOut(logger);
    addLines(logger, 30);
    QScrollBar *bar = listOf(logger)->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 3);
    bar->setValue(3);
    const int maximum = bar->maximum();
    addLines(logger, 10);
    QTRY_VERIFY(bar->maximum() > maximum);
    QCOMPARE(bar->value(), 3);

    bar->setValue(bar->maximum());
    addLines(logger, 10);
    QTRY_VERIFY(bar->value() == bar->maximum() && bar->maximum() > maximum + 10);

    logger.clear();
    QTRY_COMPARE(bar->maximum(), 0);
    addLines(logger, 30);
    QTRY_VERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), bar->maximum());
}

void tst_UtilsLogger_view::rowsStandWhereTheListSaysTheyDo()
{
    UtilsLogger logger(nullptr, 0, 40);
    logger.resize(200, 100);
    layOut(logger);
    QListWidget *list = listOf(logger);
    const auto verifyRows = [&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        const QRect viewport = list->viewport()->rect();
        const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
        QCOMPARE(lines.size(), list->count());
        QCOMPARE(list->visualItemRect(list->item(0)).height(), RowHeight);
        QCOMPARE(list->visualItemRect(list->item(1)).y() - list->visualItemRect(list->item(0)).y(), RowHeight);
        for (UtilsLoggerLine *line : lines) {
            QRect row;
            for (int i = 0; i < list->count(); ++i) {
                if (list->itemWidget(list->item(i)) == line)
                    row = list->visualItemRect(list->item(i));
            }
            if (row.intersects(viewport)) {
                QCOMPARE(line->x(), row.x());
                QCOMPARE(line->y(), row.y());
                QCOMPARE(line->size(), row.size());
                QVERIFY(line->isVisible());
            } else {
                QVERIFY2(!line->isVisible() || !line->geometry().intersects(viewport), "covers another line");
            }
        }
    };
    addLines(logger, 30);
    verifyRows();
    addLines(logger, 30); // beyond the line limit
    verifyRows();
    for (const int value : {0, 7, 20, 3, 100, 12}) {
        list->verticalScrollBar()->setValue(value);
        verifyRows();
        addLines(logger, 1);
        verifyRows();
    }
    logger.resize(250, 300);
    verifyRows();
    logger.resize(150, 60);
    verifyRows();
    delete list->takeItem(5);
    verifyRows();
    logger.setLayoutDirection(Qt::RightToLeft);
    verifyRows();
    logger.hide();
    addLines(logger, 5);
    QCoreApplication::processEvents();
    logger.show();
    verifyRows();
    logger.clear();
    addLines(logger, 12);
    verifyRows();
}

void tst_UtilsLogger_view::aListWithoutAGridIsLaidOut_data()
{
    QTest::addColumn<QString>("styleSheet");
    QTest::addColumn<QSize>("grid");
    QTest::newRow("no grid") << QString() << QSize();
    QTest::newRow("an empty grid") << QString() << QSize(0, 0);
    QTest::newRow("an empty grid of a style sheet") << "QListWidget { qproperty-gridSize: 0px 0px; }" << QSize(0, 0);
}

void tst_UtilsLogger_view::aListWithoutAGridIsLaidOut()
{
    QFETCH(QString, styleSheet);
    QFETCH(QSize, grid);
    UtilsLogger logger(nullptr, 0);
    logger.resize(200, 100);
    logger.setStyleSheet(styleSheet);
    if (styleSheet.isEmpty())
        listOf(logger)->setGridSize(grid);
    addLines(logger, 30);
    layOut(logger);
    QCOMPARE(listOf(logger)->gridSize(), grid);
    listOf(logger)->verticalScrollBar()->setValue(1);
    addLines(logger, 200);
    QCoreApplication::processEvents();
    QCOMPARE(textsOf(logger).size(), 230);
}

void tst_UtilsLogger_view::keysMoveTheCurrentRow_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("current");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("expected");
    QTest::newRow("home") << 3 << 2 << Qt::Key_Home << 0;
    QTest::newRow("home at the first") << 3 << 0 << Qt::Key_Home << 0;
    QTest::newRow("end") << 3 << 0 << Qt::Key_End << 2;
    QTest::newRow("end without current") << 3 << -1 << Qt::Key_End << 2;
    QTest::newRow("up") << 3 << 2 << Qt::Key_Up << 1;
    QTest::newRow("up to the first") << 3 << 1 << Qt::Key_Up << 0;
    QTest::newRow("up at the first") << 3 << 0 << Qt::Key_Up << 0;
    QTest::newRow("up without current") << 3 << -1 << Qt::Key_Up << -1;
    QTest::newRow("down") << 3 << 0 << Qt::Key_Down << 1;
    QTest::newRow("down at the last") << 3 << 2 << Qt::Key_Down << 2;
    QTest::newRow("down without current") << 3 << -1 << Qt::Key_Down << 0;
    for (const Qt::Key key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Up, Qt::Key_Down})
        QTest::addRow("key %x without rows", unsigned(key)) << 0 << -1 << key << -1;
}

void tst_UtilsLogger_view::keysMoveTheCurrentRow()
{
    QFETCH(int, rows);
    QFETCH(int, current);
    QFETCH(Qt::Key, key);
    QFETCH(int, expected);
    UtilsLogger logger(nullptr, 0);
    addLines(logger, rows);
    layOut(logger);
    QListWidget *list = listOf(logger);
    list->setCurrentRow(current);
    QTest::keyClick(list, key);
    QCOMPARE(list->currentRow(), expected);
    QVERIFY(list->selectedItems().isEmpty());
}

void tst_UtilsLogger_view::homeAndEndMoveTheScrollBar()
{
    UtilsLogger logger(nullptr, 0);
    logger.resize(200, 100);
    addLines(logger, 30);
    layOut(logger);
    QListWidget *list = listOf(logger);
    QScrollBar *bar = list->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 5);
    QTest::keyClick(list, Qt::Key_Home);
    QCOMPARE(bar->value(), 0);
    QTest::keyClick(list, Qt::Key_End);
    QCOMPARE(bar->value(), bar->maximum());

    bar->setValue(5);
    list->setCurrentRow(29);
    QTest::keyClick(list, Qt::Key_Up);
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(list->currentRow(), 29);
    QCOMPARE(bar->value(), 5); // unchanged, although the row is out of sight
}

void tst_UtilsLogger_view::homeAndEndMoveTheScrollBarOfTheApplication()
{
    UtilsLogger logger(nullptr, 0);
    logger.resize(200, 100);
    QListWidget *list = listOf(logger);
    auto *bar = new QScrollBar;
    list->setVerticalScrollBar(bar); // deletes the one it had
    addLines(logger, 30);
    layOut(logger);
    QTRY_VERIFY(bar->maximum() > 5);
    QTest::keyClick(list, Qt::Key_End);
    QCOMPARE(bar->value(), bar->maximum());
    QTest::keyClick(list, Qt::Key_Home);
    QCOMPARE(bar->value(), 0);
}

void tst_UtilsLogger_view::otherKeysAndWidgetsAreNotConsumed()
{
    UtilsLogger logger(nullptr, 0);
    addLines(logger, 3);
    QListWidget *list = listOf(logger);
    const auto consumed = [](UtilsLogger &filter, QObject *watched, QEvent::Type type, int key) {
        QKeyEvent event(type, key, Qt::NoModifier);
        return static_cast<QObject &>(filter).eventFilter(watched, &event);
    };
    for (const int key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Up, Qt::Key_Down}) {
        QVERIFY(consumed(logger, list, QEvent::KeyPress, key));
        QVERIFY(!consumed(logger, list, QEvent::KeyRelease, key));
        QVERIFY(!consumed(logger, list->viewport(), QEvent::KeyPress, key));
    }
    for (const int key : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Left, Qt::Key_Escape, Qt::Key_Return, Qt::Key_A})
        QVERIFY(!consumed(logger, list, QEvent::KeyPress, key));
}

void tst_UtilsLogger_view::copySelectedTakesTheCurrentLine()
{
    UtilsLogger logger(nullptr, 0);
    logger.addMessage("a\nb\nc", LOGGER_MESSAGE_DEFAULT);
    QListWidget *list = listOf(logger);
    list->setCurrentRow(1);
    logger.slotCopySelected();
    QCOMPARE(QApplication::clipboard()->text(), "b");

    QApplication::clipboard()->setText("untouched");
    list->setCurrentRow(-1);
    logger.slotCopySelected();
    QCOMPARE(QApplication::clipboard()->text(), "untouched");
    list->addItem("no line widget");
    list->setCurrentRow(3);
    logger.slotCopySelected();
    QCOMPARE(QApplication::clipboard()->text(), "untouched");
}

void tst_UtilsLogger_view::copyAllTakesAllLines()
{
    UtilsLogger logger(nullptr, 0);
    logger.addMessage("x\ny", LOGGER_MESSAGE_DEFAULT);
    actionOf(logger, "Copy All")->trigger();
    QCOMPARE(QApplication::clipboard()->text(), "x\ny\n");
    logger.clear();
    logger.slotCopyAll();
    QCOMPARE(QApplication::clipboard()->text(), QString());
}

void tst_UtilsLogger_view::theCopyShortcutWorksInTheWindowOfTheLogger()
{
    UtilsLogger logger(nullptr, 0);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    logger.show();
    logger.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&logger));
    listOf(logger)->setCurrentRow(1);
    QApplication::clipboard()->clear();
    QTest::keySequence(&logger, QKeySequence::Copy);
    QCOMPARE(QApplication::clipboard()->text(), "b");
}

void tst_UtilsLogger_view::theContextMenuOffersToCopy()
{
    UtilsLogger logger(nullptr, 0);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    layOut(logger);
    QListWidget *list = listOf(logger);
    QString title;
    QStringList texts;
    QObject *parent = nullptr;
    QPoint position;
    QTimer::singleShot(0, this, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        title = menu->title();
        parent = menu->parent();
        position = menu->pos();
        for (const QAction *action : menu->actions())
            texts << action->text();
        menu->close();
    });
    Q_EMIT list->customContextMenuRequested(QPoint(10, 20));
    QCOMPARE(title, "Context menu");
    QCOMPARE(parent, list);
    QCOMPARE(texts, QStringList({"Copy Selected Item", "Copy All"}));
    QCOMPARE(position, list->mapToGlobal(QPoint(10, 20)));
    QVERIFY(list->findChildren<QMenu *>().isEmpty());
    QVERIFY(actionOf(logger, "Copy All"));
}

void tst_UtilsLogger_view::theLoggerMayBeDeletedWhileItsMenuIsOpen()
{
    auto *logger = new UtilsLogger(nullptr, 0);
    layOut(*logger);
    QTimer::singleShot(0, logger, [logger] { delete logger; });
    logger->slotShowContextMenu(QPoint(1, 1));
    QVERIFY(!QApplication::activePopupWidget());
}

UNIPROG_TEST_MAIN(tst_UtilsLogger_view)
#include "tst_utilslogger_view.moc"
