#include "GalleryWindow.h"

#include "EventMonitor.h"
#include "GalleryPage.h"
#include "PageRegistry.h"

#include <Appearance.h>
#include <UtilsLogger.h>
#include <UtilsStackedWidget.h>
#include <UtilsToggleSwitch.h>

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QToolBar>

namespace {

constexpr QSize InitialSize(1080, 840);
constexpr int NavigationWidth = 180;
constexpr int MonitorHeight = 110;
constexpr int ToolBarSpacing = 8;
constexpr int EventLines = 200;
constexpr QSize SwitchSize(40, 20);

void addCaption(QToolBar *bar, const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text, bar);
    label->setContentsMargins(ToolBarSpacing, 0, ToolBarSpacing, 0);
    label->setBuddy(buddy);
    bar->addWidget(label);
    bar->addWidget(buddy);
}

} // namespace

GalleryWindow::GalleryWindow(const GalleryOptions &options, QWidget *parent)
    : QMainWindow(parent)
    , m_options(options)
{
    setupForm();
    addPages();
    m_navigation->setCurrentRow(0);
    if (!m_options.pages.isEmpty())
        showPage(m_options.pages.constFirst());
}

GalleryWindow::~GalleryWindow() = default;

GalleryPage *GalleryWindow::showPage(const QString &name)
{
    const qsizetype row = PageRegistry::names().indexOf(name);
    if (row < 0)
        return nullptr;
    m_navigation->setCurrentRow(int(row));
    return m_pages.at(row);
}

EventMonitor *GalleryWindow::monitor() const
{
    return m_monitor;
}

void GalleryWindow::setupForm()
{
    setObjectName(QStringLiteral("GalleryWindow"));
    setWindowTitle(tr("Gallery"));
    resize(InitialSize);

    auto *bar = addToolBar(tr("Look"));
    bar->setMovable(false);
    addThemeSwitch(bar);
    addScaleSwitch(bar);
    addDirectionSwitch(bar);
    setCentralWidget(createContent());
}

QWidget *GalleryWindow::createContent()
{
    auto *content = new QWidget(this);
    auto *layout = new QHBoxLayout(content);

    m_navigation = new QListWidget(content);
    m_navigation->setObjectName(QStringLiteral("navigation"));
    m_navigation->setAccessibleName(tr("Pages"));
    m_navigation->setFixedWidth(NavigationWidth);
    layout->addWidget(m_navigation);

    auto *column = new QVBoxLayout;
    layout->addLayout(column);
    m_stack = new UtilsStackedWidget(content);
    column->addWidget(m_stack, 1);
    connect(m_navigation, &QListWidget::currentRowChanged, m_stack, &UtilsStackedWidget::setCurrentIndex);

    m_log = new UtilsLogger(content, 0, EventLines);
    m_log->setObjectName(QStringLiteral("eventMonitor"));
    m_log->setAccessibleName(tr("Event monitor"));
    m_log->setFixedHeight(MonitorHeight);
    column->addWidget(m_log);
    m_monitor = new EventMonitor(m_log, this);
    return content;
}

void GalleryWindow::addPages()
{
    for (const PageRegistry::Entry &entry : PageRegistry::entries()) {
        m_navigation->addItem(QCoreApplication::translate("PageRegistry", entry.title));
        auto *area = new QScrollArea(m_stack);
        area->setFrameShape(QFrame::NoFrame);
        area->setWidgetResizable(true);
        GalleryPage *page = entry.create(m_monitor, area);
        page->setObjectName(QString::fromLatin1(entry.name));
        area->setWidget(page);
        m_stack->addWidget(area);
        m_pages.append(page);
    }
    m_monitor->clear(); // of what the pages emit while they are filled
}

void GalleryWindow::addThemeSwitch(QToolBar *bar)
{
    auto *themes = new QComboBox(bar);
    themes->setObjectName(QStringLiteral("theme"));
    themes->addItems(Appearance::themes());
    themes->setCurrentText(m_options.theme);
    connect(themes, &QComboBox::currentTextChanged, this, [this](const QString &theme) {
        m_options.theme = theme;
        Appearance::apply(theme);
    });
    addCaption(bar, tr("&Theme:"), themes);
}

void GalleryWindow::addScaleSwitch(QToolBar *bar)
{
    auto *scales = new QComboBox(bar);
    scales->setObjectName(QStringLiteral("scale"));
    for (const int scale : {100, 125, 150, 200, 300})
        scales->addItem(tr("%1 %").arg(scale), scale);
    scales->setCurrentIndex(scales->findData(m_options.scale));
    connect(scales, &QComboBox::activated, this, [this, scales] {
        GalleryOptions options = m_options;
        options.scale = scales->currentData().toInt();
        options.pages = {PageRegistry::names().at(m_navigation->currentRow())};
        if (options.scale != m_options.scale)
            Q_EMIT restartRequested(options);
    });
    addCaption(bar, tr("&Scale:"), scales);
}

void GalleryWindow::addDirectionSwitch(QToolBar *bar)
{
    auto *direction = new UtilsToggleSwitch(bar);
    direction->setObjectName(QStringLiteral("rightToLeft"));
    direction->setAccessibleName(tr("Right to left"));
    direction->setFixedSize(SwitchSize);
    direction->setChecked(m_options.rightToLeft);
    connect(direction, &UtilsToggleSwitch::toggled, this, [this](bool checked) {
        m_options.rightToLeft = checked;
        QApplication::setLayoutDirection(checked ? Qt::RightToLeft : Qt::LeftToRight);
    });
    addCaption(bar, tr("&Right to left:"), direction);
}
