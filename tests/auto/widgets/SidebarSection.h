#ifndef SIDEBARSECTION_H
#define SIDEBARSECTION_H

#include <UtilsSidebarItem.h>
#include <UtilsSidebarListWidget.h>

#include <QStringList>
#include <QToolButton>

#include <memory>

inline const QString CheckedIcon = QStringLiteral(":/images/power_yellow.svg");
inline const QString UncheckedIcon = QStringLiteral(":/images/power_light.svg");

/// A section with everything a test asks it for.
struct Section
{
    explicit Section(int children = 0)
        : item(new UtilsSidebarItem(nullptr))
    {
        item->setUp("POWER", UncheckedIcon, CheckedIcon);
        for (int i = 1; i <= children; ++i)
            item->addChild(QStringLiteral("child %1").arg(i), i - 1);
        QObject::connect(item.get(), &UtilsSidebarItem::SignalItemToggled,
                         [this](const UtilsSidebarItem *sender, bool checked) {
                             log.append(sender == item.get() ? (checked ? "item on" : "item off") : "another item");
                         });
        QObject::connect(item.get(), &UtilsSidebarItem::SignalChildToggled, [this](int id, bool checked) {
            log.append(QStringLiteral("child %1 %2").arg(id).arg(checked ? "on" : "off"));
        });
    }

    QToolButton *main() const
    {
        return item->findChild<QToolButton *>("toolButton_main");
    }
    UtilsSidebarListWidget *list() const
    {
        return item->findChild<UtilsSidebarListWidget *>("listWidget_children");
    }
    QToolButton *childAt(int row) const
    {
        return qobject_cast<QToolButton *>(list()->itemWidget(list()->item(row)));
    }
    QStringList captions() const
    {
        QStringList captions;
        for (int row = 0; row < list()->count(); ++row)
            captions.append(childAt(row)->text());
        return captions;
    }
    int height() const
    {
        return list()->maximumHeight();
    }
    QStringList takeLog()
    {
        return std::exchange(log, {});
    }

    std::unique_ptr<UtilsSidebarItem> item;
    QStringList log;
};

#endif // SIDEBARSECTION_H
