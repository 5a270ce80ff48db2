#include "UtilsDialogWindow.h"

#include "FrameHitTest_p.h"
#include "UtilsDialogTitlebar.h"
#include "UtilsMisc.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

static constexpr QSize InitialSize(640, 480);
static constexpr double ShareOfScreenHeight = 0.75;
static constexpr int FrameWidth = 4; // the border that resizes; the background shows there and drags otherwise

static Qt::WindowFlags windowFlagsFor(bool isFrameless)
{
    return isFrameless ? Qt::Window | Qt::FramelessWindowHint : Qt::WindowFlags(Qt::Window);
}

UtilsDialogWindow::UtilsDialogWindow(QWidget *parent)
    : QDialog(parent, windowFlagsFor(UtilsMisc::CheckIfFramelessUsed()))
{
    setupForm();
    setWindowModality(Qt::ApplicationModal);
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        resize(width(), static_cast<int>(ShareOfScreenHeight * screen->geometry().height()));
    if (parent)
        centerOn(parent);

    m_isFrameless = UtilsMisc::CheckIfFramelessUsed();
    if (m_isFrameless)
        createTitlebar();
}

UtilsDialogWindow::~UtilsDialogWindow() = default;

void UtilsDialogWindow::setupForm()
{
    setObjectName(QStringLiteral("UtilsDialogWindow"));
    resize(InitialSize);

    m_windowLayout = new QVBoxLayout(this);
    m_windowLayout->setObjectName(QStringLiteral("verticalLayout"));
    m_windowLayout->setSpacing(0);
    m_windowLayout->setContentsMargins(0, 0, 0, 0);

    m_main = new QWidget(this);
    m_main->setObjectName(QStringLiteral("widget_main"));
    m_windowLayout->addWidget(m_main);
    m_mainLayout = new QVBoxLayout(m_main);
    m_mainLayout->setObjectName(QStringLiteral("verticalLayout_main"));
    m_mainLayout->setSpacing(0);
    m_mainLayout->setContentsMargins(0, 0, 0, 0);

    m_content = new QWidget(m_main);
    m_content->setObjectName(QStringLiteral("widget_content"));
    m_content->setProperty("background-color", QStringLiteral("main"));
    m_mainLayout->addWidget(m_content, 1);
    m_contentLayout = new QVBoxLayout(m_content);
    m_contentLayout->setObjectName(QStringLiteral("verticalLayout_content"));
}

void UtilsDialogWindow::createTitlebar()
{
    setProperty("background-color", QStringLiteral("window-frame"));
    m_windowLayout->setContentsMargins(FrameWidth, FrameWidth, FrameWidth, FrameWidth);
    m_titlebar = new UtilsDialogTitlebar(this);
    m_mainLayout->insertWidget(0, m_titlebar);
    connect(m_titlebar->getMaximizeButton(), &QToolButton::clicked, this, &UtilsDialogWindow::slotMaximize);
    // Assistive technology toggles the button without a click.
    connect(m_titlebar->getMaximizeButton(), &QToolButton::toggled, this, &UtilsDialogWindow::slotMaximize);
}

void UtilsDialogWindow::centerOn(const QWidget *parent)
{
    move(parent->mapToGlobal(parent->rect().center()) - rect().center());
}

void UtilsDialogWindow::setContent(QWidget *content)
{
    if (content)
        m_contentLayout->addWidget(content);
}

void UtilsDialogWindow::setTitle(QString title)
{
    if (!m_isFrameless) {
        setWindowTitle(title);
        return;
    }
    m_titlebar->setTitle(title);
    setAccessibleName(title); // which a window otherwise has from its window title
}

void UtilsDialogWindow::setResizableWidth(bool resizable)
{
    const bool wasResizable = m_windowLayout->sizeConstraint() == QLayout::SetDefaultConstraint;
    const QSizePolicy policy(resizable ? QSizePolicy::Preferred : QSizePolicy::Minimum, QSizePolicy::Preferred);
    const QLayout::SizeConstraint inner = resizable ? QLayout::SetDefaultConstraint : QLayout::SetMaximumSize;
    m_main->setSizePolicy(policy);
    m_content->setSizePolicy(policy);
    m_mainLayout->setSizeConstraint(inner);
    m_contentLayout->setSizeConstraint(inner);
    m_windowLayout->setSizeConstraint(resizable ? QLayout::SetDefaultConstraint : QLayout::SetMinAndMaxSize);
    if (!resizable || wasResizable)
        return;
    // The default constraint sets no maximum, and would leave the one that the others have set.
    for (QWidget *widget : {m_content, m_main, static_cast<QWidget *>(this)}) {
        widget->setMinimumSize(0, 0);
        widget->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
}

QFlags<Qt::WindowType> UtilsDialogWindow::setWindowsFlags()
{
    return windowFlagsFor(m_isFrameless);
}

void UtilsDialogWindow::slotMaximize(bool maximize)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!m_isFrameless || !screen || (!maximize && !m_isMaximized))
        return;

    if (maximize) {
        if (!m_isMaximized)
            m_normalGeometry = geometry();
        const QRect available = screen->geometry();
        setGeometry(available.left(), available.top(), qMin(available.width(), maximumWidth()), available.height());
    } else {
        setGeometry(m_normalGeometry);
    }
    m_isMaximized = maximize;
    m_titlebar->setMovable(!maximize);
    m_titlebar->getMaximizeButton()->setChecked(maximize);
}

bool UtilsDialogWindow::nativeEvent(const QByteArray &eventType, void *message, qintptr *result)
{
    if (!m_isFrameless)
        return QDialog::nativeEvent(eventType, message, result);
    if (m_isMaximized)
        return false;
    const std::optional<FrameHitTest> hitTest = frameHitTestOf(message);
    if (!hitTest)
        return false;

    FramePart part = frameEdgeAt(*hitTest, minimumSize(), maximumSize());
    // Qt knows where the cursor is in its own coordinates, which are not those of the message.
    if (part == NoFramePart && QApplication::widgetAt(QCursor::pos()) == this)
        part = FrameCaption;
    if (part == NoFramePart)
        return false;
    *result = part;
    return true;
}

bool UtilsDialogWindow::nativeEvent(const QByteArray &eventType, void *message, long *result)
{
    qintptr answer = 0;
    const bool isHandled = nativeEvent(eventType, message, &answer);
    if (isHandled && result)
        *result = static_cast<long>(answer);
    return isHandled;
}
