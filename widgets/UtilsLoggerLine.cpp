#include "UtilsLoggerLine.h"

#include "UtilsSequentialAnimation.h"

#include <QEasingCurve>
#include <QFontMetrics>
#include <QFrame>
#include <QLabel>
#include <QListWidgetItem>
#include <QPropertyAnimation>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(336, 16);
constexpr int Border = 1; // pixels around the text

void repolish(QWidget *widget)
{
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

UtilsLoggerLine::UtilsLoggerLine(QWidget *parent, int duration, QListWidgetItem *listItem)
    : QWidget(parent)
    , animationDuration(qMax(0, duration))
    , item(listItem)
{
    setupForm();
    if (animationDuration == 0)
        return;

    hidingFrame = new QFrame(this);
    hidingFrame->setFrameStyle(0);
    if (parent)
        hidingFrame->setStyleSheet(parent->styleSheet());
    hidingFrame->show();
    if (item)
        item->setHidden(true);
}

UtilsLoggerLine::~UtilsLoggerLine()
{
    delete hidingFrame;
    animation.clear();
    // Not left to QObject: a reveal that is still running reports its end to this line, which must be whole then.
    qDeleteAll(findChildren<QPropertyAnimation *>(Qt::FindDirectChildrenOnly));
}

void UtilsLoggerLine::setupForm()
{
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("UtilsLoggerLine"));
    resize(InitialSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setContentsMargins(Border, Border, Border, Border);

    verticalLayout = new QVBoxLayout(this);
    verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
    verticalLayout->setSpacing(0);
    verticalLayout->setContentsMargins(0, 0, 0, 0);

    label = new QLabel(this);
    label->setObjectName(QStringLiteral("label"));
    label->setProperty("font-size", QStringLiteral("level2"));
    label->setStyleSheet(QStringLiteral("border: 0px; padding: 0px;"));
    verticalLayout->addWidget(label);

    setWindowTitle(tr("Form"));
    label->setText(tr("OVO JE NEKI TEXT"));
}

void UtilsLoggerLine::setText(QString text)
{
    label->clear();
    appendText(text);
}

void UtilsLoggerLine::appendText(QString text)
{
    const QString oldText = label->text();
    const QString newText = oldText + text.section(QLatin1Char('\n'), 0, 0);
    if (item)
        item->setData(Qt::AccessibleTextRole, newText); // the row has no text of its own to read out
    if (animationDuration == 0) {
        label->setText(newText);
        return;
    }

    repolish(label); // the font that is measured is the one the style sheet gives it
    const QFontMetrics metrics(label->font());
    animation = new QPropertyAnimation(this, "hidingFrameStartPos", this);
    animation->setStartValue(metrics.size(Qt::TextSingleLine, oldText).width());
    animation->setEndValue(metrics.size(Qt::TextSingleLine, newText).width());
    animation->setEasingCurve(QEasingCurve::InOutQuad);
    animation->setDuration(animationDuration);
    connect(animation, &QAbstractAnimation::stateChanged, this, &UtilsLoggerLine::slotAnimationStateChanged);
    if (queue)
        queue->AddAnimation(animation);
    else
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    label->setText(newText);
}

QString UtilsLoggerLine::getText() const
{
    return label->text();
}

void UtilsLoggerLine::setType(LOGGER_MESSAGE_TYPE type)
{
    messageType = type;
    switch (type) {
    case LOGGER_MESSAGE_DEFAULT:
        label->setProperty("log-type", QStringLiteral("default"));
        break;
    case LOGGER_MESSAGE_INFO:
        label->setProperty("log-type", QStringLiteral("info"));
        break;
    case LOGGER_MESSAGE_WARNING:
        label->setProperty("log-type", QStringLiteral("warning"));
        break;
    case LOGGER_MESSAGE_SUCCESS:
        label->setProperty("log-type", QStringLiteral("success"));
        break;
    case LOGGER_MESSAGE_ERROR:
        label->setProperty("log-type", QStringLiteral("error"));
        break;
    }
}

LOGGER_MESSAGE_TYPE UtilsLoggerLine::getType() const
{
    return messageType;
}

void UtilsLoggerLine::setSequentAnimation(UtilsSequentialAnimation *animationQueue)
{
    queue = animationQueue;
}

bool UtilsLoggerLine::setProperty(const char *name, const QVariant &value)
{
    const bool plainResult = QWidget::setProperty(name, value);
    if (!isBackgroundColor(name))
        return plainResult;
    setStyleProperty(label, name, value);
    if (hidingFrame)
        setStyleProperty(hidingFrame, name, value);
    return true;
}

// Only the characters of this name are compared, so a longer one that begins with it is the same.
bool UtilsLoggerLine::isBackgroundColor(const char *name)
{
    constexpr char backgroundColor[] = "background-color";
    return qstrncmp(name, backgroundColor, sizeof(backgroundColor) - 1) == 0;
}

// A style sheet looks at dynamic properties when it polishes a widget, not when they change; the first polish is Qt's.
void UtilsLoggerLine::setStyleProperty(QWidget *widget, const char *name, const QVariant &value)
{
    widget->QObject::setProperty(name, value);
    if (widget->testAttribute(Qt::WA_WState_Polished))
        repolish(widget);
}

int UtilsLoggerLine::getHidingFrameStartPos() const
{
    return hidingFrameStartPos;
}

void UtilsLoggerLine::setHidingFrameStartPos(int position)
{
    hidingFrameStartPos = position;
    update();
}

void UtilsLoggerLine::slotAnimationStateChanged(QAbstractAnimation::State newState, QAbstractAnimation::State)
{
    if (newState == QAbstractAnimation::Running && item)
        item->setHidden(false);
}

void UtilsLoggerLine::paintEvent(QPaintEvent *event)
{
    if (hidingFrame)
        placeHidingFrame();
    QWidget::paintEvent(event);
}

void UtilsLoggerLine::placeHidingFrame()
{
    hidingFrameHeight = height() - 2 * Border;
    hidingFrameWidth = width() - 2 * Border - hidingFrameStartPos;
    if (hidingFrameWidth > 0)
        hidingFrame->setFixedSize(hidingFrameWidth, hidingFrameHeight);
    // A label sets text of a right-to-left script at its right edge, where the reveal has to begin then.
    const Qt::LayoutDirection direction = label->text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    const QRect covered(QPoint(hidingFrameStartPos + Border, Border), hidingFrame->size());
    hidingFrame->move(QStyle::visualRect(direction, rect(), covered).topLeft());
    // Where no style sheet gives the list a background, its viewport fills its own, and so must what hides the text.
    hidingFrame->setAutoFillBackground(parentWidget() && parentWidget()->autoFillBackground());
}

// Clearing the list deletes the item at once, but this line only when the event loop comes to it. Until then the line
// stands apart: no longer among those of the list, and with nothing left that it could touch.
void UtilsLoggerLine::leaveList(QWidget *newParent)
{
    item = nullptr;
    queue.clear();
    setParent(newParent);
}
