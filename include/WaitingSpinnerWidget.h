#ifndef WAITINGSPINNERWIDGET_H
#define WAITINGSPINNERWIDGET_H

#include "uniprogutils_export.h"

#include <QColor>
#include <QString>
#include <QWidget>

class QTimer;

/// A busy indicator: a ring of rounded bars of which one is fully opaque and those behind it fade, with a countdown of
/// seconds in its middle if wanted.
///
/// \image html progress.png
///
/// Use it where something takes a while and no progress is known. The spinner is hidden until start() and after stop().
/// Its timer runs only while it turns and is on the screen. Assistive technology hears a progress bar that is busy, and
/// the countdown as its value.
///
/// GUI thread only; owned by its Qt parent. A spinner that has disabled its parent has to be stopped before it is
/// deleted: nobody else enables the parent again.
///
///     auto *spinner = new WaitingSpinnerWidget(page, true, true); // in the middle of the page, which it disables
///     connect(client, &Client::requestStarted, spinner, &WaitingSpinnerWidget::start);
///     connect(client, &Client::requestFinished, spinner, &WaitingSpinnerWidget::stop);
class UNIPROGUTILS_EXPORT WaitingSpinnerWidget : public QWidget
{
    Q_OBJECT
    /// For a style sheet: `WaitingSpinnerWidget { qproperty-color: #6b747e; }`.
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    static constexpr int LargestNumberOfLines = 1000; ///< beyond what can be told apart, and drawn in every frame

    /// A spinner inside \a parent. \a centred: it keeps itself in the middle of its parent. \a disablesParent: the
    /// parent is disabled from start() to stop().
    WaitingSpinnerWidget(QWidget *parent, bool centred, bool disablesParent);
    /// A spinner in a frameless, translucent dialog window of its own with that \a modality. Centring moves it to where
    /// the middle of the parent would be if the parent lay at the origin of the screen.
    WaitingSpinnerWidget(Qt::WindowModality modality, QWidget *parent, bool centred, bool disablesParent);
    ~WaitingSpinnerWidget() override;

    /// The colour of the leading bar, and of the others but for their alpha. Default: RGB 194, 194, 183, opaque.
    void setColor(QColor color);
    QColor color() const;
    /// How round the ends of the bars are, in percent: 0 (square) to 100, values beyond are clamped. Default: 70.
    void setRoundness(double roundness);
    double roundness() const;
    /// The opacity, in percent, of the bars behind the fading trail. Default: 15.
    void setMinimumTrailOpacity(double opacity);
    double minimumTrailOpacity() const;
    /// How much of the ring the fading trail takes, in percent. Default: 70.
    void setTrailFadePercentage(double percentage);
    double trailFadePercentage() const;
    /// Default: 1. A ring with 0 or less does not turn. The getter keeps the spelling that applications know.
    void setRevolutionsPerSecond(double revolutions);
    double revolutionsPersSecond() const;
    /// Default: 11. The opaque bar starts anew. 0 or less leaves no bar, only the countdown; more than
    /// LargestNumberOfLines are as many as that.
    void setNumberOfLines(int lines);
    /// The length of a bar in pixels, default 10. The spinner's size is fixed to 2 x (inner radius + line length).
    void setLineLength(int length);
    int lineLength() const;
    /// The width of a bar in pixels, default 4.
    void setLineWidth(int width);
    int lineWidth() const;
    /// The distance from the middle to the bars in pixels, default 10; see setLineLength().
    void setInnerRadius(int radius);
    int innerRadius() const;
    /// What the spinner waits for: its accessible name. It is not drawn.
    void setText(QString text);
    /// The seconds to count down, beginning with the next start() of a spinner that is stopped. 0, as at first, or less
    /// means none.
    ///
    /// Each call makes a timer of its own. One that runs already goes on and takes part in the countdown, until it
    /// finds 0 and stops itself.
    void setCountdown(int seconds);
    /// From start() to stop(), hidden or not.
    bool isSpinning() const;
    /// Gives every property above but the text its default again. A countdown ends.
    void setSpinnerDefaultProperties();

    /// How many bars the bar \a current is behind the leading one, \a primary, in a ring of \a lineCount.
    static int lineCountDistanceFromPrimary(int current, int primary, int lineCount);
    /// The colour of the bar \a distance bars behind the leading one. \a trailFade and \a minimumOpacity are percent.
    static QColor currentLineColor(int distance, int lineCount, double trailFade, double minimumOpacity, QColor color);

public Q_SLOTS:
    /// Shows the spinner and lets it turn. A stopped one begins with its first bar and starts the countdown; for one
    /// that spins, both go on.
    void start();
    /// Hides the spinner and, when it disables its parent, enables that, whoever disabled it. The countdown runs on.
    void stop();
    /// One step: the next bar is the opaque one.
    void rotate();
    /// One second less. At 0, the countdown's timer stops.
    void updateCountdown();

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Nothing turns where nobody sees it.
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(WaitingSpinnerWidget)

    class Accessible;

    void initialize();
    void updateSize();
    void updateTimer();
    void updatePosition();
    void paintCountdown(QPainter *painter);
    void paintLine(QPainter *painter, int line);
    void announceCountdown();
    void announceSpinning();

    QColor m_color;
    double m_roundness = 0;
    double m_minimumTrailOpacity = 0;
    double m_trailFadePercentage = 0;
    double m_revolutionsPerSecond = 0;
    int m_numberOfLines = 0;
    int m_lineLength = 0;
    int m_lineWidth = 0;
    int m_innerRadius = 0;
    QString m_text;
    QTimer *m_rotationTimer = nullptr;
    QTimer *m_countdownTimer = nullptr;
    int m_countdown = 0;
    int m_currentCounter = 0;
    bool m_centreOnParent;
    bool m_disableParentWhenSpinning;
    bool m_isSpinning = false;
    int m_countdownStart = 0; ///< what the countdown began with; 0 before the first
};

#endif // WAITINGSPINNERWIDGET_H
