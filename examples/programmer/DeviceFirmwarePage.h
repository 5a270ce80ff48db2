#ifndef DEVICEFIRMWAREPAGE_H
#define DEVICEFIRMWAREPAGE_H

#include "Page.h"

class QLabel;
class QLineEdit;

/// The page for the firmware of the device itself: the image, what the bootloader says of itself, and the three steps
/// of an update.
class DeviceFirmwarePage : public Page
{
    Q_OBJECT

public:
    explicit DeviceFirmwarePage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void setupForm();
    void chooseImage();
    void loadImage();
    void showImage();
    void showBootloader();

    QLineEdit *pathEdit = nullptr;
    QLabel *imageLabel = nullptr;
    QLabel *bootloaderLabel = nullptr;
};

#endif // DEVICEFIRMWAREPAGE_H
