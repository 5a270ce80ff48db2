#include "DialogFrameTest.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>

// What keys and clicks do in an open frame.
class tst_UtilsDialogFrame_keys : public DialogFrameTest
{
    Q_OBJECT

private Q_SLOTS:
    void returnNeedsTheAcceptButton();
    void disabledInputControlsSwallowEveryKey();
    void otherKeysGoOnToTheDialog();
    void subclassesOverrideTheButtons();
    void setFocusTakesAWidgetOrAReason();
};

void tst_UtilsDialogFrame_keys::returnNeedsTheAcceptButton()
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

void tst_UtilsDialogFrame_keys::disabledInputControlsSwallowEveryKey()
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

void tst_UtilsDialogFrame_keys::otherKeysGoOnToTheDialog()
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

void tst_UtilsDialogFrame_keys::subclassesOverrideTheButtons()
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

void tst_UtilsDialogFrame_keys::setFocusTakesAWidgetOrAReason()
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

UNIPROG_TEST_MAIN(tst_UtilsDialogFrame_keys)
#include "tst_utilsdialogframe_keys.moc"
