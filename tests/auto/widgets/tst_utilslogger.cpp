#include <UtilsLogger.h>

#include <UniProgTest.h>

#include <UtilsLoggerLine.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPropertyAnimation>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int Short = 30; // ms
constexpr int Endless = 600'000; // ms, longer than any test
constexpr int RowHeight = 19; // pixels

QListWidget *listOf(const UtilsLogger &logger)
{
    return logger.findChild<QListWidget *>(QStringLiteral("listWidget"));
}

QStringList textsOf(const UtilsLogger &logger)
{
    QStringList texts;
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
    for (const UtilsLoggerLine *line : lines)
        texts << line->getText();
    return texts;
}

void addLines(UtilsLogger &logger, int count)
{
    for (int i = 0; i < count; ++i)
        logger.addSingleLineMessage(QString::number(i), LOGGER_MESSAGE_DEFAULT);
}

QAction *actionOf(const UtilsLogger &logger, const char *text)
{
    const QList<QAction *> actions = logger.findChildren<QAction *>();
    for (QAction *action : actions) {
        if (action->text() == QLatin1String(text))
            return action;
    }
    return nullptr;
}

void layOut(UtilsLogger &logger)
{
    logger.show();
    QCoreApplication::processEvents();
}

} // namespace

class tst_UtilsLogger : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStyleSheetsExpectIt();
    void theStartValues();
    void theSlotsStandInTheirOrder();
    void theActionsAreThere();

    void aMessageIsSplitAtItsLineBreaks_data();
    void aMessageIsSplitAtItsLineBreaks();
    void aSingleLineMessageEndsAtItsLineBreak();
    void addLineReturnsTheLine();
    void addLineDoesNotMakeTheLastLine();
    void appendingGoesToTheLastLine();
    void appendingWithoutALastLineDoesNothing();
    void everyRowHasItsLineWidget();

    void theOldestLineLeavesAtTheLimit();
    void aLineThatLeftIsListedNoMore();
    void theLimitIsComparedForEquality();
    void theLastLineMayLeave();
    void theItemThatLeftIsNotDeleted();
    void aLineThatLeavesTakesItsRevealsAlong();
    void aLineMayLeaveInsideItsOwnSignal_data();
    void aLineMayLeaveInsideItsOwnSignal();

    void linesAreRevealedOneAfterAnother();
    void theRevealHidesTheText_data();
    void theRevealHidesTheText();
    void theFlagIsStillFalseInsideTheSignal();
    void theFlagGoesFalseWithEveryLine();
    void withoutDurationTheFlagStaysFalse();
    void theDurationHoldsForLaterLines();
    void aLineDeletedByOthersDoesNotHoldTheQueue();

    void clearLeavesNothing_data();
    void clearLeavesNothing();
    void clearDoesNotSetTheFlag();
    void aHeldLineMayBeUsedInTheTurnOfClear();
    void linesAddedInTheSameTurnAsClearAreRevealedInOrder();
    void clearInsideASignal_data();
    void clearInsideASignal();
    void theLoggerMayBeDeletedInsideItsSignal();
    void theLoggerMayBeDeletedInAnyState_data();
    void theLoggerMayBeDeletedInAnyState();

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

    void keysMoveTheCurrentRow_data();
    void keysMoveTheCurrentRow();
    void homeAndEndMoveTheScrollBar();
    void otherKeysAndWidgetsAreNotConsumed();

    void copySelectedTakesTheCurrentLine();
    void copyAllTakesAllLines();
    void theCopyShortcutWorksInTheWindowOfTheLogger();
    void theContextMenuOffersToCopy();
    void theLoggerMayBeDeletedWhileItsMenuIsOpen();
};

void tst_UtilsLogger::theFormIsAsStyleSheetsExpectIt()
{
    UtilsLogger logger;
    QCOMPARE(logger.objectName(), "UtilsLogger");
    QCOMPARE(logger.size(), QSize(400, 300));
    QCOMPARE(logger.frameShape(), QFrame::StyledPanel);
    QCOMPARE(logger.frameShadow(), QFrame::Raised);
    QCOMPARE(logger.windowTitle(), "Frame");

    QVERIFY(qobject_cast<QVBoxLayout *>(logger.layout()));
    QCOMPARE(logger.layout()->objectName(), "verticalLayout");
    QCOMPARE(logger.layout()->spacing(), 0);
    QCOMPARE(logger.layout()->contentsMargins(), QMargins(6, 6, 6, 6));

    QListWidget *list = listOf(logger);
    QVERIFY(list);
    QCOMPARE(logger.layout()->indexOf(list), 0);
    QVERIFY(list->isEnabled());
    QCOMPARE(list->focusPolicy(), Qt::StrongFocus);
    QVERIFY(!list->hasAutoScroll());
    QCOMPARE(list->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(list->gridSize(), QSize(0, RowHeight));
    QVERIFY(list->uniformItemSizes());
    QVERIFY(!list->isSelectionRectVisible());
    QCOMPARE(list->property("background-color"), QVariant("transparent"));
    QCOMPARE(list->contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(list->metaObject()->className(), "QListWidget"); // exact class selectors match
}

void tst_UtilsLogger::theStartValues()
{
    UtilsLogger logger;
    QVERIFY(logger.isEmpty());
    QVERIFY(logger.isAllAnimationsCompleted());
    QCOMPARE(logger.getMaxNumberOfLines(), 1000);
    QCOMPARE(logger.getLoggerData(), QString(""));
    QVERIFY(logger.getChildrenWidgets().isEmpty());
    logger.addLine("text", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(logger.findChild<QPropertyAnimation *>()->duration(), 400);

    UtilsLogger other(nullptr, 70, 5);
    QCOMPARE(other.getMaxNumberOfLines(), 5);
    other.setMaxNumberOfLines(-3);
    QCOMPARE(other.getMaxNumberOfLines(), -3);
    other.addLine("text", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(other.findChild<QPropertyAnimation *>()->duration(), 70);
}

void tst_UtilsLogger::theSlotsStandInTheirOrder()
{
    const QMetaObject &meta = UtilsLogger::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Slot)
            slotNames << QString::fromLatin1(meta.method(i).methodSignature());
    }
    const QStringList expected{"moveScrollBarToBottom(int,int)",
                               "slotLoggerAnimationsCompleted()",
                               "slotShowContextMenu(QPoint)",
                               "slotCopySelected()",
                               "slotCopyAll()",
                               "slotClear()"};
    QCOMPARE(slotNames, expected);

    UtilsLogger logger(nullptr, 0);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    QList<UtilsLoggerLine *> lines;
    QVERIFY(QMetaObject::invokeMethod(&logger, "getChildrenWidgets", Q_RETURN_ARG(QList<UtilsLoggerLine *>, lines)));
    QCOMPARE(lines, logger.getChildrenWidgets());
}

void tst_UtilsLogger::theActionsAreThere()
{
    UtilsLogger logger;
    QAction *copySelected = actionOf(logger, "Copy Selected Item");
    QVERIFY(copySelected && actionOf(logger, "Copy All") && actionOf(logger, "Clear"));
    QCOMPARE(copySelected->parent(), listOf(logger));
    QCOMPARE(copySelected->shortcut(), QKeySequence(QKeySequence::Copy));
    QCOMPARE(logger.actions(), QList<QAction *>{copySelected});

    addLines(logger, 2);
    actionOf(logger, "Clear")->trigger();
    QVERIFY(logger.isEmpty());
    QCOMPARE(logger.getLoggerData(), QString());
}

void tst_UtilsLogger::aMessageIsSplitAtItsLineBreaks_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("one line") << "a" << QStringList{"a"};
    QTest::newRow("empty") << "" << QStringList{""};
    QTest::newRow("three parts") << "a\n\nb" << QStringList{"a", "", "b"};
    QTest::newRow("line break last") << "a\n" << QStringList{"a", ""};
    QTest::newRow("line breaks only") << "\n\n" << QStringList{"", "", ""};
}

void tst_UtilsLogger::aMessageIsSplitAtItsLineBreaks()
{
    QFETCH(QString, message);
    QFETCH(QStringList, lines);
    for (const int duration : {0, Endless}) {
        UtilsLogger logger(nullptr, duration);
        logger.addMessage(message, LOGGER_MESSAGE_WARNING);
        QCOMPARE(textsOf(logger), lines);
        QCOMPARE(logger.getLoggerData(), lines.join('\n') + '\n');
        QCOMPARE(listOf(logger)->count(), lines.size());
        QVERIFY(!logger.isEmpty());
        logger.appendToLastLineMessage("!");
        QCOMPARE(textsOf(logger).constLast(), lines.constLast() + '!');
        for (const UtilsLoggerLine *line : logger.getChildrenWidgets())
            QCOMPARE(line->getType(), LOGGER_MESSAGE_WARNING);
    }
}

void tst_UtilsLogger::aSingleLineMessageEndsAtItsLineBreak()
{
    UtilsLogger logger(nullptr, 0);
    logger.addSingleLineMessage("a\n\nb", LOGGER_MESSAGE_ERROR);
    QCOMPARE(textsOf(logger), QStringList{"a"});
    logger.appendToLastLineMessage("c\nd");
    QCOMPARE(logger.getLoggerData(), "ac\n");
}

void tst_UtilsLogger::addLineReturnsTheLine()
{
    UtilsLogger logger(nullptr, 0);
    UtilsLoggerLine *line = logger.addLine("text", LOGGER_MESSAGE_SUCCESS);
    QVERIFY(line);
    QCOMPARE(line->getText(), "text");
    QCOMPARE(line->getType(), LOGGER_MESSAGE_SUCCESS);
    QCOMPARE(line->findChild<QLabel *>()->property("log-type"), QVariant("success"));
    QCOMPARE(logger.getChildrenWidgets(), QList<UtilsLoggerLine *>{line});
}

void tst_UtilsLogger::addLineDoesNotMakeTheLastLine()
{
    UtilsLogger logger(nullptr, 0);
    logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    QVERIFY(logger.isEmpty());
    logger.appendToLastLineMessage("!");
    QCOMPARE(logger.getLoggerData(), "a\n");
    logger.addSingleLineMessage("b", LOGGER_MESSAGE_DEFAULT);
    logger.addLine("c", LOGGER_MESSAGE_DEFAULT);
    logger.appendToLastLineMessage("!");
    QCOMPARE(logger.getLoggerData(), "a\nb!\nc\n");
}

void tst_UtilsLogger::appendingGoesToTheLastLine()
{
    UtilsLogger logger(nullptr, Short);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(completed.count(), 1);
    logger.appendToLastLineMessage("c");
    QCOMPARE(logger.getLoggerData(), "a\nbc\n");
    QTRY_COMPARE(completed.count(), 2); // revealed like a new line
}

void tst_UtilsLogger::appendingWithoutALastLineDoesNothing()
{
    UtilsLogger logger;
    logger.appendToLastLineMessage("a");
    QCOMPARE(listOf(logger)->count(), 0);
    QVERIFY(logger.isEmpty());
    QVERIFY(logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger::everyRowHasItsLineWidget()
{
    UtilsLogger logger(nullptr, 0);
    addLines(logger, 3);
    QListWidget *list = listOf(logger);
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
    lines.constLast()->appendText("!");
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(list->itemWidget(list->item(row)), lines.at(row));
        QCOMPARE(list->item(row)->data(Qt::AccessibleTextRole).toString(), lines.at(row)->getText());
        QVERIFY(list->item(row)->text().isEmpty());
    }
}

void tst_UtilsLogger::theOldestLineLeavesAtTheLimit()
{
    for (const int duration : {0, Endless}) {
        UtilsLogger logger(nullptr, duration, 3);
        for (int i = 0; i < 5; ++i) {
            addLines(logger, 1);
            QVERIFY(listOf(logger)->count() <= 3);
        }
        logger.clear();
        logger.addMessage("a\nb\nc\nd", LOGGER_MESSAGE_DEFAULT);
        QCOMPARE(listOf(logger)->count(), 3);
        QCOMPARE(logger.getLoggerData(), "b\nc\nd\n");
    }
}

void tst_UtilsLogger::aLineThatLeftIsListedNoMore()
{
    UtilsLogger logger(nullptr, Endless, 2);
    layOut(logger);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    const QPointer<UtilsLoggerLine> first = logger.getChildrenWidgets().constFirst();
    logger.addMessage("c", LOGGER_MESSAGE_DEFAULT);
    QVERIFY(!first);
    QCOMPARE(logger.getChildrenWidgets().size(), 2);
    QCOMPARE(logger.getLoggerData(), "b\nc\n");
    QCoreApplication::processEvents();
    QCOMPARE(logger.getLoggerData(), "b\nc\n");
}

void tst_UtilsLogger::theLimitIsComparedForEquality()
{
    UtilsLogger unlimited(nullptr, 0, 0);
    addLines(unlimited, 20);
    QCOMPARE(listOf(unlimited)->count(), 20);

    UtilsLogger logger(nullptr, 0, 10);
    addLines(logger, 10);
    logger.setMaxNumberOfLines(5); // below the count: never equal again
    addLines(logger, 10);
    QCOMPARE(listOf(logger)->count(), 20);
    logger.setMaxNumberOfLines(20);
    addLines(logger, 10);
    QCOMPARE(listOf(logger)->count(), 20);
    logger.setMaxNumberOfLines(-1);
    addLines(logger, 1);
    QCOMPARE(listOf(logger)->count(), 21);
}

void tst_UtilsLogger::theLastLineMayLeave()
{
    UtilsLogger logger(nullptr, Endless, 1);
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(logger.getLoggerData(), "b\n");
    logger.appendToLastLineMessage("!");
    QCOMPARE(logger.getLoggerData(), "b!\n");
    logger.addLine("c", LOGGER_MESSAGE_DEFAULT); // takes the last line's place without becoming it
    QVERIFY(logger.isEmpty());
    logger.appendToLastLineMessage("?");
    QCOMPARE(logger.getLoggerData(), "c\n");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    logger.appendToLastLineMessage("?");
    QCOMPARE(logger.getLoggerData(), "c\n");
}

void tst_UtilsLogger::theItemThatLeftIsNotDeleted()
{
    for (const int duration : {0, Short}) {
        UtilsLogger logger(nullptr, duration, 1);
        addLines(logger, 1);
        QListWidgetItem *item = listOf(logger)->item(0);
        addLines(logger, 1);
        QCOMPARE(item->listWidget(), nullptr);
        delete item; // it is ours now, and nothing in the logger points to it
        QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
        if (duration > 0)
            QTRY_COMPARE(completed.count(), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void tst_UtilsLogger::aLineThatLeavesTakesItsRevealsAlong()
{
    constexpr int Limit = 3;
    UtilsLogger logger(nullptr, Short, Limit);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, 300); // at Short each, all of them would take ten seconds
    QTRY_COMPARE_WITH_TIMEOUT(completed.count(), 1, 5'000);
    QCOMPARE(logger.getLoggerData(), "297\n298\n299\n");
    QVERIFY(logger.isAllAnimationsCompleted());
    for (int row = 0; row < Limit; ++row)
        QVERIFY(!listOf(logger)->item(row)->isHidden());
}

void tst_UtilsLogger::aHeldLineMayBeUsedInTheTurnOfClear()
{
    UtilsLogger logger(nullptr, Short);
    UtilsLoggerLine *running = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    UtilsLoggerLine *waiting = logger.addLine("b", LOGGER_MESSAGE_DEFAULT);
    logger.clear();
    for (UtilsLoggerLine *line : {running, waiting}) {
        line->appendText("!");
        line->setText("c");
        QCOMPARE(line->getText(), "c");
    }
    QVERIFY(logger.getLoggerData().isEmpty());
}

void tst_UtilsLogger::aLineMayLeaveInsideItsOwnSignal_data()
{
    QTest::addColumn<bool>("ofTheLine");
    QTest::newRow("finished of the reveal") << true;
    QTest::newRow("all completed") << false;
}

void tst_UtilsLogger::aLineMayLeaveInsideItsOwnSignal()
{
    QFETCH(bool, ofTheLine);
    UtilsLogger logger(nullptr, Short, 1);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    const QPointer<UtilsLoggerLine> line = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    const auto addAnother = [&logger, line] {
        if (line)
            logger.addMessage("b\nc", LOGGER_MESSAGE_DEFAULT);
    };
    if (ofTheLine)
        connect(line->findChild<QPropertyAnimation *>(), &QAbstractAnimation::finished, this, addAnother);
    else
        connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, addAnother);
    QTRY_VERIFY(!line);
    QTRY_COMPARE(completed.count(), 2);
    QCOMPARE(logger.getLoggerData(), "c\n");
}

void tst_UtilsLogger::linesAreRevealedOneAfterAnother()
{
    UtilsLogger logger(nullptr, Short);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    logger.addMessage("a\nb\nc", LOGGER_MESSAGE_DEFAULT);
    const QListWidget *list = listOf(logger);
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
    QStringList log;
    for (int row = 0; row < 3; ++row) {
        auto *reveal = lines.at(row)->findChild<QPropertyAnimation *>();
        QCOMPARE(list->item(row)->isHidden(), row > 0);
        connect(reveal, &QAbstractAnimation::stateChanged, this, [&log, list, row](QAbstractAnimation::State state) {
            QString shown;
            for (int i = 0; i < list->count(); ++i)
                shown += list->item(i)->isHidden() ? '-' : 'x';
            log << QStringLiteral("%1 %2 %3")
                       .arg(row)
                       .arg(state == QAbstractAnimation::Running ? "runs" : "ends", shown);
        });
    }
    QTRY_COMPARE(completed.count(), 1);
    const QStringList expected{"0 ends x--", "1 runs xx-", "1 ends xx-", "2 runs xxx", "2 ends xxx"};
    QCOMPARE(log, expected);
    QVERIFY(logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger::theRevealHidesTheText_data()
{
    const QString theme = "*[background-color=\"main\"] { background-color: #22262c; } QLabel { color: #ffffff; }"
                          "QLabel[font-size=\"level2\"] { font-size: 14px; }";
    QTest::addColumn<QString>("styleSheet");
    QTest::addColumn<QString>("text");
    QTest::newRow("without style sheet") << ""
                                         << "Erasing";
    QTest::newRow("with style sheet") << theme << "Erasing";
    QTest::newRow("right to left") << theme << QString(10, QChar(0x05d0));
}

void tst_UtilsLogger::theRevealHidesTheText()
{
    QFETCH(QString, styleSheet);
    QFETCH(QString, text);
    QWidget window;
    window.setStyleSheet(styleSheet);
    UtilsLogger logger(&window, Endless);
    if (!styleSheet.isEmpty())
        logger.setProperty("background-color", "main");
    logger.resize(200, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    const auto colorsIn = [&logger](const UtilsLoggerLine *line) {
        QCoreApplication::processEvents();
        const QImage image = logger.grab(QRect(line->mapTo(&logger, QPoint(0, 0)), line->size())).toImage();
        QSet<QRgb> colors;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                colors.insert(image.pixel(x, y));
        }
        return colors.size();
    };
    const UtilsLoggerLine *hidden = logger.addLine(text, LOGGER_MESSAGE_DEFAULT);
    QTRY_VERIFY(hidden->isVisible());
    QCOMPARE(colorsIn(hidden), 1); // nothing but the background

    logger.clear();
    logger.setLineAnimationDuration(Short);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    const UtilsLoggerLine *revealed = logger.addLine(text, LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(completed.count(), 1);
    QTRY_VERIFY(revealed->isVisible());
    QVERIFY(colorsIn(revealed) > 1);
}

void tst_UtilsLogger::theFlagIsStillFalseInsideTheSignal()
{
    UtilsLogger logger(nullptr, Short);
    QList<bool> seen;
    connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this,
            [&] { seen << logger.isAllAnimationsCompleted(); });
    addLines(logger, 2);
    QTRY_COMPARE(seen, QList<bool>{false});
    QVERIFY(logger.isAllAnimationsCompleted());

    logger.clear();
    logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    logger.slotLoggerAnimationsCompleted();
    QCOMPARE(seen, QList<bool>({false, false}));
    QVERIFY(logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger::theFlagGoesFalseWithEveryLine()
{
    UtilsLogger logger(nullptr, Short);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    for (int round = 1; round <= 2; ++round) {
        addLines(logger, 1);
        QVERIFY(!logger.isAllAnimationsCompleted());
        QTRY_COMPARE(completed.count(), round);
        QVERIFY(logger.isAllAnimationsCompleted());
    }
}

void tst_UtilsLogger::withoutDurationTheFlagStaysFalse()
{
    UtilsLogger logger(nullptr, 0);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, 3);
    for (int row = 0; row < 3; ++row)
        QVERIFY(!listOf(logger)->item(row)->isHidden());
    QVERIFY(!logger.findChild<QPropertyAnimation *>());
    QVERIFY(!logger.isAllAnimationsCompleted());
    QCoreApplication::processEvents();
    QVERIFY(!logger.isAllAnimationsCompleted());
    QCOMPARE(completed.count(), 0);
}

void tst_UtilsLogger::theDurationHoldsForLaterLines()
{
    UtilsLogger logger(nullptr, Endless);
    UtilsLoggerLine *before = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    logger.setLineAnimationDuration(250);
    UtilsLoggerLine *after = logger.addLine("b", LOGGER_MESSAGE_DEFAULT);
    logger.setLineAnimationDuration(0);
    UtilsLoggerLine *plain = logger.addLine("c", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(before->findChild<QPropertyAnimation *>()->duration(), Endless);
    QCOMPARE(after->findChild<QPropertyAnimation *>()->duration(), 250);
    QVERIFY(!plain->findChild<QPropertyAnimation *>());
}

void tst_UtilsLogger::aLineDeletedByOthersDoesNotHoldTheQueue()
{
    UtilsLogger logger(nullptr, Short);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    logger.setLineAnimationDuration(Endless);
    UtilsLoggerLine *running = logger.addLine("a", LOGGER_MESSAGE_DEFAULT);
    UtilsLoggerLine *waiting = logger.addLine("b", LOGGER_MESSAGE_DEFAULT);
    logger.setLineAnimationDuration(Short);
    logger.addMessage("c", LOGGER_MESSAGE_DEFAULT);
    delete waiting;
    delete running;
    QTRY_COMPARE(completed.count(), 1);
    QCOMPARE(logger.getLoggerData(), "c\n");
}

void tst_UtilsLogger::clearLeavesNothing_data()
{
    QTest::addColumn<int>("duration");
    QTest::newRow("not animated") << 0;
    QTest::newRow("revealing") << Short;
}

void tst_UtilsLogger::clearLeavesNothing()
{
    QFETCH(int, duration);
    UtilsLogger logger(nullptr, duration);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, 5);
    const QPointer<UtilsLoggerLine> line = logger.getChildrenWidgets().constFirst();
    logger.slotClear();
    QCOMPARE(listOf(logger)->count(), 0);
    QVERIFY(logger.getChildrenWidgets().isEmpty());
    QCOMPARE(logger.getLoggerData(), QString(""));
    QVERIFY(logger.isEmpty());
    logger.appendToLastLineMessage("a");
    QCOMPARE(logger.getLoggerData(), QString(""));
    QTRY_VERIFY(!line);
    QCOMPARE(completed.count(), 0);
}

void tst_UtilsLogger::clearDoesNotSetTheFlag()
{
    UtilsLogger logger(nullptr, Short);
    addLines(logger, 1);
    logger.clear();
    QVERIFY(!logger.isAllAnimationsCompleted());
    QCoreApplication::processEvents();
    QVERIFY(!logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger::linesAddedInTheSameTurnAsClearAreRevealedInOrder()
{
    UtilsLogger logger(nullptr, Short);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    logger.addMessage("old a\nold b\nold c", LOGGER_MESSAGE_DEFAULT);
    QCoreApplication::processEvents();
    logger.clear();
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(logger.getLoggerData(), "a\nb\n");
    const QListWidget *list = listOf(logger);
    QVERIFY(!list->item(0)->isHidden());
    QVERIFY(list->item(1)->isHidden());
    QTRY_COMPARE(completed.count(), 1);
    QVERIFY(!list->item(1)->isHidden());
    QCOMPARE(logger.getLoggerData(), "a\nb\n");
}

void tst_UtilsLogger::clearInsideASignal_data()
{
    QTest::addColumn<bool>("ofTheLine");
    QTest::newRow("finished of the reveal") << true;
    QTest::newRow("all completed") << false;
}

void tst_UtilsLogger::clearInsideASignal()
{
    QFETCH(bool, ofTheLine);
    UtilsLogger logger(nullptr, Short);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    UtilsLoggerLine *line = logger.addLine("old", LOGGER_MESSAGE_DEFAULT);
    bool cleared = false;
    const auto replaceLines = [&] {
        if (cleared)
            return;
        cleared = true;
        logger.clear();
        logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT);
        QCOMPARE(logger.getLoggerData(), "a\nb\n");
    };
    if (ofTheLine) {
        logger.addLine("old too", LOGGER_MESSAGE_DEFAULT);
        connect(line->findChild<QPropertyAnimation *>(), &QAbstractAnimation::finished, this, replaceLines);
    } else {
        connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, replaceLines);
    }
    QTRY_VERIFY(cleared);
    QTRY_COMPARE(completed.count(), ofTheLine ? 1 : 2);
    QCOMPARE(logger.getLoggerData(), "a\nb\n");
}

void tst_UtilsLogger::theLoggerMayBeDeletedInsideItsSignal()
{
    const QPointer<UtilsLogger> logger = new UtilsLogger(nullptr, Short);
    layOut(*logger);
    connect(logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, [logger] { delete logger; });
    addLines(*logger, 3);
    QTRY_VERIFY(!logger);
    QCoreApplication::processEvents();
}

void tst_UtilsLogger::theLoggerMayBeDeletedInAnyState_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("cleared");
    QTest::addColumn<bool>("laidOut");
    for (const int duration : {0, Endless}) {
        for (const int limit : {2, 1000}) {
            for (const bool cleared : {false, true}) {
                for (const bool laidOut : {false, true}) {
                    QTest::addRow("duration %d, limit %d%s%s", duration, limit, cleared ? ", cleared" : "",
                                  laidOut ? ", laid out" : "")
                        << duration << limit << cleared << laidOut;
                }
            }
        }
    }
}

void tst_UtilsLogger::theLoggerMayBeDeletedInAnyState()
{
    QFETCH(int, duration);
    QFETCH(int, limit);
    QFETCH(bool, cleared);
    QFETCH(bool, laidOut);
    auto *logger = new UtilsLogger(nullptr, duration, limit);
    logger->show();
    addLines(*logger, 5);
    if (laidOut)
        QCoreApplication::processEvents();
    if (cleared)
        logger->clear();
    addLines(*logger, 3);
    delete logger;
    QCoreApplication::processEvents();
}

void tst_UtilsLogger::theBackgroundColorGoesToAllLines_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("background-color") << QByteArray("background-color");
    QTest::newRow("a longer name") << QByteArray("background-color-extra");
}

void tst_UtilsLogger::theBackgroundColorGoesToAllLines()
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

void tst_UtilsLogger::theBackgroundColorIsUnsetByTheIntegerZeroOnly_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("passedOn");
    QTest::newRow("role name") << QVariant("main") << true;
    QTest::newRow("empty text") << QVariant("") << true;
    QTest::newRow("integer 1") << QVariant(1) << true;
    QTest::newRow("integer 0") << QVariant(0) << false;
}

void tst_UtilsLogger::theBackgroundColorIsUnsetByTheIntegerZeroOnly()
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

void tst_UtilsLogger::anotherPropertyIsSetOnTheLoggerOnly()
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

void tst_UtilsLogger::aNewBackgroundColorIsStyledAtOnce()
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

void tst_UtilsLogger::contentsMarginsAreThoseOfTheLayout()
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

void tst_UtilsLogger::theListTakesOverTheFocusPolicy()
{
    UtilsLogger logger;
    logger.setFocusPolicy(Qt::ClickFocus);
    QCOMPARE(listOf(logger)->focusPolicy(), Qt::StrongFocus);
    logger.show();
    QCOMPARE(listOf(logger)->focusPolicy(), Qt::ClickFocus);
}

void tst_UtilsLogger::theViewFollowsTheEnd()
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

void tst_UtilsLogger::theViewStaysWhereTheUserScrolledTo()
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

void tst_UtilsLogger::rowsStandWhereTheListSaysTheyDo()
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

void tst_UtilsLogger::keysMoveTheCurrentRow_data()
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

void tst_UtilsLogger::keysMoveTheCurrentRow()
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

void tst_UtilsLogger::homeAndEndMoveTheScrollBar()
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

void tst_UtilsLogger::otherKeysAndWidgetsAreNotConsumed()
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

void tst_UtilsLogger::copySelectedTakesTheCurrentLine()
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

void tst_UtilsLogger::copyAllTakesAllLines()
{
    UtilsLogger logger(nullptr, 0);
    logger.addMessage("x\ny", LOGGER_MESSAGE_DEFAULT);
    actionOf(logger, "Copy All")->trigger();
    QCOMPARE(QApplication::clipboard()->text(), "x\ny\n");
    logger.clear();
    logger.slotCopyAll();
    QCOMPARE(QApplication::clipboard()->text(), QString());
}

void tst_UtilsLogger::theCopyShortcutWorksInTheWindowOfTheLogger()
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

void tst_UtilsLogger::theContextMenuOffersToCopy()
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

void tst_UtilsLogger::theLoggerMayBeDeletedWhileItsMenuIsOpen()
{
    auto *logger = new UtilsLogger(nullptr, 0);
    layOut(*logger);
    QTimer::singleShot(0, logger, [logger] { delete logger; });
    logger->slotShowContextMenu(QPoint(1, 1));
    QVERIFY(!QApplication::activePopupWidget());
}

UNIPROG_TEST_MAIN(tst_UtilsLogger)
#include "tst_utilslogger.moc"
