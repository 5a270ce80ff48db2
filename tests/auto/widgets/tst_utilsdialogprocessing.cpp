#include <UtilsDialogProcessing.h>

#include <UniProgTest.h>

#include <UtilsDialogProcessingContent.h>
#include <UtilsLogger.h>
#include <UtilsProgressBar.h>
#include <UtilsUniProgThread.h>

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int Success = 0;
constexpr int Failure = 5;
constexpr int ShortLine = 20; // ms
constexpr int EndlessLine = 600'000; // ms, longer than any test
constexpr int CloseDelay = 1000; // ms

/// A dialog whose lines are revealed in a time that suits the test, and what can be seen of it.
class Dialog
{
public:
    explicit Dialog(bool *autoClose = nullptr, int lineDuration = ShortLine)
        : dialog(new UtilsDialogProcessing(nullptr, autoClose))
        , content(dialog->findChild<UtilsDialogProcessingContent *>())
        , closed(dialog, &UtilsDialogFrame::signalDialogClosed)
    {
        content->getLogger()->setLineAnimationDuration(lineDuration);
        dialog->show();
    }
    ~Dialog()
    {
        delete dialog;
    }
    Q_DISABLE_COPY_MOVE(Dialog)

    UtilsDialogProcessing *operator->() const
    {
        return dialog;
    }
    bool exists() const
    {
        return !dialog.isNull();
    }
    int closedCount() const
    {
        return int(closed.count());
    }

    UtilsLogger *logger() const
    {
        return content->getLogger();
    }
    UtilsProgressBar *bar() const
    {
        return content->getProgressBar();
    }
    QToolButton *button() const
    {
        return content->getButton();
    }
    bool isBusy() const
    {
        return bar()->minimum() == 0 && bar()->maximum() == 0;
    }
    bool isButtonCollapsed() const
    {
        return button()->text().isEmpty() && button()->height() == 0;
    }
    bool isClosingSoon() const
    {
        const auto *timer = dialog->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        return timer && timer->isActive() && timer->interval() == CloseDelay;
    }
    void pressEscape() const
    {
        QTest::keyClick(dialog, Qt::Key_Escape);
    }

private:
    QPointer<UtilsDialogProcessing> dialog;
    UtilsDialogProcessingContent *content;
    QSignalSpy closed;
};

} // namespace

class tst_UtilsDialogProcessing : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewDialogIsBusyAndCannotBeClosed();
    void theSlotsStandInTheirOrder();
    void itIsDrivenByTheOperationThread();
    void theMessageIsShown();
    void aLogMessageBecomesOneLineForEachOfItsLines();
    void progressIsPassedOn_data();
    void progressIsPassedOn();
    void theBarReturnsToBusy();

    void shouldShowResultKnowsWhatStaysOpen_data();
    void shouldShowResultKnowsWhatStaysOpen();
    void theEndIsAsTheSwitchesSay_data();
    void theEndIsAsTheSwitchesSay();
    void withoutLinesTheEndIsHandledAtOnce();
    void nothingChangesUntilTheLastLineIsRevealed();
    void linesThatArriveWhileDrainingAreAwaited();
    void aBurstOfLinesIsShownToItsEnd();
    void theAutoCloseSwitchIsReadAtTheEnd_data();
    void theAutoCloseSwitchIsReadAtTheEnd();
    void aLateLineIsShownAsLongAsTheOthers();
    void completionMayBeRepeated_data();
    void completionMayBeRepeated();
    void withoutAnimationTheEndIsNotHandled();

    void errorHandlerLetsTheUserClose_data();
    void errorHandlerLetsTheUserClose();
    void aDialogAboutToCloseStaysForAnError();

    void escapeClosesOnlyWhenAllowed();
    void otherKeysAreSwallowed_data();
    void otherKeysAreSwallowed();
    void theCloseButtonRejects();
    void theCloseButtonOutlivesTheDialogThatItsClickDeletes_data();
    void theCloseButtonOutlivesTheDialogThatItsClickDeletes();
    void returnOnTheCloseButtonDoesNotClose();

    void itMayBeDeletedInAnyState_data();
    void itMayBeDeletedInAnyState();
};

void tst_UtilsDialogProcessing::aNewDialogIsBusyAndCannotBeClosed()
{
    Dialog dialog;
    QVERIFY(dialog.isBusy());
    QCOMPARE(dialog.bar()->property("progressbar-type"), QVariant("infinite"));
    QVERIFY(dialog.isButtonCollapsed());
    QVERIFY(dialog->getAcceptButton()->isHidden());
    QVERIFY(dialog->getCancelButton()->isHidden());
    QVERIFY(dialog->findChild<QWidget *>("line_buttonSeparator")->isHidden());
    QCOMPARE(dialog->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(dialog->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(dialog->findChild<UtilsDialogProcessingContent *>()->parentWidget()->objectName(), "frame_content");
    QVERIFY(!dialog->shouldShowResult());
    QVERIFY(!dialog.isClosingSoon());
}

void tst_UtilsDialogProcessing::theSlotsStandInTheirOrder()
{
    const QMetaObject &meta = UtilsDialogProcessing::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        slotNames << QString::fromLatin1(meta.method(i).methodSignature());
    const QStringList expected{"slotLoggerAnimationsCompleted()", "slotClose()", "slotUpdateProgressbar(int)",
                               "slotUpdateLog(QString,LOGGER_MESSAGE_TYPE)", "slotProcedureCompleted(int,QString)"};
    QCOMPARE(slotNames, expected);
}

void tst_UtilsDialogProcessing::itIsDrivenByTheOperationThread()
{
    const QMetaObject &thread = UtilsUniProgThread::staticMetaObject;
    const QMetaObject &dialog = UtilsDialogProcessing::staticMetaObject;
    const std::pair<const char *, const char *> connections[]{
        {"SignalOperationLogMessage(QString,LOGGER_MESSAGE_TYPE)", "slotUpdateLog(QString,LOGGER_MESSAGE_TYPE)"},
        {"SignalOperationProgress(int)", "slotUpdateProgressbar(int)"},
        {"SignalProcedureCompleted(int,QString)", "slotProcedureCompleted(int,QString)"},
    };
    for (const auto &[signal, slot] : connections) {
        QVERIFY(thread.indexOfSignal(signal) >= 0);
        QVERIFY(dialog.indexOfSlot(slot) >= 0);
        QVERIFY(QMetaObject::checkConnectArgs(signal, slot));
    }
}

void tst_UtilsDialogProcessing::theMessageIsShown()
{
    Dialog dialog;
    dialog->setMessage("Writing flash");
    QCOMPARE(dialog->findChild<QLabel *>("label_message")->text(), "Writing flash");
}

void tst_UtilsDialogProcessing::aLogMessageBecomesOneLineForEachOfItsLines()
{
    Dialog dialog;
    dialog->slotUpdateLog("a\n\nb", LOGGER_MESSAGE_WARNING);
    QCOMPARE(dialog.logger()->getLoggerData(), "a\n\nb\n");
    QCOMPARE(dialog.logger()->getChildrenWidgets().constFirst()->getType(), LOGGER_MESSAGE_WARNING);
}

void tst_UtilsDialogProcessing::progressIsPassedOn_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("busy");
    QTest::addColumn<int>("shown");
    QTest::newRow("busy") << -1 << true << 0;
    QTest::newRow("any negative") << -50 << true << 0;
    QTest::newRow("0") << 0 << false << 0;
    QTest::newRow("1") << 1 << false << 1;
    QTest::newRow("100") << 100 << false << 100;
}

void tst_UtilsDialogProcessing::progressIsPassedOn()
{
    QFETCH(int, percent);
    QFETCH(bool, busy);
    QFETCH(int, shown);
    Dialog dialog;
    dialog->slotUpdateProgressbar(percent);
    QCOMPARE(dialog.isBusy(), busy);
    if (!busy)
        QCOMPARE(dialog.bar()->maximum(), 100);
    QTRY_COMPARE(dialog.bar()->value(), shown);
}

void tst_UtilsDialogProcessing::theBarReturnsToBusy()
{
    Dialog dialog;
    dialog->slotUpdateProgressbar(60);
    QTRY_COMPARE(dialog.bar()->value(), 60);
    QVERIFY(!dialog.isBusy());
    dialog->slotUpdateProgressbar(150); // passed on as it is; the bar has no place for it
    QCOMPARE(dialog.bar()->maximum(), 100);
    dialog->slotUpdateProgressbar(-1);
    QVERIFY(dialog.isBusy());
    QCOMPARE(dialog.bar()->property("progressbar-type"), QVariant("infinite"));
    QTRY_COMPARE(dialog.bar()->value(), 0);
}

void tst_UtilsDialogProcessing::shouldShowResultKnowsWhatStaysOpen_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("autoClose");
    QTest::addColumn<bool>("showSuccess");
    QTest::addColumn<bool>("staysOpen");
    for (const int status : {Success, Failure, -1}) {
        for (const char *autoClose : {"null", "true", "false"}) {
            for (const bool showSuccess : {false, true}) {
                const bool staysOpen = status != Success || showSuccess || qstrcmp(autoClose, "false") == 0;
                QTest::addRow("status %d, auto-close %s%s", status, autoClose, showSuccess ? ", show success" : "")
                    << status << QString::fromLatin1(autoClose) << showSuccess << staysOpen;
            }
        }
    }
}

void tst_UtilsDialogProcessing::shouldShowResultKnowsWhatStaysOpen()
{
    QFETCH(int, status);
    QFETCH(QString, autoClose);
    QFETCH(bool, showSuccess);
    QFETCH(bool, staysOpen);
    bool autoCloseSwitch = autoClose == "true";
    Dialog dialog(autoClose == "null" ? nullptr : &autoCloseSwitch);
    dialog->enableShowingSuccessfulProcess(showSuccess);
    dialog->slotProcedureCompleted(status, "not shown");
    QCOMPARE(dialog->shouldShowResult(), staysOpen);
    QCOMPARE(dialog.isClosingSoon(), !staysOpen);
    QCOMPARE(dialog.logger()->getLoggerData(), QString());
}

void tst_UtilsDialogProcessing::theEndIsAsTheSwitchesSay_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("autoClose");
    QTest::addColumn<bool>("showSuccess");
    QTest::addColumn<bool>("staysOpen");
    QTest::newRow("success, no switch") << Success << "null" << false << false;
    QTest::newRow("success, auto-close") << Success << "true" << false << false;
    QTest::newRow("success, no auto-close") << Success << "false" << false << true;
    QTest::newRow("success that is to be shown") << Success << "true" << true << true;
    QTest::newRow("failure, no switch") << Failure << "null" << false << true;
    QTest::newRow("failure, auto-close") << Failure << "true" << false << true;
}

void tst_UtilsDialogProcessing::theEndIsAsTheSwitchesSay()
{
    QFETCH(int, status);
    QFETCH(QString, autoClose);
    QFETCH(bool, showSuccess);
    QFETCH(bool, staysOpen);
    bool autoCloseSwitch = autoClose == "true";
    Dialog dialog(autoClose == "null" ? nullptr : &autoCloseSwitch);
    dialog->enableShowingSuccessfulProcess(showSuccess);
    dialog->slotUpdateLog("a\nb", LOGGER_MESSAGE_DEFAULT);
    dialog->slotUpdateProgressbar(70);
    dialog->slotProcedureCompleted(status, QString());
    if (staysOpen) {
        QTRY_COMPARE(dialog.button()->text(), "CLOSE");
        QVERIFY(!dialog.isClosingSoon());
        QCOMPARE(dialog.button()->parentWidget()->minimumHeight(), 27);
        QTRY_COMPARE(dialog.bar()->value(), 0);
        QCOMPARE(dialog.bar()->maximum(), 100);
        dialog.pressEscape();
        QCOMPARE(dialog.closedCount(), 1);
    } else {
        QTRY_VERIFY(dialog.isClosingSoon());
        QCOMPARE(dialog.bar()->maximum(), 100);
        QTRY_COMPARE(dialog.bar()->value(), 0);
        QVERIFY(dialog.isButtonCollapsed());
        dialog.pressEscape(); // not allowed: the dialog is about to go by itself
        QCOMPARE(dialog.closedCount(), 0);
        QVERIFY(dialog.isButtonCollapsed());
    }
    QTRY_VERIFY(!dialog.exists());
    QCOMPARE(dialog.closedCount(), 1);
}

void tst_UtilsDialogProcessing::withoutLinesTheEndIsHandledAtOnce()
{
    Dialog dialog;
    dialog->slotProcedureCompleted(Failure, QString());
    QVERIFY(!dialog.isBusy());
    dialog.pressEscape();
    QCOMPARE(dialog.closedCount(), 1);
}

void tst_UtilsDialogProcessing::nothingChangesUntilTheLastLineIsRevealed()
{
    Dialog dialog(nullptr, EndlessLine);
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(Failure, QString());
    QCoreApplication::processEvents();
    QVERIFY(dialog.isBusy());
    QVERIFY(dialog.isButtonCollapsed());
    dialog.pressEscape();
    QVERIFY(dialog.exists());
    QCOMPARE(dialog.closedCount(), 0);

    dialog.logger()->findChild<QPropertyAnimation *>()->setCurrentTime(EndlessLine); // the reveal ends
    QVERIFY(!dialog.isBusy());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
}

void tst_UtilsDialogProcessing::linesThatArriveWhileDrainingAreAwaited()
{
    Dialog dialog(nullptr, EndlessLine);
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    QPropertyAnimation *first = dialog.logger()->findChild<QPropertyAnimation *>();
    dialog->slotProcedureCompleted(Failure, QString());
    dialog->slotUpdateLog("b", LOGGER_MESSAGE_DEFAULT);
    first->setCurrentTime(EndlessLine);
    QVERIFY(dialog.isBusy());
    dialog.logger()->getChildrenWidgets().constLast()->findChild<QPropertyAnimation *>()->setCurrentTime(EndlessLine);
    QVERIFY(!dialog.isBusy());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
}

void tst_UtilsDialogProcessing::aBurstOfLinesIsShownToItsEnd()
{
    constexpr int Lines = 300;
    Dialog dialog(nullptr, 1);
    for (int i = 0; i < Lines; ++i)
        dialog->slotUpdateLog(QString::number(i), LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(Failure, QString());
    QVERIFY(dialog.isBusy());
    QTRY_COMPARE_WITH_TIMEOUT(dialog.button()->text(), "CLOSE", 60'000);
    const QListWidget *list = dialog.logger()->findChild<QListWidget *>();
    QCOMPARE(list->count(), Lines);
    for (int row = 0; row < Lines; ++row)
        QVERIFY(!list->item(row)->isHidden());
}

void tst_UtilsDialogProcessing::theAutoCloseSwitchIsReadAtTheEnd_data()
{
    QTest::addColumn<bool>("atTheEnd");
    QTest::newRow("switched on") << true;
    QTest::newRow("switched off") << false;
}

void tst_UtilsDialogProcessing::theAutoCloseSwitchIsReadAtTheEnd()
{
    QFETCH(bool, atTheEnd);
    bool autoClose = !atTheEnd;
    Dialog dialog(&autoClose, EndlessLine);
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(Success, QString());
    QCOMPARE(dialog->shouldShowResult(), atTheEnd);
    autoClose = atTheEnd;
    QCOMPARE(dialog->shouldShowResult(), !atTheEnd);
    dialog.logger()->findChild<QPropertyAnimation *>()->setCurrentTime(EndlessLine);
    QCOMPARE(dialog.isClosingSoon(), atTheEnd);
    if (!atTheEnd)
        QTRY_COMPARE(dialog.button()->text(), "CLOSE");
}

void tst_UtilsDialogProcessing::aLateLineIsShownAsLongAsTheOthers()
{
    Dialog dialog;
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(Success, QString());
    QTRY_VERIFY(dialog.isClosingSoon());
    QSignalSpy completed(dialog.logger(), &UtilsLogger::signalLoggerAnimationsCompleted);
    dialog->slotUpdateLog("late", LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(completed.count(), 1);
    QVERIFY(dialog.isClosingSoon());
    QCOMPARE(dialog->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
    QTRY_VERIFY(!dialog.exists());
    QCOMPARE(dialog.closedCount(), 1);
}

void tst_UtilsDialogProcessing::completionMayBeRepeated_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<bool>("whileDraining");
    for (const int first : {Success, Failure}) {
        for (const int second : {Success, Failure}) {
            for (const bool whileDraining : {false, true}) {
                QTest::addRow("%d, then %d%s", first, second, whileDraining ? ", while draining" : "")
                    << first << second << whileDraining;
            }
        }
    }
}

void tst_UtilsDialogProcessing::completionMayBeRepeated()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(bool, whileDraining);
    Dialog dialog;
    if (whileDraining)
        dialog->slotUpdateLog("a\nb", LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(first, QString());
    dialog->slotProcedureCompleted(second, QString());
    dialog->slotUpdateLog("late", LOGGER_MESSAGE_DEFAULT);
    if (second == Failure) {
        QTRY_COMPARE(dialog.button()->text(), "CLOSE");
        QVERIFY(!dialog.isClosingSoon());
    } else if (first == Success) {
        QTRY_VERIFY(dialog.isClosingSoon());
        QVERIFY(dialog.isButtonCollapsed());
    } else {
        QTRY_VERIFY(dialog.isClosingSoon() || dialog.button()->text() == "CLOSE");
    }
    dialog->slotClose();
    dialog->slotClose();
    QTRY_VERIFY(!dialog.exists());
    QCOMPARE(dialog.closedCount(), 1);
}

void tst_UtilsDialogProcessing::withoutAnimationTheEndIsNotHandled()
{
    // The logger never says that it has shown lines without animation, and the dialog waits for it.
    Dialog dialog(nullptr, 0);
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    dialog->slotProcedureCompleted(Failure, QString());
    QCoreApplication::processEvents();
    QVERIFY(dialog.isBusy());
    dialog.logger()->setLineAnimationDuration(ShortLine);
    dialog->slotUpdateLog("b", LOGGER_MESSAGE_DEFAULT);
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
}

void tst_UtilsDialogProcessing::errorHandlerLetsTheUserClose_data()
{
    QTest::addColumn<bool>("draining");
    QTest::newRow("running") << false;
    QTest::newRow("draining") << true;
}

void tst_UtilsDialogProcessing::errorHandlerLetsTheUserClose()
{
    QFETCH(bool, draining);
    Dialog dialog(nullptr, EndlessLine);
    dialog->slotUpdateLog("a", LOGGER_MESSAGE_DEFAULT);
    if (draining)
        dialog->slotProcedureCompleted(Success, QString());
    dialog->errorHandler();
    QVERIFY(!dialog->shouldShowResult()); // the status is as it was
    QVERIFY(dialog.isBusy());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
    dialog.pressEscape();
    QCOMPARE(dialog.closedCount(), 1);
    QTRY_VERIFY(!dialog.exists());
}

void tst_UtilsDialogProcessing::aDialogAboutToCloseStaysForAnError()
{
    Dialog dialog;
    dialog->slotProcedureCompleted(Success, QString());
    QVERIFY(dialog.isClosingSoon());
    dialog->errorHandler();
    QVERIFY(!dialog.isClosingSoon());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
}

void tst_UtilsDialogProcessing::escapeClosesOnlyWhenAllowed()
{
    Dialog dialog;
    QSignalSpy rejected(dialog.operator->(), &QDialog::rejected);
    dialog.pressEscape();
    QTest::keyClick(dialog.logger()->findChild<QListWidget *>(), Qt::Key_Escape);
    QCOMPARE(rejected.count(), 0);
    dialog->slotProcedureCompleted(Failure, QString());
    QTest::keyClick(dialog.logger()->findChild<QListWidget *>(), Qt::Key_Escape);
    QCOMPARE(rejected.count(), 1);
    QCOMPARE(dialog.closedCount(), 1);
    QTRY_VERIFY(!dialog.exists());
}

void tst_UtilsDialogProcessing::otherKeysAreSwallowed_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
    QTest::newRow("a letter") << Qt::Key_A;
    QTest::newRow("F1") << Qt::Key_F1;
}

void tst_UtilsDialogProcessing::otherKeysAreSwallowed()
{
    QFETCH(Qt::Key, key);
    Dialog dialog;
    for (const bool ended : {false, true}) {
        if (ended)
            dialog->slotProcedureCompleted(Failure, QString());
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(dialog.operator->(), &event);
        QVERIFY(event.isAccepted());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(dialog.exists());
        QCOMPARE(dialog.closedCount(), 0);
    }
}

void tst_UtilsDialogProcessing::theCloseButtonRejects()
{
    Dialog dialog;
    QSignalSpy rejected(dialog.operator->(), &QDialog::rejected);
    dialog->slotProcedureCompleted(Failure, QString());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
    QTRY_VERIFY(dialog.button()->height() > 0);
    QTest::mouseClick(dialog.button(), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
    QCOMPARE(dialog.closedCount(), 1);
    QTRY_VERIFY(!dialog.exists());
}

void tst_UtilsDialogProcessing::theCloseButtonOutlivesTheDialogThatItsClickDeletes_data()
{
    QTest::addColumn<bool>("closedAgain");
    QTest::newRow("at once") << false;
    QTest::newRow("after closing it again") << true;
}

void tst_UtilsDialogProcessing::theCloseButtonOutlivesTheDialogThatItsClickDeletes()
{
    QFETCH(bool, closedAgain);
    Dialog dialog;
    dialog->slotProcedureCompleted(Failure, QString());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
    QTRY_VERIFY(dialog.button()->height() > 0);
    const QPointer<QToolButton> button = dialog.button();
    bool buttonLives = false;
    connect(dialog.operator->(), &QDialog::rejected, this, [&] {
        if (closedAgain)
            dialog->slotClose();
        delete dialog.operator->();
        buttonLives = button;
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!dialog.exists());
    QVERIFY(buttonLives); // QToolButton goes on with it
    QTRY_VERIFY(!button);
}

void tst_UtilsDialogProcessing::returnOnTheCloseButtonDoesNotClose()
{
    Dialog dialog;
    dialog->slotProcedureCompleted(Failure, QString());
    QTRY_COMPARE(dialog.button()->text(), "CLOSE");
    dialog.button()->setFocus();
    QTest::keyClick(dialog.button(), Qt::Key_Return);
    QTest::keyClick(dialog.button(), Qt::Key_Enter);
    QCOMPARE(dialog.closedCount(), 0);
    QTest::keyClick(dialog.button(), Qt::Key_Space);
    QCOMPARE(dialog.closedCount(), 1);
}

void tst_UtilsDialogProcessing::itMayBeDeletedInAnyState_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"running", "draining", "closing soon", "expanding", "showing result", "closed"})
        QTest::newRow(state) << QString::fromLatin1(state);
}

void tst_UtilsDialogProcessing::itMayBeDeletedInAnyState()
{
    QFETCH(QString, state);
    Dialog dialog(nullptr, state == "draining" ? EndlessLine : ShortLine);
    dialog->slotUpdateLog("a\nb", LOGGER_MESSAGE_DEFAULT);
    dialog->slotUpdateProgressbar(50);
    if (state == "draining") {
        dialog->slotProcedureCompleted(Success, QString());
    } else if (state == "closing soon") {
        dialog->slotProcedureCompleted(Success, QString());
        QTRY_VERIFY(dialog.isClosingSoon());
    } else if (state == "expanding") {
        dialog->errorHandler();
        QCoreApplication::processEvents();
    } else if (state == "showing result") {
        dialog->slotProcedureCompleted(Failure, QString());
        QTRY_COMPARE(dialog.button()->text(), "CLOSE");
    } else if (state == "closed") {
        dialog->slotClose();
        dialog->slotUpdateLog("still reporting", LOGGER_MESSAGE_DEFAULT);
        dialog->slotProcedureCompleted(Failure, QString());
    }
    delete dialog.operator->();
    QCoreApplication::processEvents();
    QVERIFY(!dialog.exists());
}

UNIPROG_TEST_MAIN(tst_UtilsDialogProcessing)
#include "tst_utilsdialogprocessing.moc"
