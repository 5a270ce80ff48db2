#include "DeviceFirmwarePage.h"

#include <UtilsBootloader.h>

#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

DeviceFirmwarePage::DeviceFirmwarePage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("deviceFirmwarePage"), tr("Firmware"), QStringLiteral("programmer/device.html"),
           parent)
{
    setupForm();
    connect(session, &ProgrammerSession::deviceImageChanged, this, &DeviceFirmwarePage::showImage);
    connect(session, &ProgrammerSession::completed, this, &DeviceFirmwarePage::showBootloader);
    showImage();
    showBootloader();
}

void DeviceFirmwarePage::setupForm()
{
    addText(tr("The firmware of the device itself is written by its bootloader: enter it, write, and exit."));
    auto *form = new QFormLayout;
    body()->addLayout(form);

    auto *row = new QHBoxLayout;
    pathEdit = new QLineEdit;
    pathEdit->setObjectName(QStringLiteral("deviceImagePath"));
    pathEdit->setPlaceholderText(tr("A firmware of the device"));
    connect(pathEdit, &QLineEdit::returnPressed, this, &DeviceFirmwarePage::loadImage);
    row->addWidget(pathEdit);
    auto *browse = new QToolButton;
    browse->setObjectName(QStringLiteral("browseDeviceImage"));
    browse->setText(tr("Choose..."));
    browse->setFocusPolicy(Qt::StrongFocus);
    connect(browse, &QToolButton::clicked, this, &DeviceFirmwarePage::chooseImage);
    row->addWidget(browse);
    form->addRow(tr("F&irmware:"), row);
    static_cast<QLabel *>(form->labelForField(row))->setBuddy(pathEdit);

    imageLabel = new QLabel;
    imageLabel->setObjectName(QStringLiteral("deviceImageSummary"));
    form->addRow(tr("Content:"), imageLabel);
    bootloaderLabel = new QLabel;
    bootloaderLabel->setObjectName(QStringLiteral("bootloaderSummary"));
    form->addRow(tr("Bootloader:"), bootloaderLabel);

    addOperations(ProgrammerSession::Subject::DeviceFirmware);
    body()->addStretch();
}

void DeviceFirmwarePage::chooseImage()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Firmware of the device"), session()->deviceImagePath());
    if (path.isEmpty())
        return;
    pathEdit->setText(path);
    loadImage();
}

void DeviceFirmwarePage::loadImage()
{
    QString error;
    if (!session()->setDeviceImage(pathEdit->text(), &error))
        Q_EMIT failed(error);
}

void DeviceFirmwarePage::showImage()
{
    const QString path = session()->deviceImagePath();
    UtilsBootloader image(path, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, session()->bootloaderDeviceId(),
                          session()->bootloaderSectorSize());
    if (path.isEmpty() || !image.openFile()) {
        imageLabel->setText(tr("No firmware yet"));
        return;
    }
    pathEdit->setText(path);
    imageLabel->setText(tr("Version %1, %2 bytes").arg(image.getFirmwareVersion()).arg(image.getImageBufferSize()));
}

void DeviceFirmwarePage::showBootloader()
{
    bootloaderLabel->setText(session()->bootloaderInfo().isEmpty()
                                 ? tr("Not entered yet")
                                 : tr("Device 0x%1, sectors of %2 bytes")
                                       .arg(session()->bootloaderDeviceId(), 4, 16, QLatin1Char('0'))
                                       .arg(session()->bootloaderSectorSize()));
}
