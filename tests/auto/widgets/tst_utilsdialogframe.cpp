#include <UtilsDialogFrame.h>
#include <UtilsSingleInstance.h>

#include <ContextTranslator.h>
#include <ReferenceAnimation.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGraphicsDropShadowEffect>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

using Way = void (*)(UtilsDialogFrame *);
Q_DECLARE_METATYPE(Way)
Q_DECLARE_METATYPE(QLayout *)

static constexpr int Patience = 10'000; // milliseconds, a cap and no measure

/// Deletes what deleteLater() scheduled, as the next turn of the event loop does.
static void turnTheEventLoop()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class tst_UtilsDialogFrame : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void theWindowIsFramelessTranslucentAndModal();
    void theFormHasItsFramesAndProperties();
    void theButtonsAreAsTheStyleExpects();
    void theLayoutsHaveTheirSpacings();
    void textsAreTranslatedInTheContextOfTheClass();
    void cancelHasTheFocusAndComesFirst();

    void theActiveWindowIsCovered();
    void theMainWidgetIsCoveredWhenNoWindowIsActive();
    void withoutAWindowTheFrameKeepsItsSize();
    void theCardStandsAtOneThirdOfTheHeight();
    void updatePositionFollowsTheCoveredWindow();

    void theCardFadesInAndGetsItsShadow();
    void theFadeMayEndTwiceAndTheShadowMayBeGone();

    void everyWayOfClosingDeletesTheFrame_data();
    void everyWayOfClosingDeletesTheFrame();
    void aClosedFrameMayBeClosedAgainFromItsSignals_data();
    void aClosedFrameMayBeClosedAgainFromItsSignals();
    void closeInsideASlotComesToAnEnd();
    void aHiddenFrameIsNotShownAgain();
    void aFrameStaysVisibleAndDisabledUntilItIsDeleted();
    void fadingOutDeletesWithoutAnySignal();
    void theFrameDiesWithItsParent();
    void execReturnsTheResult_data();
    void execReturnsTheResult();
    void execOnAUsedFrameReturnsAtOnce();

    void closingActivatesTheCoveredWindow();
    void theCoveredWindowMayDieFirst();
    void theParentOfADeadWindowTakesItsPlace();

    void returnNeedsTheAcceptButton();
    void disabledInputControlsSwallowEveryKey();
    void otherKeysGoOnToTheDialog();
    void subclassesOverrideTheButtons();

    void acceptButtonFollowsItsSlots();
    void slotsAreFoundByTheirSignatures_data();
    void slotsAreFoundByTheirSignatures();
    void contentAndLimits();
    void setFocusTakesAWidgetOrAReason();
};

void tst_UtilsDialogFrame::cleanup()
{
    turnTheEventLoop();
    UtilsSingleInstance::setAppMainWidget(nullptr);
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsDialogFrame::theWindowIsFramelessTranslucentAndModal()
{
    UtilsDialogFrame frame;
    QCOMPARE(frame.windowFlags(), Qt::Window | Qt::FramelessWindowHint);
    QVERIFY(frame.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(frame.windowModality(), Qt::ApplicationModal);
    QCOMPARE(frame.objectName(), QStringLiteral("UtilsDialogFrame"));
    QCOMPARE(frame.size(), QSize(460, 246));
    QCOMPARE(frame.windowTitle(), QStringLiteral("Dialog"));
    QVERIFY(!frame.isVisible());
}

void tst_UtilsDialogFrame::theFormHasItsFramesAndProperties()
{
    UtilsDialogFrame frame;
    auto *main = frame.findChild<QFrame *>("frame_main");
    auto *card = frame.findChild<QFrame *>("frame_dialog");
    auto *content = frame.findChild<QFrame *>("frame_content");
    auto *line = frame.findChild<QFrame *>("line_buttonSeparator");
    QVERIFY(main && card && content && line);
    QCOMPARE(main->parentWidget(), &frame);
    QCOMPARE(card->parentWidget(), main);
    QCOMPARE(content->parentWidget(), card);
    QCOMPARE(line->parentWidget(), card);

    for (const QFrame *panel : {main, card, content}) {
        QCOMPARE(panel->frameShape(), QFrame::StyledPanel);
        QCOMPARE(panel->frameShadow(), QFrame::Raised);
    }
    QCOMPARE(main->property("background-color"), QVariant(QStringLiteral("semi-transparent")));
    QCOMPARE(card->property("background-color"), QVariant(QStringLiteral("main")));
    QCOMPARE(card->property("frame-border-color"), QVariant(QStringLiteral("gray_level2")));
    QCOMPARE(card->styleSheet(), QStringLiteral("QFrame#frame_dialog\n{\n\tborder-radius: 4px;\n}"));
    QVERIFY(card->isHidden());

    QCOMPARE(content->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(content->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(content->minimumSize(), QSize(250, 40));

    QCOMPARE(line->frameShape(), QFrame::HLine);
    QCOMPARE(line->frameShadow(), QFrame::Sunken);
    QCOMPARE(line->maximumHeight(), 1);
    QCOMPARE(line->property("frame-type"), QVariant(QStringLiteral("line-horizontal")));
    QCOMPARE(line->property("frame-border-color"), QVariant(QStringLiteral("gray_level4")));
}

void tst_UtilsDialogFrame::theButtonsAreAsTheStyleExpects()
{
    UtilsDialogFrame frame;
    QToolButton *accept = frame.getAcceptButton();
    QToolButton *cancel = frame.getCancelButton();
    QCOMPARE(accept, frame.findChild<QToolButton *>("toolButton_accept"));
    QCOMPARE(cancel, frame.findChild<QToolButton *>("toolButton_cancel"));
    QCOMPARE(accept->text(), QStringLiteral("OK"));
    QCOMPARE(cancel->text(), QStringLiteral("CANCEL"));
    QVERIFY(!accept->autoRaise());
    QVERIFY(cancel->autoRaise());
    for (const QToolButton *button : {accept, cancel}) {
        QCOMPARE(button->minimumSize(), QSize(115, 27));
        QCOMPARE(button->maximumHeight(), 27);
        QCOMPARE(button->maximumWidth(), QWIDGETSIZE_MAX);
        QCOMPARE(button->focusPolicy(), Qt::StrongFocus);
        QVERIFY(button->isEnabled());
    }
}

static QList<QSize> spacersOf(const QLayout *layout)
{
    QList<QSize> sizes;
    for (int i = 0; i < layout->count(); ++i) {
        if (layout->itemAt(i)->spacerItem())
            sizes.append(layout->itemAt(i)->sizeHint());
    }
    return sizes;
}

void tst_UtilsDialogFrame::theLayoutsHaveTheirSpacings()
{
    UtilsDialogFrame frame;
    auto *outer = frame.findChild<QVBoxLayout *>("verticalLayout_2");
    auto *main = frame.findChild<QVBoxLayout *>("verticalLayout");
    auto *row = frame.findChild<QHBoxLayout *>("horizontalLayout");
    auto *card = frame.findChild<QVBoxLayout *>("verticalLayout_3");
    auto *content = frame.findChild<QVBoxLayout *>("verticalLayout_4");
    auto *buttons = frame.findChild<QHBoxLayout *>("horizontalLayout_2");
    QVERIFY(outer && main && row && card && content && buttons);

    QCOMPARE(frame.layout(), outer);
    QCOMPARE(outer->spacing(), 0);
    QCOMPARE(outer->contentsMargins(), QMargins());
    QCOMPARE(outer->itemAt(0)->widget(), frame.findChild<QWidget *>("frame_main"));

    QCOMPARE(main->spacing(), 0);
    QCOMPARE(main->contentsMargins(), QMargins());
    QCOMPARE(main->count(), 3);
    QCOMPARE(spacersOf(main), QList<QSize>({QSize(20, 0), QSize(20, 0)}));
    QCOMPARE(main->itemAt(1)->layout(), row);
    QCOMPARE(QList<int>({main->stretch(0), main->stretch(1), main->stretch(2)}), QList<int>({1, 0, 2}));
    for (const int i : {0, 2}) {
        const QSizePolicy policy = main->itemAt(i)->spacerItem()->sizePolicy();
        QCOMPARE(policy.horizontalPolicy(), QSizePolicy::Minimum);
        QCOMPARE(policy.verticalPolicy(), QSizePolicy::Expanding);
    }

    QCOMPARE(row->spacing(), 10);
    QCOMPARE(row->contentsMargins(), QMargins());
    QCOMPARE(row->count(), 3);
    QCOMPARE(spacersOf(row), QList<QSize>({QSize(40, 20), QSize(40, 20)}));
    QCOMPARE(row->itemAt(1)->widget(), frame.findChild<QWidget *>("frame_dialog"));

    QCOMPARE(card->spacing(), 12);
    QCOMPARE(card->contentsMargins(), QMargins(12, 12, 12, 12));
    QCOMPARE(card->count(), 3);
    QCOMPARE(card->itemAt(0)->widget(), frame.findChild<QWidget *>("frame_content"));
    QCOMPARE(card->itemAt(1)->widget(), frame.findChild<QWidget *>("line_buttonSeparator"));
    QCOMPARE(card->itemAt(2)->layout(), buttons);

    QCOMPARE(content->spacing(), 0);
    QCOMPARE(content->contentsMargins(), QMargins());
    QCOMPARE(content->count(), 0);

    QCOMPARE(buttons->spacing(), 10);
    QCOMPARE(buttons->count(), 4);
    QVERIFY(buttons->itemAt(0)->expandingDirections() & Qt::Horizontal);
    QCOMPARE(buttons->itemAt(1)->widget(), frame.getAcceptButton());
    QCOMPARE(buttons->itemAt(2)->widget(), frame.getCancelButton());
    QVERIFY(buttons->itemAt(3)->expandingDirections() & Qt::Horizontal);
}

void tst_UtilsDialogFrame::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsDialogFrame");
    UtilsDialogFrame frame;
    QCOMPARE(frame.windowTitle(), QStringLiteral("<Dialog>"));
    QCOMPARE(frame.getAcceptButton()->text(), QStringLiteral("<OK>"));
    QCOMPARE(frame.getCancelButton()->text(), QStringLiteral("<CANCEL>"));
}

void tst_UtilsDialogFrame::cancelHasTheFocusAndComesFirst()
{
    auto *frame = new UtilsDialogFrame;
    QCOMPARE(frame->focusWidget(), frame->getCancelButton());
    QCOMPARE(frame->getCancelButton()->nextInFocusChain(), frame->getAcceptButton());
    frame->show();
    QVERIFY(QTest::qWaitForWindowActive(frame));
    QCOMPARE(QApplication::focusWidget(), frame->getCancelButton());
    QTest::keyClick(frame, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), frame->getAcceptButton());
    frame->hide();
}

void tst_UtilsDialogFrame::theActiveWindowIsCovered()
{
    QWidget other;
    UtilsSingleInstance::setAppMainWidget(&other);
    QWidget window;
    window.setGeometry(30, 40, 620, 480);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    auto *frame = new UtilsDialogFrame(&window);
    frame->show();
    QCOMPARE(frame->size(), window.size());
    QCOMPARE(frame->minimumSize(), window.size());
    QCOMPARE(frame->maximumSize(), window.size());
    QCOMPARE(frame->pos(), window.mapToGlobal(QPoint(0, 0)));
    QCOMPARE(frame->findChild<QFrame *>("frame_main")->geometry(), frame->rect());
    frame->hide();
    turnTheEventLoop();
}

void tst_UtilsDialogFrame::theMainWidgetIsCoveredWhenNoWindowIsActive()
{
    QVERIFY(!QApplication::activeWindow());
    QWidget window;
    window.setGeometry(30, 40, 620, 480);
    QWidget main(&window);
    main.setGeometry(11, 12, 400, 300);
    UtilsSingleInstance::setAppMainWidget(&main);

    auto *frame = new UtilsDialogFrame;
    frame->show();
    QCOMPARE(frame->size(), QSize(400, 300));
    QCOMPARE(frame->pos(), window.mapToGlobal(QPoint(11, 12)));
    frame->hide();
    turnTheEventLoop();
}

void tst_UtilsDialogFrame::withoutAWindowTheFrameKeepsItsSize()
{
    QVERIFY(!QApplication::activeWindow());
    auto *frame = new UtilsDialogFrame;
    frame->move(7, 8);
    frame->updatePosition();
    QCOMPARE(frame->pos(), QPoint(7, 8));
    frame->show();
    QCOMPARE(frame->size(), QSize(460, 246));
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->reject();
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialogFrame::theCardStandsAtOneThirdOfTheHeight()
{
    QWidget window;
    window.resize(900, 700);
    UtilsSingleInstance::setAppMainWidget(&window);
    auto *frame = new UtilsDialogFrame;
    frame->show();
    QCoreApplication::processEvents();
    auto *card = frame->findChild<QFrame *>("frame_dialog");
    const QRect geometry(card->mapTo(frame, QPoint(0, 0)), card->size());
    const int above = geometry.top();
    const int below = frame->height() - geometry.bottom() - 1;
    QVERIFY2(qAbs(2 * above - below) <= 4, qPrintable(QStringLiteral("%1 above, %2 below").arg(above).arg(below)));
    QVERIFY(qAbs(geometry.center().x() - frame->rect().center().x()) <= 1);
    frame->hide();
    turnTheEventLoop();
}

void tst_UtilsDialogFrame::updatePositionFollowsTheCoveredWindow()
{
    QWidget window;
    window.setGeometry(0, 0, 500, 400);
    UtilsSingleInstance::setAppMainWidget(&window);
    auto *frame = new UtilsDialogFrame;
    frame->show();
    window.setGeometry(70, 80, 640, 300);
    QCOMPARE(frame->size(), QSize(500, 400));
    frame->updatePosition();
    QCOMPARE(frame->size(), QSize(640, 300));
    QCOMPARE(frame->pos(), QPoint(70, 80));
    frame->hide();
    turnTheEventLoop();
}

void tst_UtilsDialogFrame::theCardFadesInAndGetsItsShadow()
{
    auto *frame = new UtilsDialogFrame;
    auto *card = frame->findChild<QFrame *>("frame_dialog");
    auto *opacity = qobject_cast<QGraphicsOpacityEffect *>(card->graphicsEffect());
    QVERIFY(opacity);
    const QPointer<QGraphicsOpacityEffect> opacityGuard(opacity);
    auto *shadow = frame->findChild<QGraphicsDropShadowEffect *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(shadow);

    QSignalSpy steps(opacity, &QGraphicsOpacityEffect::opacityChanged);
    frame->show();
    const ReferenceAnimation reference(opacity, "opacity", 0.0, 1.0, 200);
    QVERIFY(card->isVisible());
    QVERIFY(opacity->opacity() < 1.0);
    // A window that comes back from the task bar is shown again, and its card does not start anew.
    QShowEvent shownAgain;
    QCoreApplication::sendEvent(frame, &shownAgain);
    QTRY_VERIFY_WITH_TIMEOUT(card->graphicsEffect() == shadow, Patience);
    QVERIFY(!opacityGuard);
    QVERIFY(reference.agrees());
    QList<double> opacities;
    for (const QList<QVariant> &arguments : std::as_const(steps))
        opacities.append(arguments.first().toDouble());
    QVERIFY(std::is_sorted(opacities.cbegin(), opacities.cend()));
    QCOMPARE(opacities.constLast(), 1.0);
    QCOMPARE(card->graphicsEffect(), shadow);
    QCOMPARE(shadow->blurRadius(), 20.0);
    QCOMPARE(shadow->offset(), QPointF(2.0, 2.0));
    QCOMPARE(shadow->color(), QColor(Qt::black));

    QCoreApplication::sendEvent(frame, &shownAgain); // finds the fade over
    QCOMPARE(card->graphicsEffect(), shadow);
    frame->hide();
}

void tst_UtilsDialogFrame::theFadeMayEndTwiceAndTheShadowMayBeGone()
{
    auto *frame = new UtilsDialogFrame;
    auto *card = frame->findChild<QFrame *>("frame_dialog");
    auto *shadow = frame->findChild<QGraphicsDropShadowEffect *>();
    frame->slotFadeInFinished();
    frame->slotFadeInFinished();
    QCOMPARE(card->graphicsEffect(), shadow);
    frame->show(); // the fade has lost its effect
    delete shadow;
    frame->slotFadeInFinished();
    QVERIFY(!card->graphicsEffect());
    QVERIFY(card->isVisible());
    delete frame;

    auto *cardless = new UtilsDialogFrame;
    delete cardless->findChild<QFrame *>("frame_dialog")->graphicsEffect();
    cardless->show();
    QVERIFY(cardless->findChild<QFrame *>("frame_dialog")->isVisible());
    cardless->hide();
}

static void clickAccept(UtilsDialogFrame *frame)
{
    QTest::mouseClick(frame->getAcceptButton(), Qt::LeftButton);
}

static void clickCancel(UtilsDialogFrame *frame)
{
    QTest::mouseClick(frame->getCancelButton(), Qt::LeftButton);
}

void tst_UtilsDialogFrame::everyWayOfClosingDeletesTheFrame_data()
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

void tst_UtilsDialogFrame::everyWayOfClosingDeletesTheFrame()
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

void tst_UtilsDialogFrame::aClosedFrameMayBeClosedAgainFromItsSignals_data()
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

void tst_UtilsDialogFrame::aClosedFrameMayBeClosedAgainFromItsSignals()
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

void tst_UtilsDialogFrame::closeInsideASlotComesToAnEnd()
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

void tst_UtilsDialogFrame::aHiddenFrameIsNotShownAgain()
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

void tst_UtilsDialogFrame::aFrameStaysVisibleAndDisabledUntilItIsDeleted()
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

void tst_UtilsDialogFrame::fadingOutDeletesWithoutAnySignal()
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

void tst_UtilsDialogFrame::theFrameDiesWithItsParent()
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

void tst_UtilsDialogFrame::execReturnsTheResult_data()
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

void tst_UtilsDialogFrame::execReturnsTheResult()
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

void tst_UtilsDialogFrame::execOnAUsedFrameReturnsAtOnce()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    frame->accept();
    QCOMPARE(frame->exec(), int(QDialog::Accepted));
    QVERIFY(!frame->isVisible());
}

void tst_UtilsDialogFrame::closingActivatesTheCoveredWindow()
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

void tst_UtilsDialogFrame::theCoveredWindowMayDieFirst()
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

void tst_UtilsDialogFrame::theParentOfADeadWindowTakesItsPlace()
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

void tst_UtilsDialogFrame::returnNeedsTheAcceptButton()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->show();
    frame->enableAcceptButton(false);
    QTest::keyClick(frame, Qt::Key_Return);
    QTest::keyClick(frame, Qt::Key_Enter);
    turnTheEventLoop();
    QVERIFY(frame);
    QCOMPARE(closed.count(), 0);
    frame->enableCancelButton(false); // Escape does not ask the button
    QTest::keyClick(frame, Qt::Key_Escape);
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialogFrame::disabledInputControlsSwallowEveryKey()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->show();
    frame->disableInputControls();
    QVERIFY(frame->getAcceptButton()->isHidden());
    QVERIFY(frame->getCancelButton()->isHidden());
    QVERIFY(frame->findChild<QFrame *>("line_buttonSeparator")->isHidden());
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_A}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(frame, &press);
        QVERIFY(press.isAccepted());
    }
    turnTheEventLoop();
    QVERIFY(frame);
    QCOMPARE(closed.count(), 0);
    frame->setButtonsVisible(true);
    QVERIFY(frame->getAcceptButton()->isVisible());
    QTest::keyClick(frame, Qt::Key_Escape);
    QCOMPARE(closed.count(), 0);
    frame->reject();
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialogFrame::otherKeysGoOnToTheDialog()
{
    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    auto *button = new QPushButton(QStringLiteral("default"));
    button->setDefault(true);
    frame->setContent(button);
    frame->enableAcceptButton(false);
    frame->show();
    QSignalSpy clicked(button, &QPushButton::clicked);
    QTest::keyClick(frame, Qt::Key_Return); // the standard handling clicks the default button
    QCOMPARE(clicked.count(), 1);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(frame, &press);
    QVERIFY(!press.isAccepted());
    frame->hide();
}

class StubbornFrame : public UtilsDialogFrame
{
public:
    void on_toolButton_accept_clicked() override
    {
        ++accepts;
    }
    void on_toolButton_cancel_clicked() override
    {
        ++cancels;
    }
    int accepts = 0;
    int cancels = 0;
};

void tst_UtilsDialogFrame::subclassesOverrideTheButtons()
{
    const QPointer<StubbornFrame> frame(new StubbornFrame);
    QSignalSpy closed(frame, &UtilsDialogFrame::signalDialogClosed);
    frame->show();
    clickAccept(frame);
    clickCancel(frame);
    QTest::keyClick(frame, Qt::Key_Return);
    QCOMPARE(frame->accepts, 2);
    QCOMPARE(frame->cancels, 1);
    QCOMPARE(closed.count(), 0);
    QVERIFY(QMetaObject::invokeMethod(frame.data(), "on_toolButton_accept_clicked"));
    QCOMPARE(frame->accepts, 3);
    QTest::keyClick(frame, Qt::Key_Escape); // goes on to the standard handling, which rejects
    QCOMPARE(frame->cancels, 2);
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialogFrame::acceptButtonFollowsItsSlots()
{
    UtilsDialogFrame frame;
    const QToolButton *accept = frame.getAcceptButton();
    frame.enableAcceptButton(false);
    QVERIFY(!accept->isEnabled());
    frame.slotEnableAcceptButton(0);
    QVERIFY(accept->isEnabled());
    frame.slotEnableAcceptButton(0.0);
    QVERIFY(!accept->isEnabled());
    frame.slotEnableAcceptButton(-1);
    QVERIFY(accept->isEnabled());
    frame.slotEnableAcceptButton(-0.5);
    QVERIFY(!accept->isEnabled());
    frame.slotEnableAcceptButton(0.0001);
    QVERIFY(accept->isEnabled());
    frame.slotEnableAcceptButton(qQNaN());
    QVERIFY(!accept->isEnabled());
    frame.enableAcceptButton(true);
    QVERIFY(accept->isEnabled());
    frame.enableCancelButton(false);
    QVERIFY(!frame.getCancelButton()->isEnabled());
    frame.enableCancelButton(true);
    QVERIFY(frame.getCancelButton()->isEnabled());
}

void tst_UtilsDialogFrame::slotsAreFoundByTheirSignatures_data()
{
    QTest::addColumn<int>("place");
    int place = 0;
    for (const char *signature :
         {"slotFadeInFinished()", "slotFadeOutFinished()", "slotDialogIsClosing()",
          "slotActiveWindowDestroyed(QObject*)", "on_toolButton_accept_clicked()", "on_toolButton_cancel_clicked()",
          "slotEnableAcceptButton(int)", "slotEnableAcceptButton(double)", "enableAcceptButton(bool)"})
        QTest::newRow(signature) << place++;
}

void tst_UtilsDialogFrame::slotsAreFoundByTheirSignatures()
{
    QFETCH(int, place);
    const QMetaObject &type = UtilsDialogFrame::staticMetaObject;
    const int signal = type.indexOfSignal("signalDialogClosed()");
    QCOMPARE(signal, type.methodOffset());
    QCOMPARE(type.indexOfSlot(QTest::currentDataTag()), signal + 1 + place);
}

void tst_UtilsDialogFrame::contentAndLimits()
{
    UtilsDialogFrame frame;
    auto *layout = frame.findChild<QVBoxLayout *>("verticalLayout_4");
    frame.setContent(nullptr);
    QCOMPARE(layout->count(), 0);
    auto *first = new QLabel;
    auto *second = new QLabel;
    frame.setContent(first);
    frame.setContent(second);
    QCOMPARE(layout->itemAt(0)->widget(), first);
    QCOMPARE(layout->itemAt(1)->widget(), second);
    QCOMPARE(first->parentWidget(), frame.findChild<QFrame *>("frame_content"));

    auto *card = frame.findChild<QFrame *>("frame_dialog");
    frame.setDialogMaxHeight(321);
    frame.setDialogMaxWidth(432);
    QCOMPARE(card->maximumSize(), QSize(432, 321));

    frame.setButtonsVisible(false);
    for (const char *name : {"toolButton_accept", "toolButton_cancel", "line_buttonSeparator"})
        QVERIFY(frame.findChild<QWidget *>(name)->isHidden());
    frame.setButtonsVisible(true);
    for (const char *name : {"toolButton_accept", "toolButton_cancel", "line_buttonSeparator"})
        QVERIFY(!frame.findChild<QWidget *>(name)->isHidden());
}

void tst_UtilsDialogFrame::setFocusTakesAWidgetOrAReason()
{
    /// Remembers why it was given the focus.
    class Edit : public QLineEdit
    {
    public:
        Qt::FocusReason reason = Qt::NoFocusReason;

    protected:
        void focusInEvent(QFocusEvent *event) override
        {
            reason = event->reason();
            QLineEdit::focusInEvent(event);
        }
    };

    const QPointer<UtilsDialogFrame> frame(new UtilsDialogFrame);
    auto *edit = new Edit;
    frame->setContent(edit);
    frame->show();
    QVERIFY(QTest::qWaitForWindowActive(frame));
    frame->setFocus(edit);
    QCOMPARE(QApplication::focusWidget(), edit);
    QCOMPARE(edit->reason, Qt::OtherFocusReason);
    frame->setFocus(static_cast<QWidget *>(nullptr));
    QCOMPARE(QApplication::focusWidget(), edit);
    frame->setFocus();
    frame->setFocus(Qt::TabFocusReason);
    QVERIFY(frame->hasFocus());
    frame->hide();
}

UNIPROG_TEST_MAIN(tst_UtilsDialogFrame)
#include "tst_utilsdialogframe.moc"
