#include "MainWindow.h"

#include "AboutPage.h"
#include "ApplicationPage.h"
#include "CapturePage.h"
#include "ConfigurationPage.h"
#include "DeviceFirmwarePage.h"
#include "FaultPage.h"
#include "GuidePage.h"
#include "NotificationPanel.h"
#include "OptionsPage.h"
#include "PowerModulePage.h"
#include "SupplyPage.h"
#include "TargetPage.h"
#include "WiFiPage.h"

#include <UtilsDialogProcessing.h>
#include <UtilsMisc.h>
#include <UtilsSingleInstance.h>
#include <UtilsUniProgStatus.h>

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(880, 600);
constexpr int FooterMargin = 10;

} // namespace

MainWindow::MainWindow(ProgrammerSession *programmerSession, QWidget *parent)
    : QMainWindow(parent)
    , session(programmerSession)
    , explanation(new UtilsUniProgStatus(
          programmerSession->driver(),
          UtilsUniProgStatus::STATUS_FLAG_AUTHENTICATION | UtilsUniProgStatus::STATUS_FLAG_ERROR, this))
{
    setupForm();
    UtilsSingleInstance::setAppMainWidget(this);
    connect(session, &ProgrammerSession::completed, this, &MainWindow::operationCompleted);
}

MainWindow::~MainWindow() = default;

void MainWindow::setAutoClose(bool enabled)
{
    applicationPage->setAutoClose(enabled);
}

void MainWindow::rememberImage()
{
    targetPage->rememberImage();
}

void MainWindow::watchDevices(const QList<DevicesPage::UsbId> &ids)
{
    devicesPage->watch(ids);
}

void MainWindow::setUpdateUrl(const QString &url)
{
    aboutPage->setUpdateUrl(url);
}

UtilsDialogProcessing *MainWindow::run(ProgrammerSession::Operation operation)
{
    if (!session->canStart(operation))
        return nullptr;
    const ProgrammerSession::Description &description = ProgrammerSession::describe(operation);
    if (Page *page = pages.value(description.subject))
        navigation->showPage(page);
    UtilsDialogProcessing *processing = nullptr;
    if (description.message) {
        processing = createDialog(tr(description.message));
        dialog = processing;
    }
    session->start(operation);
    return processing;
}

UtilsDialogProcessing *MainWindow::createDialog(const QString &message)
{
    auto *processing = new UtilsDialogProcessing(this, &autoClose);
    processing->setMessage(message);
    const UtilsUniProgThread &thread = session->thread();
    connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, processing, &UtilsDialogProcessing::slotUpdateLog);
    connect(&thread, &UtilsUniProgThread::SignalOperationProgress, processing,
            &UtilsDialogProcessing::slotUpdateProgressbar);
    connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, processing,
            &UtilsDialogProcessing::slotProcedureCompleted);
    connect(processing, &UtilsDialogProcessing::signalDialogClosed, this, &MainWindow::dialogClosed);
    processing->show();
    return processing;
}

void MainWindow::setupForm()
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("Programmer"));
    resize(InitialSize);

    auto *central = new QWidget(this);
    central->setObjectName(QStringLiteral("central"));
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    navigation = new Navigation(central);
    layout->addWidget(navigation, 1);
    addPages();

    auto *footer = new QHBoxLayout;
    footer->setContentsMargins(FooterMargin, FooterMargin, FooterMargin, FooterMargin);
    resultLabel = new QLabel(central);
    resultLabel->setObjectName(QStringLiteral("result"));
    resultLabel->setWordWrap(true);
    resultLabel->setText(tr("Ready"));
    footer->addWidget(resultLabel, 1);
    footer->addWidget(new NotificationPanel(central));
    layout->addLayout(footer);
    setCentralWidget(central);
}

void MainWindow::addPages()
{
    addTargetPages();
    addDevicePages();
    if (session->isSimulated())
        addPowerPages();
    addOptionPages();
    addHelpPages();
    navigation->showPage(targetPage);
}

void MainWindow::addTargetPages()
{
    using Subject = ProgrammerSession::Subject;
    targetPage = new TargetPage(session, navigation);
    addPage(targetPage, Navigation::Section::Target, {Subject::Target});
    if (session->isSimulated())
        addPage(new CapturePage(session, navigation), Navigation::Section::Target, {Subject::Capture});
}

void MainWindow::addDevicePages()
{
    using Subject = ProgrammerSession::Subject;
    devicesPage = new DevicesPage(session, navigation);
    addPage(devicesPage, Navigation::Section::Device, {Subject::Device});
    if (!session->isSimulated())
        return;
    addPage(new ConfigurationPage(session, navigation), Navigation::Section::Device, {Subject::Configuration});
    addPage(new DeviceFirmwarePage(session, navigation), Navigation::Section::Device, {Subject::DeviceFirmware});
    addPage(new WiFiPage(session, navigation), Navigation::Section::Device, {Subject::WiFiServer});
}

void MainWindow::addPowerPages()
{
    using Subject = ProgrammerSession::Subject;
    addPage(new SupplyPage(session, navigation), Navigation::Section::Power, {Subject::Supply});
    addPage(new PowerModulePage(session, navigation), Navigation::Section::Power,
            {Subject::PowerInfo, Subject::PowerModule});
}

void MainWindow::addOptionPages()
{
    addPage(new OptionsPage(session, navigation), Navigation::Section::Options);
    applicationPage = new ApplicationPage(session, autoClose, navigation);
    connect(applicationPage, &ApplicationPage::autoCloseChanged, this, [this](bool enabled) { autoClose = enabled; });
    addPage(applicationPage, Navigation::Section::Options);
    if (session->isSimulated())
        addPage(new FaultPage(session, navigation), Navigation::Section::Options);
}

void MainWindow::addHelpPages()
{
    addPage(new GuidePage(session, navigation), Navigation::Section::Help);
    aboutPage = new AboutPage(session, navigation);
    addPage(aboutPage, Navigation::Section::Help);
}

void MainWindow::addPage(Page *page, Navigation::Section section, const QList<ProgrammerSession::Subject> &subjects)
{
    connect(page, &Page::requested, this, &MainWindow::run);
    connect(page, &Page::succeeded, this,
            [this](const QString &message) { showOutcome(message, LOGGER_MESSAGE_SUCCESS); });
    connect(page, &Page::failed, this, [this](const QString &message) { showOutcome(message, LOGGER_MESSAGE_ERROR); });
    navigation->addPage(page, section);
    for (const ProgrammerSession::Subject subject : subjects)
        pages.insert(subject, page);
}

void MainWindow::showOutcome(const QString &text, LOGGER_MESSAGE_TYPE type)
{
    resultLabel->setText(text);
    UtilsMisc::SetProperty(resultLabel, "log-type",
                           type == LOGGER_MESSAGE_ERROR ? QStringLiteral("error") : QStringLiteral("success"));
}

void MainWindow::operationCompleted(ProgrammerSession::Operation operation, int status, const QString &message)
{
    lastStatus = status;
    lastMessage = message;
    const bool isPartOfCapture = operation == ProgrammerSession::Operation::FetchCapture;
    const QString caption = tr(ProgrammerSession::describe(operation).caption);
    if (status != 0)
        showOutcome(tr("%1: status %2, %3").arg(caption).arg(status).arg(message.simplified()), LOGGER_MESSAGE_ERROR);
    else if (!isPartOfCapture)
        showOutcome(tr("%1: completed").arg(caption), LOGGER_MESSAGE_SUCCESS);
    // A window manager may have closed the dialog early. The end of a capture follows a fetch that failed.
    if (!dialog && !isPartOfCapture)
        explanation->Start(lastStatus, lastMessage, this);
}

void MainWindow::dialogClosed()
{
    dialog = nullptr;
    if (!session->isRunning())
        explanation->Start(lastStatus, lastMessage, this);
}
