#include "FaultPage.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QVBoxLayout>

FaultPage::FaultPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("faultPage"), tr("Simulated faults"), QStringLiteral("programmer/faults.html"),
           parent)
{
    setupForm();
    connect(addButton, &QToolButton::clicked, this, &FaultPage::addFault);
    connect(faultEdit->lineEdit(), &QLineEdit::returnPressed, this, &FaultPage::addFault);
    connect(clearButton, &QToolButton::clicked, session, &ProgrammerSession::clearFaults);
    connect(session, &ProgrammerSession::faultsChanged, this, &FaultPage::showFaults);
    showFaults();
}

void FaultPage::setupForm()
{
    addText(tr("The simulated programmer fails on demand. A name fails with a status of its own kind. Or choose it: "
               "device-connect=38, write@block=3, erase=hang, verify-mismatch."));

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
    addButton->setFocusPolicy(Qt::StrongFocus);
    row->addWidget(addButton);
    body()->addLayout(row);

    problemLabel = new QLabel(this);
    problemLabel->setObjectName(QStringLiteral("faultProblem"));
    problemLabel->setProperty("log-type", QStringLiteral("error"));
    problemLabel->setWordWrap(true);
    problemLabel->hide();
    body()->addWidget(problemLabel);

    faultList = new QListWidget(this);
    faultList->setObjectName(QStringLiteral("faults"));
    faultList->setAccessibleName(tr("Planned faults"));
    body()->addWidget(faultList, 1);

    clearButton = new QToolButton(this);
    clearButton->setObjectName(QStringLiteral("clearFaults"));
    clearButton->setText(tr("Forget all"));
    clearButton->setFocusPolicy(Qt::StrongFocus);
    body()->addWidget(clearButton, 0, Qt::AlignRight);
}

void FaultPage::addFault()
{
    QString problem;
    session()->addFault(faultEdit->currentText().trimmed(), &problem);
    problemLabel->setText(problem);
    problemLabel->setVisible(!problem.isEmpty());
}

void FaultPage::showFaults()
{
    faultList->clear();
    faultList->addItems(session()->faults());
    clearButton->setEnabled(faultList->count() > 0);
}
