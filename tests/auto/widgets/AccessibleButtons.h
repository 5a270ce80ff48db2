#ifndef ACCESSIBLEBUTTONS_H
#define ACCESSIBLEBUTTONS_H

#include <QAccessible>
#include <QStringList>
#include <QWidget>

/// The buttons that assistive technology finds on its way down from a widget, by their names. What is not shown is left
/// out, as a screen reader does it.
class AccessibleButtons
{
public:
    explicit AccessibleButtons(QWidget *widget)
        : root(QAccessible::queryAccessibleInterface(widget))
    { }

    QStringList names() const
    {
        QStringList names;
        for (const QAccessibleInterface *button : buttonsBelow(root))
            names.append(button->text(QAccessible::Name));
        return names;
    }

    /// Null when there is none of that name.
    QAccessibleInterface *find(const QString &name) const
    {
        for (QAccessibleInterface *button : buttonsBelow(root)) {
            if (button->text(QAccessible::Name) == name)
                return button;
        }
        return nullptr;
    }

    bool toggle(const QString &name) const
    {
        QAccessibleInterface *button = find(name);
        if (!button || !button->actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()))
            return false;
        button->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        return true;
    }

private:
    static QList<QAccessibleInterface *> buttonsBelow(QAccessibleInterface *parent)
    {
        QList<QAccessibleInterface *> buttons;
        for (int i = 0; i < parent->childCount(); ++i) {
            QAccessibleInterface *child = parent->child(i);
            if (child->state().invisible)
                continue;
            if (child->role() == QAccessible::CheckBox)
                buttons.append(child);
            buttons += buttonsBelow(child);
        }
        return buttons;
    }

    QAccessibleInterface *root;
};

#endif // ACCESSIBLEBUTTONS_H
