#include "SpinnerTest.h"

#include <UniProgTest.h>

#include <QApplication>

#include <memory>

using namespace SpinnerTest;

class tst_WaitingSpinnerWidget_run : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theSpinnerIsHiddenUntilStarted();
    void startAndStopCallTheParent_data();
    void startAndStopCallTheParent();
    void aSpinnerWithoutParentTurns();
    void startingTwiceGoesOn();
    void stoppingTwiceIsHarmless();
    void itMayBeDeletedWhileSpinning();
    void nothingTurnsWhereNobodySees();
    void aWindowThatComesBackGoesOn();
    void theSpinnerStaysInTheMiddle_data();
    void theSpinnerStaysInTheMiddle();
    void aWindowIsCentredInTheParentsCoordinates();
};

void tst_WaitingSpinnerWidget_run::theSpinnerIsHiddenUntilStarted()
{
    QWidget parent;
    WaitingSpinnerWidget spinner(&parent, true, false);
    parent.show();
    QVERIFY(!spinner.isVisible());
    spinner.start();
    QVERIFY(spinner.isVisible());
    QVERIFY(spinner.isSpinning());
    QVERIFY(rotationTimerOf(spinner)->isActive());
    spinner.stop();
    QVERIFY(!spinner.isVisible());
    QVERIFY(!spinner.isSpinning());
    QVERIFY(!rotationTimerOf(spinner)->isActive());
    parent.hide();
    parent.show();
    QVERIFY(!spinner.isVisible());
    QVERIFY(!rotationTimerOf(spinner)->isActive());
}

void tst_WaitingSpinnerWidget_run::startAndStopCallTheParent_data()
{
    QTest::addColumn<bool>("disables");
    QTest::addColumn<bool>("enabledBefore");
    QTest::addColumn<bool>("enabledAfter");
    QTest::newRow("disables") << true << true << true;
    QTest::newRow("disables one that is disabled") << true << false << true;
    QTest::newRow("leaves alone") << false << true << true;
    QTest::newRow("leaves one alone that is disabled") << false << false << false;
}

void tst_WaitingSpinnerWidget_run::startAndStopCallTheParent()
{
    QFETCH(bool, disables);
    QFETCH(bool, enabledBefore);
    QFETCH(bool, enabledAfter);
    QWidget parent;
    parent.setEnabled(enabledBefore);
    WaitingSpinnerWidget spinner(&parent, false, disables);
    parent.show();
    spinner.start();
    QCOMPARE(parent.isEnabled(), enabledBefore && !disables);
    QVERIFY(spinner.isSpinning());
    spinner.stop();
    QCOMPARE(parent.isEnabled(), enabledAfter);
}

void tst_WaitingSpinnerWidget_run::aSpinnerWithoutParentTurns()
{
    WaitingSpinnerWidget spinner(nullptr, true, true);
    spinner.move(123, 45);
    spinner.start();
    QCOMPARE(spinner.pos(), QPoint(123, 45));
    QVERIFY(spinner.isVisible());
    QVERIFY(rotationTimerOf(spinner)->isActive());
    spinner.stop();
    QVERIFY(!spinner.isVisible());
}

void tst_WaitingSpinnerWidget_run::startingTwiceGoesOn()
{
    QWidget parent;
    WaitingSpinnerWidget spinner(&parent, false, false);
    spinner.setRevolutionsPerSecond(0.0001);
    parent.show();
    spinner.start();
    spinner.rotate();
    spinner.rotate();
    spinner.setCountdown(5);
    spinner.start();
    QCOMPARE(leadingLine(spinner), 2);
    QVERIFY(!countdownTimersOf(spinner).first()->isActive());
    spinner.setSpinnerDefaultProperties();
    spinner.stop();
    spinner.setCountdown(5);
    spinner.start();
    QVERIFY(countdownTimersOf(spinner).last()->isActive());
}

void tst_WaitingSpinnerWidget_run::stoppingTwiceIsHarmless()
{
    QWidget parent;
    WaitingSpinnerWidget spinner(&parent, true, true);
    spinner.stop();
    QVERIFY(!spinner.isSpinning());
    parent.show();
    spinner.start();
    spinner.stop();
    spinner.stop();
    QVERIFY(!spinner.isSpinning());
    QVERIFY(spinner.isHidden());
    QVERIFY(parent.isEnabled());
}

void tst_WaitingSpinnerWidget_run::itMayBeDeletedWhileSpinning()
{
    auto parent = std::make_unique<QWidget>();
    auto *spinner = new WaitingSpinnerWidget(parent.get(), true, true);
    auto *window = new WaitingSpinnerWidget(Qt::WindowModal, parent.get(), true, true);
    parent->show();
    spinner->start();
    window->start();
    delete window;
    parent.reset();
    QCoreApplication::processEvents();
}

void tst_WaitingSpinnerWidget_run::nothingTurnsWhereNobodySees()
{
    QWidget page;
    WaitingSpinnerWidget spinner(&page, false, false);
    const QTimer *timer = rotationTimerOf(spinner);
    spinner.setCountdown(3);
    spinner.start(); // on a page that is not shown yet
    QVERIFY(spinner.isSpinning());
    QVERIFY(!timer->isActive());
    QVERIFY(countdownTimersOf(spinner).first()->isActive());
    page.show();
    QVERIFY(timer->isActive());
    page.hide();
    QVERIFY(spinner.isSpinning());
    QVERIFY(!timer->isActive());
    page.show();
    QVERIFY(timer->isActive());
    spinner.hide();
    QVERIFY(spinner.isSpinning());
    QVERIFY(!timer->isActive());
    spinner.start();
    QVERIFY(spinner.isVisible());
    QVERIFY(timer->isActive());
    spinner.stop();
    spinner.show(); // shown without being started: it stands
    QVERIFY(!timer->isActive());
    spinner.start();
    QVERIFY(timer->isActive());
}

void tst_WaitingSpinnerWidget_run::aWindowThatComesBackGoesOn()
{
    QWidget page;
    WaitingSpinnerWidget spinner(&page, false, false);
    page.show();
    spinner.start();
    spinner.rotate();
    page.hide();
    page.show();
    QCOMPARE(leadingLine(spinner), 1);
}

void tst_WaitingSpinnerWidget_run::theSpinnerStaysInTheMiddle_data()
{
    QTest::addColumn<bool>("centred");
    QTest::newRow("centred") << true;
    QTest::newRow("left where it is") << false;
}

void tst_WaitingSpinnerWidget_run::theSpinnerStaysInTheMiddle()
{
    QFETCH(bool, centred);
    QWidget parent;
    parent.resize(201, 101);
    WaitingSpinnerWidget spinner(&parent, centred, false);
    spinner.move(3, 4);
    parent.show();
    spinner.start();
    QCOMPARE(spinner.pos(), centred ? QPoint(80, 30) : QPoint(3, 4));
    parent.resize(301, 200);
    QTRY_COMPARE(spinner.pos(), centred ? QPoint(130, 80) : QPoint(3, 4));
    spinner.setInnerRadius(20);
    QTRY_COMPARE(spinner.pos(), centred ? QPoint(120, 70) : QPoint(3, 4));
    parent.resize(10, 10);
    QTRY_COMPARE(spinner.pos(), centred ? QPoint(-25, -25) : QPoint(3, 4));
}

void tst_WaitingSpinnerWidget_run::aWindowIsCentredInTheParentsCoordinates()
{
    QWidget parent;
    parent.setGeometry(100, 100, 300, 200);
    WaitingSpinnerWidget spinner(Qt::NonModal, &parent, true, false);
    parent.show();
    spinner.start();
    QCOMPARE(spinner.pos(), QPoint(130, 80));
}

UNIPROG_TEST_MAIN(tst_WaitingSpinnerWidget_run)

#include "tst_waitingspinnerwidget_run.moc"
