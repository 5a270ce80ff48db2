#include "SpinnerTest.h"

#include <AccessibleEvents.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QPointer>

using namespace SpinnerTest;

class tst_WaitingSpinnerWidget_countdown : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theCountdownIsDrawnUntilZero();
    void theNumberHasItsFontAndPlace();
    void theCountdownEndsByItself();
    void theCountdownRunsWithoutTheSpinner();
    void theCountdownStartsWithTheSpinner();
    void aCountdownOfZeroIsNone_data();
    void aCountdownOfZeroIsNone();
    void theCountdownMayBeUpdatedFirst();
    void everyCountdownHasATimerOfItsOwn();
    void anEarlierTimerStopsItself();
    void timersGoWithTheSpinner();

    void itIsHeardAsABusyProgressBar();
    void startingAndStoppingAreHeardOnce();
    void theTextIsItsName();
    void theCountdownIsItsValue();
    void everySecondIsHeard();
};

void tst_WaitingSpinnerWidget_countdown::theCountdownIsDrawnUntilZero()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    QVERIFY(!isNumberDrawn(spinner));
    spinner.setCountdown(3);
    QList<QImage> images;
    for (int seconds = 3; seconds > 0; --seconds) {
        QVERIFY(isNumberDrawn(spinner));
        images.append(imageOf(spinner));
        QVERIFY(QMetaObject::invokeMethod(&spinner, "updateCountdown"));
    }
    QVERIFY(!isNumberDrawn(spinner));
    QVERIFY(images.at(0) != images.at(1));
    QVERIFY(images.at(1) != images.at(2));
    WaitingSpinnerWidget two(nullptr, false, false);
    two.setCountdown(2);
    QCOMPARE(imageOf(two), images.at(1));
    spinner.updateCountdown();
    QVERIFY(!isNumberDrawn(spinner));
}

void tst_WaitingSpinnerWidget_countdown::theNumberHasItsFontAndPlace()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setNumberOfLines(0);
    spinner.setFont(QFont(QStringLiteral("monospace"), 20)); // it has a font of its own
    spinner.setCountdown(27);

    QImage expected(spinner.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(spinner.palette().color(QPalette::WindowText));
    painter.setFont(QFont(QStringLiteral("Open Sans"), 8));
    painter.drawText(spinner.rect(), Qt::AlignCenter, QStringLiteral("27"));
    painter.end();
    QCOMPARE(imageOf(spinner), expected.convertToFormat(QImage::Format_ARGB32));
}

void tst_WaitingSpinnerWidget_countdown::theCountdownEndsByItself()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setCountdown(2);
    QTimer *timer = countdownTimersOf(spinner).first();
    QCOMPARE(timer->interval(), 1000);
    QCOMPARE(timer->parent(), &spinner);
    spinner.start();
    QVERIFY(timer->isActive());
    tick(timer);
    QVERIFY(isNumberDrawn(spinner));
    tick(timer);
    QVERIFY(!isNumberDrawn(spinner));
    QVERIFY(timer->isActive()); // until the next tick
    tick(timer);
    QVERIFY(!timer->isActive());
    QVERIFY(spinner.isSpinning());
}

void tst_WaitingSpinnerWidget_countdown::theCountdownRunsWithoutTheSpinner()
{
    QWidget parent;
    WaitingSpinnerWidget spinner(&parent, true, true);
    spinner.setCountdown(1);
    parent.show();
    spinner.start();
    spinner.stop();
    QTimer *timer = countdownTimersOf(spinner).first();
    QVERIFY(timer->isActive());
    QVERIFY(!spinner.isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!timer->isActive(), 20000);
    QVERIFY(!isNumberDrawn(spinner));
}

void tst_WaitingSpinnerWidget_countdown::theCountdownStartsWithTheSpinner()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.start();
    spinner.setCountdown(5);
    const QTimer *timer = countdownTimersOf(spinner).first();
    QVERIFY(!timer->isActive());
    spinner.start(); // it turns already
    QVERIFY(!timer->isActive());
    spinner.stop();
    spinner.start();
    QVERIFY(timer->isActive());
}

void tst_WaitingSpinnerWidget_countdown::aCountdownOfZeroIsNone_data()
{
    QTest::addColumn<int>("seconds");
    QTest::newRow("zero") << 0;
    QTest::newRow("below") << -5;
}

void tst_WaitingSpinnerWidget_countdown::aCountdownOfZeroIsNone()
{
    QFETCH(int, seconds);
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setCountdown(seconds);
    spinner.start();
    QVERIFY(!countdownTimersOf(spinner).first()->isActive());
    QVERIFY(!isNumberDrawn(spinner));
    spinner.updateCountdown();
    QVERIFY(!isNumberDrawn(spinner));
}

void tst_WaitingSpinnerWidget_countdown::theCountdownMayBeUpdatedFirst()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.updateCountdown();
    QVERIFY(!isNumberDrawn(spinner));
    QVERIFY(countdownTimersOf(spinner).isEmpty());
}

void tst_WaitingSpinnerWidget_countdown::everyCountdownHasATimerOfItsOwn()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    for (int i = 1; i <= 3; ++i) {
        spinner.setCountdown(10 * i);
        QCOMPARE(countdownTimersOf(spinner).size(), i);
    }
    spinner.start();
    const QList<QTimer *> timers = countdownTimersOf(spinner);
    QVERIFY(!timers.at(0)->isActive());
    QVERIFY(!timers.at(1)->isActive());
    QVERIFY(timers.at(2)->isActive());
}

void tst_WaitingSpinnerWidget_countdown::anEarlierTimerStopsItself()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setCountdown(5);
    spinner.start();
    spinner.setCountdown(2); // the earlier timer runs on, the new one waits for the next start
    QTimer *earlier = countdownTimersOf(spinner).at(0);
    QTimer *later = countdownTimersOf(spinner).at(1);
    QVERIFY(earlier->isActive());
    QVERIFY(!later->isActive());
    spinner.stop();
    spinner.start();
    QVERIFY(earlier->isActive());
    QVERIFY(later->isActive());

    tick(earlier); // both count
    QVERIFY(isNumberDrawn(spinner));
    tick(later);
    QVERIFY(!isNumberDrawn(spinner));
    tick(later);
    QVERIFY(!later->isActive());
    QVERIFY(earlier->isActive());
    tick(earlier);
    QVERIFY(!earlier->isActive());
}

void tst_WaitingSpinnerWidget_countdown::timersGoWithTheSpinner()
{
    QList<QPointer<QTimer>> timers;
    {
        WaitingSpinnerWidget spinner(nullptr, false, false);
        spinner.setCountdown(1);
        spinner.start();
        spinner.setCountdown(2);
        for (QTimer *timer : spinner.findChildren<QTimer *>())
            timers.append(timer);
    }
    QCOMPARE(timers.size(), 3);
    for (const auto &timer : timers)
        QVERIFY(!timer);
}

void tst_WaitingSpinnerWidget_countdown::itIsHeardAsABusyProgressBar()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&spinner);
    QVERIFY(interface);
    QCOMPARE(interface->role(), QAccessible::ProgressBar);
    QVERIFY(interface->state().readOnly);
    QVERIFY(!interface->valueInterface());
    QVERIFY(!interface->state().busy);
    spinner.start();
    QVERIFY(interface->state().busy);
    spinner.stop();
    QVERIFY(!interface->state().busy);
}

void tst_WaitingSpinnerWidget_countdown::startingAndStoppingAreHeardOnce()
{
    if (!AccessibleEvents::isAvailable())
        QSKIP("Qt's private headers are missing.");
    AccessibleEvents events;
    WaitingSpinnerWidget spinner(nullptr, false, false);
    QAccessible::State busy;
    busy.busy = true;
    QAccessibleStateChangeEvent change(&spinner, busy);
    spinner.stop();
    QVERIFY(!events.contains(&change));
    spinner.start();
    QVERIFY(events.contains(&change));
    events.clear();
    spinner.start();
    QVERIFY(!events.contains(&change));
    spinner.stop();
    QVERIFY(events.contains(&change));
}

void tst_WaitingSpinnerWidget_countdown::theTextIsItsName()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    const QImage before = imageOf(spinner);
    spinner.setText(QStringLiteral("Connecting"));
    QCOMPARE(imageOf(spinner), before);
    QCOMPARE(QAccessible::queryAccessibleInterface(&spinner)->text(QAccessible::Name), QStringLiteral("Connecting"));
}

void tst_WaitingSpinnerWidget_countdown::theCountdownIsItsValue()
{
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setCountdown(3);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&spinner);
    QAccessibleValueInterface *value = interface->valueInterface();
    QVERIFY(value);
    QCOMPARE(value->minimumValue().toInt(), 0);
    QCOMPARE(value->maximumValue().toInt(), 3);
    QCOMPARE(value->minimumStepSize().toInt(), 1);
    QCOMPARE(value->currentValue().toInt(), 3);
    value->setCurrentValue(1);
    QCOMPARE(value->currentValue().toInt(), 3);
    spinner.updateCountdown();
    QCOMPARE(value->currentValue().toInt(), 2);
    QCOMPARE(value->maximumValue().toInt(), 3);
}

void tst_WaitingSpinnerWidget_countdown::everySecondIsHeard()
{
    if (!AccessibleEvents::isAvailable())
        QSKIP("Qt's private headers are missing.");
    AccessibleEvents events;
    WaitingSpinnerWidget spinner(nullptr, false, false);
    spinner.setCountdown(2);
    for (const int seconds : {2, 1, 0}) {
        QAccessibleValueChangeEvent change(&spinner, seconds);
        QVERIFY(events.contains(&change));
        events.clear();
        spinner.updateCountdown();
    }
    QAccessibleValueChangeEvent nothingLeft(&spinner, 0);
    QVERIFY(!events.contains(&nothingLeft));
}

UNIPROG_TEST_MAIN(tst_WaitingSpinnerWidget_countdown)

#include "tst_waitingspinnerwidget_countdown.moc"
