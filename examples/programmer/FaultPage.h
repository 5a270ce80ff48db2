#ifndef FAULTPAGE_H
#define FAULTPAGE_H

#include "Page.h"

class QComboBox;
class QLabel;
class QListWidget;
class QToolButton;

/// Lets the simulated programmer fail: a line for the fault, the faults that are planned, a button to forget them.
class FaultPage : public Page
{
    Q_OBJECT

public:
    explicit FaultPage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void setupForm();
    void addFault();
    void showFaults();

    QComboBox *faultEdit = nullptr;
    QToolButton *addButton = nullptr;
    QLabel *problemLabel = nullptr;
    QListWidget *faultList = nullptr;
    QToolButton *clearButton = nullptr;
};

#endif // FAULTPAGE_H
