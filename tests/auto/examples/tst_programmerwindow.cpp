#include "ProgrammerApplication.h"

#include <Appearance.h>
#include <UtilsDialog.h>
#include <UtilsDialogProcessing.h>
#include <UtilsToggleSwitch.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
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
    void aCancelledPasswordLeavesTheLinkLocked();
    void withoutADriverADeviceIsMissed();
    void theChosenImageIsRememberedAndWatched();
    void newerVersionsAreAnnounced();
    void theThemeChangesAtRunTime();
    void aBadFileIsSaid();
    void theWindowMayGoWhileAnOperationHangs();
};

namespace {

constexpr int LongWait = ProgrammerApplication::LongWait;

} // namespace

void tst_ProgrammerWindow::withoutAnImageNothingCanBeWrittenOrVerified()
{
    ProgrammerApplication application;
    const QList<Operation> withoutImage{Operation::Read,  Operation::BlankCheck, Operation::Detect,
                                        Operation::Erase, Operation::Reset,      Operation::EnterBootloader};
    const auto isEnabled = [&](Operation operation) {
        return application.find<QToolButton>(ProgrammerSession::describe(operation).name)->isEnabled();
    };
    for (const Operation operation : withoutImage)
        QVERIFY(isEnabled(operation));
    for (const Operation operation : {Operation::Write, Operation::Verify, Operation::WriteDeviceFirmware})
        QVERIFY(!isEnabled(operation));
    QVERIFY(!application.window.run(Operation::Write));
    QVERIFY(!application.find<QToolButton>("save")->isEnabled());

    QVERIFY(application.loadImage());
    for (const Operation operation : withoutImage + QList<Operation>{Operation::Write, Operation::Verify})
        QVERIFY(isEnabled(operation));
    QVERIFY(!isEnabled(Operation::WriteDeviceFirmware));
}

void tst_ProgrammerWindow::everyButtonRunsItsOperationUnderADialog_data()
{
    QTest::addColumn<Operation>("operation");
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        if (description.subject == ProgrammerSession::Subject::Target)
            QTest::newRow(description.name) << description.operation;
}

void tst_ProgrammerWindow::everyButtonRunsItsOperationUnderADialog()
{
    ProgrammerApplication application;
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
    QVERIFY(application.result().endsWith(QStringLiteral("completed")));
    QCOMPARE(application.find<QToolButton>("save")->isEnabled(), operation == Operation::Read);
}

void tst_ProgrammerWindow::theDialogClosesByItselfWhenTheSwitchSaysSo()
{
    ProgrammerApplication application;
    QPointer<UtilsDialogProcessing> dialog = application.window.run(Operation::Detect);
    QTRY_VERIFY_WITH_TIMEOUT(dialog.isNull(), LongWait);

    application.find<UtilsToggleSwitch>("autoClose")->setChecked(false);
    dialog = application.window.run(Operation::Detect);
    QVERIFY(ProgrammerApplication::closeWithButton(dialog));
    QVERIFY(!application.window.findChild<UtilsDialog *>()); // nothing to explain
}

void tst_ProgrammerWindow::aFailureStaysUntilItIsClosedAndIsExplained()
{
    ProgrammerApplication application;
    QString error;
    QVERIFY(application.session.addFault(QStringLiteral("device-connect=38"), &error));
    QVERIFY(ProgrammerApplication::closeWithButton(application.window.run(Operation::Detect)));
    QCOMPARE(application.result(), QStringLiteral("Detect: status 38, There is no selected device."));
    QCOMPARE(application.find<QLabel>("result")->property("log-type"), QVariant(QStringLiteral("error")));

    const QPointer<UtilsDialog> explanation = application.window.findChild<UtilsDialog *>();
    QVERIFY(explanation);
    QVERIFY(explanation->isVisible());
    QTest::keyClick(explanation, Qt::Key_Return);
    QTRY_VERIFY(explanation.isNull());
}

void tst_ProgrammerWindow::aLinkPasswordIsAskedForAndReachesTheProgrammer()
{
    ProgrammerApplication application;
    SimulatedProgrammer &programmer = application.session.programmer();
    TSelectedDevice overWiFi = programmer.devices().constLast();
    QCOMPARE(overWiFi.link, qint32(TSelectedDevice::WiFi));
    QVERIFY(programmer.selectDevice(overWiFi));
    programmer.setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("open sesame"));

    QVERIFY(ProgrammerApplication::closeWithButton(application.window.run(Operation::Detect)));
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

void tst_ProgrammerWindow::aCancelledPasswordLeavesTheLinkLocked()
{
    ProgrammerApplication application;
    application.session.programmer().setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("open sesame"));
    application.find<UtilsToggleSwitch>("overWiFi")->click();
    QCOMPARE(application.session.link(), TSelectedDevice::WiFi);
    for (const bool cancel : {true, false}) {
        QVERIFY(ProgrammerApplication::closeWithButton(application.window.run(Operation::Detect)));
        const QPointer<UtilsDialog> question = application.window.findChild<UtilsDialog *>();
        QVERIFY(question);
        question->setLineEditText(QStringLiteral("a guess"));
        (cancel ? question->getCancelButton() : question->getAcceptButton())->click();
        QTRY_VERIFY(question.isNull());
        QCOMPARE(application.session.programmer().callCount(SimulatedProgrammer::Operation::SetWiFiLinkPassword),
                 cancel ? 0 : 1);
    }
    QSignalSpy completed(&application.session, &ProgrammerSession::completed);
    application.window.run(Operation::Detect);
    QVERIFY(completed.wait(LongWait));
    QCOMPARE(completed.first().at(1).toInt(), 14);

    application.find<UtilsToggleSwitch>("overWiFi")->click();
    QCOMPARE(application.session.link(), TSelectedDevice::Usb);
}

void tst_ProgrammerWindow::withoutADriverADeviceIsMissed()
{
    ProgrammerSession session(ProgrammerSession::Driver::Missing);
    MainWindow window(&session);
    window.show();
    for (const Operation operation : {Operation::Detect, Operation::EnterBootloader}) {
        QSignalSpy completed(&session, &ProgrammerSession::completed);
        QVERIFY(ProgrammerApplication::closeWithButton(window.run(operation)));
        QCOMPARE(completed.count(), 1);
        QCOMPARE(completed.first().at(1).toInt(), 38);
        const QPointer<UtilsDialog> explanation = window.findChild<UtilsDialog *>();
        QVERIFY(explanation);
        QVERIFY(!explanation->findChild<QLineEdit *>()); // nobody to give a password to
        QTest::keyClick(explanation, Qt::Key_Return);
        QTRY_VERIFY(explanation.isNull());
    }
}

void tst_ProgrammerWindow::theChosenImageIsRememberedAndWatched()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("chosen.bin"));
    const auto store = [&](int size) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(QByteArray(size, '\x42')) == size;
    };
    QVERIFY(store(100));
    {
        ProgrammerApplication application;
        QTest::ignoreMessage(QtWarningMsg, "QFileSystemWatcher::addPath: path is empty"); // nothing was stored yet
        application.window.rememberImage();
        QVERIFY(application.find<QToolButton>("browse")->isVisible());
        application.enterPath(path);
        QCOMPARE(application.session.image().size(), 100);
        QVERIFY(store(200));
        QTRY_COMPARE_WITH_TIMEOUT(application.session.image().size(), 200, LongWait);
    }
    ProgrammerApplication next;
    next.window.rememberImage();
    QCOMPARE(next.session.imagePath(), path);
}

void tst_ProgrammerWindow::newerVersionsAreAnnounced()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QByteArray body = QByteArrayLiteral("suite=1.10\nfirmware=1.9\nmore=1\n");
    connect(&server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *socket = server.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [socket, &body] {
            socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(body.size())
                          + "\r\n\r\n" + body);
            socket->disconnectFromHost();
        });
    });
    ProgrammerApplication application;
    auto *check = application.find<QToolButton>("checkForUpdates");
    auto *result = application.find<QLabel>("result");
    QVERIFY(!check->isEnabled());
    application.window.setUpdateUrl(QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()));
    QTRY_COMPARE_WITH_TIMEOUT(result->text(), QStringLiteral("There are updates."), LongWait);
    QCOMPARE(application.find<QToolButton>("notification0")->text(), QStringLiteral("New Suite version available"));
    QVERIFY(!application.find<QToolButton>("notification1"));
    check->click();
    QTRY_VERIFY_WITH_TIMEOUT(application.find<QToolButton>("notification0")->text().endsWith(QStringLiteral("(2)")),
                             LongWait);
    application.find<QToolButton>("notification0")->click();
    QCOMPARE(result->text(), QStringLiteral("Version 1.10 of the application can be downloaded."));
    QVERIFY(!application.find<QToolButton>("notification0"));

    body = QByteArrayLiteral("suite=1.0\n");
    check->click();
    QTRY_COMPARE_WITH_TIMEOUT(result->text(), QStringLiteral("Everything is up to date."), LongWait);
    server.close();
    check->click();
    QTRY_COMPARE_WITH_TIMEOUT(result->text(), QStringLiteral("The update server does not answer."), LongWait);
    application.window.setUpdateUrl(QStringLiteral("http://["));
    QVERIFY(result->text().contains(QStringLiteral("is no address")));
}

void tst_ProgrammerWindow::theThemeChangesAtRunTime()
{
    Appearance::apply(QStringLiteral("dark"));
    ProgrammerApplication application;
    auto *theme = application.find<QComboBox>("theme");
    QCOMPARE(theme->currentText(), QStringLiteral("dark"));
    const QString dark = qApp->styleSheet();
    QVERIFY(!dark.isEmpty());
    theme->setCurrentText(QStringLiteral("light"));
    QVERIFY(!qApp->styleSheet().isEmpty());
    QVERIFY(qApp->styleSheet() != dark);
    theme->setCurrentText(QStringLiteral("dark"));
    QCOMPARE(qApp->styleSheet(), dark);
    qApp->setStyleSheet(QString());
}

void tst_ProgrammerWindow::aBadFileIsSaid()
{
    ProgrammerApplication application;
    application.enterPath(QStringLiteral("/no/such/image.bin"));
    QVERIFY(application.result().startsWith(QStringLiteral("There is no file")));
    QVERIFY(!application.find<QToolButton>("write")->isEnabled());
}

void tst_ProgrammerWindow::theWindowMayGoWhileAnOperationHangs()
{
    auto application = std::make_unique<ProgrammerApplication>();
    QString error;
    QVERIFY(application->session.addFault(QStringLiteral("erase=hang"), &error));
    QVERIFY(application->window.run(Operation::Erase));
    QTRY_VERIFY_WITH_TIMEOUT(application->session.programmer().isHanging(), LongWait);
    application.reset(); // ends the operation
}

UNIPROG_TEST_MAIN(tst_ProgrammerWindow)

#include "tst_programmerwindow.moc"
