#ifndef POWERMODULEPAGE_H
#define POWERMODULEPAGE_H

#include "ProgrammerSession.h"

#include <QWidget>

/// The page for the firmware of the power module, whose image comes with the library: the steps of an update.
class PowerModulePage : public QWidget
{
    Q_OBJECT

public:
    PowerModulePage(ProgrammerSession *session, QWidget *parent);

Q_SIGNALS:
    void requested(ProgrammerSession::Operation operation);
};

#endif // POWERMODULEPAGE_H
