#include <Appearance.h>
#include <MainWindow.h>
#include <ProgrammerSession.h>
#include <UtilsDialog.h>
#include <UtilsDialogProcessing.h>
#include <UtilsHelpContextMenu.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtEndian>

#include <memory>

using Operation = ProgrammerSession::Operation;

class tst_ProgrammerWindow : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void withoutAnImageNothingCanBeWrittenOrVerified();
    void everyButtonRunsItsOperationUnderADialog_data();
    void everyButtonRunsItsOperationUnderADialog();
    void theDialogClosesByItselfWhenTheSwitchSaysSo();
    void aFailureStaysUntilItIsClosedAndIsExplained();
    void aLinkPasswordIsAskedForAndReachesTheProgrammer();
    void aCancelledPasswordLeavesTheLinkLocked();
    void theDeviceIsUpdatedStepByStep();
    void aBadDeviceFirmwareIsSaid();
    void thePowerModuleIsUpdatedStepByStep();
    void withoutADriverADeviceIsMissed();
    void theOptionsReachTheTarget();
    void anUnknownOptionValueIsKept();
    void theChosenImageIsRememberedAndWatched();
    void newerVersionsAreAnnounced();
    void everyPageOffersHelp();
    void theThemeChangesAtRunTime();
    void faultsAreAddedAndForgotten();
    void aBadFileIsSaid();
    void theWindowMayGoWhileAnOperationHangs();

private:
    QTemporaryDir settings;
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

    /// Chooses a firmware of version 2.1 on the page of the device.
    bool loadDeviceFirmware(const QTemporaryDir &folder, const QByteArray &payload) const
    {
        QFile file(folder.filePath(QStringLiteral("device.fw")));
        QByteArray header(8, '\0');
        qToLittleEndian(SimulatedProgrammer::crc32(payload), header.data());
        header[4] = 3; // length of the version
        const QByteArray bytes = header + "2.1" + payload;
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
            return false;
        auto *edit = find<QLineEdit>("deviceImagePath");
        edit->setText(file.fileName());
        QTest::keyClick(edit, Qt::Key_Return);
        return session.deviceImagePath() == file.fileName();
    }

    /// Clicks the button of the operation and waits for the end of its dialog.
    bool runToSuccess(Operation operation) const
    {
        find<QToolButton>(ProgrammerSession::describe(operation).name)->click();
        const QPointer<UtilsDialogProcessing> dialog = window.findChild<UtilsDialogProcessing *>();
        return dialog && QTest::qWaitFor([&] { return dialog.isNull(); }, LongWait)
            && find<QLabel>("result")->text().endsWith(QStringLiteral("completed"));
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

void tst_ProgrammerWindow::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path()); // no trace in the user's own
}

void tst_ProgrammerWindow::withoutAnImageNothingCanBeWrittenOrVerified()
{
    Application application;
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QCOMPARE(application.find<QToolButton>(description.name)->isEnabled(), !description.needsImage);
    QVERIFY(!application.window.run(Operation::Write));
    QVERIFY(!application.find<QToolButton>("save")->isEnabled());
    QVERIFY(application.loadImage());
    for (const ProgrammerSession::Description &description : ProgrammerSession::descriptions())
        QCOMPARE(application.find<QToolButton>(description.name)->isEnabled(),
                 description.operation != Operation::WriteDeviceFirmware);
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

void tst_ProgrammerWindow::aCancelledPasswordLeavesTheLinkLocked()
{
    Application application;
    application.session.programmer().setWiFiPassword(OPERATION_TYPE_DEBUG, QStringLiteral("open sesame"));
    application.find<QCheckBox>("overWiFi")->click();
    QCOMPARE(application.session.link(), TSelectedDevice::WiFi);
    for (const bool cancel : {true, false}) {
        QVERIFY(closeWithButton(application.window.run(Operation::Detect)));
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

    application.find<QCheckBox>("overWiFi")->click();
    QCOMPARE(application.session.link(), TSelectedDevice::Usb);
}

void tst_ProgrammerWindow::theDeviceIsUpdatedStepByStep()
{
    Application application;
    const QTemporaryDir folder;
    const QByteArray payload(3000, '\x5a');
    QVERIFY(application.loadDeviceFirmware(folder, payload));
    QCOMPARE(application.find<QLabel>("deviceImageSummary")->text(), QStringLiteral("Version 2.1, 3000 bytes"));
    QVERIFY(application.runToSuccess(Operation::EnterBootloader));
    QCOMPARE(application.find<QLabel>("bootloaderSummary")->text(),
             QStringLiteral("Device 0x1002, sectors of 4096 bytes"));
    QVERIFY(application.runToSuccess(Operation::WriteDeviceFirmware));
    QCOMPARE(application.session.programmer().firmware(int(payload.size())), payload);
    QVERIFY(application.session.programmer().isInBootloader());
    QVERIFY(application.runToSuccess(Operation::ExitBootloader));
    QVERIFY(!application.session.programmer().isInBootloader());
    QCOMPARE(application.session.programmer().refusals(), QStringList());
}

void tst_ProgrammerWindow::aBadDeviceFirmwareIsSaid()
{
    Application application;
    const QTemporaryDir folder;
    auto *edit = application.find<QLineEdit>("deviceImagePath");
    for (const char *const path : {"/no/such/firmware", "/"}) {
        edit->setText(QString::fromLatin1(path));
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(application.find<QLabel>("result")->text().endsWith(QStringLiteral("cannot be opened.")));
    }
    QVERIFY(!application.loadDeviceFirmware(folder, QByteArray()));
    QVERIFY(application.find<QLabel>("result")->text().endsWith(QStringLiteral("is empty.")));
    QVERIFY(!application.find<QToolButton>("bootloader-write")->isEnabled());
}

void tst_ProgrammerWindow::thePowerModuleIsUpdatedStepByStep()
{
    Application application;
    for (const Operation operation :
         {Operation::ActivatePowerBootloader, Operation::ShowPowerBootloader, Operation::WritePowerFirmware})
        QVERIFY(application.runToSuccess(operation));
    SimulatedProgrammer &programmer = application.session.programmer();
    QVERIFY(!programmer.isPowerModuleInBootloader());
    QVERIFY(application.runToSuccess(Operation::ActivatePowerBootloader));
    QVERIFY(programmer.isPowerModuleInBootloader());
    QVERIFY(application.runToSuccess(Operation::ResetPowerModule));
    QVERIFY(!programmer.isPowerModuleInBootloader());
    QCOMPARE(programmer.refusals(), QStringList());
}

void tst_ProgrammerWindow::withoutADriverADeviceIsMissed()
{
    ProgrammerSession session(ProgrammerSession::Driver::Missing);
    MainWindow window(&session);
    window.show();
    for (const Operation operation : {Operation::Detect, Operation::EnterBootloader}) {
        QSignalSpy completed(&session, &ProgrammerSession::completed);
        QVERIFY(closeWithButton(window.run(operation)));
        QCOMPARE(completed.count(), 1);
        QCOMPARE(completed.first().at(1).toInt(), 38);
        const QPointer<UtilsDialog> explanation = window.findChild<UtilsDialog *>();
        QVERIFY(explanation);
        QVERIFY(!explanation->findChild<QLineEdit *>()); // nobody to give a password to
        QTest::keyClick(explanation, Qt::Key_Return);
        QTRY_VERIFY(explanation.isNull());
    }
}

void tst_ProgrammerWindow::theOptionsReachTheTarget()
{
    Application application;
    const auto boxes = application.find<QGroupBox>("optionsPanel")->findChildren<QComboBox *>();
    QCOMPARE(boxes.size(), 4);
    const auto values = [&] {
        const TargetOptionsOperation &operation = application.session.operationOptions();
        return QList<int>{operation.getIntValue(0), operation.getIntValue(1), operation.getIntValue(2),
                          application.session.connectionOptions().getIntValue(5)};
    };
    for (QComboBox *box : boxes)
        box->setCurrentIndex(1);
    QCOMPARE(values(), QList<int>({2, 1, 1, 1}));
    boxes.at(0)->setCurrentIndex(0);
    boxes.at(2)->setCurrentIndex(0);
    QCOMPARE(values(), QList<int>({0, 1, 0, 1}));
}

void tst_ProgrammerWindow::anUnknownOptionValueIsKept()
{
    ProgrammerSession session;
    session.operationOptions().setIntValue(0, 7);
    session.operationOptions().setIntValue(1, -1);
    const MainWindow window(&session);
    const auto boxes = window.findChild<QGroupBox *>(QStringLiteral("optionsPanel"))->findChildren<QComboBox *>();
    boxes.at(2)->setCurrentIndex(1);
    QCOMPARE(session.operationOptions().getIntValue(0), 7);
    QCOMPARE(session.operationOptions().getIntValue(1), -1);
    QCOMPARE(session.operationOptions().getIntValue(2), 1);
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
        Application application;
        QTest::ignoreMessage(QtWarningMsg, "QFileSystemWatcher::addPath: path is empty"); // nothing was stored yet
        application.window.rememberImage();
        QVERIFY(application.find<QToolButton>("browse")->isVisible());
        application.enterPath(path);
        QCOMPARE(application.session.image().size(), 100);
        QVERIFY(store(200));
        QTRY_COMPARE_WITH_TIMEOUT(application.session.image().size(), 200, LongWait);
    }
    Application next;
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
    Application application;
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

void tst_ProgrammerWindow::everyPageOffersHelp()
{
    Application application;
    for (const char *const name : {"targetPage", "deviceFirmwarePage", "powerModulePage"}) {
        QCOMPARE(application.find<QWidget>(name)->contextMenuPolicy(), Qt::CustomContextMenu);
        QVERIFY(
            application.find<QWidget>(name)->findChild<UtilsHelpContextMenu *>(QString(), Qt::FindDirectChildrenOnly));
    }
}

void tst_ProgrammerWindow::theThemeChangesAtRunTime()
{
    Appearance::apply(QStringLiteral("dark"));
    Application application;
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
