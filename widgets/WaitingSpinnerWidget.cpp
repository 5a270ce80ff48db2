#include "WaitingSpinnerWidget.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QTimer>

#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr QColor DefaultColor(194, 194, 183);
constexpr double DefaultRoundness = 70.0;
constexpr double MaximumRoundness = 100.0;
constexpr double DefaultMinimumTrailOpacity = 15.0;
constexpr double DefaultTrailFade = 70.0;
constexpr double DefaultRevolutionsPerSecond = 1.0;
constexpr int DefaultNumberOfLines = 11;
constexpr int DefaultLineLength = 10;
constexpr int DefaultLineWidth = 4;
constexpr int DefaultInnerRadius = 10;

constexpr double MillisecondsPerSecond = 1000.0;
constexpr double ShortestInterval = 1.0; // milliseconds; a timer of 0 would leave the event loop no rest
constexpr double LongestInterval = std::numeric_limits<int>::max();
constexpr int CountdownInterval = 1000;
constexpr int CountdownPointSize = 8;
constexpr qint64 LargestSide = QWIDGETSIZE_MAX - 1; // pixels; the maximum itself fixes nothing
constexpr double FullCircle = 360.0; // degrees
constexpr double Percent = 100.0;

} // namespace

/// A progress bar that is busy while the ring turns. It has a value once there was a countdown: the seconds left.
class WaitingSpinnerWidget::Accessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit Accessible(WaitingSpinnerWidget *spinner)
        : QAccessibleWidget(spinner, QAccessible::ProgressBar)
    { }

    static QAccessibleInterface *create(const QString &, QObject *object)
    {
        auto *ring = qobject_cast<WaitingSpinnerWidget *>(object);
        return ring ? new Accessible(ring) : nullptr;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = spinner()->m_isSpinning;
        state.readOnly = true;
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface && spinner()->m_countdownStart > 0)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override
    {
        return spinner()->m_countdown;
    }
    void setCurrentValue(const QVariant &) override { }
    QVariant maximumValue() const override
    {
        return spinner()->m_countdownStart;
    }
    QVariant minimumValue() const override
    {
        return 0;
    }
    QVariant minimumStepSize() const override
    {
        return 1;
    }

private:
    WaitingSpinnerWidget *spinner() const
    {
        return static_cast<WaitingSpinnerWidget *>(object());
    }
};

WaitingSpinnerWidget::WaitingSpinnerWidget(QWidget *parent, bool centred, bool disablesParent)
    : QWidget(parent)
    , m_centreOnParent(centred)
    , m_disableParentWhenSpinning(disablesParent)
{
    initialize();
}

WaitingSpinnerWidget::WaitingSpinnerWidget(Qt::WindowModality modality, QWidget *parent, bool centred,
                                           bool disablesParent)
    : QWidget(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , m_centreOnParent(centred)
    , m_disableParentWhenSpinning(disablesParent)
{
    setWindowModality(modality);
    setAttribute(Qt::WA_TranslucentBackground);
    initialize();
}

WaitingSpinnerWidget::~WaitingSpinnerWidget() = default;

void WaitingSpinnerWidget::initialize()
{
    static const bool accessible = (QAccessible::installFactory(&Accessible::create), true);
    Q_UNUSED(accessible)

    hide(); // a parent that is shown leaves out children that were hidden explicitly
    m_rotationTimer = new QTimer(this);
    connect(m_rotationTimer, &QTimer::timeout, this, &WaitingSpinnerWidget::rotate);
    setSpinnerDefaultProperties();
}

void WaitingSpinnerWidget::setSpinnerDefaultProperties()
{
    setColor(DefaultColor);
    setRoundness(DefaultRoundness);
    setMinimumTrailOpacity(DefaultMinimumTrailOpacity);
    setTrailFadePercentage(DefaultTrailFade);
    setRevolutionsPerSecond(DefaultRevolutionsPerSecond);
    setNumberOfLines(DefaultNumberOfLines);
    setLineLength(DefaultLineLength);
    setLineWidth(DefaultLineWidth);
    setInnerRadius(DefaultInnerRadius);
    m_countdown = 0;
}

void WaitingSpinnerWidget::setColor(QColor color)
{
    m_color = color;
    update();
}

QColor WaitingSpinnerWidget::color() const
{
    return m_color;
}

void WaitingSpinnerWidget::setRoundness(double roundness)
{
    m_roundness = qBound(0.0, roundness, MaximumRoundness);
    update();
}

double WaitingSpinnerWidget::roundness() const
{
    return m_roundness;
}

void WaitingSpinnerWidget::setMinimumTrailOpacity(double opacity)
{
    m_minimumTrailOpacity = opacity;
    update();
}

double WaitingSpinnerWidget::minimumTrailOpacity() const
{
    return m_minimumTrailOpacity;
}

void WaitingSpinnerWidget::setTrailFadePercentage(double percentage)
{
    m_trailFadePercentage = percentage;
    update();
}

double WaitingSpinnerWidget::trailFadePercentage() const
{
    return m_trailFadePercentage;
}

void WaitingSpinnerWidget::setRevolutionsPerSecond(double revolutions)
{
    m_revolutionsPerSecond = revolutions;
    updateTimer();
}

double WaitingSpinnerWidget::revolutionsPersSecond() const
{
    return m_revolutionsPerSecond;
}

void WaitingSpinnerWidget::setNumberOfLines(int lines)
{
    m_numberOfLines = qBound(0, lines, LargestNumberOfLines);
    m_currentCounter = 0;
    updateTimer();
    update();
}

void WaitingSpinnerWidget::setLineLength(int length)
{
    m_lineLength = length;
    updateSize();
}

int WaitingSpinnerWidget::lineLength() const
{
    return m_lineLength;
}

void WaitingSpinnerWidget::setLineWidth(int width)
{
    m_lineWidth = width;
    updateSize();
}

int WaitingSpinnerWidget::lineWidth() const
{
    return m_lineWidth;
}

void WaitingSpinnerWidget::setInnerRadius(int radius)
{
    m_innerRadius = radius;
    updateSize();
}

int WaitingSpinnerWidget::innerRadius() const
{
    return m_innerRadius;
}

void WaitingSpinnerWidget::setText(QString text)
{
    m_text = text;
    setAccessibleName(m_text);
}

void WaitingSpinnerWidget::setCountdown(int seconds)
{
    // An earlier timer that runs is not stopped: an application that prolongs a countdown keeps its beat.
    auto *timer = new QTimer(this);
    timer->setInterval(CountdownInterval);
    connect(timer, &QTimer::timeout, this, [this, timer] {
        if (m_countdown == 0)
            timer->stop(); // updateCountdown() knows the newest one only
        updateCountdown();
    });
    m_countdownTimer = timer;
    m_countdown = qMax(0, seconds);
    m_countdownStart = m_countdown;
    update();
    announceCountdown();
}

bool WaitingSpinnerWidget::isSpinning() const
{
    return m_isSpinning;
}

int WaitingSpinnerWidget::lineCountDistanceFromPrimary(int current, int primary, int lineCount)
{
    const int distance = primary - current;
    return distance < 0 ? distance + lineCount : distance;
}

QColor WaitingSpinnerWidget::currentLineColor(int distance, int lineCount, double trailFade, double minimumOpacity,
                                              QColor color)
{
    if (distance == 0)
        return color;
    const double minimumAlpha = minimumOpacity / Percent;
    const double threshold = std::ceil((lineCount - 1) * trailFade / Percent);
    double alpha = minimumAlpha;
    if (distance <= threshold) {
        const double step = (double(color.alphaF()) - minimumAlpha) / (threshold + 1);
        alpha = double(color.alphaF()) - distance * step;
    }
    color.setAlphaF(float(qBound(0.0, alpha, 1.0)));
    return color;
}

void WaitingSpinnerWidget::start()
{
    updatePosition();
    const bool wasSpinning = std::exchange(m_isSpinning, true);
    show();
    if (parentWidget() && m_disableParentWhenSpinning)
        parentWidget()->setEnabled(false);
    if (wasSpinning)
        return;

    if (isVisible())
        m_rotationTimer->start(); // else showEvent() does
    if (m_countdown != 0)
        m_countdownTimer->start();
    m_currentCounter = 0;
    announceSpinning();
}

void WaitingSpinnerWidget::stop()
{
    const bool wasSpinning = std::exchange(m_isSpinning, false);
    hide();
    if (parentWidget() && m_disableParentWhenSpinning)
        parentWidget()->setEnabled(true);
    if (!wasSpinning)
        return;

    // The countdown runs on: it stands for a time outside, which passes whether the spinner is shown or not.
    m_rotationTimer->stop();
    m_currentCounter = 0;
    announceSpinning();
}

void WaitingSpinnerWidget::rotate()
{
    ++m_currentCounter;
    if (m_currentCounter >= m_numberOfLines)
        m_currentCounter = 0;
    updatePosition(); // one that a shrunk parent has left outside is not painted and would stay there
    update();
}

void WaitingSpinnerWidget::updateCountdown()
{
    if (m_countdown == 0) {
        if (m_countdownTimer)
            m_countdownTimer->stop();
        return;
    }
    --m_countdown;
    update();
    announceCountdown();
}

void WaitingSpinnerWidget::updateSize()
{
    const qint64 side = 2 * (qint64(m_innerRadius) + m_lineLength);
    const int bounded = int(qBound(qint64(0), side, LargestSide));
    setFixedSize(bounded, bounded);
    update();
}

void WaitingSpinnerWidget::updateTimer()
{
    // Without lines or revolutions the time for a step is infinite.
    const double stepsPerSecond = qMax(0.0, m_numberOfLines * m_revolutionsPerSecond);
    m_rotationTimer->setInterval(
        int(qBound(ShortestInterval, MillisecondsPerSecond / stepsPerSecond, LongestInterval)));
}

void WaitingSpinnerWidget::updatePosition()
{
    if (parentWidget() && m_centreOnParent)
        move(parentWidget()->width() / 2 - width() / 2, parentWidget()->height() / 2 - height() / 2);
}

void WaitingSpinnerWidget::paintEvent(QPaintEvent *)
{
    updatePosition();
    QPainter painter(this);
    painter.fillRect(rect(), Qt::transparent);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_currentCounter >= m_numberOfLines)
        m_currentCounter = 0;
    if (m_countdown != 0)
        paintCountdown(&painter);
    painter.setPen(Qt::NoPen);
    for (int line = 0; line < m_numberOfLines; ++line)
        paintLine(&painter, line);
}

void WaitingSpinnerWidget::paintCountdown(QPainter *painter)
{
    painter->setFont(QFont(QStringLiteral("Open Sans"), CountdownPointSize));
    painter->drawText(rect(), Qt::AlignCenter, QString::number(m_countdown));
}

void WaitingSpinnerWidget::paintLine(QPainter *painter, int line)
{
    const int distance = lineCountDistanceFromPrimary(line, m_currentCounter, m_numberOfLines);
    painter->save();
    const double centre = double(m_innerRadius) + m_lineLength;
    painter->translate(centre, centre);
    painter->rotate(FullCircle * line / m_numberOfLines);
    painter->translate(m_innerRadius, 0);
    painter->setBrush(
        currentLineColor(distance, m_numberOfLines, m_trailFadePercentage, m_minimumTrailOpacity, m_color));
    painter->drawRoundedRect(QRect(0, -(m_lineWidth / 2), m_lineLength, m_lineWidth), m_roundness, m_roundness,
                             Qt::RelativeSize);
    painter->restore();
}

void WaitingSpinnerWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_isSpinning)
        m_rotationTimer->start();
}

void WaitingSpinnerWidget::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_rotationTimer->stop();
}

void WaitingSpinnerWidget::announceCountdown()
{
    if (m_countdownStart == 0)
        return; // no value
    QAccessibleValueChangeEvent event(this, m_countdown);
    QAccessible::updateAccessibility(&event);
}

void WaitingSpinnerWidget::announceSpinning()
{
    QAccessible::State changed;
    changed.busy = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}
