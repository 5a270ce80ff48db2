#include "UtilsDialogTitlebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QSpacerItem>
#include <QToolButton>

// A static build of the library has its resources only when they are asked for; the macro wants the global namespace.
static void initResources()
{
    Q_INIT_RESOURCE(uniprogutils_icons);
}

static constexpr QSize InitialSize(533, 36);
static constexpr QSize MinimumSize(200, 36);
static constexpr int Height = 36;
static constexpr QSize TitleMinimumSize(100, 20);
static constexpr int TitleHeight = 20;
static constexpr QSize ButtonSize(27, 20);
static constexpr QSize ButtonIconSize(20, 20);
static constexpr int Spacing = 4;
static constexpr int BottomMargin = 7;
static constexpr int StyleMargin = -1; // what the style gives

static const char ImagesStyleSheet[] = R"(QToolButton#closeButton
{
	image: url(":/close");
	border: none;
}
QToolButton#closeButton:hover
{
	image: url(":/close_yellow");
	border: none;
}
QToolButton#maximizeButton
{
	image: url(":/maximize");
	border: none;
}
QToolButton#maximizeButton:hover
{
	image: url(":/maximize_yellow");
	border: none;
}
QToolButton#maximizeButton:checked
{
	image: url(":/restore");
	border: none;
}
QToolButton#maximizeButton:checked:hover
{
	image: url(":/restore_yellow");
	border: none;
}
QToolButton#minimizeButton
{
	image: url(":/minimize");
	border: none;
}
QToolButton#minimizeButton:hover
{
	image: url(":/minimize_yellow");
	border: none;
}
QLabel#logoLabel
{
	image: url(":/logo");
	border: none;
	min-width: 100px;
}
)";

UtilsDialogTitlebar::UtilsDialogTitlebar(QWidget *window)
    : m_window(window)
{
    initResources();
    setupForm();
    if (window)
        connect(m_closeButton, &QToolButton::clicked, window, &QWidget::close);
}

UtilsDialogTitlebar::~UtilsDialogTitlebar() = default;

void UtilsDialogTitlebar::setupForm()
{
    setObjectName(QStringLiteral("UtilsDialogTitlebar"));
    resize(InitialSize);
    setMinimumSize(MinimumSize);
    setMaximumHeight(Height);
    setWindowTitle(tr("Frame"));
    setProperty("background-color", QStringLiteral("window-frame"));
    setStyleSheet(QLatin1String(ImagesStyleSheet));

    auto *layout = new QHBoxLayout(this);
    layout->setObjectName(QStringLiteral("horizontalLayout"));
    layout->setSpacing(Spacing);
    layout->setContentsMargins(0, StyleMargin, 0, BottomMargin);

    // As wide as the buttons on the other side, so that the title stands in the middle.
    layout->addItem(new QSpacerItem(58, 20, QSizePolicy::Fixed, QSizePolicy::Minimum));
    layout->addItem(new QSpacerItem(40, 20, QSizePolicy::Preferred, QSizePolicy::Minimum));

    m_titleLabel = new QLabel(this);
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_titleLabel->setMinimumSize(TitleMinimumSize);
    m_titleLabel->setMaximumHeight(TitleHeight);
    m_titleLabel->setProperty("font-size", QStringLiteral("level4"));
    m_titleLabel->setAlignment(Qt::AlignCenter);
    m_titleLabel->setText(tr("TextLabel"));
    layout->addWidget(m_titleLabel);

    layout->addItem(new QSpacerItem(40, 20, QSizePolicy::Preferred, QSizePolicy::Minimum));

    auto *buttonsHolder = new QWidget(this);
    buttonsHolder->setObjectName(QStringLiteral("widget_buttonsHolder"));
    buttonsHolder->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *buttons = new QHBoxLayout(buttonsHolder);
    buttons->setObjectName(QStringLiteral("horizontalLayout_3"));
    buttons->setSpacing(Spacing);
    buttons->setContentsMargins(0, 0, 0, 0);
    m_maximizeButton = createButton(QStringLiteral("maximizeButton"),
                                    QStringLiteral("QToolButton\n{\n\tpadding: 3px;\n}"), tr("Maximize"));
    m_maximizeButton->setCheckable(true);
    buttons->addWidget(m_maximizeButton);
    m_closeButton = createButton(QStringLiteral("closeButton"), QStringLiteral("QToolButton\n{\n\tpadding: 0px;\n}"),
                                 tr("Close"));
    buttons->addWidget(m_closeButton);
    layout->addWidget(buttonsHolder);
}

QToolButton *UtilsDialogTitlebar::createButton(const QString &name, const QString &styleSheet,
                                               const QString &accessibleName)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setFixedSize(ButtonSize);
    button->setIconSize(ButtonIconSize);
    button->setStyleSheet(styleSheet);
    button->setAccessibleName(accessibleName); // it shows an image and no text
    return button;
}

void UtilsDialogTitlebar::setTitle(QString title)
{
    m_titleLabel->setText(title);
}

QToolButton *UtilsDialogTitlebar::getMaximizeButton() const
{
    return m_maximizeButton;
}

void UtilsDialogTitlebar::setMovable(bool movable)
{
    m_isMovable = movable;
}

bool UtilsDialogTitlebar::getMovable() const
{
    return m_isMovable;
}

void UtilsDialogTitlebar::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (!rect().contains(position))
        return;
    m_pressPosition = position;
    m_isPressed = true;
}

void UtilsDialogTitlebar::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_isMovable || !m_isPressed || !m_window || !event->buttons().testFlag(Qt::LeftButton))
        return;
    m_window->move(m_window->pos() + event->position().toPoint() - m_pressPosition);
}

void UtilsDialogTitlebar::mouseReleaseEvent(QMouseEvent *event)
{
    Q_UNUSED(event)
    m_isPressed = false;
}
