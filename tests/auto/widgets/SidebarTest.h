#ifndef SIDEBARTEST_H
#define SIDEBARTEST_H

#include <UtilsSidebar.h>
#include <UtilsSidebarItem.h>
#include <UtilsSidebarListWidget.h>
#include <UtilsSidebarWidget.h>
#include <UtilsStackedWidget.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPair>
#include <QToolButton>

#include <memory>

enum Section { Target = 1, UniProg, Power, Options, Help };

/// A sidebar of its own for each test function, with what a test asks it for. The sections are asked for by their ids.
class SidebarTest : public UniProgTest
{
    Q_OBJECT

protected Q_SLOTS:
    void init()
    {
        UniProgTest::init();
        window = std::make_unique<QMainWindow>();
        sidebar = UtilsSidebar::getInstance(window.get());
    }

    void cleanup()
    {
        delete sidebar;
        sidebar = nullptr;
        window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A widget was left behind.");
    }

protected:
    QLabel *addPage(const QString &name, int row, int section)
    {
        auto *page = new QLabel(name);
        page->setObjectName(name);
        sidebar->addConnection(page, row, section);
        return page;
    }

    UtilsSidebarItem *section(int id) const
    {
        return sidebar->getSidebarWidget()->findChildren<UtilsSidebarItem *>().at(id - 1);
    }

    QToolButton *main(int id) const
    {
        return section(id)->findChild<QToolButton *>("toolButton_main");
    }

    UtilsSidebarListWidget *list(int id) const
    {
        return section(id)->findChild<UtilsSidebarListWidget *>("listWidget_children");
    }

    QToolButton *child(int id, int row) const
    {
        return qobject_cast<QToolButton *>(list(id)->itemWidget(list(id)->item(row)));
    }

    QStringList captions(int id) const
    {
        QStringList captions;
        for (int row = 0; row < list(id)->count(); ++row)
            captions.append(child(id, row)->text());
        return captions;
    }

    QPair<int, int> ids(QWidget *page) const
    {
        int itemId = 77;
        int childId = 77;
        sidebar->getIdsFromMap(page, &itemId, &childId);
        return {itemId, childId};
    }

    std::unique_ptr<QMainWindow> window;
    UtilsSidebar *sidebar = nullptr;
};

#endif // SIDEBARTEST_H
