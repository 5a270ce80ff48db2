#ifndef UTILSLOGGERLINE_H
#define UTILSLOGGERLINE_H

#include "UtilsLoggerMessageType.h"
#include "uniprogutils_export.h"

#include <QAbstractAnimation>
#include <QPointer>
#include <QWidget>

class QFrame;
class QLabel;
class QListWidgetItem;
class QPropertyAnimation;
class QVBoxLayout;
class UtilsLogger;
class UtilsSequentialAnimation;

/// One line of a UtilsLogger: a label whose new text is revealed from its beginning to its end by a frame that covers
/// it and draws back. Applications get lines from UtilsLogger::addLine() and rarely make one themselves.
///
/// Thread: GUI thread only. Ownership: as any widget; in a logger the list owns the line and deletes it when the line
/// leaves. List item and animation queue are not owned.
///
///     UtilsLoggerLine *line = logger->addLine(tr("Erasing..."), LOGGER_MESSAGE_DEFAULT);
///     line->appendText(tr(" done"));
class UNIPROGUTILS_EXPORT UtilsLoggerLine : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsLoggerLine)
    /// Pixels of text that are revealed; animated by the line itself.
    Q_PROPERTY(int hidingFrameStartPos READ getHidingFrameStartPos WRITE setHidingFrameStartPos)

public:
    /// \a animationDuration: milliseconds of each reveal; 0 (and anything below) means that text shows at once and that
    /// there is no hiding frame. Otherwise \a item (may be null) is hidden until the first reveal starts, and the
    /// hiding frame takes over the style sheet string of \a parent.
    explicit UtilsLoggerLine(QWidget *parent = nullptr, int animationDuration = 0, QListWidgetItem *item = nullptr);
    ~UtilsLoggerLine() override;

    /// Empties the line, then does what appendText() does.
    void setText(QString text);
    /// Appends \a text up to its first line break. The label has the new text at once; with an animation duration it
    /// is revealed by an animation, which waits for its turn when the line has a queue.
    void appendText(QString text);
    /// The whole text of the label, revealed or not.
    QString getText() const;

    /// Sets the label's "log-type" style value: "default", "info", "warning", "success" or "error". Any other number
    /// is stored only. A line that is shown already is not styled anew.
    void setType(LOGGER_MESSAGE_TYPE type);
    /// Initially LOGGER_MESSAGE_DEFAULT, without style value.
    LOGGER_MESSAGE_TYPE getType() const;

    /// The queue that plays the reveals; null (initially) starts each one at once. Holds for later texts.
    void setSequentAnimation(UtilsSequentialAnimation *animationQueue);

    /// Sets a property of the line. One whose name begins with "background-color" is also set on the label and on the
    /// hiding frame, whose background must be that of the line for the reveal to look right; returns true then, else
    /// what QObject::setProperty() returns.
    bool setProperty(const char *name, const QVariant &value);

    int getHidingFrameStartPos() const;
    void setHidingFrameStartPos(int position);

public Q_SLOTS:
    /// Shows the row of the list when a reveal starts.
    void slotAnimationStateChanged(QAbstractAnimation::State newState, QAbstractAnimation::State oldState);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    friend class UtilsLogger;
    static bool isBackgroundColor(const char *name);
    static void setStyleProperty(QWidget *widget, const char *name, const QVariant &value);
    void setupForm();
    void placeHidingFrame();
    void leaveList(QWidget *newParent);

    QVBoxLayout *verticalLayout = nullptr;
    QLabel *label = nullptr;
    QFrame *hidingFrame = nullptr;
    int hidingFrameStartPos = 0;
    int hidingFrameWidth = 0;
    int hidingFrameHeight = 0;
    int animationDuration;
    QPointer<QPropertyAnimation> animation;
    QPointer<UtilsSequentialAnimation> queue;
    LOGGER_MESSAGE_TYPE messageType = LOGGER_MESSAGE_DEFAULT;
    QListWidgetItem *item;
};

#endif // UTILSLOGGERLINE_H
