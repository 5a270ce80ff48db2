#include "WindowPage.h"

#include "../EventMonitor.h"

#include <UtilsDialogTitlebar.h>
#include <UtilsDialogWindow.h>

#include <QLabel>
#include <QToolButton>

namespace {

constexpr QSize WindowSize(480, 260);

QLabel *newContent(const QString &text)
{
    auto *content = new QLabel(text);
    content->setAlignment(Qt::AlignCenter);
    return content;
}

} // namespace

WindowPage::WindowPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Title bar"), [this](QWidget *page) { return newTitlebar(tr("Memory"), page); });
    addSample(tr("Maximised"), [this](QWidget *page) {
        UtilsDialogTitlebar *bar = newTitlebar(tr("Memory of the target"), page);
        bar->getMaximizeButton()->setChecked(true);
        return bar;
    });

    addPopup({QStringLiteral("resizable"), tr("Window"), [this] { return openWindow(true); }});
    addPopup({QStringLiteral("fixed"), tr("Window of fixed width"), [this] { return openWindow(false); }});
}

WindowPage::~WindowPage() = default;

UtilsDialogTitlebar *WindowPage::newTitlebar(const QString &title, QWidget *page)
{
    auto *bar = new UtilsDialogTitlebar(nullptr); // the gallery's window has a bar of its own
    bar->setParent(page);
    bar->setTitle(title);
    monitor()->watch(bar->getMaximizeButton(), &QToolButton::toggled, QStringLiteral("maximize toggled"));
    return bar;
}

UtilsDialogWindow *WindowPage::openWindow(bool isResizable)
{
    auto *opened = new UtilsDialogWindow(this);
    opened->setAttribute(Qt::WA_DeleteOnClose);
    opened->setTitle(tr("Memory"));
    opened->setContent(newContent(isResizable ? tr("Both sizes are free.") : tr("The width is fixed.")));
    opened->resize(WindowSize);
    opened->setResizableWidth(isResizable);
    monitor()->watch(opened, &QDialog::finished, QStringLiteral("finished"));
    opened->show();
    return opened;
}
