#ifndef DEVICEFIRMWAREPAGE_H
#define DEVICEFIRMWAREPAGE_H

#include "ProgrammerSession.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;

/// The page for the firmware of the device itself: the image, what the bootloader says of itself, the three steps of an
/// update, and the link that is used.
class DeviceFirmwarePage : public QWidget
{
    Q_OBJECT

public:
    DeviceFirmwarePage(ProgrammerSession *session, QWidget *parent);

Q_SIGNALS:
    void requested(ProgrammerSession::Operation operation);
    /// A file cannot be used; @p message says why.
    void failed(const QString &message);

private:
    void setupForm();
    void chooseImage();
    void loadImage();
    void showImage();
    void showBootloader();

    ProgrammerSession *session;
    QLineEdit *pathEdit = nullptr;
    QLabel *imageLabel = nullptr;
    QLabel *bootloaderLabel = nullptr;
    QCheckBox *wifiBox = nullptr;
};

#endif // DEVICEFIRMWAREPAGE_H
