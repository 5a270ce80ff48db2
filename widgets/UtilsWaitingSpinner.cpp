#include "UtilsWaitingSpinner.h"

#include "WaitingSpinnerWidget.h"

#include <QLabel>
#include <QLayout>

static constexpr int ContentSpacing = 20;

UtilsWaitingSpinner::UtilsWaitingSpinner(QWidget *parent, QString message)
    : UtilsDialogFrame(parent)
    , m_content(new QWidget)
    , m_contentLayout(new QVBoxLayout(m_content))
    , m_message(new QLabel)
    , m_spinner(new WaitingSpinnerWidget(this, false, false))
    , m_spinnerLayout(new QHBoxLayout)
{
    disableInputControls();

    m_contentLayout->setSpacing(ContentSpacing);
    m_message->setAlignment(Qt::AlignCenter);
    m_contentLayout->addWidget(m_message);
    m_contentLayout->addLayout(m_spinnerLayout);
    m_spinnerLayout->addWidget(m_spinner);
    setContent(m_content);

    setMessage(message);
}

UtilsWaitingSpinner::~UtilsWaitingSpinner() = default;

void UtilsWaitingSpinner::setMessage(QString message)
{
    m_message->setText(message);
    setAccessibleName(message);
}

void UtilsWaitingSpinner::setCountdown(int seconds)
{
    m_spinner->setCountdown(seconds);
}

void UtilsWaitingSpinner::showEvent(QShowEvent *event)
{
    UtilsDialogFrame::showEvent(event);
    m_spinner->start();
}
