#include "LoggerTest.h"

#include <QImage>
#include <QLabel>
#include <QSet>

using namespace LoggerTest;

/// How the lines of a logger come and go: reveals in order, clear(), and deletion in mid-reveal.
class tst_UtilsLogger_reveal : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

void tst_UtilsLogger_reveal::linesAreRevealedOneAfterAnother()
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

void tst_UtilsLogger_reveal::theRevealHidesTheText_data()
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

void tst_UtilsLogger_reveal::theRevealHidesTheText()
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

void tst_UtilsLogger_reveal::theFlagIsStillFalseInsideTheSignal()
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

void tst_UtilsLogger_reveal::theFlagGoesFalseWithEveryLine()
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

void tst_UtilsLogger_reveal::withoutDurationTheFlagStaysFalse()
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

void tst_UtilsLogger_reveal::theDurationHoldsForLaterLines()
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

void tst_UtilsLogger_reveal::aLineDeletedByOthersDoesNotHoldTheQueue()
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

void tst_UtilsLogger_reveal::clearLeavesNothing_data()
{
    QTest::addColumn<int>("duration");
    QTest::newRow("not animated") << 0;
    QTest::newRow("revealing") << Short;
}

void tst_UtilsLogger_reveal::clearLeavesNothing()
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

void tst_UtilsLogger_reveal::clearDoesNotSetTheFlag()
{
    UtilsLogger logger(nullptr, Short);
    addLines(logger, 1);
    logger.clear();
    QVERIFY(!logger.isAllAnimationsCompleted());
    QCoreApplication::processEvents();
    QVERIFY(!logger.isAllAnimationsCompleted());
}

void tst_UtilsLogger_reveal::aHeldLineMayBeUsedInTheTurnOfClear()
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

void tst_UtilsLogger_reveal::linesAddedInTheSameTurnAsClearAreRevealedInOrder()
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

void tst_UtilsLogger_reveal::clearInsideASignal_data()
{
    QTest::addColumn<bool>("ofTheLine");
    QTest::newRow("finished of the reveal") << true;
    QTest::newRow("all completed") << false;
}

void tst_UtilsLogger_reveal::clearInsideASignal()
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

void tst_UtilsLogger_reveal::theLoggerMayBeDeletedInsideItsSignal()
{
    const QPointer<UtilsLogger> logger = new UtilsLogger(nullptr, Short);
    layOut(*logger);
    connect(logger, &UtilsLogger::signalLoggerAnimationsCompleted, this, [logger] { delete logger; });
    addLines(*logger, 3);
    QTRY_VERIFY(!logger);
    QCoreApplication::processEvents();
}

void tst_UtilsLogger_reveal::theLoggerMayBeDeletedInAnyState_data()
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

void tst_UtilsLogger_reveal::theLoggerMayBeDeletedInAnyState()
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

UNIPROG_TEST_MAIN(tst_UtilsLogger_reveal)
#include "tst_utilslogger_reveal.moc"
