#ifndef UTILSOPTIONLIST_H
#define UTILSOPTIONLIST_H

#include "uniprogutils_export.h"

#include <QList>
#include <QObject>
#include <QString>

class QWidget;
class UtilsOption;

/// Owns a list of options and builds a panel of labelled combo boxes for them.
///
///     auto *options = new UtilsOptionList;
///     UtilsOption *speed = options->addOption("Speed");
///     speed->addItem(1, "Slow");
///     speed->addItem(4, "Fast");
///     layout->addWidget(options->createGraphicInterface(this));
///
/// The list owns its options and deletes them; the caller owns the list and the panels. Either may go first: combo
/// boxes of a panel that outlives the list change nothing any more. GUI thread only. The class has no meta-object of
/// its own.
class UNIPROGUTILS_EXPORT UtilsOptionList : public QObject
{
public:
    /// An empty list without a parent.
    UtilsOptionList();
    /// Deletes every option of the list.
    ~UtilsOptionList() override;

    /// Appends a new option and returns it; it stays the list's.
    UtilsOption *addOption(QString name);

    /// The options in the order they were added.
    QList<UtilsOption *> getListOfOptions() const;

    /// Builds a panel with one row an option: its name and ":" as a label with the style property "title", and a combo
    /// box of its items in ascending order of value, showing the selected one. Picking an entry selects the item of
    /// that name in the option.
    ///
    /// An option whose selected value no item has shows its first entry and keeps its value until the user picks
    /// another one: picking the entry that is shown changes nothing, so choose a value for every option first.
    /// The panel is as the options were when it was built: what changes in them later is not shown.
    QWidget *createGraphicInterface(QWidget *parent);

private:
    Q_DISABLE_COPY_MOVE(UtilsOptionList)

    QList<UtilsOption *> m_options;
    UtilsOption *m_last = nullptr; // the option most recently added
};

#endif // UTILSOPTIONLIST_H
