#ifndef UTILSSIDEBARWIDGET_H
#define UTILSSIDEBARWIDGET_H

#include "uniprogutils_export.h"

#include <QList>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QWidget>

class QVBoxLayout;
class UtilsSidebarItem;

/// The column of the sidebar: sections one below the other, at most one of which is current. Selecting a section or a
/// child of one resets all others; so does the pointer when it leaves the column, for sections that were only opened.
///
/// Thread: GUI thread only. Ownership: by its Qt parent; it owns its sections. UtilsSidebar creates the one of the
/// application with its five sections and its pages.
///
///     auto *column = new UtilsSidebarWidget(this);
///     const int memory = column->addItem(tr("MEMORY"), ":/images/options_light.svg", ":/images/options_yellow.svg");
///     const int erase = column->addChild(tr("Erase"), memory, 0);
///     column->checkChild(memory, erase);
class UNIPROGUTILS_EXPORT UtilsSidebarWidget : public QWidget
{
    Q_OBJECT

public:
    explicit UtilsSidebarWidget(QWidget *parent = nullptr);
    ~UtilsSidebarWidget() override;

    /// Adds a section below the others and returns its id: 1, 2, 3 ...
    int addItem(const QString &caption, const QString &uncheckedIcon, const QString &checkedIcon);
    /// The text of a section's main button, which shows a blank before it. Unknown ids are ignored, here and below.
    void setItemCaption(int itemId, const QString &caption);
    /// \a itemId when there is such a section, else the id of the one added last, 0 when there is none.
    int getItemIdForChild(int itemId) const;

    /// Adds a child button at the \a row of a section, of the one added last when \a itemId is unknown, and returns its
    /// id: 1, 2, 3 ... in each section. Without any section, or for a negative row, it adds none and returns -1.
    int addChild(const QString &caption, int itemId, int row);
    void removeChild(int itemId, int childId);
    void setChildCaption(int itemId, int childId, const QString &caption);
    /// Opens the section and checks the child button.
    void checkChild(int itemId, int childId);

Q_SIGNALS:
    /// A child button was toggled. \a itemId is -1 when its section is not one of this column.
    void SignalChildToggled(int itemId, int childId, bool checked);

public Q_SLOTS:
    /// Checked, \a item becomes current and the others are reset.
    void SlotItemToggled(UtilsSidebarItem *item, bool checked);
    /// For the SignalChildToggled() of a section.
    void SlotChildToggled(int childId, bool checked);

protected:
    /// Consumes the column's own leave events.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Q_DISABLE_COPY_MOVE(UtilsSidebarWidget)

    void setupForm();
    void resetAllButCurrent();

    QVBoxLayout *m_layout = nullptr;
    QWidget *m_filler = nullptr;
    QList<QPointer<UtilsSidebarItem>> m_items;
    QPointer<UtilsSidebarItem> m_currentItem;
    int m_itemCount = 0;
    QMap<int, QPointer<UtilsSidebarItem>> m_itemsById;
};

#endif // UTILSSIDEBARWIDGET_H
