#include "UtilsLogger.h"

#include "UtilsLoggerList_p.h"
#include "UtilsSequentialAnimation.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr QSize InitialSize(400, 300);
constexpr int LayoutMargin = 6; // pixels
constexpr QSize RowGrid(0, 19); // pixels; rows are as wide as the list

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
    connect(verticalScrollBar, SIGNAL(rangeChanged(int, int)), this, SLOT(moveScrollBarToBottom(int, int)));

    actionCopySelected = new QAction(tr("Copy Selected Item"), listWidget);
    actionCopySelected->setShortcut(QKeySequence::Copy);
    connect(actionCopySelected, SIGNAL(triggered()), this, SLOT(slotCopySelected()));
    addAction(actionCopySelected);
    actionCopyAll = new QAction(tr("Copy All"), listWidget);
    connect(actionCopyAll, SIGNAL(triggered()), this, SLOT(slotCopyAll()));
    actionClear = new QAction(tr("Clear"), listWidget);
    connect(actionClear, &QAction::triggered, this, &UtilsLogger::clear);

    connect(listWidget, SIGNAL(customContextMenuRequested(const QPoint &)), this,
            SLOT(slotShowContextMenu(const QPoint &)));
}

UtilsLoggerLine *UtilsLogger::addLine(QString text, LOGGER_MESSAGE_TYPE type)
{
    QListWidgetItem *item = newLoggerRow();
    if (listWidget->count() == maxNumberOfLines) // equality: a limit set below the count never takes a line away
        takeOldestLine();
    listWidget->addItem(item);

    auto *line = new UtilsLoggerLine(this, lineAnimationDuration, item);
    if (backgroundColor != QVariant(0))
        line->setProperty("background-color", backgroundColor);
    allAnimationsCompleted = false;
    line->setSequentAnimation(lineAnimationQueue);
    line->setType(type);
    line->setText(text);
    listWidget->setLineWidget(item, line);
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
        lastLine = addLine(part, type);
}

void UtilsLogger::addSingleLineMessage(QString text, LOGGER_MESSAGE_TYPE type)
{
    lastLine = addLine(text, type);
}

void UtilsLogger::appendToLastLineMessage(QString text)
{
    if (lastLine)
        lastLine->appendText(text);
}

void UtilsLogger::clear()
{
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
    return listWidget->findChildren<UtilsLoggerLine *>();
}

bool UtilsLogger::isEmpty() const
{
    return !lastLine;
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

    backgroundColor = value;
    UtilsLoggerLine::setStyleProperty(listWidget, name, value);
    const QList<UtilsLoggerLine *> lines = getChildrenWidgets();
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
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Home:
        listWidget->setCurrentRow(0);
        verticalScrollBar->setValue(0);
        return true;
    case Qt::Key_End:
        listWidget->setCurrentRow(last);
        verticalScrollBar->setValue(verticalScrollBar->maximum());
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
