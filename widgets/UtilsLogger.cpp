#include "UtilsLogger.h"

#include "UtilsLoggerList_p.h"
#include "UtilsSequentialAnimation.h"

#include <QAction>
#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(400, 300);
constexpr int LayoutMargin = 6; // pixels
constexpr QSize RowGrid(0, 19); // pixels; rows are as wide as the list
constexpr int MaxLinesInTurn = 100; // a line costs up to 0.3 ms when another one has to leave for it
constexpr int BurstSlice = 10; // milliseconds of each turn of the event loop, while lines wait

// Nobody deletes the row that leaves the list at the line limit, see UtilsLogger::takeOldestLine().
QListWidgetItem *newLoggerRow()
{
    auto *item = new QListWidgetItem;
    item->setSizeHint(RowGrid); // else it is as high as the list's font, whatever the line needs
    return item;
}

} // namespace

UtilsLogger::UtilsLogger(QWidget *parent, int animationDuration, int lineLimit)
    : QFrame(parent)
    , lineAnimationQueue(new UtilsSequentialAnimation)
    , lineAnimationDuration(animationDuration)
    , maxNumberOfLines(lineLimit)
{
    setupForm();
    wire();
}

UtilsLogger::~UtilsLogger()
{
    clear();
    delete actionCopySelected;
    delete actionCopyAll;
    delete actionClear;
    delete lineAnimationQueue;
}

void UtilsLogger::setupForm()
{
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("UtilsLogger"));
    resize(InitialSize);
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Raised);

    verticalLayout = new QVBoxLayout(this);
    verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
    verticalLayout->setSpacing(0);
    verticalLayout->setContentsMargins(LayoutMargin, LayoutMargin, LayoutMargin, LayoutMargin);

    listWidget = new UtilsLoggerList(this);
    listWidget->setObjectName(QStringLiteral("listWidget"));
    listWidget->setAccessibleName(tr("Messages"));
    listWidget->setEnabled(true);
    listWidget->setFocusPolicy(Qt::StrongFocus);
    listWidget->setContextMenuPolicy(Qt::CustomContextMenu);
    listWidget->setAutoScroll(false);
    listWidget->setSelectionMode(QAbstractItemView::NoSelection);
    listWidget->setGridSize(RowGrid);
    listWidget->setUniformItemSizes(true);
    listWidget->setSelectionRectVisible(false);
    listWidget->setProperty("background-color", QStringLiteral("transparent"));
    listWidget->installEventFilter(this);
    verticalLayout->addWidget(listWidget);

    setWindowTitle(tr("Frame"));
}

void UtilsLogger::wire()
{
    connect(lineAnimationQueue, SIGNAL(SignalAllAnimationsFinished()), this, SLOT(slotLoggerAnimationsCompleted()));

    verticalScrollBar = listWidget->verticalScrollBar();
    // Without the blanks that clang-format would add: Qt looks for the signatures as it stores them first.
    // clang-format off
    connect(verticalScrollBar, SIGNAL(rangeChanged(int,int)), this, SLOT(moveScrollBarToBottom(int,int)));
    // clang-format on

    actionCopySelected = new QAction(tr("Copy Selected Item"), listWidget);
    actionCopySelected->setShortcut(QKeySequence::Copy);
    connect(actionCopySelected, SIGNAL(triggered()), this, SLOT(slotCopySelected()));
    addAction(actionCopySelected);
    actionCopyAll = new QAction(tr("Copy All"), listWidget);
    connect(actionCopyAll, SIGNAL(triggered()), this, SLOT(slotCopyAll()));
    actionClear = new QAction(tr("Clear"), listWidget);
    connect(actionClear, &QAction::triggered, this, &UtilsLogger::clear);

    connect(listWidget, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(slotShowContextMenu(QPoint)));

    nextTurn = new QTimer(this);
    nextTurn->setSingleShot(true);
    connect(nextTurn, &QTimer::timeout, this, &UtilsLogger::continueBurst);
}

UtilsLoggerLine *UtilsLogger::addLine(QString text, LOGGER_MESSAGE_TYPE type)
{
    completeWaitingLines();
    QListWidgetItem *row = newLoggerRow();
    if (listWidget->count() == maxNumberOfLines) // equality: a limit set below the count never takes a line away
        takeOldestLine();
    listWidget->addItem(row);
    return fillRow(row, text, type, lineAnimationDuration);
}

UtilsLoggerLine *UtilsLogger::fillRow(QListWidgetItem *row, const QString &text, LOGGER_MESSAGE_TYPE type, int duration)
{
    auto *line = new UtilsLoggerListLine(this, duration, row);
    if (backgroundColor != QVariant(0))
        line->setProperty("background-color", backgroundColor);
    allAnimationsCompleted = false;
    line->setSequentAnimation(lineAnimationQueue);
    line->setType(type);
    line->setText(text);
    listWidget->setLine(row, line);
    return line;
}

// The item that is taken out is not deleted: it is no longer the logger's, and nothing here points to it. Its line goes
// at once; the list would delete it from the event loop, where the lines of a long burst pile up.
void UtilsLogger::takeOldestLine()
{
    delete listWidget->itemWidget(listWidget->item(0));
    listWidget->takeItem(0);
}

void UtilsLogger::addMessage(QString text, LOGGER_MESSAGE_TYPE type)
{
    const QStringList parts = text.split(QLatin1Char('\n'), Qt::KeepEmptyParts);
    for (const QString &part : parts)
        addLastLine(part, type);
}

void UtilsLogger::addSingleLineMessage(QString text, LOGGER_MESSAGE_TYPE type)
{
    addLastLine(text, type);
}

void UtilsLogger::appendToLastLineMessage(QString text)
{
    if (!waitingLines.isEmpty())
        waitingLines.last().texts.append(text);
    else if (lastLine)
        lastLine->appendText(text);
}

void UtilsLogger::addLastLine(const QString &text, LOGGER_MESSAGE_TYPE type)
{
    if (!nextTurn->isActive())
        nextTurn->start();
    if (waitingLines.isEmpty() && linesInThisTurn < MaxLinesInTurn) {
        ++linesInThisTurn;
        lastLine = addLine(text, type);
    } else {
        letLineWait(text, type);
    }
}

// Whatever the list says of its rows is as if the line were complete, but for which line the oldest rows show.
void UtilsLogger::letLineWait(const QString &text, LOGGER_MESSAGE_TYPE type)
{
    const int rows = listWidget->count();
    if (rows > 0 && rows == maxNumberOfLines) { // equality, as in addLine()
        if (leavingRows < rows - emptyRows.size()) {
            ++leavingRows;
        } else {
            const WaitingLine oldest = waitingLines.takeFirst();
            completionIsOwed = completionIsOwed || oldest.animationDuration > 0; // its reveal was perhaps the last
        }
    } else {
        QListWidgetItem *row = newLoggerRow();
        listWidget->addItem(row);
        row->setHidden(lineAnimationDuration > 0);
        emptyRows.append(listWidget->model()->index(rows, 0));
    }
    allAnimationsCompleted = false;
    waitingLines.append({{text}, type, lineAnimationDuration});
}

void UtilsLogger::completeWaitingLine()
{
    const WaitingLine waiting = waitingLines.takeFirst();
    QListWidgetItem *row = nullptr;
    if (!emptyRows.isEmpty()) {
        row = listWidget->item(emptyRows.takeFirst().row());
        if (!row) // someone took it out of the list, and with it the line
            return;
    } else {
        listWidget->rowsChange();
        --leavingRows;
        takeOldestLine();
        row = newLoggerRow();
        listWidget->addItem(row);
    }
    const bool wasHidden = row->isHidden();
    row->setHidden(waiting.animationDuration > 0);
    lastLine = fillRow(row, waiting.texts.constFirst(), waiting.type, waiting.animationDuration);
    if (row->isHidden() != wasHidden) // by its reveal, which may have begun
        listWidget->rowsChange();
    for (qsizetype i = 1; i < waiting.texts.size(); ++i)
        lastLine->appendText(waiting.texts.at(i));
}

// For those who read, nothing changes: to them the lines are there since they were added.
void UtilsLogger::completeWaitingLines() const
{
    while (!waitingLines.isEmpty())
        const_cast<UtilsLogger *>(this)->completeWaitingLine();
}

void UtilsLogger::continueBurst()
{
    linesInThisTurn = 0;
    listWidget->beginFilling();
    QElapsedTimer clock;
    clock.start();
    while (!waitingLines.isEmpty() && !clock.hasExpired(BurstSlice))
        completeWaitingLine();
    listWidget->endFilling();
    if (!waitingLines.isEmpty())
        nextTurn->start();
    else if (completionIsOwed && lineAnimationQueue->NumberOfWaitingAnimations() == 0)
        QMetaObject::invokeMethod(this, &UtilsLogger::payOwedCompletion, Qt::QueuedConnection);
}

// Later than the queue: when its last reveals left with their lines, it is about to say itself that it has run dry.
void UtilsLogger::payOwedCompletion()
{
    if (completionIsOwed && lineAnimationQueue->NumberOfWaitingAnimations() == 0)
        slotLoggerAnimationsCompleted();
}

void UtilsLogger::clear()
{
    waitingLines.clear();
    emptyRows.clear();
    leavingRows = 0;
    completionIsOwed = false;
    const QList<UtilsLoggerLine *> lines = getChildrenWidgets();
    listWidget->clear();
    for (UtilsLoggerLine *line : lines)
        line->leaveList(this);
    lastLine.clear();
    lineAnimationQueue->DestroyAllAnimations();
}

QString UtilsLogger::getLoggerData() const
{
    QString text;
    const QList<UtilsLoggerLine *> lines = getChildrenWidgets();
    for (const UtilsLoggerLine *line : lines)
        text += line->getText() + QLatin1Char('\n');
    return text;
}

QList<UtilsLoggerLine *> UtilsLogger::getChildrenWidgets() const
{
    completeWaitingLines();
    return listWidget->findChildren<UtilsLoggerLine *>();
}

bool UtilsLogger::isEmpty() const
{
    return !lastLine && waitingLines.isEmpty();
}

bool UtilsLogger::isAllAnimationsCompleted() const
{
    return allAnimationsCompleted;
}

int UtilsLogger::getMaxNumberOfLines() const
{
    return maxNumberOfLines;
}

void UtilsLogger::setMaxNumberOfLines(int number)
{
    maxNumberOfLines = number;
}

void UtilsLogger::setLineAnimationDuration(int duration)
{
    lineAnimationDuration = duration;
}

void UtilsLogger::setContentsMargins(int left, int top, int right, int bottom)
{
    verticalLayout->setContentsMargins(left, top, right, bottom);
}

bool UtilsLogger::setProperty(const char *name, const QVariant &value)
{
    if (!UtilsLoggerLine::isBackgroundColor(name))
        return QFrame::setProperty(name, value);

    const QList<UtilsLoggerLine *> lines = getChildrenWidgets(); // before: those that waited have the old colour
    backgroundColor = value;
    UtilsLoggerLine::setStyleProperty(listWidget, name, value);
    for (UtilsLoggerLine *line : lines)
        line->setProperty(name, value);
    UtilsLoggerLine::setStyleProperty(this, name, value);
    return true;
}

void UtilsLogger::moveScrollBarToBottom(int, int max)
{
    if (verticalScrollBar && verticalScrollBar->value() == lastScrollMaximum)
        verticalScrollBar->setValue(max);
    lastScrollMaximum = max;
}

void UtilsLogger::slotLoggerAnimationsCompleted()
{
    completionIsOwed = !waitingLines.isEmpty();
    if (completionIsOwed) // those are to be revealed too
        return;
    // The flag comes after the signal: whoever asks from inside still reads false. A receiver may delete the logger.
    const QPointer<UtilsLogger> self(this);
    Q_EMIT signalLoggerAnimationsCompleted();
    if (self)
        allAnimationsCompleted = true;
}

void UtilsLogger::slotShowContextMenu(const QPoint &position)
{
    // "Clear" is left out on purpose; it is wired for hosts that offer it elsewhere.
    const QPointer<QMenu> menu = new QMenu(tr("Context menu"), listWidget);
    menu->addAction(actionCopySelected);
    menu->addAction(actionCopyAll);
    menu->exec(listWidget->mapToGlobal(position));
    delete menu; // unless it went with the logger while it was open
}

void UtilsLogger::slotCopySelected()
{
    completeWaitingLines();
    const auto *line = qobject_cast<UtilsLoggerLine *>(listWidget->itemWidget(listWidget->currentItem()));
    if (line)
        QGuiApplication::clipboard()->setText(line->getText());
}

void UtilsLogger::slotCopyAll()
{
    QGuiApplication::clipboard()->setText(getLoggerData());
}

void UtilsLogger::slotClear()
{
    clear();
}

bool UtilsLogger::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != listWidget || event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);

    const int current = listWidget->currentRow();
    const int last = listWidget->count() - 1;
    QScrollBar *bar = listWidget->verticalScrollBar(); // an application may have given the list another one
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Home:
        listWidget->setCurrentRow(0);
        bar->setValue(0);
        return true;
    case Qt::Key_End:
        listWidget->setCurrentRow(last);
        bar->setValue(bar->maximum());
        return true;
    case Qt::Key_Up:
        listWidget->setCurrentRow(current < 1 ? current : current - 1);
        return true;
    case Qt::Key_Down:
        listWidget->setCurrentRow(current < last ? current + 1 : current);
        return true;
    default:
        return QFrame::eventFilter(watched, event);
    }
}

void UtilsLogger::showEvent(QShowEvent *event)
{
    listWidget->setFocusPolicy(focusPolicy());
    QFrame::showEvent(event);
}
