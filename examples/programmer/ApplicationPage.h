#ifndef APPLICATIONPAGE_H
#define APPLICATIONPAGE_H

#include "Page.h"

class UtilsToggleSwitch;

/// The page for the application itself: what its dialogs do, and its look.
class ApplicationPage : public Page
{
    Q_OBJECT

public:
    /// @p autoClose is what the switch for the dialogs shows at first.
    ApplicationPage(ProgrammerSession *session, bool autoClose, QWidget *parent = nullptr);

    void setAutoClose(bool enabled);

Q_SIGNALS:
    void autoCloseChanged(bool enabled);

private:
    UtilsToggleSwitch *autoCloseSwitch;
};

#endif // APPLICATIONPAGE_H
