#include "FaultPanel.h"

#include "ProgrammerSession.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QVBoxLayout>

FaultPanel::FaultPanel(ProgrammerSession *programmerSession, QWidget *parent)
    : QGroupBox(parent)
    , session(programmerSession)
{
    setupForm();
    connect(addButton, &QToolButton::clicked, this, &FaultPanel::addFault);
    connect(faultEdit->lineEdit(), &QLineEdit::returnPressed, this, &FaultPanel::addFault);
    connect(clearButton, &QToolButton::clicked, session, &ProgrammerSession::clearFaults);
    connect(session, &ProgrammerSession::faultsChanged, this, &FaultPanel::showFaults);
    showFaults();
}

void FaultPanel::setupForm()
{
    setObjectName(QStringLiteral("faultPanel"));
    setTitle(tr("Faults of the simulated programmer"));
    auto *layout = new QVBoxLayout(this);

    auto *hint = new QLabel(tr("A name fails with a status of its own kind. Or choose it: device-connect=38, "
                               "write@block=3, erase=hang, verify-mismatch."),
                            this);
    hint->setWordWrap(true);
    layout->addWidget(hint);

    auto *row = new QHBoxLayout;
    faultEdit = new QComboBox(this);
    faultEdit->setObjectName(QStringLiteral("faultEdit"));
    faultEdit->setAccessibleName(tr("Fault to add"));
    faultEdit->setEditable(true);
    faultEdit->setInsertPolicy(QComboBox::NoInsert);
    faultEdit->addItems(SimulatedProgrammer::faultNames());
    faultEdit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    faultEdit->setMinimumContentsLength(14);
    row->addWidget(faultEdit);
    addButton = new QToolButton(this);
    addButton->setObjectName(QStringLiteral("addFault"));
    addButton->setText(tr("Add"));
    row->addWidget(addButton);
    layout->addLayout(row);

    problemLabel = new QLabel(this);
    problemLabel->setObjectName(QStringLiteral("faultProblem"));
    problemLabel->setProperty("log-type", QStringLiteral("error"));
    problemLabel->setWordWrap(true);
    problemLabel->hide();
    layout->addWidget(problemLabel);

    faultList = new QListWidget(this);
    faultList->setObjectName(QStringLiteral("faults"));
    faultList->setAccessibleName(tr("Planned faults"));
    layout->addWidget(faultList);

    clearButton = new QToolButton(this);
    clearButton->setObjectName(QStringLiteral("clearFaults"));
    clearButton->setText(tr("Forget all"));
    layout->addWidget(clearButton, 0, Qt::AlignRight);
}

void FaultPanel::addFault()
{
    QString problem;
    session->addFault(faultEdit->currentText().trimmed(), &problem);
    problemLabel->setText(problem);
    problemLabel->setVisible(!problem.isEmpty());
}

void FaultPanel::showFaults()
{
    faultList->clear();
    faultList->addItems(session->faults());
    clearButton->setEnabled(faultList->count() > 0);
}
