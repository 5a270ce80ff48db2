#include "UtilsHidingWidget.h"

#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QSpacerItem>

static constexpr QSize InitialSize(400, 300);
static constexpr QSize VerticalSpacer(20, 0);
static constexpr QSize HorizontalSpacer(0, 20);
static constexpr int CardMargin = 20;

static QSpacerItem *newVerticalSpacer()
{
    return new QSpacerItem(VerticalSpacer.width(), VerticalSpacer.height(), QSizePolicy::Minimum,
                           QSizePolicy::Expanding);
}

static QSpacerItem *newHorizontalSpacer()
{
    return new QSpacerItem(HorizontalSpacer.width(), HorizontalSpacer.height(), QSizePolicy::Expanding,
                           QSizePolicy::Minimum);
}

UtilsHidingWidget::UtilsHidingWidget(QWidget *parent)
    : QFrame(parent)
    , m_coveredWidget(parent)
{
    setupForm();
    if (m_coveredWidget)
        m_coveredWidget->installEventFilter(this);
}

UtilsHidingWidget::~UtilsHidingWidget() = default;

void UtilsHidingWidget::setupForm()
{
    setObjectName(QStringLiteral("UtilsHidingWidget"));
    resize(InitialSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Raised);
    setWindowTitle(tr("Frame"));
    setProperty("background-color", QStringLiteral("semi-transparent"));

    auto *layout = new QVBoxLayout(this);
    layout->setObjectName(QStringLiteral("verticalLayout"));
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addItem(newVerticalSpacer());
    layout->addWidget(createCardRow());
    layout->addItem(newVerticalSpacer());
}

QFrame *UtilsHidingWidget::createCardRow()
{
    auto *row = new QFrame(this);
    row->setObjectName(QStringLiteral("frame_1"));
    row->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    row->setStyleSheet(QStringLiteral("QFrame#frame_1\n{\nbackground-color: rgba( 0, 0, 0, 0);\n}"));
    row->setFrameShape(QFrame::StyledPanel);
    row->setFrameShadow(QFrame::Raised);
    row->setProperty("background-color", QStringLiteral("semi-transparent"));

    auto *layout = new QHBoxLayout(row);
    layout->setObjectName(QStringLiteral("horizontalLayout_3"));
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addItem(newHorizontalSpacer());
    layout->addWidget(createCard(row));
    layout->addItem(newHorizontalSpacer());
    return row;
}

QFrame *UtilsHidingWidget::createCard(QWidget *parent)
{
    m_card = new QFrame(parent);
    m_card->setObjectName(QStringLiteral("frame_2"));
    m_card->setFrameShape(QFrame::StyledPanel);
    m_card->setFrameShadow(QFrame::Raised);
    m_card->setProperty("border-radius", true);
    m_card->setProperty("frame-border-color", QStringLiteral("gray_level4"));
    m_card->setProperty("background-color", QStringLiteral("main"));

    auto *layout = new QHBoxLayout(m_card);
    layout->setObjectName(QStringLiteral("horizontalLayout_2"));
    layout->setContentsMargins(CardMargin, CardMargin, CardMargin, CardMargin);
    m_infoLabel = new QLabel(m_card);
    m_infoLabel->setObjectName(QStringLiteral("label_info"));
    m_infoLabel->setAlignment(Qt::AlignCenter);
    m_infoLabel->setProperty("title", false);
    m_infoLabel->setText(tr("Message"));
    layout->addWidget(m_infoLabel);
    return m_card;
}

void UtilsHidingWidget::SetInfoText(QString text)
{
    m_infoLabel->setText(text);
}

void UtilsHidingWidget::SetInfoVisible(bool visible)
{
    m_card->setVisible(visible);
}

bool UtilsHidingWidget::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        followCoveredWidget();
    return false;
}

void UtilsHidingWidget::showEvent(QShowEvent *event)
{
    followCoveredWidget();
    QFrame::showEvent(event);
}

void UtilsHidingWidget::followCoveredWidget()
{
    if (m_coveredWidget)
        setFixedSize(m_coveredWidget->size());
}
