#include "UtilsButtonGroup.h"

#include "UtilsMisc.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVariant>

#include <utility>

namespace {

constexpr QSize InitialSize(400, 43);
constexpr int LineWidth = -12; // of the form, and kept

constexpr char LeftProperty[] = "button-group-left";
constexpr char MiddleProperty[] = "button-group-middle";
constexpr char RightProperty[] = "button-group-right";

/// The group has no parent and outlives its widget on purpose: whoever holds it may still ask it when the row is gone.
QButtonGroup *newButtonGroup()
{
    return new QButtonGroup;
}

} // namespace

UtilsButtonGroup::UtilsButtonGroup(QWidget *parent)
    : QFrame(parent)
    , group(newButtonGroup())
{
    setupForm();

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->setSizeConstraint(QLayout::SetNoConstraint);
    form.frame_buttons->setLayout(row);
    form.frame_buttons->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    form.frame_buttons->setLayoutDirection(Qt::LeftToRight); // a style sheet draws the left end where left is

    group->setExclusive(true);
    connect(group, &QButtonGroup::idClicked, this, &UtilsButtonGroup::tellOfClick);
}

UtilsButtonGroup::~UtilsButtonGroup()
{
    if (!isClicked)
        return;
    // A receiver deletes the row inside the click of a button. QToolButton goes on with that button when it has said
    // so: the buttons stay until the event loop comes to them, those that removeButtons() has given up as well.
    for (QToolButton *button : findChildren<QToolButton *>()) {
        button->setParent(nullptr);
        button->deleteLater();
    }
}

void UtilsButtonGroup::setupForm()
{
    setObjectName(QStringLiteral("UtilsButtonGroup"));
    resize(InitialSize);
    setLineWidth(LineWidth);

    form.horizontalLayout = new QHBoxLayout(this);
    form.horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    form.horizontalLayout->setContentsMargins(0, 0, 0, 0);

    form.frame_buttons = new QFrame(this);
    form.frame_buttons->setObjectName(QStringLiteral("frame_buttons"));
    form.frame_buttons->setFrameShape(QFrame::StyledPanel);
    form.frame_buttons->setFrameShadow(QFrame::Raised);
    form.horizontalLayout->addWidget(form.frame_buttons);
}

void UtilsButtonGroup::tellOfClick(int id)
{
    const QPointer<UtilsButtonGroup> self(this);
    const bool wasClicked = std::exchange(isClicked, true); // a receiver may click another button
    Q_EMIT signalButtonClicked(id);
    if (self)
        isClicked = wasClicked;
}

int UtilsButtonGroup::addButton(QString name, int id)
{
    buttons.removeAll(nullptr); // deleted by others
    for (const auto &button : std::as_const(buttons)) {
        if (button->objectName() == name)
            return group->id(button);
    }

    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setText(name);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    markEnds(button);
    group->addButton(button, id);
    form.frame_buttons->layout()->addWidget(button);
    buttons.append(button);
    return group->id(button);
}

void UtilsButtonGroup::markEnds(QToolButton *newButton)
{
    if (buttons.isEmpty())
        return;
    QToolButton *last = buttons.constLast();
    if (buttons.size() == 1)
        UtilsMisc::SetProperty(last, LeftProperty, true);
    if (last->property(RightProperty).toBool()) {
        UtilsMisc::SetProperty(last, RightProperty, false);
        UtilsMisc::SetProperty(last, MiddleProperty, true);
    }
    newButton->setProperty(RightProperty, true);
}

void UtilsButtonGroup::addButtons(QList<QString> names)
{
    Q_UNUSED(names) // callers add buttons one by one
}

void UtilsButtonGroup::checkButton(int id)
{
    for (const auto &button : std::as_const(buttons)) {
        if (button && group->id(button) == id) {
            button->setChecked(true);
            return;
        }
    }
}

int UtilsButtonGroup::count() const
{
    return int(group->buttons().size());
}

void UtilsButtonGroup::removeButtons()
{
    for (QAbstractButton *button : group->buttons())
        button->deleteLater();
    buttons.clear(); // a name is free at once
}

void UtilsButtonGroup::setButtonsMaxSize(int w, int h)
{
    for (QAbstractButton *button : group->buttons())
        button->setMaximumSize(w, h);
}

void UtilsButtonGroup::setButtonsMinSize(int w, int h)
{
    for (QAbstractButton *button : group->buttons())
        button->setMinimumSize(w, h);
}

void UtilsButtonGroup::setButtonsProperty(const char *name, const QVariant &value)
{
    for (QAbstractButton *button : group->buttons())
        button->setProperty(name, value);
}
