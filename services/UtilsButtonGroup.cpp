#include "UtilsButtonGroup.h"

#include "UtilsMisc.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVariant>

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
    , m_group(newButtonGroup())
{
    setupForm();

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->setSizeConstraint(QLayout::SetNoConstraint);
    m_form.frame_buttons->setLayout(row);
    m_form.frame_buttons->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_form.frame_buttons->setLayoutDirection(Qt::LeftToRight); // a style sheet draws the left end where left is

    m_group->setExclusive(true);
    connect(m_group, &QButtonGroup::idClicked, this, &UtilsButtonGroup::signalButtonClicked);
}

UtilsButtonGroup::~UtilsButtonGroup() = default;

void UtilsButtonGroup::setupForm()
{
    setObjectName(QStringLiteral("UtilsButtonGroup"));
    resize(InitialSize);
    setLineWidth(LineWidth);

    m_form.horizontalLayout = new QHBoxLayout(this);
    m_form.horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    m_form.horizontalLayout->setContentsMargins(0, 0, 0, 0);

    m_form.frame_buttons = new QFrame(this);
    m_form.frame_buttons->setObjectName(QStringLiteral("frame_buttons"));
    m_form.frame_buttons->setFrameShape(QFrame::StyledPanel);
    m_form.frame_buttons->setFrameShadow(QFrame::Raised);
    m_form.horizontalLayout->addWidget(m_form.frame_buttons);
}

int UtilsButtonGroup::addButton(QString name, int id)
{
    m_buttons.removeAll(nullptr); // deleted by others
    for (const auto &button : std::as_const(m_buttons)) {
        if (button->objectName() == name)
            return m_group->id(button);
    }

    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setText(name);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    markEnds(button);
    m_group->addButton(button, id);
    m_form.frame_buttons->layout()->addWidget(button);
    m_buttons.append(button);
    return m_group->id(button);
}

void UtilsButtonGroup::markEnds(QToolButton *newButton)
{
    if (m_buttons.isEmpty())
        return;
    QToolButton *last = m_buttons.constLast();
    if (m_buttons.size() == 1)
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
    for (const auto &button : std::as_const(m_buttons)) {
        if (button && m_group->id(button) == id) {
            button->setChecked(true);
            return;
        }
    }
}

int UtilsButtonGroup::count() const
{
    return int(m_group->buttons().size());
}

void UtilsButtonGroup::removeButtons()
{
    for (QAbstractButton *button : m_group->buttons())
        button->deleteLater();
    m_buttons.clear(); // a name is free at once
}

void UtilsButtonGroup::setButtonsMaxSize(int w, int h)
{
    for (QAbstractButton *button : m_group->buttons())
        button->setMaximumSize(w, h);
}

void UtilsButtonGroup::setButtonsMinSize(int w, int h)
{
    for (QAbstractButton *button : m_group->buttons())
        button->setMinimumSize(w, h);
}

void UtilsButtonGroup::setButtonsProperty(const char *name, const QVariant &value)
{
    for (QAbstractButton *button : m_group->buttons())
        button->setProperty(name, value);
}
