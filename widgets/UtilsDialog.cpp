#include "UtilsDialog.h"

#include <QButtonGroup>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpacerItem>
#include <QTextEdit>
#include <QToolButton>

static constexpr int ContentSpacing = 20;
static constexpr int SpinBoxDecimals = 4;

UtilsDialog::UtilsDialog(QWidget *parent)
    : UtilsDialogFrame(parent)
    , m_content(new QWidget)
    , m_contentLayout(new QVBoxLayout(m_content))
    , m_message(new QLabel(tr("Dialog Message")))
{
    m_contentLayout->setSpacing(ContentSpacing);
    m_message->setAlignment(Qt::AlignCenter);
    m_contentLayout->addWidget(m_message);
    setContent(m_content);
}

UtilsDialog::~UtilsDialog() = default;

void UtilsDialog::setMessage(QString message)
{
    m_message->setText(message);
}

QLineEdit *UtilsDialog::addLineEdit(bool password)
{
    if (!m_lineEdit) {
        m_lineEdit = new QLineEdit;
        m_lineEdit->setAlignment(Qt::AlignCenter);
        if (password)
            m_lineEdit->setEchoMode(QLineEdit::Password);
        m_contentLayout->addWidget(m_lineEdit);
    }
    return m_lineEdit;
}

QTextEdit *UtilsDialog::addTextEdit()
{
    if (!m_textEdit) {
        m_textEdit = new QTextEdit;
        m_contentLayout->addWidget(m_textEdit);
    }
    return m_textEdit;
}

QDoubleSpinBox *UtilsDialog::addSpinBox(double value, double min, double max)
{
    if (!m_spinBox) {
        m_spinBox = new QDoubleSpinBox;
        m_spinBox->setRange(min, max);
        m_spinBox->setDecimals(SpinBoxDecimals);
        m_spinBox->setValue(value); // last, because it is rounded to the decimals
        m_spinBox->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        addCentered(m_spinBox);
        connect(m_spinBox, &QDoubleSpinBox::valueChanged, this,
                qOverload<double>(&UtilsDialog::slotEnableAcceptButton));
    }
    return m_spinBox;
}

QButtonGroup *UtilsDialog::addRadioButtonGroup(QList<QString> &items, QString unit, QString selected)
{
    if (!m_radioGroup) {
        auto *frame = new QFrame;
        auto *frameLayout = new QVBoxLayout(frame);
        m_radioGroup = new QButtonGroup(this);
        for (int id = 0; id < items.size(); ++id) {
            auto *button = new QRadioButton(items.at(id) + QLatin1Char(' ') + unit);
            frameLayout->addWidget(button);
            m_radioGroup->addButton(button, id);
        }
        if (!selected.isEmpty() && !items.isEmpty())
            m_radioGroup->button(qMax(0, int(items.indexOf(selected))))->setChecked(true);
        addCentered(frame);
    }
    connect(m_radioGroup, &QButtonGroup::idClicked, this, qOverload<int>(&UtilsDialog::slotEnableAcceptButton));
    return m_radioGroup;
}

void UtilsDialog::addCentered(QWidget *input)
{
    auto *row = new QHBoxLayout;
    row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    row->addWidget(input);
    row->addItem(new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
    m_contentLayout->addLayout(row);
}

void UtilsDialog::setLineEditPlaceholder(QString text)
{
    if (m_lineEdit)
        m_lineEdit->setPlaceholderText(text);
}

void UtilsDialog::setLineEditText(QString text)
{
    if (m_lineEdit)
        m_lineEdit->setText(text);
}

void UtilsDialog::setLineEditValidator(QValidator *validator)
{
    if (!m_lineEdit)
        return;
    m_lineEdit->setValidator(validator);
    connect(m_lineEdit, &QLineEdit::textChanged, this, &UtilsDialog::slotDialogLineEditChanged, Qt::UniqueConnection);
}

void UtilsDialog::setTextEditPlaceholder(QString text)
{
    if (m_textEdit)
        m_textEdit->setPlaceholderText(text);
}

void UtilsDialog::setTextEditText(QString text)
{
    if (m_textEdit)
        m_textEdit->setText(text);
}

void UtilsDialog::setTextEditMaxHeight(int height)
{
    if (m_textEdit)
        m_textEdit->setMaximumHeight(height);
}

void UtilsDialog::on_toolButton_accept_clicked()
{
    // Whoever hears of one entry may delete an input or the dialog itself.
    const QPointer<UtilsDialog> self(this);
    if (m_lineEdit)
        Q_EMIT accepted(m_lineEdit->text());
    if (self && m_textEdit)
        Q_EMIT accepted(m_textEdit->toPlainText());
    if (self && m_spinBox)
        Q_EMIT accepted(m_spinBox->value());
    if (self && m_radioGroup && m_radioGroup->checkedButton())
        Q_EMIT accepted(m_radioGroup->checkedButton()->text().section(QLatin1Char(' '), 0, 0).toDouble());
    if (self)
        UtilsDialogFrame::on_toolButton_accept_clicked();
}

void UtilsDialog::slotDialogLineEditChanged(QString text)
{
    Q_UNUSED(text) // the validator's word counts
    enableAcceptButton(m_lineEdit && m_lineEdit->hasAcceptableInput());
}

void UtilsDialog::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && getAcceptButton()->isEnabled()) {
        event->accept();
        on_toolButton_accept_clicked();
        return;
    }
    UtilsDialogFrame::keyPressEvent(event);
}
