#ifndef UTILSOPTION_H
#define UTILSOPTION_H

#include "uniprogutils_export.h"

#include <QMap>
#include <QObject>
#include <QString>

/// A named setting with a fixed set of choices ("items"). Each item is a 16-bit value with a display name; one value is
/// the selected one, 0 until something is selected.
///
/// Options usually belong to a UtilsOptionList, which also builds combo boxes for them. GUI thread only when wired to
/// widgets; otherwise use an option from one thread at a time.
///
///     UtilsOption speed("Speed");
///     speed.addItem(1, "Slow");
///     speed.addItem(4, "Fast");
///     speed.selectItemByName("Fast"); // getSelectedItemValue() is 4
///
/// Options have no meta-object of their own and announce nothing.
class UNIPROGUTILS_EXPORT UtilsOption : public QObject
{
public:
    /// An option without items and without a parent; \a name is what the row of the panel is titled with.
    explicit UtilsOption(QString name);
    ~UtilsOption() override;

    /// Adds an item. An item of the same \a value gets the new \a name. The selection is left alone.
    void addItem(unsigned short value, QString name);

    /// A copy of the items, ordered by value.
    QMap<unsigned short, QString> getItems() const;

    QString getName() const;

    /// Selects the item named exactly \a name (case-sensitive); of several, the one with the lowest value. Without such
    /// an item the selected value becomes 0, even if no item has that value.
    void selectItemByName(QString name);

    /// Makes \a value the selected one, whether an item has it or not.
    void selectItemByValue(unsigned short value);

    /// The selected value.
    unsigned short getSelectedItemValue() const;

    /// The display name of the item with the selected value; empty when there is none.
    QString getSelectedItemName() const;

    /// Receiver of a combo box's currentTextChanged: the same as selectItemByName(). An ordinary member function, to be
    /// connected by pointer.
    void slotChangeSelected(QString name);

private:
    Q_DISABLE_COPY_MOVE(UtilsOption)

    QString m_name;
    QMap<unsigned short, QString> m_items;
    unsigned short m_selected = 0;
};

#endif // UTILSOPTION_H
