#include <UtilsDialogProcessing.h>
#include <UtilsHidingWidget.h>
#include <UtilsLogger.h>
#include <UtilsStackedWidget.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>

#include <memory>

/// What an object works on is deleted while it speaks or moves.
class tst_LifetimesOfOthers : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theLoggerOfADialogGoesWhenTheDialogEnds();
    void theLinesOfALoggerGoWhenAllAreShown();
    void theWidgetUnderAHidingWidgetGoes();
    void everyPageOfAStackGoesWhenItChanges_data();
    void everyPageOfAStackGoesWhenItChanges();
};

static constexpr int ShortDuration = 30; // milliseconds

void tst_LifetimesOfOthers::theLoggerOfADialogGoesWhenTheDialogEnds()
{
    const QPointer<UtilsDialogProcessing> dialog(new UtilsDialogProcessing);
    const QPointer<UtilsLogger> logger(dialog->findChild<UtilsLogger *>());
    dialog->show();
    dialog->slotUpdateLog(QStringLiteral("Erasing MCU...\nWriting MCU..."), LOGGER_MESSAGE_DEFAULT);
    connect(dialog, &UtilsDialogFrame::signalDialogClosed, this, [logger] { delete logger; });
    dialog->slotClose();
    QVERIFY(!logger);
    QTRY_VERIFY(!dialog);
}

void tst_LifetimesOfOthers::theLinesOfALoggerGoWhenAllAreShown()
{
    UtilsLogger logger(nullptr, ShortDuration);
    logger.show();
    logger.addMessage(QStringLiteral("one\ntwo"), LOGGER_MESSAGE_DEFAULT);
    connect(&logger, &UtilsLogger::signalLoggerAnimationsCompleted, this,
            [&logger] { qDeleteAll(logger.getChildrenWidgets()); });
    QTRY_VERIFY(logger.isAllAnimationsCompleted());
    QCOMPARE(logger.getChildrenWidgets().size(), 0);
    logger.appendToLastLineMessage(QStringLiteral("nobody's"));
    QCOMPARE(logger.getLoggerData(), QString());
}

void tst_LifetimesOfOthers::theWidgetUnderAHidingWidgetGoes()
{
    QWidget window;
    auto *covered = new QWidget(&window);
    auto *cover = new UtilsHidingWidget(covered);
    cover->setParent(&window); // it stays above, and survives
    window.show();
    cover->show();
    delete covered;
    window.resize(300, 200);
    cover->hide();
    cover->show();
    QVERIFY(cover->isVisible());
}

void tst_LifetimesOfOthers::everyPageOfAStackGoesWhenItChanges_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("animated") << true;
    QTest::newRow("not animated") << false;
}

void tst_LifetimesOfOthers::everyPageOfAStackGoesWhenItChanges()
{
    QFETCH(bool, animated);
    UtilsStackedWidget stack(nullptr, animated);
    const QPointer<QWidget> first(new QLabel);
    const QPointer<QWidget> second(new QLabel);
    stack.addWidget(first);
    stack.addWidget(second);
    stack.show();
    const auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = connect(&stack, &QStackedWidget::currentChanged, this, [first, second, connection] {
        disconnect(*connection);
        delete first;
        delete second;
    });
    stack.setCurrentWidget(second);
    QTRY_VERIFY(!first && !second);
    QCOMPARE(stack.count(), 0);
    stack.addWidget(new QLabel);
    QTRY_COMPARE(stack.currentIndex(), 0);
}

UNIPROG_TEST_MAIN(tst_LifetimesOfOthers)
#include "tst_lifetimesofothers.moc"
