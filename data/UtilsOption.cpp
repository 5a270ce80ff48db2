#include "UtilsOption.h"

UtilsOption::UtilsOption(QString name)
    : m_name(name)
{ }

UtilsOption::~UtilsOption() = default;

void UtilsOption::addItem(unsigned short value, QString name)
{
    m_items.insert(value, name);
}

QMap<unsigned short, QString> UtilsOption::getItems() const
{
    return m_items;
}

QString UtilsOption::getName() const
{
    return m_name;
}

void UtilsOption::selectItemByName(QString name)
{
    m_selected = m_items.key(name, 0); // the map is walked in ascending order: the lowest value wins
}

void UtilsOption::selectItemByValue(unsigned short value)
{
    m_selected = value;
}

unsigned short UtilsOption::getSelectedItemValue() const
{
    return m_selected;
}

QString UtilsOption::getSelectedItemName() const
{
    return m_items.value(m_selected);
}

void UtilsOption::slotChangeSelected(QString name)
{
    selectItemByName(name);
}
