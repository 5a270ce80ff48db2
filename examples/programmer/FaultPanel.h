#ifndef FAULTPANEL_H
#define FAULTPANEL_H

#include <QGroupBox>

class ProgrammerSession;
class QComboBox;
class QLabel;
class QListWidget;
class QToolButton;

/// Lets the simulated programmer fail: a line for the fault, the faults that are planned, a button to forget them.
class FaultPanel : public QGroupBox
{
    Q_OBJECT

public:
    FaultPanel(ProgrammerSession *session, QWidget *parent);

private:
    void setupForm();
    void addFault();
    void showFaults();

    ProgrammerSession *session;
    QComboBox *faultEdit = nullptr;
    QToolButton *addButton = nullptr;
    QLabel *problemLabel = nullptr;
    QListWidget *faultList = nullptr;
    QToolButton *clearButton = nullptr;
};

#endif // FAULTPANEL_H
