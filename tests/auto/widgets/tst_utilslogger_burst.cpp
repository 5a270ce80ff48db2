#include "LoggerTest.h"

#include <QClipboard>
#include <QScrollBar>
#include <QSet>
#include <QThread>
#include <QTimer>

#include <functional>
#include <memory>

using namespace LoggerTest;

namespace {

constexpr int Burst = 3'000; // lines; more than the logger keeps
constexpr int SmallBurst = 250; // lines; more than it completes at once

/// The lines that are complete, seen without asking the logger, which would complete the others.
int completeRows(const UtilsLogger &logger)
{
    const QListWidget *list = listOf(logger);
    int rows = 0;
    for (int row = 0; row < list->count(); ++row)
        rows += list->itemWidget(list->item(row)) ? 1 : 0;
    return rows;
}

QString textAt(const UtilsLogger &logger, int row)
{
    const QListWidget *list = listOf(logger);
    const auto *line = qobject_cast<UtilsLoggerLine *>(list->itemWidget(list->item(row)));
    return line ? line->getText() : QString();
}

QString lastText(const UtilsLogger &logger)
{
    return textAt(logger, listOf(logger)->count() - 1);
}

/// The lines that a logger should have, by its rule for the line limit.
class ExpectedLines
{
public:
    void add(UtilsLogger &logger, int count)
    {
        for (int i = 0; i < count; ++i) {
            const QString text = QString::number(m_next++);
            if (m_lines.size() == logger.getMaxNumberOfLines() && !m_lines.isEmpty())
                m_lines.removeFirst();
            m_lines.append(text);
            logger.addMessage(text, LOGGER_MESSAGE_DEFAULT);
            QCOMPARE(listOf(logger)->count(), m_lines.size());
        }
    }
    QStringList lines() const
    {
        return m_lines;
    }

private:
    QStringList m_lines;
    int m_next = 0;
};

} // namespace

/// Many lines in one turn of the event loop: those beyond the first hundred wait for the turns that follow.
class tst_UtilsLogger_burst : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theEventLoopGoesOnDuringABurst_data();
    void theEventLoopGoesOnDuringABurst();
    void theFirstLinesAreCompleteAtOnce();
    void theRowsAreThereAtOnce_data();
    void theRowsAreThereAtOnce();
    void linesOfAnotherThreadComeInOrder();
    void theLimitHoldsThroughABurst_data();
    void theLimitHoldsThroughABurst();
    void theLimitMayChangeWhileLinesWait();
    void whatReadsTheLinesCompletesThem_data();
    void whatReadsTheLinesCompletesThem();
    void copyingTakesTheWaitingLines();
    void appendingGoesToTheLastWaitingLine_data();
    void appendingGoesToTheLastWaitingLine();
    void waitingLinesKeepWhatHeldWhenTheyWereAdded();
    void theLoggerIsNotEmptyWhileLinesWait();

    void completionWaitsForTheWaitingLines();
    void completionComesOnceAfterTheLastReveal();
    void aRevealThatNeverCameDoesNotHoldTheCompletion();
    void completionComesOnceWhenTheRevealsLeaveWithTheirLines();
    void aRowShowsWhenItsPlaceWasThatOfAReveal();

    void clearForgetsTheWaitingLines_data();
    void clearForgetsTheWaitingLines();
    void theLoggerMayBeDeletedWhileLinesWait_data();
    void theLoggerMayBeDeletedWhileLinesWait();
    void theLoggerMayBeHiddenWhileLinesWait();
    void aRowThatIsTakenOutTakesItsWaitingLineAlong();
    void theViewFollowsABurst();
    void theViewFollowsARevealThatBeginsInABurst_data();
    void theViewFollowsARevealThatBeginsInABurst();
};

void tst_UtilsLogger_burst::theEventLoopGoesOnDuringABurst_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<bool>("queued");
    QTest::newRow("not animated, in one slot") << 0 << false;
    QTest::newRow("not animated, in queued signals") << 0 << true;
    QTest::newRow("animated, in one slot") << Endless << false;
    QTest::newRow("animated, in queued signals") << Endless << true;
}

void tst_UtilsLogger_burst::theEventLoopGoesOnDuringABurst()
{
    QFETCH(int, duration);
    QFETCH(bool, queued);
    UtilsLogger logger(nullptr, duration);
    layOut(logger);
    // However fast the machine is, a line takes so long that those that wait need several turns.
    connect(listOf(logger)->model(), &QAbstractItemModel::dataChanged, this, [] { QThread::msleep(1); });
    for (int i = 0; i < SmallBurst; ++i) {
        const auto add = [&logger, i] { logger.addMessage(QString::number(i), LOGGER_MESSAGE_DEFAULT); };
        if (queued)
            QMetaObject::invokeMethod(&logger, add, Qt::QueuedConnection);
        else
            add();
    }
    QSet<int> seenByOthers;
    QTimer turns;
    connect(&turns, &QTimer::timeout, this, [&] { seenByOthers.insert(completeRows(logger)); });
    turns.start(0);
    QTRY_COMPARE_WITH_TIMEOUT(completeRows(logger), SmallBurst, 30'000);
    turns.stop();

    QVERIFY2(seenByOthers.size() > 5, qPrintable(QString::number(seenByOthers.size())));
    for (int row = 0; row < SmallBurst; ++row)
        QCOMPARE(textAt(logger, row), QString::number(row));
}

void tst_UtilsLogger_burst::theFirstLinesAreCompleteAtOnce()
{
    UtilsLogger logger(nullptr, 0);
    for (int turn = 1; turn <= 3; ++turn) {
        addLines(logger, 100);
        QCOMPARE(completeRows(logger), turn * 100);
        QCoreApplication::processEvents(); // nobody waits, so this is enough for a new turn
        QTRY_VERIFY(!logger.findChild<QTimer *>()->isActive());
    }
}

void tst_UtilsLogger_burst::theRowsAreThereAtOnce_data()
{
    QTest::addColumn<int>("duration");
    QTest::newRow("not animated") << 0;
    QTest::newRow("animated") << Endless;
}

void tst_UtilsLogger_burst::theRowsAreThereAtOnce()
{
    QFETCH(int, duration);
    UtilsLogger logger(nullptr, duration);
    const QListWidget *list = listOf(logger);
    for (int rows = 1; rows <= SmallBurst; ++rows) {
        addLines(logger, 1);
        QCOMPARE(list->count(), rows);
        QCOMPARE(list->item(rows - 1)->isHidden(), duration > 0 && rows > 1);
    }
    QVERIFY(completeRows(logger) < SmallBurst);
    QVERIFY(!logger.isAllAnimationsCompleted());
    QTRY_COMPARE(completeRows(logger), SmallBurst);
    for (int row = 0; row < SmallBurst; ++row)
        QCOMPARE(list->item(row)->isHidden(), duration > 0 && row > 0);
}

void tst_UtilsLogger_burst::linesOfAnotherThreadComeInOrder()
{
    UtilsLogger logger(nullptr, 0);
    layOut(logger);
    const std::unique_ptr<QThread> worker(QThread::create([&logger] {
        for (int i = 0; i < Burst; ++i) {
            QMetaObject::invokeMethod(
                &logger, [&logger, i] { logger.addMessage(QString::number(i), LOGGER_MESSAGE_DEFAULT); },
                Qt::QueuedConnection);
        }
    }));
    worker->start();
    QTRY_COMPARE_WITH_TIMEOUT(lastText(logger), QString::number(Burst - 1), 30'000);
    worker->wait();
    QCOMPARE(listOf(logger)->count(), logger.getMaxNumberOfLines());
    for (int row = 0; row < logger.getMaxNumberOfLines(); ++row)
        QCOMPARE(textAt(logger, row), QString::number(Burst - logger.getMaxNumberOfLines() + row));
}

void tst_UtilsLogger_burst::theLimitHoldsThroughABurst_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("before");
    for (const int duration : {0, Endless}) {
        for (const int limit : {0, 1, 3, 99, 100, 101, 180}) {
            for (const int before : {0, 90, 200}) {
                QTest::addRow("%s, limit %d, %d lines before", duration ? "animated" : "not animated", limit, before)
                    << duration << limit << before;
            }
        }
    }
}

void tst_UtilsLogger_burst::theLimitHoldsThroughABurst()
{
    QFETCH(int, duration);
    QFETCH(int, limit);
    QFETCH(int, before);
    UtilsLogger logger(nullptr, duration, limit);
    ExpectedLines expected;
    expected.add(logger, before);
    QCOMPARE(textsOf(logger), expected.lines());
    expected.add(logger, 400);
    QTRY_COMPARE(lastText(logger), expected.lines().constLast());
    QCOMPARE(listOf(logger)->count(), expected.lines().size());
    QCOMPARE(textsOf(logger), expected.lines());
}

void tst_UtilsLogger_burst::theLimitMayChangeWhileLinesWait()
{
    UtilsLogger logger(nullptr, 0, 150);
    ExpectedLines expected;
    for (const int limit : {150, 300, 20, 470, 0, 1000, 600, 600, 900}) {
        logger.setMaxNumberOfLines(limit);
        expected.add(logger, 170);
        QCoreApplication::processEvents();
    }
    QCOMPARE(textsOf(logger), expected.lines());
    QCOMPARE(listOf(logger)->count(), expected.lines().size());
}

void tst_UtilsLogger_burst::whatReadsTheLinesCompletesThem_data()
{
    using Reader = std::function<void(UtilsLogger &)>;
    QTest::addColumn<Reader>("read");
    QTest::newRow("getLoggerData") << Reader([](UtilsLogger &logger) {
        QCOMPARE(logger.getLoggerData().count('\n'), SmallBurst);
        QVERIFY(logger.getLoggerData().endsWith("\n248\n249\n"));
    });
    QTest::newRow("getChildrenWidgets") << Reader([](UtilsLogger &logger) {
        const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
        QCOMPARE(lines.size(), SmallBurst);
        QCOMPARE(lines.constLast()->getText(), "249");
    });
    QTest::newRow("addLine") << Reader([](UtilsLogger &logger) {
        const UtilsLoggerLine *line = logger.addLine("after", LOGGER_MESSAGE_DEFAULT);
        QCOMPARE(textAt(logger, SmallBurst - 1), "249");
        QCOMPARE(listOf(logger)->itemWidget(listOf(logger)->item(SmallBurst)), line);
    });
    QTest::newRow("background colour") << Reader([](UtilsLogger &logger) {
        logger.setProperty("background-color-extra", "main");
        for (const UtilsLoggerLine *line : logger.getChildrenWidgets()) {
            QCOMPARE(line->property("background-color-extra"), QVariant("main"));
            QVERIFY(!line->property("background-color").isValid()); // that is for later ones
        }
    });
}

void tst_UtilsLogger_burst::whatReadsTheLinesCompletesThem()
{
    using Reader = std::function<void(UtilsLogger &)>;
    QFETCH(Reader, read);
    UtilsLogger logger(nullptr, Endless);
    addLines(logger, SmallBurst);
    QVERIFY(completeRows(logger) < SmallBurst);
    read(logger);
    QCOMPARE(completeRows(logger), listOf(logger)->count());
    QCOMPARE(textsOf(logger).first(SmallBurst).constLast(), "249");
}

void tst_UtilsLogger_burst::copyingTakesTheWaitingLines()
{
    UtilsLogger logger(nullptr, 0);
    addLines(logger, SmallBurst);
    listOf(logger)->setCurrentRow(SmallBurst - 1);
    logger.slotCopySelected();
    QCOMPARE(QApplication::clipboard()->text(), "249");

    logger.clear();
    logger.addMessage(QString("a\n").repeated(SmallBurst) + "b", LOGGER_MESSAGE_DEFAULT);
    logger.slotCopyAll();
    QCOMPARE(QApplication::clipboard()->text(), QString("a\n").repeated(SmallBurst) + "b\n");
}

void tst_UtilsLogger_burst::appendingGoesToTheLastWaitingLine_data()
{
    QTest::addColumn<int>("duration");
    QTest::newRow("not animated") << 0;
    QTest::newRow("animated") << Endless;
}

void tst_UtilsLogger_burst::appendingGoesToTheLastWaitingLine()
{
    QFETCH(int, duration);
    UtilsLogger logger(nullptr, duration);
    addLines(logger, SmallBurst);
    logger.appendToLastLineMessage(" and\nmore");
    logger.appendToLastLineMessage(" on");
    logger.addMessage("next\nlast", LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(lastText(logger), "last");
    logger.appendToLastLineMessage("!");
    QCOMPARE(textsOf(logger).mid(SmallBurst - 2), QStringList({"248", "249 and on", "next", "last!"}));
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets();
    const QList<QPropertyAnimation *> reveals = lines.at(SmallBurst - 1)->findChildren<QPropertyAnimation *>();
    QCOMPARE(reveals.size(), duration > 0 ? 3 : 0); // each text has its own
}

void tst_UtilsLogger_burst::waitingLinesKeepWhatHeldWhenTheyWereAdded()
{
    UtilsLogger logger(nullptr, Endless);
    addLines(logger, SmallBurst);
    logger.addMessage("animated", LOGGER_MESSAGE_ERROR);
    logger.setLineAnimationDuration(0);
    logger.addMessage("plain", LOGGER_MESSAGE_INFO);
    logger.setLineAnimationDuration(70);
    logger.addMessage("quick", LOGGER_MESSAGE_SUCCESS);
    logger.setLineAnimationDuration(0);
    const QList<UtilsLoggerLine *> lines = logger.getChildrenWidgets().mid(SmallBurst);
    QCOMPARE(lines.at(0)->findChild<QPropertyAnimation *>()->duration(), Endless);
    QVERIFY(!lines.at(1)->findChild<QPropertyAnimation *>());
    QCOMPARE(lines.at(2)->findChild<QPropertyAnimation *>()->duration(), 70);
    QCOMPARE(lines.at(0)->getType(), LOGGER_MESSAGE_ERROR);
    QCOMPARE(lines.at(1)->getType(), LOGGER_MESSAGE_INFO);
    QCOMPARE(lines.at(2)->getType(), LOGGER_MESSAGE_SUCCESS);
}

void tst_UtilsLogger_burst::theLoggerIsNotEmptyWhileLinesWait()
{
    UtilsLogger logger(nullptr, 0, 1);
    addLines(logger, SmallBurst);
    delete listOf(logger)->itemWidget(listOf(logger)->item(0)); // the last line that is complete
    QVERIFY(!logger.isEmpty());
    QTRY_COMPARE(lastText(logger), "249");
    QVERIFY(!logger.isEmpty());
}

void tst_UtilsLogger_burst::completionWaitsForTheWaitingLines()
{
    UtilsLogger logger(nullptr, 0);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, SmallBurst);
    logger.slotLoggerAnimationsCompleted(); // as when the last reveal ends just now
    QCOMPARE(completed.count(), 0);
    QVERIFY(!logger.isAllAnimationsCompleted());
    int rows = 0;
    connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, [&] { rows = completeRows(logger); });
    QTRY_COMPARE(completed.count(), 1);
    QCOMPARE(rows, SmallBurst);
    QVERIFY(logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger_burst::completionComesOnceAfterTheLastReveal()
{
    constexpr int Limit = 3;
    UtilsLogger logger(nullptr, Short, Limit);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    bool allRevealed = false;
    QString texts;
    connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, [&] {
        allRevealed = !logger.findChild<QPropertyAnimation *>();
        for (int row = 0; row < Limit; ++row)
            texts += textAt(logger, row) + (listOf(logger)->item(row)->isHidden() ? '-' : '+');
    });
    addLines(logger, Burst);
    QVERIFY(!logger.isAllAnimationsCompleted());
    QTRY_VERIFY(logger.isAllAnimationsCompleted());
    QCOMPARE(texts, "2997+2998+2999+");
    QCoreApplication::processEvents();
    QCOMPARE(completed.count(), 1);
}

void tst_UtilsLogger_burst::aRevealThatNeverCameDoesNotHoldTheCompletion()
{
    UtilsLogger logger(nullptr, 0, 5);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, 100);
    logger.setLineAnimationDuration(Endless);
    addLines(logger, 10);
    logger.setLineAnimationDuration(0);
    addLines(logger, 10); // the animated ones leave before they have been complete
    QTRY_COMPARE(completed.count(), 1);
    QVERIFY(logger.isAllAnimationsCompleted());
    QCOMPARE(logger.getLoggerData(), "5\n6\n7\n8\n9\n");
}

void tst_UtilsLogger_burst::completionComesOnceWhenTheRevealsLeaveWithTheirLines()
{
    UtilsLogger logger(nullptr, Endless, 5);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, 110); // some are revealed, and some wait
    logger.setLineAnimationDuration(0);
    addLines(logger, 10);
    QTRY_COMPARE(completed.count(), 1);
    QTRY_VERIFY(!logger.findChild<QTimer *>()->isActive());
    QCoreApplication::processEvents();
    QCOMPARE(completed.count(), 1);
    QVERIFY(logger.isAllAnimationsCompleted());

    logger.setLineAnimationDuration(Short); // and it comes again for later lines
    addLines(logger, 1);
    QTRY_COMPARE(completed.count(), 2);
}

void tst_UtilsLogger_burst::aRowShowsWhenItsPlaceWasThatOfAReveal()
{
    constexpr int Limit = 103;
    UtilsLogger logger(nullptr, 0, Limit);
    addLines(logger, 100);
    logger.setLineAnimationDuration(Endless);
    addLines(logger, Limit - 100);
    QVERIFY(listOf(logger)->item(Limit - 1)->isHidden());
    logger.setLineAnimationDuration(0);
    addLines(logger, 2 * Limit);
    QCOMPARE(textsOf(logger).constFirst(), QString::number(Limit));
    for (int row = 0; row < Limit; ++row)
        QVERIFY(!listOf(logger)->item(row)->isHidden());
}

void tst_UtilsLogger_burst::clearForgetsTheWaitingLines_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("limit");
    for (const int duration : {0, Short}) {
        for (const int limit : {50, 1000})
            QTest::addRow("duration %d, limit %d", duration, limit) << duration << limit;
    }
}

void tst_UtilsLogger_burst::clearForgetsTheWaitingLines()
{
    QFETCH(int, duration);
    QFETCH(int, limit);
    UtilsLogger logger(nullptr, duration, limit);
    layOut(logger);
    QSignalSpy completed(&logger, &UtilsLogger::signalLoggerAnimationsCompleted);
    addLines(logger, SmallBurst);
    logger.slotLoggerAnimationsCompleted();
    logger.clear();
    QCOMPARE(listOf(logger)->count(), 0);
    QVERIFY(logger.isEmpty());
    QVERIFY(logger.getChildrenWidgets().isEmpty());
    QCOMPARE(logger.getLoggerData(), QString());
    QTRY_VERIFY(!logger.findChild<QTimer *>()->isActive());
    QCOMPARE(listOf(logger)->count(), 0);
    QCOMPARE(completed.count(), 0);
    QVERIFY(!logger.isAllAnimationsCompleted());

    logger.setMaxNumberOfLines(0);
    addLines(logger, SmallBurst);
    logger.clear();
    logger.addMessage("a\nb", LOGGER_MESSAGE_DEFAULT); // in the same turn
    QCOMPARE(logger.getLoggerData(), "a\nb\n");
    if (duration > 0)
        QTRY_COMPARE(completed.count(), 1);
}

void tst_UtilsLogger_burst::theLoggerMayBeDeletedWhileLinesWait_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("inASlice");
    for (const int duration : {0, Endless}) {
        for (const int limit : {2, 120, 0}) {
            for (const bool inASlice : {false, true}) {
                QTest::addRow("duration %d, limit %d%s", duration, limit, inASlice ? ", some complete" : "")
                    << duration << limit << inASlice;
            }
        }
    }
}

void tst_UtilsLogger_burst::theLoggerMayBeDeletedWhileLinesWait()
{
    QFETCH(int, duration);
    QFETCH(int, limit);
    QFETCH(bool, inASlice);
    const QPointer<UtilsLogger> logger = new UtilsLogger(nullptr, duration, limit);
    layOut(*logger);
    addLines(*logger, Burst);
    if (inASlice) {
        QTimer::singleShot(0, logger, [logger] { delete logger; });
        QTRY_VERIFY(!logger);
    } else {
        delete logger;
    }
    QCoreApplication::processEvents();
}

void tst_UtilsLogger_burst::theLoggerMayBeHiddenWhileLinesWait()
{
    UtilsLogger logger(nullptr, 0);
    layOut(logger);
    addLines(logger, SmallBurst);
    logger.hide();
    QTRY_COMPARE(completeRows(logger), SmallBurst);
    logger.show();
    const QListWidget *list = listOf(logger);
    const QWidget *last = list->itemWidget(list->item(SmallBurst - 1));
    QTRY_VERIFY(last->isVisible());
    QCOMPARE(last->geometry(), list->visualItemRect(list->item(SmallBurst - 1)));
}

void tst_UtilsLogger_burst::aRowThatIsTakenOutTakesItsWaitingLineAlong()
{
    UtilsLogger logger(nullptr, 0);
    addLines(logger, SmallBurst);
    delete listOf(logger)->takeItem(200);
    delete listOf(logger)->takeItem(SmallBurst - 2);
    QStringList expected;
    for (int i = 0; i < SmallBurst; ++i)
        expected << QString::number(i);
    expected.removeAt(200);
    expected.removeLast();
    QCOMPARE(textsOf(logger), expected);
    QCOMPARE(completeRows(logger), SmallBurst - 2);
}

void tst_UtilsLogger_burst::theViewFollowsABurst()
{
    UtilsLogger logger(nullptr, 0, 300);
    logger.resize(200, 100);
    layOut(logger);
    const QListWidget *list = listOf(logger);
    const QScrollBar *bar = list->verticalScrollBar();
    for (int round = 0; round < 2; ++round) { // the second one beyond the limit
        addLines(logger, 400);
        QTRY_COMPARE(lastText(logger), "399");
        QTRY_VERIFY(list->itemWidget(list->item(299))->isVisible());
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
    }
}

void tst_UtilsLogger_burst::theViewFollowsARevealThatBeginsInABurst_data()
{
    QTest::addColumn<int>("limit");
    QTest::newRow("in a row of its own") << 0;
    QTest::newRow("in the place of another line") << 100;
}

void tst_UtilsLogger_burst::theViewFollowsARevealThatBeginsInABurst()
{
    QFETCH(int, limit);
    UtilsLogger logger(nullptr, 0, limit);
    logger.resize(200, 100);
    layOut(logger);
    addLines(logger, 100);
    QCoreApplication::processEvents();
    const QListWidget *list = listOf(logger);
    const QScrollBar *bar = list->verticalScrollBar();
    QTRY_COMPARE(bar->value(), bar->maximum());

    addLines(logger, 100);
    logger.setLineAnimationDuration(Endless);
    logger.addMessage("revealed", LOGGER_MESSAGE_DEFAULT);
    logger.addMessage("hidden", LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(lastText(logger), "hidden");
    const int rows = list->count();
    QVERIFY(list->item(rows - 1)->isHidden());
    const QWidget *revealed = list->itemWidget(list->item(rows - 2));
    QTRY_VERIFY(revealed->isVisible());
    QCOMPARE(revealed->geometry(), list->visualItemRect(list->item(rows - 2)));
    QVERIFY(list->viewport()->rect().contains(revealed->geometry()));
    QCOMPARE(bar->value(), bar->maximum());
}

UNIPROG_TEST_MAIN(tst_UtilsLogger_burst)
#include "tst_utilslogger_burst.moc"
