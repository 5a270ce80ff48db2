#include <ScriptedDriver.h>
#include <UtilsDialog.h>
#include <UtilsUniProgStatus.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QToolButton>

#include <memory>

using Flag = UtilsUniProgStatus::STATUS_FLAG;
using Flags = QFlags<Flag>;

/// What the user gets to see.
enum Answer { NothingAtAll, OnlyTheSignal, PlainDialog, PasswordDialog };
Q_DECLARE_METATYPE(Answer)

static const char Message[] = "Link authentication failed. \nCheck the password.";

class tst_UtilsUniProgStatus : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void flagsHaveTheirBits();
    void statusAndFlagsChooseTheAnswer_data();
    void statusAndFlagsChooseTheAnswer();
    void thePlainDialogOnlyInforms();
    void thePasswordGoesToItsLink_data();
    void thePasswordGoesToItsLink();
    void aCancelledPasswordGoesNowhere_data();
    void aCancelledPasswordGoesNowhere();
    void theSlotLooksAtTheLastStatus_data();
    void theSlotLooksAtTheLastStatus();
    void theSlotNeedsADriver();
    void theUserMayTryAgain();
    void slotAndSignalAreFoundByName();

    void theDialogParentMayDie();
    void theStatusObjectMayDieFirst();
    void withoutAParentTheDialogStandsAlone();

private:
    UtilsDialog *dialog() const
    {
        return window->findChild<UtilsDialog *>();
    }

    std::unique_ptr<QWidget> window;
    std::unique_ptr<ScriptedDriver> driver;
};

static void turnTheEventLoop()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_UtilsUniProgStatus::initTestCase()
{
    window = std::make_unique<QWidget>();
    driver = std::make_unique<ScriptedDriver>();
}

void tst_UtilsUniProgStatus::cleanup()
{
    window.reset();
    turnTheEventLoop();
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
    initTestCase();
}

void tst_UtilsUniProgStatus::flagsHaveTheirBits()
{
    QCOMPARE(int(UtilsUniProgStatus::STATUS_FLAG_OK), 0x1);
    QCOMPARE(int(UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION), 0x2);
    QCOMPARE(int(UtilsUniProgStatus::STATUS_FLAG_ERROR), 0x4);
    const UtilsUniProgStatus::STATUS_FLAGS both
        = UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION | UtilsUniProgStatus::STATUS_FLAG_ERROR;
    QCOMPARE(both.toInt(), 0x6);
}

void tst_UtilsUniProgStatus::statusAndFlagsChooseTheAnswer_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("hasDriver");
    QTest::addColumn<Answer>("answer");

    for (int flags = 0; flags <= 7; ++flags) {
        for (const bool hasDriver : {true, false}) {
            const auto row = [flags, hasDriver](int status, Answer answer) {
                QTest::addRow("status %d, flags %d%s", status, flags, hasDriver ? "" : ", no driver")
                    << status << flags << hasDriver << answer;
            };
            row(0, OnlyTheSignal);
            for (const int status : {13, 14})
                row(status, (flags & 0x2) == 0 ? NothingAtAll : hasDriver ? PasswordDialog : PlainDialog);
            for (const int status : {4, 1, 8, 10, 11, 12, 15, 38, 51, -1, -13})
                row(status, (flags & 0x4) == 0 ? NothingAtAll : PlainDialog);
        }
    }
}

void tst_UtilsUniProgStatus::statusAndFlagsChooseTheAnswer()
{
    QFETCH(int, status);
    QFETCH(int, flags);
    QFETCH(bool, hasDriver);
    QFETCH(Answer, answer);
    UtilsUniProgStatus explainer(hasDriver ? driver.get() : nullptr, Flags::fromInt(flags), nullptr);
    QSignalSpy closed(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed);
    explainer.Start(status, QString::fromLatin1(Message), window.get());

    QCOMPARE(closed.count(), answer == OnlyTheSignal ? 1 : 0);
    QCOMPARE(dialog() != nullptr, answer == PlainDialog || answer == PasswordDialog);
    if (!dialog())
        return;
    QVERIFY(dialog()->isVisible());
    QCOMPARE(dialog()->parentWidget(), window.get());
    QCOMPARE(dialog()->findChild<QLabel *>()->text(), QString::fromLatin1(Message));
    QVERIFY(dialog()->getAcceptButton()->isVisible());
    QCOMPARE(dialog()->getCancelButton()->isVisible(), answer == PasswordDialog);
    const auto *edit = dialog()->findChild<QLineEdit *>();
    QCOMPARE(edit != nullptr, answer == PasswordDialog);
    if (edit)
        QCOMPARE(edit->echoMode(), QLineEdit::Password);
    dialog()->accept();
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsUniProgStatus::thePlainDialogOnlyInforms()
{
    UtilsUniProgStatus explainer(driver.get(), Flags(UtilsUniProgStatus::STATUS_FLAG_ERROR), nullptr);
    QSignalSpy closed(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed);
    explainer.Start(38, QString::fromLatin1(Message), window.get());
    QTest::mouseClick(dialog()->getAcceptButton(), Qt::LeftButton);
    QCOMPARE(closed.count(), 1);
    turnTheEventLoop();
    QVERIFY(!dialog());

    explainer.Start(38, QString::fromLatin1(Message), window.get());
    QTest::keyClick(dialog(), Qt::Key_Escape);
    QCOMPARE(closed.count(), 2);
    QCOMPARE(driver->transcript(), QStringList());
}

void tst_UtilsUniProgStatus::thePasswordGoesToItsLink_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("call");
    QTest::newRow("configuration link") << 13 << "secret"
                                        << "SetWiFiLinkPassword(<6 characters>, false)";
    QTest::newRow("debug link") << 14 << "se cret"
                                << "SetWiFiLinkPassword(<7 characters>, true)";
    QTest::newRow("no password") << 13 << ""
                                 << "SetWiFiLinkPassword(<0 characters>, false)";
}

void tst_UtilsUniProgStatus::thePasswordGoesToItsLink()
{
    QFETCH(int, status);
    QFETCH(QString, password);
    QFETCH(QString, call);
    UtilsUniProgStatus explainer(driver.get(), Flags(UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION), nullptr);
    int callsWhenClosed = -1;
    connect(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed, this,
            [this, &callsWhenClosed] { callsWhenClosed = int(driver->calls().size()); });
    explainer.Start(status, QString::fromLatin1(Message), window.get());
    auto *edit = dialog()->findChild<QLineEdit *>();
    dialog()->setFocus(edit);
    QTest::keyClicks(edit, password);
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(driver->transcript(), QStringList(call));
    QVERIFY(driver->receivedWiFiLinkPassword(password));
    QCOMPARE(callsWhenClosed, 1); // whoever hears of the end may try again at once
}

void tst_UtilsUniProgStatus::aCancelledPasswordGoesNowhere_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("cancel button") << false;
    QTest::newRow("Escape") << true;
}

void tst_UtilsUniProgStatus::aCancelledPasswordGoesNowhere()
{
    QFETCH(bool, byKey);
    UtilsUniProgStatus explainer(driver.get(), Flags(UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION), nullptr);
    QSignalSpy closed(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed);
    explainer.Start(13, QString::fromLatin1(Message), window.get());
    dialog()->setLineEditText(QStringLiteral("secret"));
    if (byKey)
        QTest::keyClick(dialog(), Qt::Key_Escape);
    else
        QTest::mouseClick(dialog()->getCancelButton(), Qt::LeftButton);
    QCOMPARE(closed.count(), 1);
    QCOMPARE(driver->transcript(), QStringList());
}

void tst_UtilsUniProgStatus::theSlotLooksAtTheLastStatus_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("0") << 0 << QStringList();
    QTest::newRow("4") << 4 << QStringList();
    QTest::newRow("12") << 12 << QStringList();
    QTest::newRow("13") << 13 << QStringList("SetWiFiLinkPassword(<1 characters>, false)");
    QTest::newRow("14") << 14 << QStringList("SetWiFiLinkPassword(<1 characters>, true)");
    QTest::newRow("15") << 15 << QStringList();
}

void tst_UtilsUniProgStatus::theSlotLooksAtTheLastStatus()
{
    QFETCH(int, status);
    QFETCH(QStringList, calls);
    UtilsUniProgStatus explainer(driver.get(), Flags(), nullptr);
    explainer.SlotStatusDialogClosed(QStringLiteral("x"));
    QCOMPARE(driver->transcript(), QStringList()); // nothing was started
    explainer.Start(status, QString(), nullptr);
    explainer.SlotStatusDialogClosed(QStringLiteral("x"));
    QCOMPARE(driver->transcript(), calls);
}

void tst_UtilsUniProgStatus::theSlotNeedsADriver()
{
    UtilsUniProgStatus explainer(nullptr, Flags(), nullptr);
    explainer.Start(13, QString(), nullptr);
    explainer.SlotStatusDialogClosed(QStringLiteral("x"));
}

void tst_UtilsUniProgStatus::theUserMayTryAgain()
{
    UtilsUniProgStatus explainer(driver.get(), Flags(UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION), nullptr);
    int failures = 2;
    connect(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed, this, [this, &explainer, &failures] {
        if (--failures > 0)
            explainer.Start(14, QStringLiteral("again"), window.get()); // inside the signal of the first dialog
    });
    explainer.Start(13, QStringLiteral("first"), window.get());
    const QPointer<UtilsDialog> first(dialog());
    first->setLineEditText(QStringLiteral("wrong"));
    QTest::mouseClick(first->getAcceptButton(), Qt::LeftButton);
    turnTheEventLoop();
    QVERIFY(!first);
    QVERIFY(dialog());
    QCOMPARE(dialog()->findChild<QLabel *>()->text(), QStringLiteral("again"));
    dialog()->setLineEditText(QStringLiteral("right!"));
    QTest::mouseClick(dialog()->getAcceptButton(), Qt::LeftButton);
    QCOMPARE(failures, 0);
    QCOMPARE(driver->transcript(),
             QStringList({"SetWiFiLinkPassword(<5 characters>, false)", "SetWiFiLinkPassword(<6 characters>, true)"}));
}

void tst_UtilsUniProgStatus::slotAndSignalAreFoundByName()
{
    const QMetaObject &type = UtilsUniProgStatus::staticMetaObject;
    QVERIFY(type.indexOfSignal("SignalStatusDialogClosed()") >= 0);
    QVERIFY(type.indexOfSlot("SlotStatusDialogClosed(QString)") >= 0);
}

void tst_UtilsUniProgStatus::theDialogParentMayDie()
{
    UtilsUniProgStatus explainer(driver.get(), Flags::fromInt(0x6), nullptr);
    QSignalSpy closed(&explainer, &UtilsUniProgStatus::SignalStatusDialogClosed);
    explainer.Start(38, QString::fromLatin1(Message), window.get());
    window = std::make_unique<QWidget>();
    QCOMPARE(closed.count(), 0);
    explainer.Start(13, QString::fromLatin1(Message), window.get());
    QVERIFY(dialog());
}

void tst_UtilsUniProgStatus::theStatusObjectMayDieFirst()
{
    auto explainer = std::make_unique<UtilsUniProgStatus>(driver.get(), Flags::fromInt(0x6), nullptr);
    explainer->Start(13, QString::fromLatin1(Message), window.get());
    explainer.reset();
    dialog()->setLineEditText(QStringLiteral("secret"));
    QTest::mouseClick(dialog()->getAcceptButton(), Qt::LeftButton);
    QCOMPARE(driver->transcript(), QStringList());
}

void tst_UtilsUniProgStatus::withoutAParentTheDialogStandsAlone()
{
    QObject owner;
    auto *explainer = new UtilsUniProgStatus(driver.get(), Flags::fromInt(0x6), &owner);
    QCOMPARE(explainer->parent(), &owner);
    QSignalSpy closed(explainer, &UtilsUniProgStatus::SignalStatusDialogClosed);
    explainer->Start(38, QString::fromLatin1(Message), nullptr);
    auto *alone = qobject_cast<UtilsDialog *>(QApplication::activeModalWidget());
    QVERIFY(alone);
    QVERIFY(!alone->parentWidget());
    QTest::keyClick(alone, Qt::Key_Return);
    QCOMPARE(closed.count(), 1);
}

UNIPROG_TEST_MAIN(tst_UtilsUniProgStatus)
#include "tst_utilsuniprogstatus.moc"
