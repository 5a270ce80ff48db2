#include "SupplyPage.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr double LowestVoltage = 1.2;
constexpr double HighestVoltage = 5.5;
constexpr double VoltageStep = 0.1;
constexpr int VoltageDecimals = 2;
constexpr int CurrentDecimals = 3;

enum Column { ChannelColumn, VoltageColumn, CurrentColumn, ColumnCount };

} // namespace

SupplyPage::SupplyPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("supplyPage"), tr("Supply"), QStringLiteral("programmer/supply.html"), parent)
    , table(new QTableWidget(0, ColumnCount, this))
{
    setupChannelForm();
    addOperations(ProgrammerSession::Subject::Supply);
    setupTable();
    body()->addWidget(table, 1);
    connect(session, &ProgrammerSession::completed, this, &SupplyPage::showLevels);
    showLevels();
}

void SupplyPage::setupChannelForm()
{
    auto *form = new QFormLayout;
    body()->addLayout(form);
    auto *channel = new QComboBox;
    channel->setObjectName(QStringLiteral("powerChannel"));
    for (int i = 0; i < SimulatedProgrammer::PowerChannelCount; ++i)
        channel->addItem(i == SimulatedProgrammer::SupplyChannel ? tr("%1 (supply of the target)").arg(i)
                                                                 : QString::number(i));
    channel->setCurrentIndex(SimulatedProgrammer::SupplyChannel);
    connect(channel, &QComboBox::currentIndexChanged, session(), &ProgrammerSession::setPowerChannel);
    form->addRow(tr("&Channel:"), channel);

    auto *voltage = new QDoubleSpinBox;
    voltage->setObjectName(QStringLiteral("powerVoltage"));
    voltage->setRange(LowestVoltage, HighestVoltage);
    voltage->setSingleStep(VoltageStep);
    voltage->setDecimals(VoltageDecimals);
    voltage->setSuffix(tr(" V"));
    voltage->setValue(ProgrammerSession::DefaultVoltage);
    connect(voltage, &QDoubleSpinBox::valueChanged, session(), &ProgrammerSession::setPowerVoltage);
    form->addRow(tr("&Voltage:"), voltage);
}

void SupplyPage::setupTable()
{
    table->setObjectName(QStringLiteral("powerLevels"));
    table->setAccessibleName(tr("Voltages and currents"));
    table->setHorizontalHeaderLabels({tr("Channel"), tr("Voltage (V)"), tr("Current (A)")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
}

void SupplyPage::showLevels()
{
    const QList<ProgrammerSession::PowerLevel> levels = session()->powerLevels();
    table->setRowCount(int(levels.size()));
    for (int row = 0; row < table->rowCount(); ++row) {
        const ProgrammerSession::PowerLevel &level = levels.at(row);
        table->setItem(row, ChannelColumn, new QTableWidgetItem(QString::number(row)));
        table->setItem(row, VoltageColumn, new QTableWidgetItem(locale().toString(level.volts, 'f', VoltageDecimals)));
        table->setItem(row, CurrentColumn,
                       new QTableWidgetItem(locale().toString(level.amperes, 'f', CurrentDecimals)));
    }
}
