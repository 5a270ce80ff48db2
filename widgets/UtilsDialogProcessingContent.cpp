#include "UtilsDialogProcessingContent.h"

#include "UtilsLogger.h"
#include "UtilsMisc.h"
#include "UtilsProgressBar.h"

#include <QEasingCurve>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPropertyAnimation>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(350, 144);
constexpr int FixedWidth = 350;
constexpr int SideMargin = 8;
constexpr int ProgressAreaSideMargin = 12;
constexpr int LineHeight = 1;
constexpr int LoggerHeight = 105;
constexpr int MaxNumberOfLines = 1000;
constexpr int FormLineDuration = 400; // milliseconds
constexpr int LineDuration = 250;
constexpr int ProgressBarHeight = 5;
constexpr unsigned int ProgressBarDuration = 100; // milliseconds
constexpr int ButtonWidth = 115;
constexpr int ButtonHeight = 27;
constexpr int ExpandDuration = 150; // milliseconds
constexpr char NoBorder[] = "border: 0px;";

QFrame *createLine(const QString &name, QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setObjectName(name);
    line->setMaximumHeight(LineHeight);
    line->setProperty("frame-type", QStringLiteral("line-horizontal"));
    line->setProperty("frame-border-color", QStringLiteral("gray_level4"));
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QSpacerItem *createSpacer(int height)
{
    return new QSpacerItem(20, height, QSizePolicy::Minimum, QSizePolicy::Fixed);
}

} // namespace

UtilsDialogProcessingContent::UtilsDialogProcessingContent(QWidget *parent)
    : QWidget(parent)
{
    setupForm();

    progressBar = new UtilsProgressBar(this);
    progressBar->setObjectName(QStringLiteral("progressBar"));
    progressBar->setAccessibleName(tr("Progress"));
    progressBar->setAnimationDuration(ProgressBarDuration);
    progressBar->setTextVisible(false);
    UtilsMisc::ReplaceWidgets(progressBarPlaceholder, progressBar); // which deletes the placeholder
    progressBarPlaceholder = nullptr;
    progressBar->setStyleSheet(QLatin1String(NoBorder));

    logger->setLineAnimationDuration(LineDuration);
}

UtilsDialogProcessingContent::~UtilsDialogProcessingContent() = default;

void UtilsDialogProcessingContent::setupForm()
{
    setObjectName(QStringLiteral("UtilsDialogProcessingContent"));
    resize(InitialSize);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    setFixedWidth(FixedWidth);
    setWindowTitle(tr("Form"));

    verticalLayout = new QVBoxLayout(this);
    verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
    verticalLayout->setSpacing(0);
    verticalLayout->setContentsMargins(SideMargin, 0, SideMargin, 0);

    labelMessage = new QLabel(this);
    labelMessage->setObjectName(QStringLiteral("label_message"));
    labelMessage->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    labelMessage->setAlignment(Qt::AlignCenter);
    labelMessage->setText(tr("TextLabel"));

    verticalLayout->addWidget(labelMessage);
    verticalLayout->addItem(createSpacer(4));
    verticalLayout->addWidget(createLine(QStringLiteral("line"), this));
    verticalLayout->addItem(createSpacer(3));
    verticalLayout->addWidget(createProgressArea());
    verticalLayout->addWidget(createLine(QStringLiteral("line_2"), this));
    verticalLayout->addItem(createSpacer(12));
    verticalLayout->addWidget(createButtonArea());
}

QWidget *UtilsDialogProcessingContent::createProgressArea()
{
    auto *area = new QWidget(this);
    area->setObjectName(QStringLiteral("widget_2"));
    auto *layout = new QVBoxLayout(area);
    layout->setObjectName(QStringLiteral("verticalLayout_2"));
    layout->setSpacing(0);
    layout->setContentsMargins(ProgressAreaSideMargin, 0, ProgressAreaSideMargin, 0);

    logger = new UtilsLogger(area, FormLineDuration, MaxNumberOfLines);
    logger->setObjectName(QStringLiteral("logger"));
    logger->setFixedHeight(LoggerHeight);
    logger->setFocusPolicy(Qt::StrongFocus);
    logger->setFrameShape(QFrame::StyledPanel);
    logger->setFrameShadow(QFrame::Raised);
    logger->setProperty("background-color", QStringLiteral("main"));
    layout->addWidget(logger);

    // Only holds the place and the size limits for the progress bar of our own.
    auto *placeholder = new QProgressBar(area);
    placeholder->setObjectName(QStringLiteral("progressBar_tmp"));
    placeholder->setMaximumHeight(ProgressBarHeight);
    placeholder->setStyleSheet(QLatin1String(NoBorder));
    placeholder->setValue(0);
    placeholder->setAlignment(Qt::AlignCenter);
    placeholder->setTextVisible(false);
    layout->addWidget(placeholder);
    progressBarPlaceholder = placeholder;
    return area;
}

QWidget *UtilsDialogProcessingContent::createButtonArea()
{
    buttonArea = new QWidget(this);
    buttonArea->setObjectName(QStringLiteral("widget_button"));
    buttonArea->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    buttonArea->setMinimumSize(0, 0);
    auto *layout = new QHBoxLayout(buttonArea);
    layout->setObjectName(QStringLiteral("horizontalLayout"));
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);

    // Its height is that of its area, and so nothing until the area is expanded.
    toolButton = new QToolButton(buttonArea);
    toolButton->setObjectName(QStringLiteral("toolButton"));
    toolButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    toolButton->setMinimumWidth(ButtonWidth);
    toolButton->setFocusPolicy(Qt::NoFocus); // what is not seen must not be pressed by a key
    toolButton->installEventFilter(this);
    layout->addWidget(toolButton);
    return buttonArea;
}

// On some desktops Return and Enter press the button that has the focus. These leave them to the dialog everywhere.
bool UtilsDialogProcessingContent::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == toolButton && (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->ignore(); // and so it goes on to the parent
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void UtilsDialogProcessingContent::setMessage(QString message)
{
    labelMessage->setText(message);
}

UtilsLogger *UtilsDialogProcessingContent::getLogger() const
{
    return logger;
}

UtilsProgressBar *UtilsDialogProcessingContent::getProgressBar() const
{
    return progressBar;
}

QToolButton *UtilsDialogProcessingContent::getButton() const
{
    return toolButton;
}

QLabel *UtilsDialogProcessingContent::getMessageLabel() const
{
    return labelMessage;
}

void UtilsDialogProcessingContent::expandButton()
{
    if (isButtonExpanded) // growing again would begin with collapsing
        return;
    isButtonExpanded = true;
    auto *animation = new QPropertyAnimation(buttonArea, "minimumHeight");
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    animation->setDuration(ExpandDuration);
    animation->setStartValue(0);
    animation->setEndValue(ButtonHeight);
    connect(animation, &QAbstractAnimation::finished, this, &UtilsDialogProcessingContent::slotExpandAnimFinished);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void UtilsDialogProcessingContent::slotExpandAnimFinished()
{
    toolButton->setText(tr("CLOSE"));
    toolButton->setFocusPolicy(Qt::StrongFocus);
}
