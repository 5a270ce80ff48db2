#ifndef NAVIGATION_H
#define NAVIGATION_H

#include <QList>
#include <QPointer>
#include <QWidget>

class Page;
class UtilsSidebar;

/// The pages of the window beside the sidebar that leads to them. Keys do the same: Ctrl+1 to Ctrl+5 show the first
/// page of a section, Ctrl+PgDown and Ctrl+PgUp go through all pages. There is one sidebar in a process, so one such
/// widget at a time.
class Navigation : public QWidget
{
    Q_OBJECT

public:
    /// In the order of the sidebar.
    enum class Section { Target, Device, Power, Options, Help };

    explicit Navigation(QWidget *parent);
    /// The next one makes a sidebar of its own.
    ~Navigation() override;

    /// Adds @p page below those that the section has. Sections are filled in their order. A section without pages is
    /// not shown.
    void addPage(Page *page, Section section);

    void showPage(Page *page);
    Page *currentPage() const;

private:
    struct Entry
    {
        Page *page;
        Section section;
    };

    void addShortcuts();
    void showSections();
    int sectionId(Section section) const;
    void step(int distance);
    void showFirstPage(Section section);

    QPointer<UtilsSidebar> sidebar;
    QList<Entry> entries;
};

#endif // NAVIGATION_H
