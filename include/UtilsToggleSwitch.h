#ifndef UTILSTOGGLESWITCH_H
#define UTILSTOGGLESWITCH_H

#include "uniprogutils_export.h"

#include <QAbstractButton>
#include <QColor>

class QPropertyAnimation;

/// An on/off switch: a round thumb that slides along a track in the shape of a pill.
///
/// \image html buttons.png
///
/// It is a checkable button without a text. Use it where a check box would do and the change takes effect at once; give
/// it an accessible name, or make it the buddy of a label. The space key toggles it.
///
/// The colours are properties for a style sheet, which also finds the dynamic property "hover", true while the mouse is
/// over the switch. Such rules know no pseudo-states like ":disabled", only properties:
///
///     UtilsToggleSwitch { qproperty-backgroundColorOn: #c48a00; }
///     UtilsToggleSwitch[hover="true"] { qproperty-borderColor: #ffc53d; }
///     UtilsToggleSwitch[enabled="false"] { qproperty-backgroundColorOn: #4f565e; }
///
/// The switch fills its widget, is round for any size, and is the same in right-to-left layouts: off is left. Its size
/// is the owner's choice.
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *verify = new UtilsToggleSwitch(this);
///     verify->setFixedSize(40, 20);
///     verify->setAccessibleName(tr("Verify after writing"));
///     connect(verify, &UtilsToggleSwitch::toggled, this, &Page::setVerify);
///
/// An owner that has to ask a device first takes the decision over:
///
///     power->toggleOnMouseClick(false);
///     connect(power, &UtilsToggleSwitch::clicked, this, [=] { power->setChecked(switchPower()); });
class UNIPROGUTILS_EXPORT UtilsToggleSwitch : public QAbstractButton
{
    Q_OBJECT
    /// The middle of the thumb, in pixels from the left edge. The animation drives it.
    Q_PROPERTY(int thumbXPos READ getThumbXPos WRITE setThumbXPos)
    Q_PROPERTY(QColor thumbColor READ getThumbColor WRITE setThumbColor)
    Q_PROPERTY(QColor borderColor READ getBorderColor WRITE setBorderColor)
    Q_PROPERTY(QColor backgroundColorOff READ getBackgroundColorOff WRITE setBackgroundColorOff)
    Q_PROPERTY(QColor backgroundColorOn READ getBackgroundColorOn WRITE setBackgroundColorOn)

public:
    /// A switch that is off, with a white thumb on a black track.
    explicit UtilsToggleSwitch(QWidget *parent = nullptr);
    ~UtilsToggleSwitch() override;

    /// Whether the switch shows on. It follows isChecked() through toggled(), so it stays behind while signals are
    /// blocked; slotToggled() sets it alone.
    bool getState() const;

    /// Lets the thumb glide from where it is to the on or the off position, in 120 ms. The state stays as it is.
    void startAnimation(bool on);

    /// The opacity of the track, 0.0 to 1.0 (the default). The thumb is always opaque.
    void setOpacity(double opacity);

    /// Whether a mouse click toggles the switch, as it does from the start. When it does not, the release of any mouse
    /// button on an enabled switch emits clicked() with the unchanged isChecked() and neither released() nor toggled():
    /// the owner decides. Keys and click() toggle all the same.
    void toggleOnMouseClick(bool toggle);

    /// Sets the track's colour in the off state and the colour of the thumb. The colours of the on state and of the
    /// border are left alone on purpose.
    void setColors(const QColor &backgroundOff, const QColor &thumb);

    int getThumbXPos() const;
    /// Puts the thumb there at once, until the next animation.
    void setThumbXPos(int x);

    QColor getThumbColor() const;
    void setThumbColor(QColor color);
    /// An invalid colour, as after construction, draws black. The border is always drawn with an alpha of 200, whatever
    /// the alpha of the colour.
    QColor getBorderColor() const;
    void setBorderColor(QColor color);
    QColor getBackgroundColorOff() const;
    void setBackgroundColorOff(QColor color);
    QColor getBackgroundColorOn() const;
    void setBackgroundColorOn(QColor color);

    /// Twice as wide as the switch is high now.
    QSize sizeHint() const override;

    /// The switch filters its own events: mouse releases as toggleOnMouseClick() says, and hovering, which it notes in
    /// the property "hover".
    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /// Takes over \a checked as the state and starts the animation. Connected to toggled(); called by the owner, it
    /// changes what is shown, not isChecked().
    void slotToggled(bool checked);

protected:
    void paintEvent(QPaintEvent *event) override;
    /// A thumb on the on side stays at its end at once; one on the off side glides there.
    void resizeEvent(QResizeEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    /// Lets the style sheet look at the switch anew when it is enabled or disabled.
    void changeEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsToggleSwitch)

    void updatePositions();
    void paintFocus(QPainter *painter);

    bool m_state = false;
    double m_opacity = 1.0;
    int m_thumbY = 0;
    int m_thumbXPos = 0;
    int m_thumbXOff = 0;
    int m_thumbXOn = 0;
    QColor m_thumbColor = Qt::white;
    QColor m_borderColor;
    QColor m_backgroundColorOff = Qt::black;
    QColor m_backgroundColorOn = Qt::black;
    QPropertyAnimation *m_thumbAnimation;
    bool m_toggleOnMouseClick = true;
};

#endif // UTILSTOGGLESWITCH_H
