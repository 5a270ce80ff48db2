#include <UtilsWaitingSpinner.h>
#include <WaitingSpinnerWidget.h>

#include <UniProgTest.h>

#include <QAccessible>
#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QLayout>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>

class tst_UtilsWaitingSpinner : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void theMessageStandsAboveTheSpinner();
    void theMessageMayChange();
    void theSpinnerTurnsWhenTheDialogIsShown();
    void theDialogLiesOverItsWindow();
    void theCountdownIsTheSpinners();
    void theDialogStaysWhenTheCountdownIsOver();
    void noKeyClosesIt_data();
    void noKeyClosesIt();
    void theOwnerClosesIt_data();
    void theOwnerClosesIt();
    void itIsHeard();
};

static void turnTheEventLoop()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

static WaitingSpinnerWidget *spinnerOf(const UtilsWaitingSpinner &dialog)
{
    return dialog.findChild<WaitingSpinnerWidget *>();
}

void tst_UtilsWaitingSpinner::cleanup()
{
    turnTheEventLoop();
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

void tst_UtilsWaitingSpinner::theMessageStandsAboveTheSpinner()
{
    QWidget parent;
    const UtilsWaitingSpinner dialog(&parent, QStringLiteral("Starting..."));
    QCOMPARE(dialog.parentWidget(), &parent);
    auto *contentFrame = dialog.findChild<QFrame *>(QStringLiteral("frame_content"));
    auto *layout = qobject_cast<QVBoxLayout *>(contentFrame->layout()->itemAt(0)->widget()->layout());
    QVERIFY(layout);
    QCOMPARE(layout->spacing(), 20);
    QCOMPARE(layout->count(), 2);

    auto *label = qobject_cast<QLabel *>(layout->itemAt(0)->widget());
    QVERIFY(label);
    QCOMPARE(label->text(), QStringLiteral("Starting..."));
    QCOMPARE(label->alignment(), Qt::AlignCenter);

    auto *row = qobject_cast<QHBoxLayout *>(layout->itemAt(1)->layout());
    QVERIFY(row);
    QCOMPARE(row->count(), 1);
    QCOMPARE(row->itemAt(0)->widget(), spinnerOf(dialog));
    QVERIFY(!spinnerOf(dialog)->isWindow());

    QVERIFY(dialog.findChild<QToolButton *>(QStringLiteral("toolButton_accept"))->isHidden());
    QVERIFY(dialog.findChild<QToolButton *>(QStringLiteral("toolButton_cancel"))->isHidden());
    QVERIFY(dialog.findChild<QFrame *>(QStringLiteral("line_buttonSeparator"))->isHidden());
}

void tst_UtilsWaitingSpinner::theMessageMayChange()
{
    UtilsWaitingSpinner dialog(nullptr, QStringLiteral("Starting..."));
    dialog.setMessage(QStringLiteral("Still starting..."));
    QCOMPARE(dialog.findChild<QLabel *>()->text(), QStringLiteral("Still starting..."));
}

void tst_UtilsWaitingSpinner::theSpinnerTurnsWhenTheDialogIsShown()
{
    QWidget window;
    window.resize(640, 480);
    window.show();
    UtilsWaitingSpinner dialog(&window, QStringLiteral("Starting..."));
    WaitingSpinnerWidget *spinner = spinnerOf(dialog);
    QVERIFY(!spinner->isSpinning());
    QVERIFY(spinner->isHidden());
    dialog.show();
    QVERIFY(spinner->isSpinning());
    QTRY_VERIFY(spinner->isVisible());
    QVERIFY(spinner->findChild<QTimer *>()->isActive());
    QVERIFY(dialog.isEnabled());

    // Neither at the origin, where a centred one would put itself, nor beside the message's middle.
    auto *label = dialog.findChild<QLabel *>();
    const auto middleOf = [&dialog](QWidget *widget) { return widget->mapTo(&dialog, widget->rect().center()); };
    QTRY_VERIFY(middleOf(spinner).y() > middleOf(label).y());
    QTRY_VERIFY(qAbs(middleOf(spinner).x() - middleOf(label).x()) <= 1);

    // Shown once more, as from the task bar, it just goes on.
    QShowEvent again;
    QCoreApplication::sendEvent(&dialog, &again);
    QVERIFY(spinner->isSpinning());
}

void tst_UtilsWaitingSpinner::theDialogLiesOverItsWindow()
{
    QWidget window;
    window.setGeometry(50, 60, 640, 480);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    UtilsWaitingSpinner dialog(&window, QStringLiteral("Starting..."));
    dialog.show();
    QCOMPARE(dialog.size(), window.size());
    QCOMPARE(dialog.windowModality(), Qt::ApplicationModal);
}

void tst_UtilsWaitingSpinner::theCountdownIsTheSpinners()
{
    UtilsWaitingSpinner dialog(nullptr, QStringLiteral("Starting..."));
    QCOMPARE(spinnerOf(dialog)->findChildren<QTimer *>().size(), 1);
    dialog.setCountdown(30);
    const QList<QTimer *> timers = spinnerOf(dialog)->findChildren<QTimer *>();
    QCOMPARE(timers.size(), 2);
    QCOMPARE(timers.last()->interval(), 1000);
    QVERIFY(!timers.last()->isActive());
    dialog.show();
    QVERIFY(timers.last()->isActive());
}

void tst_UtilsWaitingSpinner::theDialogStaysWhenTheCountdownIsOver()
{
    UtilsWaitingSpinner dialog(nullptr, QStringLiteral("Starting..."));
    dialog.setCountdown(1);
    dialog.show();
    QTimer *countdown = spinnerOf(dialog)->findChildren<QTimer *>().last();
    QTRY_VERIFY_WITH_TIMEOUT(!countdown->isActive(), 20000);
    QVERIFY(dialog.isVisible());
    QVERIFY(spinnerOf(dialog)->isSpinning());
}

void tst_UtilsWaitingSpinner::noKeyClosesIt_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Escape") << Qt::Key_Escape;
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
    QTest::newRow("Space") << Qt::Key_Space;
}

void tst_UtilsWaitingSpinner::noKeyClosesIt()
{
    QFETCH(Qt::Key, key);
    UtilsWaitingSpinner dialog(nullptr, QStringLiteral("Starting..."));
    dialog.show();
    const QSignalSpy finished(&dialog, &QDialog::finished);
    QTest::keyClick(&dialog, key);
    QVERIFY(dialog.isVisible());
    QVERIFY(finished.isEmpty());
}

void tst_UtilsWaitingSpinner::theOwnerClosesIt_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<bool>("shown");
    for (const char *slot : {"close", "accept", "reject", "hide"}) {
        QTest::addRow("%s", slot) << QByteArray(slot) << true;
        QTest::addRow("%s, never shown", slot) << QByteArray(slot) << false;
    }
}

void tst_UtilsWaitingSpinner::theOwnerClosesIt()
{
    QFETCH(QByteArray, slot);
    QFETCH(bool, shown);
    const QPointer<UtilsWaitingSpinner> dialog = new UtilsWaitingSpinner(nullptr, QStringLiteral("Starting..."));
    dialog->setCountdown(5);
    if (shown)
        dialog->show();
    QVERIFY(QMetaObject::invokeMethod(dialog, slot));
    QVERIFY(dialog);
    turnTheEventLoop();
    QVERIFY(!dialog);
}

void tst_UtilsWaitingSpinner::itIsHeard()
{
    UtilsWaitingSpinner dialog(nullptr, QStringLiteral("Starting..."));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&dialog);
    QCOMPARE(interface->role(), QAccessible::Dialog);
    QCOMPARE(interface->text(QAccessible::Name), QStringLiteral("Starting..."));
    dialog.setMessage(QStringLiteral("Still starting..."));
    QCOMPARE(interface->text(QAccessible::Name), QStringLiteral("Still starting..."));
}

UNIPROG_TEST_MAIN(tst_UtilsWaitingSpinner)

#include "tst_utilswaitingspinner.moc"
