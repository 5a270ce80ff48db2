#ifndef POWERMODULEPAGE_H
#define POWERMODULEPAGE_H

#include "Page.h"

class QLabel;

/// The page for the power module itself: what it says of itself, and the steps of an update of its firmware, whose
/// image comes with the library.
class PowerModulePage : public Page
{
    Q_OBJECT

public:
    explicit PowerModulePage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void showInfo();

    QLabel *infoLabel;
};

#endif // POWERMODULEPAGE_H
