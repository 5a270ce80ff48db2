#ifndef WIFIPAGE_H
#define WIFIPAGE_H

#include "Page.h"

class UtilsToggleSwitch;

/// The page for the WiFi of the device: the link that operations use, and the server in the device.
class WiFiPage : public Page
{
    Q_OBJECT

public:
    explicit WiFiPage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void chooseLink(bool overWiFi);
    void showLink();

    UtilsToggleSwitch *linkSwitch;
};

#endif // WIFIPAGE_H
