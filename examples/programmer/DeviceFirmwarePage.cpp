#include "DeviceFirmwarePage.h"

#include "OperationButtons.h"

#include <UtilsBootloader.h>

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

DeviceFirmwarePage::DeviceFirmwarePage(ProgrammerSession *programmerSession, QWidget *parent)
    : QWidget(parent)
    , session(programmerSession)
{
    setupForm();
    connect(session, &ProgrammerSession::deviceImageChanged, this, &DeviceFirmwarePage::showImage);
    connect(session, &ProgrammerSession::completed, this, &DeviceFirmwarePage::showBootloader);
    connect(session, &ProgrammerSession::linkChanged, this,
            [this] { wifiBox->setChecked(session->link() == TSelectedDevice::WiFi); });
    showImage();
    showBootloader();
}

void DeviceFirmwarePage::setupForm()
{
    setObjectName(QStringLiteral("deviceFirmwarePage"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    layout->addLayout(form);

    auto *row = new QHBoxLayout;
    pathEdit = new QLineEdit;
    pathEdit->setObjectName(QStringLiteral("deviceImagePath"));
    pathEdit->setPlaceholderText(tr("A firmware of the device"));
    connect(pathEdit, &QLineEdit::returnPressed, this, &DeviceFirmwarePage::loadImage);
    row->addWidget(pathEdit);
    auto *browse = new QToolButton;
    browse->setObjectName(QStringLiteral("browseDeviceImage"));
    browse->setText(tr("Choose..."));
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

    wifiBox = new QCheckBox(tr("Reach the device by WiFi"));
    wifiBox->setObjectName(QStringLiteral("overWiFi"));
    wifiBox->setChecked(session->link() == TSelectedDevice::WiFi);
    connect(wifiBox, &QCheckBox::clicked, this, [this](bool checked) {
        if (!session->selectLink(checked ? TSelectedDevice::WiFi : TSelectedDevice::Usb))
            wifiBox->setChecked(session->link() == TSelectedDevice::WiFi);
    });
    form->addRow(QString(), wifiBox);
    layout->addStretch();

    auto *buttons = new OperationButtons(session, ProgrammerSession::Subject::Device, this);
    connect(buttons, &OperationButtons::requested, this, &DeviceFirmwarePage::requested);
    layout->addWidget(buttons);
}

void DeviceFirmwarePage::chooseImage()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Firmware of the device"), session->deviceImagePath());
    if (path.isEmpty())
        return;
    pathEdit->setText(path);
    loadImage();
}

void DeviceFirmwarePage::loadImage()
{
    QString error;
    if (!session->setDeviceImage(pathEdit->text(), &error))
        Q_EMIT failed(error);
}

void DeviceFirmwarePage::showImage()
{
    const QString path = session->deviceImagePath();
    UtilsBootloader image(path, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, session->bootloaderDeviceId(),
                          session->bootloaderSectorSize());
    if (path.isEmpty() || !image.openFile()) {
        imageLabel->setText(tr("No firmware yet"));
        return;
    }
    pathEdit->setText(path);
    imageLabel->setText(tr("Version %1, %2 bytes").arg(image.getFirmwareVersion()).arg(image.getImageBufferSize()));
}

void DeviceFirmwarePage::showBootloader()
{
    bootloaderLabel->setText(session->bootloaderInfo().isEmpty()
                                 ? tr("Not entered yet")
                                 : tr("Device 0x%1, sectors of %2 bytes")
                                       .arg(session->bootloaderDeviceId(), 4, 16, QLatin1Char('0'))
                                       .arg(session->bootloaderSectorSize()));
}
