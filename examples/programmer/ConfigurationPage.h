#ifndef CONFIGURATIONPAGE_H
#define CONFIGURATIONPAGE_H

#include "Page.h"

class QLineEdit;
class QSpinBox;
class QWidget;
class UtilsToggleSwitch;

/// The page for the settings that the device stores: they are read, changed, and stored again.
class ConfigurationPage : public Page
{
    Q_OBJECT

public:
    explicit ConfigurationPage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void setupForm();
    void showConfiguration();
    void takeChanges();

    QWidget *form = nullptr;
    QLineEdit *nameEdit = nullptr;
    QSpinBox *clockBox = nullptr;
    UtilsToggleSwitch *wifiSwitch = nullptr;
    QLineEdit *networkEdit = nullptr;
    QLineEdit *passwordEdit = nullptr;
};

#endif // CONFIGURATIONPAGE_H
