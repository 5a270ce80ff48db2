#include "UtilsIpEdit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace {

constexpr int LargestByte = 255;
constexpr int DigitsOfLargestByte = 3;
constexpr int BitsPerByte = 8;
constexpr int ShiftOfFirstField = 24;
constexpr int MaximumWidth = 120;

constexpr char PartProperty[] = "utils-ip-edit-widget-type";

int shiftOf(size_t field)
{
    return ShiftOfFirstField - BitsPerByte * int(field);
}

void moveFocus(QLineEdit *field, int cursor)
{
    if (!field)
        return;
    field->setFocus(Qt::OtherFocusReason);
    field->setCursorPosition(cursor);
}

} // namespace

IPItemValidator::IPItemValidator(QObject *parent)
    : QIntValidator(0, LargestByte, parent)
{ }

IPItemValidator::~IPItemValidator() = default;

void IPItemValidator::fixup(QString &input) const
{
    if (input.isEmpty())
        input = QStringLiteral("0");
}

UtilsIpEdit::UtilsIpEdit(QWidget *parent, unsigned int address)
    : QFrame(parent)
{
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Sunken);
    setLayoutDirection(Qt::LeftToRight); // as the arrow keys have it

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int i = 0; i < int(fields.size()); ++i) {
        if (i > 0) {
            parts.append(createDot());
            layout->addWidget(parts.last(), 0);
        }
        parts.append(createField(i));
        layout->addWidget(parts.last(), 1);
    }
    setMaximumWidth(MaximumWidth);
    setAddress(address);

    connect(this, &UtilsIpEdit::signalTextChanged, this, &UtilsIpEdit::slotTextChanged, Qt::QueuedConnection);
}

UtilsIpEdit::~UtilsIpEdit() = default;

QWidget *UtilsIpEdit::createDot()
{
    auto *dot = new QLabel(QStringLiteral("."), this);
    dot->setEnabled(true);
    dot->setProperty(PartProperty, true);
    return dot;
}

QLineEdit *UtilsIpEdit::createField(int index)
{
    auto *field = new QLineEdit(this);
    field->setProperty(PartProperty, true);
    field->setAccessibleName(tr("Address part %1 of %2").arg(index + 1).arg(fields.size()));
    field->installEventFilter(this);
    field->setFrame(false);
    field->setAlignment(Qt::AlignCenter);
    QFont font = field->font();
    font.setStyleHint(QFont::Monospace, QFont::PreferDevice);
    font.setFixedPitch(true);
    field->setFont(font);
    field->setValidator(new IPItemValidator(field));
    fields[size_t(index)] = field;
    return field;
}

unsigned int UtilsIpEdit::getAddress() const
{
    unsigned int address = 0;
    for (size_t i = 0; i < fields.size(); ++i) {
        const int number = fields[i] ? fields[i]->text().toInt() : 0;
        address |= static_cast<unsigned int>(number) << shiftOf(i);
    }
    return address;
}

void UtilsIpEdit::setAddress(unsigned int address)
{
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i])
            fields[i]->setText(getIPItemStr(static_cast<unsigned char>(address >> shiftOf(i))));
    }
}

QLineEdit *UtilsIpEdit::getLineEditWidgets(unsigned char index)
{
    return fields[index];
}

QString UtilsIpEdit::getIPItemStr(unsigned char value)
{
    return QString::number(value);
}

bool UtilsIpEdit::eventFilter(QObject *watched, QEvent *event)
{
    const int index = event->type() == QEvent::KeyPress ? indexOf(watched) : -1;
    if (index >= 0) {
        const QPointer<QLineEdit> field = fields[size_t(index)];
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Left:
            if (field->cursorPosition() == 0 && index > 0) {
                QLineEdit *previous = fields[size_t(index) - 1];
                moveFocus(previous, previous ? int(previous->text().size()) : 0);
            }
            break;
        case Qt::Key_Right:
            if (field->cursorPosition() == field->text().size() && size_t(index) + 1 < fields.size())
                moveFocus(fields[size_t(index) + 1], 0);
            break;
        default:
            Q_EMIT signalTextChanged(field);
            if (!field)
                return true; // nobody is left to take the key
        }
    }
    return QFrame::eventFilter(watched, event);
}

void UtilsIpEdit::slotTextChanged(QLineEdit *pEdit)
{
    // The field may be gone by now: only one of the fields that are left is looked at.
    const int index = indexOf(pEdit);
    if (index < 0 || size_t(index) + 1 >= fields.size())
        return;
    QLineEdit *next = fields[size_t(index) + 1];
    if (next && pEdit->text().size() == DigitsOfLargestByte && pEdit->cursorPosition() == DigitsOfLargestByte) {
        next->setFocus(Qt::OtherFocusReason);
        next->selectAll();
    }
}

int UtilsIpEdit::indexOf(const QObject *field) const
{
    const auto found = field ? std::find(fields.cbegin(), fields.cend(), field) : fields.cend();
    return found != fields.cend() ? int(found - fields.cbegin()) : -1;
}
