#include "MainWindow.h"

#include "Appearance.h"
#include "DeviceFirmwarePage.h"
#include "FaultPanel.h"
#include "FirmwareFile.h"
#include "ImagePanel.h"
#include "NotificationPanel.h"
#include "OperationButtons.h"
#include "OptionsPanel.h"
#include "PowerModulePage.h"

#include <UtilsDialogProcessing.h>
#include <UtilsHelpContextMenu.h>
#include <UtilsMisc.h>
#include <UtilsSingleInstance.h>
#include <UtilsTabWidget.h>
#include <UtilsUniProgStatus.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(820, 540);

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
    updateButtons();
}

MainWindow::~MainWindow() = default;

void MainWindow::setAutoClose(bool enabled)
{
    autoCloseBox->setChecked(enabled);
}

UtilsDialogProcessing *MainWindow::run(ProgrammerSession::Operation operation)
{
    if (!session->canStart(operation))
        return nullptr;

    const ProgrammerSession::Subject subject = ProgrammerSession::describe(operation).subject;
    pages->setCurrentIndex(int(subject)); // the pages have the order of the subjects
    dialog = new UtilsDialogProcessing(this, &autoClose);
    dialog->setMessage(tr(ProgrammerSession::describe(operation).message));
    const UtilsUniProgThread &thread = session->thread();
    connect(&thread, &UtilsUniProgThread::SignalOperationLogMessage, dialog, &UtilsDialogProcessing::slotUpdateLog);
    connect(&thread, &UtilsUniProgThread::SignalOperationProgress, dialog,
            &UtilsDialogProcessing::slotUpdateProgressbar);
    connect(&thread, &UtilsUniProgThread::SignalProcedureCompleted, dialog,
            &UtilsDialogProcessing::slotProcedureCompleted);
    connect(dialog, &UtilsDialogProcessing::signalDialogClosed, this, &MainWindow::dialogClosed);
    dialog->show();
    session->start(operation);
    return dialog;
}

void MainWindow::setupForm()
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("Programmer"));
    resize(InitialSize);

    auto *central = new QWidget(this);
    central->setObjectName(QStringLiteral("central"));
    auto *layout = new QVBoxLayout(central);
    pages = new UtilsTabWidget(central);
    addPages();
    layout->addWidget(pages, 1);
    resultLabel = new QLabel(central);
    resultLabel->setObjectName(QStringLiteral("result"));
    resultLabel->setWordWrap(true);
    layout->addWidget(resultLabel);
    layout->addWidget(createFooter());
    setCentralWidget(central);
}

void MainWindow::addPages()
{
    auto *device = new DeviceFirmwarePage(session, pages);
    auto *power = new PowerModulePage(session, pages);
    connect(device, &DeviceFirmwarePage::requested, this, &MainWindow::run);
    connect(device, &DeviceFirmwarePage::failed, this,
            [this](const QString &message) { showOutcome(message, LOGGER_MESSAGE_ERROR); });
    connect(power, &PowerModulePage::requested, this, &MainWindow::run);
    QWidget *target = createTargetPage();
    new UtilsHelpContextMenu(target, QStringLiteral("programmer/target.html"));
    new UtilsHelpContextMenu(device, QStringLiteral("programmer/device.html"));
    new UtilsHelpContextMenu(power, QStringLiteral("programmer/power.html"));
    pages->addTab(target, tr("Target"));
    pages->addTab(device, tr("Device firmware"));
    pages->addTab(power, tr("Power module"));
    pages->setCurrentIndex(0);
    operationButtons = pages->findChildren<OperationButtons *>();
}

QWidget *MainWindow::createTargetPage()
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("targetPage"));
    auto *layout = new QGridLayout(page);
    imagePanel = new ImagePanel(session, page);
    connect(imagePanel, &ImagePanel::failed, this,
            [this](const QString &message) { showOutcome(message, LOGGER_MESSAGE_ERROR); });
    layout->addWidget(imagePanel, 0, 0, 1, 2);
    layout->addWidget(createOptionsPanel(), 1, 0);
    layout->addWidget(new FaultPanel(session, page), 1, 1);
    auto *buttons = new OperationButtons(session, ProgrammerSession::Subject::Target, page);
    connect(buttons, &OperationButtons::requested, this, &MainWindow::run);
    saveButton = buttons->addButton(QStringLiteral("save"), tr("Save..."));
    saveButton->setToolTip(tr("Stores what was read last in a file"));
    connect(saveButton, &QToolButton::clicked, this, &MainWindow::saveContents);
    layout->addWidget(buttons, 2, 0, 1, 2);
    layout->setRowStretch(1, 1);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(1, 1);
    return page;
}

QWidget *MainWindow::createOptionsPanel()
{
    auto *panel = new OptionsPanel(session, this);
    autoCloseBox = new QCheckBox(tr("Close the dialog after a success"));
    autoCloseBox->setObjectName(QStringLiteral("autoClose"));
    autoCloseBox->setChecked(autoClose);
    connect(autoCloseBox, &QCheckBox::toggled, this, [this](bool checked) { autoClose = checked; });
    panel->addBelow(autoCloseBox);
    return panel;
}

/// What concerns no single page: notifications, updates and the theme.
QWidget *MainWindow::createFooter()
{
    auto *footer = new QWidget(this);
    auto *layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new NotificationPanel(footer), 1);

    updateButton = new QToolButton(footer);
    updateButton->setObjectName(QStringLiteral("checkForUpdates"));
    updateButton->setText(tr("Check for updates"));
    updateButton->setEnabled(false);
    connect(updateButton, &QToolButton::clicked, &updateCheck, &UpdateCheck::start);
    connect(&updateCheck, &UpdateCheck::finished, this, [this](const QString &outcome, bool ok) {
        showOutcome(outcome, ok ? LOGGER_MESSAGE_SUCCESS : LOGGER_MESSAGE_ERROR);
    });
    connect(&updateCheck, &UpdateCheck::chosen, this,
            [this](const QString &text) { showOutcome(text, LOGGER_MESSAGE_SUCCESS); });
    layout->addWidget(updateButton);

    auto *theme = new QComboBox(footer);
    theme->setObjectName(QStringLiteral("theme"));
    theme->setAccessibleName(tr("Theme"));
    theme->addItems(Appearance::themes());
    theme->setCurrentText(Appearance::current());
    connect(theme, &QComboBox::currentTextChanged, this, &Appearance::apply);
    layout->addWidget(theme);
    return footer;
}

void MainWindow::rememberImage()
{
    imagePanel->rememberChoice();
}

void MainWindow::setUpdateUrl(const QString &url)
{
    updateCheck.setUrl(url);
    updateButton->setEnabled(!url.isEmpty());
    updateCheck.start();
}

void MainWindow::saveContents()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("What was read"), QString(),
                                                      tr("Intel HEX (*.hex);;S-record (*.s19);;Binary (*.bin)"));
    if (path.isEmpty())
        return;
    QString error;
    if (FirmwareFile::save(path, session->contents(), &error))
        showOutcome(tr("Stored in %1.").arg(path), LOGGER_MESSAGE_SUCCESS);
    else
        showOutcome(error, LOGGER_MESSAGE_ERROR);
}

void MainWindow::updateButtons()
{
    for (OperationButtons *buttons : std::as_const(operationButtons))
        buttons->refresh();
    saveButton->setEnabled(!session->isRunning() && !session->contents().isEmpty());
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
    const QString caption = tr(ProgrammerSession::describe(operation).caption);
    if (status == 0)
        showOutcome(tr("%1: completed").arg(caption), LOGGER_MESSAGE_SUCCESS);
    else
        showOutcome(tr("%1: status %2, %3").arg(caption).arg(status).arg(message.simplified()), LOGGER_MESSAGE_ERROR);
    updateButtons();
    if (!dialog) // a window manager may close it early
        explanation->Start(lastStatus, lastMessage, this);
}

void MainWindow::dialogClosed()
{
    dialog = nullptr;
    if (!session->isRunning())
        explanation->Start(lastStatus, lastMessage, this);
}
