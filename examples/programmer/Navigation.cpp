#include "Navigation.h"

#include "Page.h"

#include <UtilsSidebar.h>
#include <UtilsSidebarItem.h>
#include <UtilsSidebarWidget.h>
#include <UtilsStackedWidget.h>

#include <QHBoxLayout>
#include <QKeySequence>
#include <QShortcut>

#include <algorithm>

namespace {

constexpr int ColumnWidth = 190;
constexpr int SectionCount = 5;

} // namespace

Navigation::Navigation(QWidget *parent)
    : QWidget(parent)
    , sidebar(UtilsSidebar::getInstance(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    UtilsSidebarWidget *column = sidebar->getSidebarWidget();
    column->setFixedWidth(ColumnWidth);
    row->addWidget(column);
    row->addWidget(sidebar->getUtilsStackedWidget(), 1);
    addShortcuts();
    showSections();
}

Navigation::~Navigation()
{
    delete sidebar;
}

void Navigation::addPage(Page *page, Section section)
{
    const auto rows
        = std::count_if(entries.cbegin(), entries.cend(), [=](const Entry &entry) { return entry.section == section; });
    sidebar->addConnection(page, int(rows), sectionId(section));
    sidebar->setCaption(page, page->windowTitle()); // the object name, which it is called by, is for style and tests
    entries.append({page, section});
    showSections();
}

void Navigation::showPage(Page *page)
{
    sidebar->slotShowWidget(page);
}

Page *Navigation::currentPage() const
{
    return qobject_cast<Page *>(sidebar->getUtilsStackedWidget()->currentWidget());
}

/// The buttons of the sidebar take no keyboard focus, so that keys have to lead to the pages without them.
void Navigation::addShortcuts()
{
    const auto add = [this](int keys, const auto &slot) {
        auto *shortcut = new QShortcut(QKeySequence(keys), this);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    add(int(Qt::CTRL) | Qt::Key_PageDown, [this] { step(1); });
    add(int(Qt::CTRL) | Qt::Key_PageUp, [this] { step(-1); });
    for (int section = 0; section < SectionCount; ++section)
        add(int(Qt::CTRL) | (Qt::Key_1 + section), [=] { showFirstPage(static_cast<Section>(section)); });
}

void Navigation::showSections()
{
    const auto items = sidebar->getSidebarWidget()->findChildren<UtilsSidebarItem *>(); // in their order
    for (int section = 0; section < SectionCount; ++section)
        items.at(section)->setVisible(std::any_of(entries.cbegin(), entries.cend(), [=](const Entry &entry) {
            return entry.section == static_cast<Section>(section);
        }));
}

int Navigation::sectionId(Section section) const
{
    switch (section) {
    case Section::Target:
        return sidebar->getSidebarItemId_target();
    case Section::Device:
        return sidebar->getSidebarItemId_uniProg();
    case Section::Power:
        return sidebar->getSidebarItemId_power();
    case Section::Options:
        return sidebar->getSidebarItemId_options();
    case Section::Help:
        break;
    }
    return sidebar->getSidebarItemId_help();
}

/// After the last page comes the first one.
void Navigation::step(int distance)
{
    const auto current = std::find_if(entries.cbegin(), entries.cend(),
                                      [this](const Entry &entry) { return entry.page == currentPage(); });
    const qsizetype index = current - entries.cbegin() + distance + entries.size();
    Page *page = entries.at(index % entries.size()).page;
    showPage(page);
    page->focusFirstControl();
}

void Navigation::showFirstPage(Section section)
{
    const auto first
        = std::find_if(entries.cbegin(), entries.cend(), [=](const Entry &entry) { return entry.section == section; });
    if (first == entries.cend())
        return;
    showPage(first->page);
    first->page->focusFirstControl();
}
