#include "UtilsToggleSwitch.h"

#include "UtilsMisc.h"

#include <QEnterEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QStyle>

namespace {

constexpr int ThumbDuration = 120; // milliseconds from one end to the other
constexpr int BorderAlpha = 200;
constexpr double BorderWidth = 1.0;
constexpr double FocusWidth = 2.0;
constexpr double Opaque = 1.0;

constexpr char HoverProperty[] = "hover";

} // namespace

UtilsToggleSwitch::UtilsToggleSwitch(QWidget *parent)
    : QAbstractButton(parent)
    , m_thumbAnimation(new QPropertyAnimation(this, "thumbXPos", this))
{
    m_thumbAnimation->setEasingCurve(QEasingCurve::InOutQuad);
    updatePositions();
    setThumbXPos(m_thumbXOff);

    connect(this, &QAbstractButton::toggled, this, &UtilsToggleSwitch::slotToggled);
    installEventFilter(this);
    setCheckable(true);
    setAttribute(Qt::WA_Hover); // not every style asks for hover events of its buttons
}

UtilsToggleSwitch::~UtilsToggleSwitch() = default;

bool UtilsToggleSwitch::getState() const
{
    return m_state;
}

void UtilsToggleSwitch::slotToggled(bool checked)
{
    m_state = checked;
    startAnimation(checked);
}

void UtilsToggleSwitch::startAnimation(bool on)
{
    m_thumbAnimation->stop();
    m_thumbAnimation->setDuration(ThumbDuration);
    m_thumbAnimation->setStartValue(m_thumbXPos);
    m_thumbAnimation->setEndValue(on ? m_thumbXOn : m_thumbXOff);
    m_thumbAnimation->start(QAbstractAnimation::KeepWhenStopped);
}

void UtilsToggleSwitch::setOpacity(double opacity)
{
    m_opacity = opacity;
    update();
}

void UtilsToggleSwitch::toggleOnMouseClick(bool toggle)
{
    m_toggleOnMouseClick = toggle;
}

void UtilsToggleSwitch::setColors(const QColor &backgroundOff, const QColor &thumb)
{
    setBackgroundColorOff(backgroundOff);
    setThumbColor(thumb);
}

int UtilsToggleSwitch::getThumbXPos() const
{
    return m_thumbXPos;
}

void UtilsToggleSwitch::setThumbXPos(int x)
{
    m_thumbXPos = x;
    update();
}

QColor UtilsToggleSwitch::getThumbColor() const
{
    return m_thumbColor;
}

void UtilsToggleSwitch::setThumbColor(QColor color)
{
    m_thumbColor = color;
    update();
}

QColor UtilsToggleSwitch::getBorderColor() const
{
    return m_borderColor;
}

void UtilsToggleSwitch::setBorderColor(QColor color)
{
    m_borderColor = color;
    update();
}

QColor UtilsToggleSwitch::getBackgroundColorOff() const
{
    return m_backgroundColorOff;
}

void UtilsToggleSwitch::setBackgroundColorOff(QColor color)
{
    m_backgroundColorOff = color;
    update();
}

QColor UtilsToggleSwitch::getBackgroundColorOn() const
{
    return m_backgroundColorOn;
}

void UtilsToggleSwitch::setBackgroundColorOn(QColor color)
{
    m_backgroundColorOn = color;
    update();
}

QSize UtilsToggleSwitch::sizeHint() const
{
    return {2 * height(), height()};
}

bool UtilsToggleSwitch::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != this)
        return QAbstractButton::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonRelease:
        // A filter sees the events of a disabled widget too.
        if (m_toggleOnMouseClick || !isEnabled())
            break;
        event->accept();
        setDown(false); // the button does not learn of the release
        Q_EMIT clicked(isChecked());
        return true;
    case QEvent::HoverEnter:
        UtilsMisc::SetProperty(this, HoverProperty, true);
        return true;
    case QEvent::HoverLeave:
        UtilsMisc::SetProperty(this, HoverProperty, false);
        return true;
    default:
        break;
    }
    return QAbstractButton::eventFilter(watched, event);
}

void UtilsToggleSwitch::paintEvent(QPaintEvent *)
{
    QColor border = m_borderColor;
    border.setAlpha(BorderAlpha);
    const double radius = height() / 2.0;

    QPainter painter(this);
    painter.setBrush(m_state ? m_backgroundColorOn : m_backgroundColorOff);
    painter.setPen(QPen(border, BorderWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter.setOpacity(m_opacity);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawRoundedRect(rect(), radius, radius);

    painter.setPen(Qt::NoPen);
    painter.setBrush(m_thumbColor);
    painter.setOpacity(Opaque);
    painter.drawEllipse(QPointF(m_thumbXPos, m_thumbY), radius, radius);

    // The focus is shown to whoever moves it by keyboard, as buttons of the style do it.
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
        paintFocus(&painter);
}

void UtilsToggleSwitch::paintFocus(QPainter *painter)
{
    constexpr double inset = FocusWidth / 2;
    const double radius = height() / 2.0 - inset;
    painter->setPen(QPen(palette().color(QPalette::WindowText), FocusWidth));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

void UtilsToggleSwitch::resizeEvent(QResizeEvent *event)
{
    QAbstractButton::resizeEvent(event);
    updatePositions();
    if (m_state)
        setThumbXPos(m_thumbXOn);
    startAnimation(m_state);
}

void UtilsToggleSwitch::enterEvent(QEnterEvent *event)
{
    setCursor(Qt::PointingHandCursor);
    QAbstractButton::enterEvent(event);
}

void UtilsToggleSwitch::changeEvent(QEvent *event)
{
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) {
        style()->unpolish(this);
        style()->polish(this);
    }
}

void UtilsToggleSwitch::updatePositions()
{
    m_thumbY = height() / 2;
    m_thumbXOff = height() / 2;
    m_thumbXOn = width() - height() / 2;
}
