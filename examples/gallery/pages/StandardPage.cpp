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

#include <functional>

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

QToolButton *newFlatButton(const QString &text)
{
    auto *button = newButton<QToolButton>(text, false);
    button->setAutoRaise(true);
    return button;
}

/// Buttons of several kinds, each brought into a state by \a change.
QWidget *newRowOfKinds(const std::function<void(QAbstractButton *button)> &change, QWidget *parent)
{
    const QList<QAbstractButton *> buttons{
        newButton<QToolButton>(StandardPage::tr("Off"), false), newButton<QToolButton>(StandardPage::tr("On"), true),
        newFlatButton(StandardPage::tr("Flat")), newButton<QCheckBox>(StandardPage::tr("Off"), false),
        newButton<QRadioButton>(StandardPage::tr("Off"), false)};
    for (QAbstractButton *button : buttons)
        change(button);
    return newRow({buttons.cbegin(), buttons.cend()}, parent);
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
        return newRow({newButton<QToolButton>(tr("Off"), false), newButton<QToolButton>(tr("On"), true),
                       newFlatButton(tr("Flat"))},
                      page);
    });
    addSample(tr("Under the pointer"), [](QWidget *page) {
        // Until it has really been there.
        return newRowOfKinds([](QAbstractButton *button) { button->setAttribute(Qt::WA_UnderMouse); }, page);
    });
    addSample(tr("Pressed"), [](QWidget *page) {
        return newRowOfKinds([](QAbstractButton *button) { button->setDown(true); }, page);
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
