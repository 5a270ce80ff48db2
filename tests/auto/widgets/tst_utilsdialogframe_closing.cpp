#include "DialogFrameTest.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTimer>

using Way = void (*)(UtilsDialogFrame *);
Q_DECLARE_METATYPE(Way)

// How the frame is closed, what is left of it then, and the ends of the windows around it.
class tst_UtilsDialogFrame_closing : public DialogFrameTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyWayOfClosingDeletesTheFrame_data();
    void everyWayOfClosingDeletesTheFrame();
    void aClosedFrameMayBeClosedAgainFromItsSignals_data();
    void aClosedFrameMayBeClosedAgainFromItsSignals();
    void closeInsideASlotComesToAnEnd();
    void aHiddenFrameIsNotShownAgain();
    void aFrameStaysVisibleAndDisabledUntilItIsDeleted();
    void fadingOutDeletesWithoutAnySignal();
    void theFrameDiesWithItsParent();
    void aButtonOutlivesTheFrameThatItsClickDeletes();
    void execReturnsTheResult_data();
    void execReturnsTheResult();
    void execOnAUsedFrameReturnsAtOnce();

    void aSubclassMayRefuseToBeClosed();
    void closingActivatesTheCoveredWindow();
    void theCoveredWindowMayDieFirst();
    void theParentOfADeadWindowTakesItsPlace();
};

void tst_UtilsDialogFrame_closing::everyWayOfClosingDeletesTheFrame_data()
{
    QTest::addColumn<Way>("way");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<int>("closed");
    QTest::addColumn<QList<int>>("results");

    const QList<int> none;
    const QList<int> accepted{QDialog::Accepted};
    const QList<int> rejected{QDialog::Rejected};
    QTest::newRow("accept button") << Way(clickAccept) << true << 1 << accepted;
    QTest::newRow("cancel button") << Way(clickCancel) << true << 1 << rejected;
    QTest::newRow("Return") << Way([](auto *f) { QTest::keyClick(f, Qt::Key_Return); }) << true << 1 << accepted;
    QTest::newRow("Enter") << Way([](auto *f) { QTest::keyClick(f, Qt::Key_Enter); }) << true << 1 << accepted;
    QTest::newRow("Enter of the keypad") << Way([](auto *f) { QTest::keyClick(f, Qt::Key_Enter, Qt::KeypadModifier); })
                                         << true << 1 << accepted;
    QTest::newRow("Escape") << Way([](auto *f) { QTest::keyClick(f, Qt::Key_Escape); }) << true << 1 << rejected;
    QTest::newRow("Return, Return") << Way([](auto *f) {
        QTest::keyClick(f, Qt::Key_Return);
        QTest::keyClick(f, Qt::Key_Return);
    }) << true << 1 << accepted;
    QTest::newRow("Return, Escape") << Way([](auto *f) {
        QTest::keyClick(f, Qt::Key_Return);
        QTest::keyClick(f, Qt::Key_Escape);
    }) << true << 1 << accepted;
    QTest::newRow("accept slot") << Way([](auto *f) { f->on_toolButton_accept_clicked(); }) << true << 1 << accepted;
    QTest::newRow("cancel slot") << Way([](auto *f) { f->on_toolButton_cancel_clicked(); }) << true << 1 << rejected;
    QTest::newRow("accept, reject") << Way([](auto *f) {
        f->accept();
        f->reject();
    }) << true << 1 << accepted;
    // The standard handling rejects a visible dialog, and the close event announces the end as well.
    QTest::newRow("close") << Way([](auto *f) { f->close(); }) << true << 2 << rejected;
    QTest::newRow("hide") << Way([](auto *f) { f->hide(); }) << true << 0 << none;
    QTest::newRow("hide, accept") << Way([](auto *f) {
        f->hide();
        f->accept();
    }) << true << 1 << accepted;

    for (const bool shown : {true, false}) {
        const QByteArray when = shown ? "" : ", never shown";
        QTest::newRow("accept" + when) << Way([](auto *f) { f->accept(); }) << shown << 1 << accepted;
        QTest::newRow("reject" + when) << Way([](auto *f) { f->reject(); }) << shown << 1 << rejected;
        QTest::newRow("done 1" + when) << Way([](auto *f) { f->done(1); }) << shown << 1 << accepted;
        QTest::newRow("done 5" + when) << Way([](auto *f) { f->done(5); }) << shown << 0 << QList<int>{5};
        QTest::newRow("setVisible(false)" + when) << Way([](auto *f) { f->setVisible(false); }) << shown << 0 << none;
    }
    QTest::newRow("close, never shown") << Way([](auto *f) { f->close(); }) << false << 1 << none;
}

void tst_UtilsDialogFrame_closing::everyWayOfClosingDeletesTheFrame()
{
    QFETCH(Way, way);
    QFETCH(bool, shown);
    QFETCH(int, closed);
    QFETCH(QList<int>, results);

    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QSignalSpy closedSpy(frame, &UtilsDialogFrame::signalDialogClosed);
    QSignalSpy finishedSpy(frame, &QDialog::finished);
    QSignalSpy acceptedSpy(frame, &QDialog::accepted);
    QSignalSpy rejectedSpy(frame, &QDialog::rejected);
    if (shown)
        frame->show();
    way(frame);
    QVERIFY2(frame, "The frame waits for the event loop.");
    QCOMPARE(closedSpy.count(), closed);
    turnTheEventLoop();
    QVERIFY(!frame);

    QList<int> finished;
    for (const QList<QVariant> &arguments : std::as_const(finishedSpy))
        finished.append(arguments.first().toInt());
    QCOMPARE(finished, results);
    QCOMPARE(acceptedSpy.count(), results.count(QDialog::Accepted));
    QCOMPARE(rejectedSpy.count(), results.count(QDialog::Rejected));
    QCOMPARE(closedSpy.count(), closed);
}

void tst_UtilsDialogFrame_closing::aClosedFrameMayBeClosedAgainFromItsSignals_data()
{
    QTest::addColumn<Way>("way");
    QTest::newRow("accept") << Way([](auto *f) { f->accept(); });
    QTest::newRow("reject") << Way([](auto *f) { f->reject(); });
    QTest::newRow("done") << Way([](auto *f) { f->done(3); });
    QTest::newRow("hide") << Way([](auto *f) { f->hide(); });
    QTest::newRow("deleteLater") << Way([](auto *f) { f->deleteLater(); });
    QTest::newRow("cancel button") << Way([](auto *f) { f->getCancelButton()->click(); });
    QTest::newRow("Escape") << Way([](auto *f) { QTest::keyClick(f, Qt::Key_Escape); });
}

void tst_UtilsDialogFrame_closing::aClosedFrameMayBeClosedAgainFromItsSignals()
{
    QFETCH(Way, way);
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    QSignalSpy finished(frame, &QDialog::finished);
    const auto again = [&frame, way] { way(frame); };
    connect(frame, &UtilsDialogFrame::signalDialogClosed, this, again);
    connect(frame, &QDialog::accepted, this, again);
    connect(frame, &QDialog::finished, this, again);
    frame->show();
    clickAccept(frame);
    QCOMPARE(closed.count(), 1);
    QCOMPARE(finished.count(), 1);
    turnTheEventLoop();
    QVERIFY(!frame);
}

void tst_UtilsDialogFrame_closing::closeInsideASlotComesToAnEnd()
{
    for (const bool shown : {true, false}) {
        const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
        QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
        QSignalSpy finished(frame, &QDialog::finished);
        connect(frame, &UtilsDialogFrame::signalDialogClosed, frame, &UtilsDialogFrame::close);
        if (shown)
            frame->show();
        frame->reject();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(closed.count(), shown ? 1 : 2); // a window that is closed already gets no close event
        turnTheEventLoop();
        QVERIFY(!frame);
    }
}

void tst_UtilsDialogFrame_closing::aHiddenFrameIsNotShownAgain()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->reject();
    frame->show();
    QVERIFY(!frame->isVisible());
    frame->open();
    QVERIFY(!frame->isVisible());
    turnTheEventLoop();
    QVERIFY(!frame);
}

void tst_UtilsDialogFrame_closing::aFrameStaysVisibleAndDisabledUntilItIsDeleted()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->show();
    frame->hide();
    QVERIFY(frame->isVisible());
    QVERIFY(!frame->getAcceptButton()->isEnabled());
    QVERIFY(!frame->getCancelButton()->isEnabled());
    turnTheEventLoop();
    QVERIFY(!frame);
}

void tst_UtilsDialogFrame_closing::fadingOutDeletesWithoutAnySignal()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->show();
    frame->slotFadeOutFinished();
    QVERIFY(frame);
    QVERIFY(frame->getAcceptButton()->isEnabled());
    turnTheEventLoop();
    QVERIFY(!frame);
    QCOMPARE(closed.count(), 0);
}

void tst_UtilsDialogFrame_closing::theFrameDiesWithItsParent()
{
    auto *window = new QWidget;
    window->resize(400, 300);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    const QPointer<UtilsDialogFrame> open(new UtilsDialogFrame(window));
    open->show();
    const QPointer<UtilsDialogFrame> closing(new UtilsDialogFrame(window));
    closing->show();
    closing->reject();
    const QPointer<UtilsDialogFrame> unshown(new UtilsDialogFrame(window));
    delete window;
    QVERIFY(!open && !closing && !unshown);
}

void tst_UtilsDialogFrame_closing::aButtonOutlivesTheFrameThatItsClickDeletes()
{
    auto *frame = new UtilsDialogFrame;
    frame->show();
    const QPointer<QToolButton> button = frame->getAcceptButton();
    bool buttonLives = false;
    connect(frame, &QDialog::accepted, qApp, [&] {
        delete frame;
        buttonLives = button;
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(buttonLives); // QAbstractButton goes on with it
    QTRY_VERIFY(!button);
}

void tst_UtilsDialogFrame_closing::execReturnsTheResult_data()
{
    QTest::addColumn<Way>("way");
    QTest::addColumn<int>("result");
    QTest::newRow("accept") << Way([](auto *f) { f->accept(); }) << int(QDialog::Accepted);
    QTest::newRow("reject") << Way([](auto *f) { f->reject(); }) << int(QDialog::Rejected);
    QTest::newRow("done") << Way([](auto *f) { f->done(7); }) << 7;
    QTest::newRow("close") << Way([](auto *f) { f->close(); }) << int(QDialog::Rejected);
    QTest::newRow("hide") << Way([](auto *f) { f->hide(); }) << int(QDialog::Rejected);
    QTest::newRow("delete") << Way([](auto *f) { delete f; }) << int(QDialog::Rejected);
}

void tst_UtilsDialogFrame_closing::execReturnsTheResult()
{
    QFETCH(Way, way);
    QFETCH(int, result);
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QTimer::singleShot(0, this, [&frame, way] {
        QVERIFY(frame->isVisible());
        way(frame);
    });
    QCOMPARE(frame->exec(), result);
    QVERIFY(!frame);
}

void tst_UtilsDialogFrame_closing::execOnAUsedFrameReturnsAtOnce()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->accept();
    QCOMPARE(frame->exec(), int(QDialog::Accepted));
    QVERIFY(!frame->isVisible());
}

void tst_UtilsDialogFrame_closing::aSubclassMayRefuseToBeClosed()
{
    class Busy : public UtilsDialogFrame
    {
    public:
        bool isBusy = true;
        void reject() override
        {
            if (!isBusy)
                UtilsDialogFrame::reject();
        }
    };
    const QPointer<Busy> frame(new Busy);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->show();
    QVERIFY(!frame->close());
    turnTheEventLoop();
    QVERIFY(frame);
    QVERIFY(frame->isVisible());
    QVERIFY(frame->getCancelButton()->isEnabled());
    QCOMPARE(closed.count(), 0);

    frame->isBusy = false;
    QVERIFY(frame->close());
    QCOMPARE(closed.count(), 2);
    QTRY_VERIFY(!frame);
}

void tst_UtilsDialogFrame_closing::closingActivatesTheCoveredWindow()
{
    QWidget window;
    window.resize(400, 300);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *frame = new UtilsDialogFrame(&window);
    frame->show();
    QVERIFY(QTest::qWaitForWindowActive(frame));
    bool active = false;
    connect(frame, &UtilsDialogFrame::signalDialogClosed, this,
            [&window, &active] { active = window.isActiveWindow(); });
    frame->reject();
    QVERIFY2(active, "The window is active before the end is announced.");
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), &window, Patience);
    turnTheEventLoop();
    QCOMPARE(QApplication::activeWindow(), &window);
}

void tst_UtilsDialogFrame_closing::theCoveredWindowMayDieFirst()
{
    auto *window = new QWidget;
    window->setGeometry(20, 30, 400, 300);
    UtilsSingleInstance::setAppMainWidget(window);
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->show();
    delete window;
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->updatePosition();
    QCOMPARE(frame->geometry(), QRect(20, 30, 400, 300));
    frame->slotActiveWindowDestroyed(nullptr);
    frame->reject();
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialogFrame_closing::theParentOfADeadWindowTakesItsPlace()
{
    auto *parent = new QWidget;
    parent->setGeometry(5, 6, 700, 500);
    parent->show();
    auto *window = new QWidget(parent, Qt::Window);
    window->setGeometry(20, 30, 400, 300);
    window->show();
    UtilsSingleInstance::setAppMainWidget(window);
    QTRY_VERIFY_WITH_TIMEOUT(QApplication::activeWindow(), Patience);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));

    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->show();
    QVERIFY(QTest::qWaitForWindowActive(frame));
    delete window;
    QCOMPARE(frame->size(), QSize(400, 300));
    frame->reject();
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), parent, Patience);
    turnTheEventLoop();
    QVERIFY(!frame);

    // All of them at once: the window dies as a part of its parent.
    window = new QWidget(parent, Qt::Window);
    window->setGeometry(20, 30, 400, 300);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    const QPointer<UtilsDialogFrame> last(new UtilsDialogFrame);
    last->show();
    delete parent;
    QSignalSpy closed(last, &UtilsDialogFrame::signalDialogClosed);
    last->updatePosition();
    last->reject();
    QCOMPARE(closed.count(), 1);
}

UNIPROG_TEST_MAIN(tst_UtilsDialogFrame_closing)
#include "tst_utilsdialogframe_closing.moc"
