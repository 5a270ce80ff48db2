#ifndef UTILSLOGGER_H
#define UTILSLOGGER_H

#include "UtilsLoggerLine.h"
#include "UtilsLoggerMessageType.h"
#include "uniprogutils_export.h"

#include <QFrame>
#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QStringList>
#include <QVariant>

class QAction;
class QListWidgetItem;
class QScrollBar;
class QTimer;
class QVBoxLayout;
class UtilsLoggerList;
class UtilsSequentialAnimation;

/// The message pane of a long-running operation: a framed list in which each message is a line, coloured by its kind
/// and revealed by an animation, strictly one after another. A host that closes when the work is done waits for
/// signalLoggerAnimationsCompleted(), so that the user sees the last line.
///
/// \image html logger.png
///
/// A burst does not hold the event loop. Of the messages that come in one turn of it, a hundred lines are complete when
/// the function returns. A line beyond them has its row in the list at once, and gets its UtilsLoggerLine in one of the
/// next turns, some milliseconds' worth in each; at the line limit it may leave without ever having had one, and the
/// oldest row stays for it until then. Whatever needs the lines themselves, such as getLoggerData(),
/// getChildrenWidgets() and addLine(), completes those that wait first.
///
/// Thread: GUI thread only; messages of worker threads come through queued connections. Ownership: the logger owns its
/// lines. A line is deleted when it leaves at the line limit, and from the event loop after clear(); a pointer to one
/// should be guarded.
///
///     auto *logger = new UtilsLogger(this);
///     logger->setProperty("background-color", "main");
///     logger->addMessage(tr("Verifying...\nVerified."), LOGGER_MESSAGE_SUCCESS);
class UNIPROGUTILS_EXPORT UtilsLogger : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UtilsLogger)

public:
    /// \a lineAnimationDuration: see setLineAnimationDuration(). \a maxNumberOfLines: see setMaxNumberOfLines().
    explicit UtilsLogger(QWidget *parent = nullptr, int lineAnimationDuration = 400, int maxNumberOfLines = 1000);
    ~UtilsLogger() override;

    /// Adds one line, its text up to the first line break, and returns it, complete however many there are: bursts are
    /// for the other two. It does not become the last line, see appendToLastLineMessage().
    UtilsLoggerLine *addLine(QString text, LOGGER_MESSAGE_TYPE type);
    /// Adds one line for each part of \a text between line breaks, empty ones too. The last one becomes the last line.
    void addMessage(QString text, LOGGER_MESSAGE_TYPE type);
    /// Adds one line, its text up to the first line break. It becomes the last line.
    void addSingleLineMessage(QString text, LOGGER_MESSAGE_TYPE type);
    /// Appends to the last line, revealed like a new one; ignored when there is no last line. In a logger that has
    /// shown everything, isAllAnimationsCompleted() stays true meanwhile, and signalLoggerAnimationsCompleted() comes
    /// again.
    void appendToLastLineMessage(QString text);

    /// Removes all lines and forgets their reveals. isAllAnimationsCompleted() stays as it is, and
    /// signalLoggerAnimationsCompleted() is not emitted for what was forgotten.
    void clear();

    /// The texts of all lines from the oldest to the newest, each followed by a line break; "" without lines.
    QString getLoggerData() const;
    /// All lines, from the oldest to the newest.
    Q_INVOKABLE QList<UtilsLoggerLine *> getChildrenWidgets() const;
    /// True when there is no last line: after construction, after clear(), and when the last line has left at the line
    /// limit.
    bool isEmpty() const;
    /// True after construction; false from the first line added until signalLoggerAnimationsCompleted() has been
    /// delivered, so still false in its receivers. With a line animation duration of 0 it stays false.
    bool isAllAnimationsCompleted() const;

    int getMaxNumberOfLines() const;
    /// When a line is added while there are exactly this many, the oldest leaves; initially 1000. Set below the number
    /// of lines there are, or to 0 or less, it limits nothing.
    void setMaxNumberOfLines(int number);
    /// Milliseconds that each reveal takes, for lines added afterwards; initially 400. 0 and less: no animation.
    void setLineAnimationDuration(int duration);

    /// Sets the margins of the layout inside the frame, initially 6 each. Those of the frame itself are reached through
    /// the overload with QMargins.
    void setContentsMargins(int left, int top, int right, int bottom);
    using QFrame::setContentsMargins;

    /// Sets a property of the logger. One whose name begins with "background-color" is also set on the list and on all
    /// lines, those added later included, and true is returned; else what QObject::setProperty() returns. The base
    /// function, reached through a QObject pointer, does not pass it on.
    bool setProperty(const char *name, const QVariant &value);

public Q_SLOTS:
    /// Follows the end of the list, unless the user has scrolled up.
    void moveScrollBarToBottom(int min, int max);
    /// The last reveal has ended: emits signalLoggerAnimationsCompleted(), in a burst when its last line is complete
    /// and revealed.
    void slotLoggerAnimationsCompleted();
    /// Opens the context menu at a position in the list widget; returns when it is closed.
    void slotShowContextMenu(const QPoint &position);
    /// Puts the text of the current line on the clipboard.
    void slotCopySelected();
    /// Puts getLoggerData() on the clipboard.
    void slotCopyAll();
    /// Same as clear().
    void slotClear();

Q_SIGNALS:
    /// All lines added so far have been revealed. Not emitted by clear(), nor for lines without animation.
    void signalLoggerAnimationsCompleted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void setupForm();
    void wire();
    void takeOldestLine();
    UtilsLoggerLine *fillRow(QListWidgetItem *row, const QString &text, LOGGER_MESSAGE_TYPE type, int duration);
    void addLastLine(const QString &text, LOGGER_MESSAGE_TYPE type);
    void letLineWait(const QString &text, LOGGER_MESSAGE_TYPE type);
    void completeWaitingLine();
    void completeWaitingLines() const;
    void continueBurst();
    void payOwedCompletion();

    QVBoxLayout *verticalLayout = nullptr;
    UtilsLoggerList *listWidget = nullptr;
    UtilsSequentialAnimation *lineAnimationQueue;
    QPointer<QScrollBar> verticalScrollBar;
    QAction *actionCopySelected = nullptr;
    QAction *actionCopyAll = nullptr;
    QAction *actionClear = nullptr;
    bool allAnimationsCompleted = true;
    int lineAnimationDuration;
    int maxNumberOfLines;
    int lastScrollMaximum = 0;
    QPointer<UtilsLoggerLine> lastLine;
    QVariant backgroundColor = 0; // the integer 0: not set

    struct WaitingLine
    {
        QStringList texts; // what it begins with, and what was appended since
        LOGGER_MESSAGE_TYPE type;
        int animationDuration;
    };
    QList<WaitingLine> waitingLines;
    // A waiting line has an empty row at the end of the list, or takes the place of a line at its beginning.
    QList<QPersistentModelIndex> emptyRows;
    qsizetype leavingRows = 0;
    int linesInThisTurn = 0;
    QTimer *nextTurn = nullptr;
    bool completionIsOwed = false;
};

#endif // UTILSLOGGER_H
