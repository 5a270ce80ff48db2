// QApplication::setActiveWindow() is deprecated from Qt 6.5 on; until Qt 7 nothing else makes a window active at once.
#undef QT_DISABLE_DEPRECATED_BEFORE

#include "UtilsDialogFrame.h"

#include "UtilsFade.h"
#include "UtilsSingleInstance.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGraphicsDropShadowEffect>
#include <QKeyEvent>
#include <QLayout>
#include <QSpacerItem>
#include <QToolButton>

#include <memory>
#include <utility>

static constexpr int FadeInDuration = 200; // milliseconds
static constexpr int FadeOutDuration = 150;
static constexpr qreal ShadowBlurRadius = 20.0;
static constexpr qreal ShadowOffset = 2.0;
static constexpr QSize InitialSize(460, 246);
static constexpr QSize MinimumContentSize(250, 40);
static constexpr QSize MinimumButtonSize(115, 27);
static constexpr int CardMargin = 12;
static constexpr int SeparatorHeight = 1;
static constexpr int StyleMargin = -1; // what the style gives

/// Asks the system, which answers later, and has the window active at once for whoever hears of the dialog's end.
static void makeActive(QWidget *window)
{
    window->activateWindow();
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setActiveWindow(window);
    QT_WARNING_POP
}

UtilsDialogFrame::UtilsDialogFrame(QWidget *parent)
    : QDialog(parent, Qt::Window | Qt::FramelessWindowHint)
{
    setupForm();

    m_coveredWindow = QApplication::activeWindow();
    if (!m_coveredWindow)
        m_coveredWindow = UtilsSingleInstance::getAppMainWidget();

    setAttribute(Qt::WA_TranslucentBackground);
    setWindowModality(Qt::ApplicationModal);

    m_fade = new UtilsFade(m_frameDialog, this, FadeInDuration, FadeOutDuration);
    m_frameDialog->hide();

    m_shadow = new QGraphicsDropShadowEffect(this);
    m_shadow->setBlurRadius(ShadowBlurRadius);
    m_shadow->setOffset(ShadowOffset);
    m_shadow->setColor(Qt::black);

    // QDialog's accepted() and no other: subclasses have signals of that name for what was entered.
    connect(this, &QDialog::accepted, this, &UtilsDialogFrame::slotDialogIsClosing);
    connect(this, &QDialog::rejected, this, &UtilsDialogFrame::slotDialogIsClosing);
    if (m_coveredWindow)
        connect(m_coveredWindow, &QObject::destroyed, this, &UtilsDialogFrame::slotActiveWindowDestroyed);
    connect(m_acceptButton, &QToolButton::clicked, this,
            [this] { handleClick(&UtilsDialogFrame::on_toolButton_accept_clicked); });
    connect(m_cancelButton, &QToolButton::clicked, this,
            [this] { handleClick(&UtilsDialogFrame::on_toolButton_cancel_clicked); });

    setFocus(m_cancelButton);
}

UtilsDialogFrame::~UtilsDialogFrame()
{
    if (m_fade)
        m_fade->deleteLater();
    if (m_shadow)
        m_shadow->deleteLater();
    if (!m_isClicked)
        return;
    // A receiver deletes the frame inside the click of a button. QAbstractButton goes on with that button when it has
    // said so: the buttons stay until the event loop comes to them.
    for (QToolButton *button : findChildren<QToolButton *>()) {
        button->setParent(nullptr);
        button->deleteLater();
    }
}

void UtilsDialogFrame::setupForm()
{
    setObjectName(QStringLiteral("UtilsDialogFrame"));
    resize(InitialSize);
    setWindowTitle(tr("Dialog"));

    auto *dialogLayout = new QVBoxLayout(this);
    dialogLayout->setObjectName(QStringLiteral("verticalLayout_2"));
    dialogLayout->setSpacing(0);
    dialogLayout->setContentsMargins(0, 0, 0, 0);

    auto *dimmer = new QFrame(this);
    dimmer->setObjectName(QStringLiteral("frame_main"));
    dimmer->setProperty("background-color", QStringLiteral("semi-transparent"));
    dimmer->setFrameShape(QFrame::StyledPanel);
    dimmer->setFrameShadow(QFrame::Raised);
    dialogLayout->addWidget(dimmer);

    auto *dimmerLayout = new QVBoxLayout(dimmer);
    dimmerLayout->setObjectName(QStringLiteral("verticalLayout"));
    dimmerLayout->setSpacing(0);
    dimmerLayout->setContentsMargins(0, 0, 0, 0);

    auto *row = new QHBoxLayout;
    row->setObjectName(QStringLiteral("horizontalLayout"));
    row->setSpacing(10);
    row->setContentsMargins(0, 0, StyleMargin, StyleMargin);
    row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    row->addWidget(createCard(dimmer));
    row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));

    // One third of the free height is above the card, two thirds are below.
    dimmerLayout->addItem(new QSpacerItem(20, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
    dimmerLayout->addLayout(row);
    dimmerLayout->addItem(new QSpacerItem(20, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
    dimmerLayout->setStretch(0, 1);
    dimmerLayout->setStretch(2, 2);
}

QFrame *UtilsDialogFrame::createCard(QWidget *parent)
{
    m_frameDialog = new QFrame(parent);
    m_frameDialog->setObjectName(QStringLiteral("frame_dialog"));
    m_frameDialog->setStyleSheet(QStringLiteral("QFrame#frame_dialog\n{\n\tborder-radius: 4px;\n}"));
    m_frameDialog->setProperty("background-color", QStringLiteral("main"));
    m_frameDialog->setProperty("frame-border-color", QStringLiteral("gray_level2"));
    m_frameDialog->setFrameShape(QFrame::StyledPanel);
    m_frameDialog->setFrameShadow(QFrame::Raised);

    auto *cardLayout = new QVBoxLayout(m_frameDialog);
    cardLayout->setObjectName(QStringLiteral("verticalLayout_3"));
    cardLayout->setSpacing(12);
    cardLayout->setContentsMargins(CardMargin, CardMargin, CardMargin, CardMargin);

    auto *content = new QFrame(m_frameDialog);
    content->setObjectName(QStringLiteral("frame_content"));
    content->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    content->setMinimumSize(MinimumContentSize);
    content->setFrameShape(QFrame::StyledPanel);
    content->setFrameShadow(QFrame::Raised);
    m_contentLayout = new QVBoxLayout(content);
    m_contentLayout->setObjectName(QStringLiteral("verticalLayout_4"));
    m_contentLayout->setSpacing(0);
    m_contentLayout->setContentsMargins(0, 0, 0, 0);
    cardLayout->addWidget(content);

    m_buttonSeparator = new QFrame(m_frameDialog);
    m_buttonSeparator->setObjectName(QStringLiteral("line_buttonSeparator"));
    m_buttonSeparator->setMaximumHeight(SeparatorHeight);
    m_buttonSeparator->setProperty("frame-type", QStringLiteral("line-horizontal"));
    m_buttonSeparator->setProperty("frame-border-color", QStringLiteral("gray_level4"));
    m_buttonSeparator->setFrameShape(QFrame::HLine);
    m_buttonSeparator->setFrameShadow(QFrame::Sunken);
    cardLayout->addWidget(m_buttonSeparator);

    auto *buttons = new QHBoxLayout;
    buttons->setObjectName(QStringLiteral("horizontalLayout_2"));
    buttons->setSpacing(10);
    cardLayout->addLayout(buttons);
    // Created first, cancel comes before accept in the tab order. setTabOrder() would leave two widgets as they are,
    // because in a ring of two each comes before the other.
    m_cancelButton = createButton(QStringLiteral("toolButton_cancel"), tr("CANCEL"));
    m_cancelButton->setAutoRaise(true);
    m_acceptButton = createButton(QStringLiteral("toolButton_accept"), tr("OK"));
    buttons->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    buttons->addWidget(m_acceptButton);
    buttons->addWidget(m_cancelButton);
    buttons->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    return m_frameDialog;
}

QToolButton *UtilsDialogFrame::createButton(const QString &name, const QString &text)
{
    auto *button = new QToolButton(m_frameDialog);
    button->setObjectName(name);
    button->setMinimumSize(MinimumButtonSize);
    button->setMaximumHeight(MinimumButtonSize.height());
    button->setFocusPolicy(Qt::StrongFocus);
    button->setText(text);
    return button;
}

void UtilsDialogFrame::handleClick(void (UtilsDialogFrame::*handler)())
{
    const QPointer<UtilsDialogFrame> self(this);
    const bool wasClicked = std::exchange(m_isClicked, true); // a receiver may click again
    (this->*handler)();
    if (self)
        m_isClicked = wasClicked;
}

void UtilsDialogFrame::enableCancelButton(bool enable)
{
    m_cancelButton->setEnabled(enable);
}

QToolButton *UtilsDialogFrame::getAcceptButton()
{
    return m_acceptButton;
}

QToolButton *UtilsDialogFrame::getCancelButton()
{
    return m_cancelButton;
}

void UtilsDialogFrame::setContent(QWidget *content)
{
    if (content)
        m_contentLayout->addWidget(content);
}

void UtilsDialogFrame::setButtonsVisible(bool visible)
{
    m_buttonSeparator->setVisible(visible);
    m_acceptButton->setVisible(visible);
    m_cancelButton->setVisible(visible);
}

void UtilsDialogFrame::disableInputControls()
{
    setButtonsVisible(false);
    m_inputControlsDisabled = true;
}

void UtilsDialogFrame::setDialogMaxHeight(int height)
{
    m_frameDialog->setMaximumHeight(height);
}

void UtilsDialogFrame::setDialogMaxWidth(int width)
{
    m_frameDialog->setMaximumWidth(width);
}

void UtilsDialogFrame::setFocus(QWidget *widget)
{
    if (widget)
        widget->setFocus(Qt::OtherFocusReason);
}

void UtilsDialogFrame::updatePosition()
{
    if (!m_coveredWindow)
        return;
    setFixedSize(m_coveredWindow->size());
    move(m_coveredWindow->mapToGlobal(QPoint(0, 0)));
}

void UtilsDialogFrame::setVisible(bool visible)
{
    if (visible) {
        if (!m_isUsedUp)
            QDialog::setVisible(true);
        return;
    }
    // The frame stays until the event loop deletes it, so that whoever hears of its end may still ask it things.
    m_isUsedUp = true;
    m_acceptButton->setEnabled(false);
    m_cancelButton->setEnabled(false);
    deleteLater();
}

void UtilsDialogFrame::done(int result)
{
    // A closed frame lives on for a moment. The key that cancelled it goes on to the standard handling, which rejects,
    // and a slot that hears of the end may close it again.
    if (m_isDone)
        return;
    m_isDone = true;
    hide(); // which QDialog::done() leaves out when the frame was never shown

    // The signals of QDialog::done() come from here: it goes on with a dialog that a slot of the first one has deleted.
    const QPointer<UtilsDialogFrame> self(this);
    const bool wereBlocked = blockSignals(true);
    QDialog::done(result);
    if (!self)
        return;
    blockSignals(wereBlocked);
    if (result == Accepted)
        Q_EMIT QDialog::accepted();
    else if (result == Rejected)
        Q_EMIT QDialog::rejected();
    if (self)
        Q_EMIT finished(result);
}

int UtilsDialogFrame::exec()
{
    if (m_isUsedUp)
        return result(); // it would wait for the end of a frame that is not shown again
    // QDialog::exec() knows no result of a dialog that is deleted before it returns, as this one is.
    const auto code = std::make_shared<int>(Rejected);
    connect(this, &QDialog::finished, this, [code](int result) { *code = result; });
    QDialog::exec();
    return *code;
}

void UtilsDialogFrame::slotFadeInFinished()
{
    // A widget has one graphics effect: the shadow takes the place of the fade's opacity effect and deletes it, so
    // from here on the fade is of no use.
    if (m_shadow)
        m_frameDialog->setGraphicsEffect(m_shadow);
}

void UtilsDialogFrame::slotFadeOutFinished()
{
    deleteLater();
}

void UtilsDialogFrame::slotDialogIsClosing()
{
    const QPointer<UtilsDialogFrame> self(this);
    if (m_coveredWindow)
        makeActive(m_coveredWindow);
    if (self)
        Q_EMIT signalDialogClosed();
}

void UtilsDialogFrame::slotActiveWindowDestroyed(QObject *ptr)
{
    m_coveredWindow = ptr ? qobject_cast<QWidget *>(ptr->parent()) : nullptr;
}

void UtilsDialogFrame::on_toolButton_accept_clicked()
{
    accept();
}

void UtilsDialogFrame::on_toolButton_cancel_clicked()
{
    reject();
}

void UtilsDialogFrame::slotEnableAcceptButton(int value)
{
    Q_UNUSED(value) // the id of a clicked button, and every click is a choice
    m_acceptButton->setEnabled(true);
}

void UtilsDialogFrame::slotEnableAcceptButton(double value)
{
    m_acceptButton->setEnabled(value > 0.0);
}

void UtilsDialogFrame::enableAcceptButton(bool enable)
{
    m_acceptButton->setEnabled(enable);
}

void UtilsDialogFrame::showEvent(QShowEvent *event)
{
    updatePosition();
    // A window that comes back from the task bar is shown again; its card has been faded in then.
    if (m_frameDialog->isHidden()) {
        m_frameDialog->show();
        if (m_fade)
            m_fade->In(SLOT(slotFadeInFinished()));
    }
    QDialog::showEvent(event);
}

void UtilsDialogFrame::closeEvent(QCloseEvent *event)
{
    const QPointer<UtilsDialogFrame> self(this);
    const bool wasVisible = isVisible();
    QDialog::closeEvent(event); // rejects a visible frame, with signalDialogClosed()
    if (!self)
        return;
    if (wasVisible && !m_isUsedUp)
        return; // a subclass does not let itself be rejected now, and the event is ignored
    hide(); // a frame that was never shown goes as well
    event->accept(); // QDialog refuses while the frame is seen, and with it the application could not quit
    slotDialogIsClosing();
}

void UtilsDialogFrame::keyPressEvent(QKeyEvent *event)
{
    if (m_inputControlsDisabled) {
        event->accept();
        return;
    }
    const QPointer<UtilsDialogFrame> self(this);
    switch (event->key()) {
    case Qt::Key_Escape:
        on_toolButton_cancel_clicked();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_acceptButton->isEnabled())
            on_toolButton_accept_clicked();
        break;
    default:
        break;
    }
    if (self)
        QDialog::keyPressEvent(event);
}
