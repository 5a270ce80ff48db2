#include "UtilsLcdNumber.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLCDNumber>
#include <QSpacerItem>

namespace {

constexpr QSize InitialSize(104, 25);
constexpr QMargins FormMargins(6, 1, 0, 1);
constexpr QSize SpacerSize(0, 20);
constexpr double InitialValue = 26.3; // of the form; the constructor's value takes its place
constexpr int Decimals = 1;
constexpr int MostDigits = 99; // of a QLCDNumber

} // namespace

UtilsLcdNumber::UtilsLcdNumber(QWidget *parent, double value)
    : QFrame(parent)
{
    setupForm();
    setValue(value);
}

UtilsLcdNumber::~UtilsLcdNumber() = default;

void UtilsLcdNumber::setupForm()
{
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("UtilsLcdNumber"));
    resize(InitialSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Raised);
    setWindowTitle(tr("Frame"));

    form.horizontalLayout = new QHBoxLayout(this);
    form.horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    form.horizontalLayout->setSpacing(0);
    form.horizontalLayout->setContentsMargins(FormMargins);

    form.lcdNumber = new QLCDNumber(this);
    form.lcdNumber->setObjectName(QStringLiteral("lcdNumber"));
    form.lcdNumber->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    form.lcdNumber->setSmallDecimalPoint(false);
    form.lcdNumber->setDigitCount(1);
    form.lcdNumber->setSegmentStyle(QLCDNumber::Flat);
    form.lcdNumber->display(InitialValue);
    form.horizontalLayout->addWidget(form.lcdNumber);

    form.spacer
        = new QSpacerItem(SpacerSize.width(), SpacerSize.height(), QSizePolicy::Expanding, QSizePolicy::Minimum);
    form.horizontalLayout->addItem(form.spacer);
}

void UtilsLcdNumber::setValue(int value)
{
    const QString text = QString::number(value);
    lcdNumberUpdate(text, int(text.size()));
}

void UtilsLcdNumber::setValue(double value)
{
    const QString text = QString::number(value, 'f', Decimals);
    lcdNumberUpdate(text, int(text.size()));
}

void UtilsLcdNumber::lcdNumberUpdate(QString text, int digits)
{
    form.lcdNumber->setDigitCount(qMin(digits, MostDigits));
    form.lcdNumber->display(text);
    form.lcdNumber->updateGeometry();

    // A QLCDNumber is read out as its value, but does not say when that changes.
    QAccessibleEvent event(form.lcdNumber, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}
