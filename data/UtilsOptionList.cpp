#include "UtilsOptionList.h"

#include "UtilsOption.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QStyle>

namespace {

constexpr int PanelMinimumWidth = 260;
constexpr int RowSpacing = 6;
constexpr int ColumnSpacing = 12;
constexpr int LabelColumn = 0;
constexpr int ComboBoxColumn = 1;

QLabel *createLabel(const UtilsOption *option)
{
    auto *label = new QLabel;
    label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    label->setProperty("title", true);
    label->setText(option->getName() + u':');
    return label;
}

QComboBox *createComboBox(const UtilsOption *option)
{
    auto *comboBox = new QComboBox;
    comboBox->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // Rules of the style sheet that select on properties apply at once.
    comboBox->style()->unpolish(comboBox);
    comboBox->style()->polish(comboBox);
    comboBox->addItems(option->getItems().values());
    comboBox->setCurrentText(option->getSelectedItemName());
    // Only now: filling and presetting the box must not reach the option.
    QObject::connect(comboBox, &QComboBox::currentTextChanged, option, &UtilsOption::slotChangeSelected);
    return comboBox;
}

} // namespace

UtilsOptionList::UtilsOptionList() = default;

UtilsOptionList::~UtilsOptionList()
{
    qDeleteAll(m_options);
}

UtilsOption *UtilsOptionList::addOption(QString name)
{
    m_last = new UtilsOption(name);
    m_options.append(m_last);
    return m_last;
}

QList<UtilsOption *> UtilsOptionList::getListOfOptions() const
{
    return m_options;
}

QWidget *UtilsOptionList::createGraphicInterface(QWidget *parent)
{
    auto *panel = new QWidget(parent);
    panel->setMinimumWidth(PanelMinimumWidth);
    auto *grid = new QGridLayout(panel);
    grid->setVerticalSpacing(RowSpacing);
    grid->setHorizontalSpacing(ColumnSpacing);
    int row = 0;
    for (UtilsOption *option : std::as_const(m_options)) {
        grid->addWidget(createLabel(option), row, LabelColumn);
        grid->addWidget(createComboBox(option), row, ComboBoxColumn);
        ++row;
    }
    return panel;
}
