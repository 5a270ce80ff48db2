#ifndef SUPPLYPAGE_H
#define SUPPLYPAGE_H

#include "Page.h"

class QTableWidget;

/// The page for the channels of the power module: they are switched, given a voltage, and measured.
class SupplyPage : public Page
{
    Q_OBJECT

public:
    explicit SupplyPage(ProgrammerSession *session, QWidget *parent = nullptr);

private:
    void setupChannelForm();
    void setupTable();
    void showLevels();

    QTableWidget *table;
};

#endif // SUPPLYPAGE_H
