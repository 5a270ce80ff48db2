#include <MainWindow.h>
#include <ProgrammerSession.h>
#include <UtilsDialog.h>
#include <UtilsDialogProcessing.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

#include <memory>

using Operation = ProgrammerSession::Operation;

class tst_ProgrammerWindow : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAnImageNothingCanBeWrittenOrVerified();
    void everyButtonRunsItsOperationUnderADialog_data();
    void everyButtonRunsItsOperationUnderADialog();
    void theDialogClosesByItselfWhenTheSwitchSaysSo();
    void aFailureStaysUntilItIsClosedAndIsExplained();
    void aLinkPasswordIsAskedForAndReachesTheProgrammer();
    void theOptionsReachTheTarget();
    void faultsAreAddedAndForgotten();
    void aBadFileIsSaid();
    void theWindowMayGoWhileAnOperationHangs();
};

namespace {

constexpr int LongWait = 30000;

/// The application without its main().
struct Application
{
    ProgrammerSession session;
    MainWindow window{&session};

    Application()
    {
        session.programmer().setTimeScale(0);
        window.show();
    }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return window.findChild<Widget *>(QString::fromLatin1(name));
    }

    void enterPath(const QString &path) const
    {
        auto *edit = find<QLineEdit>("imagePath");
        edit->setText(path);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    bool loadImage() const
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("image.bin")));
        if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(600, '\x42')) != 600 || !file.flush())
            return false;
        enterPath(file.fileName());
        return session.image().size() == 600;
    }
};

/// Presses the Close button once the dialog shows it, and waits for the dialog's end.
bool closeWithButton(const QPointer<UtilsDialogProcessing> &dialog)
{
    auto *close = dialog->findChild<QToolButton *>(QStringLiteral("toolButton"));
    if (!close || !QTest::qWaitFor([&] { return !close->text().isEmpty(); }, LongWait))
        return false;
    close->click();
    return QTest::qWaitFor([&] { return dialog.isNull(); }, LongWait);
}

} // namespace

void tst_ProgrammerWindow::withoutAnImageNothingCanBeWrittenOrVerified()
{
    Application application;
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QCOMPARE(application.find<QToolButton>(description.name)->isEnabled(), !description.needsImage);
    QVERIFY(!application.window.run(Operation::Write));
    QVERIFY(!application.find<QToolButton>("save")->isEnabled());
    QVERIFY(application.loadImage());
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QVERIFY(application.find<QToolButton>(description.name)->isEnabled());
}

void tst_ProgrammerWindow::everyButtonRunsItsOperationUnderADialog_data()
{
    QTest::addColumn<Operation>("operation");
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QTest::newRow(description.name) << description.operation;
}

void tst_ProgrammerWindow::everyButtonRunsItsOperationUnderADialog()
{
    Application application;
    QFETCH(Operation, operation);
    QVERIFY(application.loadImage());
    const ProgrammerSession::Description &description = ProgrammerSession::describe(operation);
    QSignalSpy completed(&application.session, &ProgrammerSession::completed);
    application.find<QToolButton>(description.name)->click();
    const QPointer<UtilsDialogProcessing> dialog = application.window.findChild<UtilsDialogProcessing *>();
    QVERIFY(dialog);
    QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("label_message"))->text(), QLatin1String(description.message));
    QVERIFY(application.session.isRunning());
    QVERIFY(!application.window.run(operation)); // one at a time

    QVERIFY(completed.wait(LongWait));
    QCOMPARE(completed.first().at(0).value<Operation>(), operation);
    QCOMPARE(completed.first().at(1).toInt(), 0);
    QVERIFY(application.find<QLabel>("result")->text().endsWith(QStringLiteral("completed")));
    QCOMPARE(application.find<QToolButton>("save")->isEnabled(), operation == Operation::Read);
}

void tst_ProgrammerWindow::theDialogClosesByItselfWhenTheSwitchSaysSo()
{
    Application application;
    QPointer<UtilsDialogProcessing> dialog = application.window.run(Operation::Detect);
    QTRY_VERIFY_WITH_TIMEOUT(dialog.isNull(), LongWait);

    application.find<QCheckBox>("autoClose")->setChecked(false);
    dialog = application.window.run(Operation::Detect);
    QVERIFY(closeWithButton(dialog));
    QVERIFY(!application.window.findChild<UtilsDialog *>()); // nothing to explain
}

void tst_ProgrammerWindow::aFailureStaysUntilItIsClosedAndIsExplained()
{
    Application application;
    QString error;
    QVERIFY(application.session.addFault(QStringLiteral("device-connect=38"), &error));
    QVERIFY(closeWithButton(application.window.run(Operation::Detect)));
    QCOMPARE(application.find<QLabel>("result")->text(),
             QStringLiteral("Detect: status 38, There is no selected device."));
    QCOMPARE(application.find<QLabel>("result")->property("log-type"), QVariant(QStringLiteral("error")));

    const QPointer<UtilsDialog> explanation = application.window.findChild<UtilsDialog *>();
    QVERIFY(explanation);
    QVERIFY(explanation->isVisible());
    QTest::keyClick(explanation, Qt::Key_Return);
    QTRY_VERIFY(explanation.isNull());
}

void tst_ProgrammerWindow::aLinkPasswordIsAskedForAndReachesTheProgrammer()
{
    Application application;
    SimulatedProgrammer &programmer = application.session.programmer();
    TSelectedDevice overWiFi = programmer.devices().constLast();
    QCOMPARE(overWiFi.link, qint32(TSelectedDevice::WiFi));
    QVERIFY(programmer.selectDevice(overWiFi));
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("open sesame"));

    QVERIFY(closeWithButton(application.window.run(Operation::Detect)));
    auto *question = application.window.findChild<UtilsDialog *>();
    QVERIFY(question);
    auto *password = question->findChild<QLineEdit *>();
    QVERIFY(password);
    password->setText(QStringLiteral("open sesame"));
    question->getAcceptButton()->click();

    QSignalSpy completed(&application.session, &ProgrammerSession::completed);
    application.window.run(Operation::Detect);
    QVERIFY(completed.wait(LongWait));
    QCOMPARE(completed.first().at(1).toInt(), 0);
}

void tst_ProgrammerWindow::theOptionsReachTheTarget()
{
    Application application;
    application.find<QComboBox>("eraseMode")->setCurrentIndex(1);
    application.find<QCheckBox>("leaveRunning")->setChecked(true);
    application.find<QCheckBox>("verifyAfterWrite")->setChecked(true);
    application.find<QCheckBox>("haltAfterReset")->setChecked(true);
    QCOMPARE(application.session.operationOptions().getIntValue(0), 2);
    QCOMPARE(application.session.operationOptions().getIntValue(1), 1);
    QCOMPARE(application.session.operationOptions().getIntValue(2), 1);
    QCOMPARE(application.session.connectionOptions().getIntValue(5), 1);
    application.find<QComboBox>("eraseMode")->setCurrentIndex(0);
    application.find<QCheckBox>("verifyAfterWrite")->setChecked(false);
    QCOMPARE(application.session.operationOptions().getIntValue(0), 0);
    QCOMPARE(application.session.operationOptions().getIntValue(2), 0);
}

void tst_ProgrammerWindow::faultsAreAddedAndForgotten()
{
    Application application;
    auto *edit = application.find<QComboBox>("faultEdit");
    edit->setEditText(QStringLiteral("write@block=3:5"));
    application.find<QToolButton>("addFault")->click();
    QCOMPARE(application.session.faults(), QStringList(QStringLiteral("write@block=3:5")));
    QCOMPARE(application.find<QListWidget>("faults")->count(), 1);
    QVERIFY(!application.find<QLabel>("faultProblem")->isVisible());

    edit->setEditText(QStringLiteral("no such fault"));
    QTest::keyClick(edit->lineEdit(), Qt::Key_Return);
    QVERIFY(application.find<QLabel>("faultProblem")->isVisible());
    QCOMPARE(application.find<QListWidget>("faults")->count(), 1);

    application.find<QToolButton>("clearFaults")->click();
    QCOMPARE(application.find<QListWidget>("faults")->count(), 0);
    QVERIFY(!application.find<QToolButton>("clearFaults")->isEnabled());
}

void tst_ProgrammerWindow::aBadFileIsSaid()
{
    Application application;
    application.enterPath(QStringLiteral("/no/such/image.bin"));
    QVERIFY(application.find<QLabel>("result")->text().startsWith(QStringLiteral("There is no file")));
    QVERIFY(!application.find<QToolButton>("write")->isEnabled());
}

void tst_ProgrammerWindow::theWindowMayGoWhileAnOperationHangs()
{
    auto application = std::make_unique<Application>();
    QString error;
    QVERIFY(application->session.addFault(QStringLiteral("erase=hang"), &error));
    QVERIFY(application->window.run(Operation::Erase));
    QTRY_VERIFY_WITH_TIMEOUT(application->session.programmer().isHanging(), LongWait);
    application.reset(); // ends the operation
}

UNIPROG_TEST_MAIN(tst_ProgrammerWindow)

#include "tst_programmerwindow.moc"
