#include "LoggerTest.h"

#include <ContextTranslator.h>

#include <QLabel>
#include <QMetaMethod>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace LoggerTest;

static constexpr int RowHeight = 19; // pixels

class tst_UtilsLogger : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStyleSheetsExpectIt();
    void textsAreTranslatedInTheContextOfTheClass();
    void theStartValues();
    void theSlotsStandInTheirOrder();
    void theActionsAreThere();
    void partsCanBeDisconnectedByName();

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

void tst_UtilsLogger::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsLogger");
    const UtilsLogger logger;
    QCOMPARE(logger.windowTitle(), "<Frame>");
    for (const char *text : {"<Copy Selected Item>", "<Copy All>", "<Clear>"})
        QVERIFY2(actionOf(logger, text), text);
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

void tst_UtilsLogger::partsCanBeDisconnectedByName()
{
    UtilsLogger logger;
    QListWidget *list = listOf(logger);
    QVERIFY(disconnect(list->verticalScrollBar(), SIGNAL(rangeChanged(int, int)), &logger,
                       SLOT(moveScrollBarToBottom(int, int))));
    QVERIFY(disconnect(list, SIGNAL(customContextMenuRequested(QPoint)), &logger, SLOT(slotShowContextMenu(QPoint))));
    QVERIFY(disconnect(actionOf(logger, "Copy Selected Item"), SIGNAL(triggered()), &logger, SLOT(slotCopySelected())));
    QVERIFY(disconnect(actionOf(logger, "Copy All"), SIGNAL(triggered()), &logger, SLOT(slotCopyAll())));
    QVERIFY(disconnect(actionOf(logger, "Clear"), &QAction::triggered, &logger, &UtilsLogger::clear));
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
    QVERIFY(logger.isAllAnimationsCompleted());
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

UNIPROG_TEST_MAIN(tst_UtilsLogger)
#include "tst_utilslogger.moc"
