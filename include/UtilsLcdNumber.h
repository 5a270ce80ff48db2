#ifndef UTILSLCDNUMBER_H
#define UTILSLCDNUMBER_H

#include "uniprogutils_export.h"

#include <QFrame>

class QHBoxLayout;
class QLCDNumber;
class QSpacerItem;

/// A seven-segment read-out that is as wide as the number it shows: no empty digits in front of it, and none cut off.
///
/// \image html inputs.png
///
/// GUI thread only; owned by its Qt parent.
///
///     auto *voltage = new UtilsLcdNumber(this, 3.3);
///     connect(module, &PowerModule::voltageChanged, voltage, [=](double volts) { voltage->setValue(volts); });
class UNIPROGUTILS_EXPORT UtilsLcdNumber : public QFrame
{
    Q_OBJECT

public:
    /// A read-out that shows \a value as setValue(double) does.
    explicit UtilsLcdNumber(QWidget *parent = nullptr, double value = 0.0);
    ~UtilsLcdNumber() override;

    /// Shows \a value as it is.
    void setValue(int value);
    /// Shows \a value rounded to one decimal, in every language with a point, which takes a digit of its own. The
    /// read-out has at most 99 digits.
    void setValue(double value);

private:
    Q_DISABLE_COPY_MOVE(UtilsLcdNumber)

    struct Form
    {
        QHBoxLayout *horizontalLayout = nullptr;
        QLCDNumber *lcdNumber = nullptr;
        QSpacerItem *spacer = nullptr;
    };

    void setupForm();
    void lcdNumberUpdate(QString text, int digits);

    Form form;
};

#endif // UTILSLCDNUMBER_H
