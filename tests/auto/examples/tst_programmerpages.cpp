#include "ProgrammerApplication.h"

#include <Page.h>
#include <UtilsDialog.h>
#include <UtilsToggleSwitch.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QToolButton>

using Operation = ProgrammerSession::Operation;

/// What the pages of the programmer example do with the device.
class tst_ProgrammerPages : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theOptionsReachTheTarget();
    void anUnknownOptionValueIsKept();
    void theDeviceSignalsWhenItIsLookedFor();
    void settingsAreReadChangedAndStored();
    void settingsAreStoredAsTheyWereRead();
    void settingsThatWereNotReadCannotBeStored();
    void aClockBetweenTwoKilohertzIsKept();
    void theDeviceIsUpdatedStepByStep();
    void aBadDeviceFirmwareIsSaid();
    void theWiFiServerIsStarted();
    void theLinkIsChosenAndKeptWhileItIsInUse();
    void aChannelIsSwitchedAndMeasured();
    void aSupplyFromOutsideIsNotSwitched();
    void thePowerModuleSaysWhatItIs();
    void thePowerModuleIsUpdatedStepByStep();
    void whatTheTargetSendsIsCaptured();
    void aCaptureExcludesEverythingElse();
    void aCaptureThatFailsEnds();
    void aCaptureThatCannotStartIsExplained();
    void faultsAreAddedAndForgotten();
};

namespace {

constexpr int LongWait = ProgrammerApplication::LongWait;

} // namespace

void tst_ProgrammerPages::theOptionsReachTheTarget()
{
    ProgrammerApplication application;
    const auto values = [&] {
        const TargetOptionsOperation &operation = application.session.operationOptions();
        return QList<int>{operation.getIntValue(0), operation.getIntValue(1), operation.getIntValue(2),
                          application.session.connectionOptions().getIntValue(5)};
    };
    auto *erase = application.find<QComboBox>("eraseMode");
    erase->setCurrentIndex(1);
    QCOMPARE(values(), QList<int>({2, 0, 0, 0}));
    for (const char *const name : {"leaveRunning", "verifyAfterWrite", "haltAfterReset"})
        application.find<UtilsToggleSwitch>(name)->click();
    QCOMPARE(values(), QList<int>({2, 1, 1, 1}));
    erase->setCurrentIndex(0);
    application.find<UtilsToggleSwitch>("verifyAfterWrite")->click();
    QCOMPARE(values(), QList<int>({0, 1, 0, 1}));
}

void tst_ProgrammerPages::anUnknownOptionValueIsKept()
{
    ProgrammerSession session;
    session.operationOptions().setIntValue(0, 7);
    session.operationOptions().setIntValue(1, -1);
    const MainWindow window(&session);
    auto *leaveRunning = window.findChild<UtilsToggleSwitch *>(QStringLiteral("leaveRunning"));
    QVERIFY(leaveRunning->isChecked());
    window.findChild<UtilsToggleSwitch *>(QStringLiteral("verifyAfterWrite"))->click();
    QCOMPARE(session.operationOptions().getIntValue(0), 7);
    QCOMPARE(session.operationOptions().getIntValue(1), -1);
    QCOMPARE(session.operationOptions().getIntValue(2), 1);
    leaveRunning->click();
    QCOMPARE(session.operationOptions().getIntValue(1), 0);
}

void tst_ProgrammerPages::theDeviceSignalsWhenItIsLookedFor()
{
    ProgrammerApplication application;
    QVERIFY(application.runToSuccess(Operation::FindDevice));
    QCOMPARE(application.session.programmer().successCount(SimulatedProgrammer::Operation::FindDevice), 1);
    QCOMPARE(application.page()->objectName(), QStringLiteral("devicesPage"));
}

void tst_ProgrammerPages::settingsAreReadChangedAndStored()
{
    ProgrammerApplication application;
    TConfiguration stored;
    stored.deviceName = QStringLiteral("Bench 3");
    stored.networkName = QStringLiteral("workshop");
    stored.networkPassword = QStringLiteral("open sesame");
    stored.debugClock = 4000000;
    application.session.programmer().setConfiguration(stored);

    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    auto *name = application.find<QLineEdit>("deviceName");
    auto *network = application.find<QLineEdit>("networkName");
    auto *password = application.find<QLineEdit>("networkPassword");
    auto *clock = application.find<QSpinBox>("debugClock");
    auto *wifi = application.find<UtilsToggleSwitch>("wifiEnabled");
    QCOMPARE(name->text(), stored.deviceName);
    QCOMPARE(network->text(), stored.networkName);
    QCOMPARE(password->text(), stored.networkPassword);
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    QCOMPARE(clock->value(), 4000);
    QVERIFY(!wifi->isChecked());

    name->clear();
    QTest::keyClicks(name, QStringLiteral("Bench 4"));
    clock->setValue(1500);
    wifi->click();
    QVERIFY(application.runToSuccess(Operation::StoreConfiguration));
    const TConfiguration changed = application.session.programmer().configuration();
    QCOMPARE(changed.deviceName, QStringLiteral("Bench 4"));
    QCOMPARE(changed.networkName, stored.networkName);
    QCOMPARE(changed.networkPassword, stored.networkPassword);
    QCOMPARE(changed.debugClock, 1500000U);
    QVERIFY(changed.wifiEnabled);
}

void tst_ProgrammerPages::settingsAreStoredAsTheyWereRead()
{
    ProgrammerApplication application;
    TConfiguration stored;
    stored.deviceName = QStringLiteral("Bench 3");
    stored.networkName = QStringLiteral("workshop");
    stored.networkPassword = QStringLiteral("open sesame");
    stored.wifiEnabled = true;
    stored.debugClock = 4000000;
    application.session.programmer().setConfiguration(stored);
    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    application.session.programmer().setConfiguration(TConfiguration());
    QVERIFY(application.runToSuccess(Operation::StoreConfiguration));
    const TConfiguration again = application.session.programmer().configuration();
    QCOMPARE(again.deviceName, stored.deviceName);
    QCOMPARE(again.networkName, stored.networkName);
    QCOMPARE(again.networkPassword, stored.networkPassword);
    QCOMPARE(again.wifiEnabled, stored.wifiEnabled);
    QCOMPARE(again.debugClock, stored.debugClock);
}

void tst_ProgrammerPages::settingsThatWereNotReadCannotBeStored()
{
    ProgrammerApplication application;
    auto *store = application.find<QToolButton>("store-configuration");
    auto *name = application.find<QLineEdit>("deviceName");
    QVERIFY(!store->isEnabled());
    QVERIFY(!name->isEnabled());
    QVERIFY(!application.window.run(Operation::StoreConfiguration));
    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    QVERIFY(store->isEnabled());
    QVERIFY(name->isEnabled());
}

void tst_ProgrammerPages::aClockBetweenTwoKilohertzIsKept()
{
    ProgrammerApplication application;
    TConfiguration stored;
    stored.debugClock = 1234567;
    application.session.programmer().setConfiguration(stored);
    QVERIFY(application.runToSuccess(Operation::ReadConfiguration));
    QCOMPARE(application.find<QSpinBox>("debugClock")->value(), 1234);
    application.find<UtilsToggleSwitch>("wifiEnabled")->click();
    QVERIFY(application.runToSuccess(Operation::StoreConfiguration));
    QCOMPARE(application.session.programmer().configuration().debugClock, stored.debugClock);
    QVERIFY(application.session.programmer().configuration().wifiEnabled);
}

void tst_ProgrammerPages::theDeviceIsUpdatedStepByStep()
{
    ProgrammerApplication application;
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

void tst_ProgrammerPages::aBadDeviceFirmwareIsSaid()
{
    ProgrammerApplication application;
    const QTemporaryDir folder;
    auto *edit = application.find<QLineEdit>("deviceImagePath");
    for (const char *const path : {"/no/such/firmware", "/"}) {
        edit->setText(QString::fromLatin1(path));
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(application.result().endsWith(QStringLiteral("cannot be opened.")));
    }
    QVERIFY(!application.loadDeviceFirmware(folder, QByteArray()));
    QVERIFY(application.result().endsWith(QStringLiteral("is empty.")));
    QVERIFY(!application.find<QToolButton>("bootloader-write")->isEnabled());
}

void tst_ProgrammerPages::theWiFiServerIsStarted()
{
    ProgrammerApplication application;
    QVERIFY(application.runToSuccess(Operation::StartWiFiServer));
    QVERIFY(application.session.programmer().isWiFiServerRunning());
}

void tst_ProgrammerPages::theLinkIsChosenAndKeptWhileItIsInUse()
{
    ProgrammerApplication application;
    auto *overWiFi = application.find<UtilsToggleSwitch>("overWiFi");
    QVERIFY(!overWiFi->isChecked());
    overWiFi->click();
    QCOMPARE(application.session.link(), TSelectedDevice::WiFi);
    QVERIFY(application.session.selectLink(TSelectedDevice::Usb));
    QVERIFY(!overWiFi->isChecked());

    QSignalSpy completed(&application.session, &ProgrammerSession::completed);
    application.session.start(Operation::Detect);
    overWiFi->click();
    QVERIFY(!overWiFi->isChecked());
    QCOMPARE(application.session.link(), TSelectedDevice::Usb);
    QCOMPARE(application.result(), QStringLiteral("The link cannot be changed now."));
    QVERIFY(completed.wait(LongWait));
}

void tst_ProgrammerPages::aChannelIsSwitchedAndMeasured()
{
    ProgrammerApplication application;
    const SimulatedProgrammer &programmer = application.session.programmer();
    auto *levels = application.find<QTableWidget>("powerLevels");
    QCOMPARE(levels->rowCount(), 0);
    application.find<QComboBox>("powerChannel")->setCurrentIndex(2);
    application.find<QDoubleSpinBox>("powerVoltage")->setValue(1.8);
    QVERIFY(application.runToSuccess(Operation::SetVoltage));
    QVERIFY(application.runToSuccess(Operation::SwitchOn));
    QVERIFY(programmer.isPowerChannelOn(2));
    QCOMPARE(programmer.powerChannelVoltage(2), 1.8F);
    QVERIFY(application.runToSuccess(Operation::ReadLevels));
    QCOMPARE(levels->rowCount(), SimulatedProgrammer::PowerChannelCount);
    QCOMPARE(levels->item(2, 1)->text(), QLocale().toString(1.8, 'f', 2));
    QCOMPARE(levels->item(2, 2)->text(), QLocale().toString(0.01, 'f', 3));
    QCOMPARE(levels->item(3, 1)->text(), QLocale().toString(0.0, 'f', 2));
    QVERIFY(application.runToSuccess(Operation::SwitchOff));
    QVERIFY(!programmer.isPowerChannelOn(2));
}

void tst_ProgrammerPages::aSupplyFromOutsideIsNotSwitched()
{
    ProgrammerApplication application;
    application.session.programmer().setExternalSupply(5.0F);
    QVERIFY(!application.runToSuccess(Operation::SwitchOff)); // the supply of the target is chosen at first
    QVERIFY2(application.result().startsWith(QStringLiteral("Switch off: status 11")),
             qPrintable(application.result()));
}

void tst_ProgrammerPages::thePowerModuleSaysWhatItIs()
{
    ProgrammerApplication application;
    auto *info = application.find<QLabel>("powerModuleInfo");
    QCOMPARE(info->text(), QStringLiteral("The module has not been asked yet."));
    TPowerInfo module;
    module.firmwareVersion = 0x0203;
    module.channelCount = 16;
    module.batteryPresent = true;
    module.batteryLevel = 80;
    application.session.programmer().setPowerInfo(module);
    QVERIFY(application.runToSuccess(Operation::AskPowerModule));
    QCOMPARE(info->text(), QStringLiteral("Firmware 2.3, 16 channels, battery at 80 %"));
    QCOMPARE(application.page()->objectName(), QStringLiteral("powerModulePage"));
}

void tst_ProgrammerPages::thePowerModuleIsUpdatedStepByStep()
{
    ProgrammerApplication application;
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

void tst_ProgrammerPages::whatTheTargetSendsIsCaptured()
{
    ProgrammerApplication application;
    application.session.programmer().setSwoStream("first line\nsecond line\n", false);
    auto *captured = application.find<QPlainTextEdit>("captured");
    application.click(Operation::StartCapture);
    QTRY_COMPARE_WITH_TIMEOUT(captured->toPlainText(), QStringLiteral("first line\nsecond line\n"), LongWait);
    QTRY_VERIFY_WITH_TIMEOUT(application.session.canStart(Operation::StopCapture), LongWait);
    application.click(Operation::StopCapture);
    QTRY_VERIFY_WITH_TIMEOUT(!application.session.isCapturing() && !application.session.isRunning(), LongWait);
    QCOMPARE(application.result(), QStringLiteral("Stop capture: completed"));
    QVERIFY(!application.session.programmer().isTargetConnected());
    application.find<QToolButton>("clearCaptured")->click();
    QCOMPARE(captured->toPlainText(), QString());
    QCOMPARE(application.session.programmer().refusals(), QStringList());
}

void tst_ProgrammerPages::aCaptureExcludesEverythingElse()
{
    ProgrammerApplication application;
    const auto isEnabled = [&](const char *name) { return application.find<QToolButton>(name)->isEnabled(); };
    QVERIFY(isEnabled("start-capture") && !isEnabled("stop-capture"));
    application.click(Operation::StartCapture);
    QTRY_VERIFY_WITH_TIMEOUT(isEnabled("stop-capture"), LongWait);
    QVERIFY(!isEnabled("start-capture"));
    QVERIFY(!isEnabled("detect"));
    QVERIFY(!application.window.run(Operation::Detect));
    QVERIFY(!application.session.selectLink(TSelectedDevice::WiFi));
    QTRY_VERIFY_WITH_TIMEOUT(application.session.canStart(Operation::StopCapture), LongWait);
    application.click(Operation::StopCapture);
    QTRY_VERIFY_WITH_TIMEOUT(isEnabled("detect"), LongWait);
}

void tst_ProgrammerPages::aCaptureThatFailsEnds()
{
    ProgrammerApplication application;
    application.click(Operation::StartCapture);
    QTRY_VERIFY_WITH_TIMEOUT(application.session.isCapturing(), LongWait);
    QString error;
    QVERIFY(application.session.addFault(QStringLiteral("swo-data=7"), &error));
    QTRY_VERIFY_WITH_TIMEOUT(!application.session.isCapturing() && !application.session.isRunning(), LongWait);
    application.session.clearFaults();
    application.click(Operation::StartCapture); // the target was let go
    QTRY_VERIFY_WITH_TIMEOUT(application.session.isCapturing(), LongWait);
}

void tst_ProgrammerPages::aCaptureThatCannotStartIsExplained()
{
    ProgrammerApplication application;
    QString error;
    QVERIFY(application.session.addFault(QStringLiteral("device-connect=38"), &error));
    application.click(Operation::StartCapture);
    QTRY_VERIFY_WITH_TIMEOUT(application.window.findChild<UtilsDialog *>(), LongWait);
    QVERIFY(!application.session.isCapturing());
    QCOMPARE(application.result(), QStringLiteral("Start capture: status 38, There is no selected device."));
}

void tst_ProgrammerPages::faultsAreAddedAndForgotten()
{
    ProgrammerApplication application;
    auto *edit = application.find<QComboBox>("faultEdit");
    edit->setEditText(QStringLiteral("write@block=3:5"));
    application.find<QToolButton>("addFault")->click();
    QCOMPARE(application.session.faults(), QStringList(QStringLiteral("write@block=3:5")));
    QCOMPARE(application.find<QListWidget>("faults")->count(), 1);
    QVERIFY(application.find<QLabel>("faultProblem")->isHidden());

    edit->setEditText(QStringLiteral("no such fault"));
    QTest::keyClick(edit->lineEdit(), Qt::Key_Return);
    QVERIFY(!application.find<QLabel>("faultProblem")->isHidden());
    QCOMPARE(application.find<QListWidget>("faults")->count(), 1);

    application.find<QToolButton>("clearFaults")->click();
    QCOMPARE(application.find<QListWidget>("faults")->count(), 0);
    QVERIFY(!application.find<QToolButton>("clearFaults")->isEnabled());
}

UNIPROG_TEST_MAIN(tst_ProgrammerPages)

#include "tst_programmerpages.moc"
