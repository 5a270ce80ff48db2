#include "ContainersPage.h"

#include "../EventMonitor.h"

#include <UtilsFade.h>
#include <UtilsMisc.h>
#include <UtilsStackedWidget.h>
#include <UtilsTabWidget.h>

#include <QLabel>

namespace {

constexpr int TabsHeight = 150;
constexpr int StackHeight = 110;
constexpr int FadeDuration = 400; // milliseconds

QLabel *newPage(const QString &text)
{
    auto *page = new QLabel(text);
    page->setAlignment(Qt::AlignCenter);
    return page;
}

} // namespace

ContainersPage::ContainersPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Tabs"), [this](QWidget *page) {
        auto *tabs = new UtilsTabWidget(page);
        tabs->setFixedHeight(TabsHeight);
        for (const QString &caption : {tr("READ"), tr("WRITE"), tr("ERASE")})
            tabs->addTab(newPage(tr("Page %1").arg(caption)), caption);
        monitor()->watch(tabs, &UtilsTabWidget::currentChanged, QStringLiteral("currentChanged"));
        return tabs;
    });
    addSample(tr("Stack"), [this](QWidget *page) {
        auto *stack = new UtilsStackedWidget(page, true);
        stack->setFixedHeight(StackHeight);
        UtilsMisc::SetProperty(stack, "background-color", QStringLiteral("main"));
        stack->addWidget(newPage(tr("First page")));
        stack->addWidget(newPage(tr("Second page")));
        monitor()->watch(stack, &UtilsStackedWidget::currentChanged, QStringLiteral("currentChanged"));
        m_stacks.append(stack);
        return stack;
    });

    addButton(tr("Next page of the stack"), [this] {
        for (UtilsStackedWidget *stack : std::as_const(m_stacks))
            stack->setCurrentIndex((stack->currentIndex() + 1) % stack->count());
    });
    addButton(tr("Fade out and in"), [this] {
        for (UtilsStackedWidget *stack : std::as_const(m_stacks)) {
            auto *fade = new UtilsFade(stack->currentWidget(), nullptr, FadeDuration, FadeDuration);
            fade->SelfDestroyEnabled(true);
            fade->Out(nullptr);
            fade->In(nullptr);
        }
    });
}

ContainersPage::~ContainersPage() = default;
