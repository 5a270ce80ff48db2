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

    m_form.horizontalLayout = new QHBoxLayout(this);
    m_form.horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    m_form.horizontalLayout->setSpacing(0);
    m_form.horizontalLayout->setContentsMargins(FormMargins);

    m_form.lcdNumber = new QLCDNumber(this);
    m_form.lcdNumber->setObjectName(QStringLiteral("lcdNumber"));
    m_form.lcdNumber->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_form.lcdNumber->setSmallDecimalPoint(false);
    m_form.lcdNumber->setDigitCount(1);
    m_form.lcdNumber->setSegmentStyle(QLCDNumber::Flat);
    m_form.lcdNumber->display(InitialValue);
    m_form.horizontalLayout->addWidget(m_form.lcdNumber);

    m_form.spacer
        = new QSpacerItem(SpacerSize.width(), SpacerSize.height(), QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_form.horizontalLayout->addItem(m_form.spacer);
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
    m_form.lcdNumber->setDigitCount(qMin(digits, MostDigits));
    m_form.lcdNumber->display(text);
    m_form.lcdNumber->updateGeometry();

    // A QLCDNumber is read out as its value, but does not say when that changes.
    QAccessibleEvent event(m_form.lcdNumber, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}
