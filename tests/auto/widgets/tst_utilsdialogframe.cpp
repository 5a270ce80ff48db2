#include "DialogFrameTest.h"

#include <ContextTranslator.h>
#include <ReferenceAnimation.h>

#include <QFrame>
#include <QGraphicsDropShadowEffect>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLayout>
#include <QPointer>
#include <QSignalSpy>

#include <algorithm>

Q_DECLARE_METATYPE(QLayout *)

// What the frame is made of, what it covers, how it appears, and its operations.
class tst_UtilsDialogFrame : public DialogFrameTest
{
    Q_OBJECT

private Q_SLOTS:
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

    void acceptButtonFollowsItsSlots();
    void slotsAreFoundByTheirSignatures_data();
    void slotsAreFoundByTheirSignatures();
    void contentAndLimits();
};

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

UNIPROG_TEST_MAIN(tst_UtilsDialogFrame)
#include "tst_utilsdialogframe.moc"
