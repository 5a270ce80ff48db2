#include "StandardPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

namespace {

constexpr double Voltage = 3.3;
constexpr int ListHeight = 80;

QWidget *newRow(const QList<QWidget *> &widgets, QWidget *parent)
{
    auto *row = new QWidget(parent);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    layout->addStretch();
    return row;
}

template <typename Button>
Button *newButton(const QString &text, bool isChecked)
{
    auto *button = new Button;
    button->setText(text);
    button->setCheckable(true);
    button->setChecked(isChecked);
    return button;
}

} // namespace

StandardPage::StandardPage(EventMonitor *events, QWidget *parent)
    : GalleryPage(events, parent)
{
    addSample(tr("Buttons"), [](QWidget *page) {
        auto *preferred = new QPushButton(tr("Default"));
        preferred->setDefault(true);
        return newRow({newButton<QPushButton>(tr("Off"), false), newButton<QPushButton>(tr("On"), true), preferred},
                      page);
    });
    addSample(tr("Tool buttons"), [](QWidget *page) {
        auto *flat = newButton<QToolButton>(tr("Flat"), false);
        flat->setAutoRaise(true);
        return newRow({newButton<QToolButton>(tr("Off"), false), newButton<QToolButton>(tr("On"), true), flat}, page);
    });
    addSample(tr("Check boxes"), [](QWidget *page) {
        auto *partial = newButton<QCheckBox>(tr("In part"), false);
        partial->setCheckState(Qt::PartiallyChecked);
        return newRow({newButton<QCheckBox>(tr("Off"), false), newButton<QCheckBox>(tr("On"), true), partial}, page);
    });
    addSample(tr("Radio buttons"), [](QWidget *page) {
        return newRow({newButton<QRadioButton>(tr("On"), true), newButton<QRadioButton>(tr("Off"), false)}, page);
    });
    addSample(tr("Combo box"), [](QWidget *page) {
        auto *box = new QComboBox(page);
        box->addItems({tr("Erase everything"), tr("Erase what is needed")});
        return box;
    });
    addSample(tr("Spin box"), [](QWidget *page) {
        auto *box = new QDoubleSpinBox(page);
        box->setValue(Voltage);
        return box;
    });
    addSample(tr("Line"), [](QWidget *page) { return new QLineEdit(QStringLiteral("firmware.hex"), page); });
    addSample(tr("Text"), [](QWidget *page) {
        auto *edit = new QPlainTextEdit(tr("First line\nSecond line"), page);
        edit->setFixedHeight(ListHeight);
        return edit;
    });
    addSample(tr("List"), [](QWidget *page) {
        auto *list = new QListWidget(page);
        list->setFixedHeight(ListHeight);
        list->addItems({tr("Memory"), tr("Registers"), tr("Options")});
        list->setCurrentRow(1);
        return list;
    });
}

StandardPage::~StandardPage() = default;
