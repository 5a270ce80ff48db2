#include <UtilsMisc.h>
#include <UtilsSingleInstance.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QSettings>

class tst_UtilsMisc_windowstate : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theWindowStateIsKept();
    void restoringBeforeSavingLeavesTheWindow();
    void savingMakesTheSharedObject();
};

static void addDocks(QMainWindow &window)
{
    window.setCentralWidget(new QWidget);
    for (const char *name : {"memory", "registers"}) {
        auto *dock = new QDockWidget;
        dock->setObjectName(QLatin1String(name));
        window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    }
}

void tst_UtilsMisc_windowstate::theWindowStateIsKept()
{
    UtilsSingleInstance::setApplicationName(QStringLiteral("theWindowStateIsKept"));
    QByteArray geometry;
    QByteArray state;
    {
        QMainWindow window;
        addDocks(window);
        window.setGeometry(40, 50, 640, 480);
        window.findChild<QDockWidget *>("memory")->hide();
        window.addDockWidget(Qt::RightDockWidgetArea, window.findChild<QDockWidget *>("registers"));
        UtilsMisc::SaveMainWindowState(&window);
        geometry = window.saveGeometry();
        state = window.saveState(0);
    }
    const QSettings settings(QStringLiteral("Orbelkan"), QStringLiteral("theWindowStateIsKept"));
    QCOMPARE(settings.value(QStringLiteral("window_geometry")), QVariant(geometry));
    QCOMPARE(settings.value(QStringLiteral("window_state")), QVariant(state));
    QCOMPARE(settings.allKeys().size(), 2);

    QMainWindow window;
    addDocks(window);
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QVERIFY(window.findChild<QDockWidget *>("memory")->isHidden());
    QCOMPARE(window.dockWidgetArea(window.findChild<QDockWidget *>("registers")), Qt::RightDockWidgetArea);
}

void tst_UtilsMisc_windowstate::restoringBeforeSavingLeavesTheWindow()
{
    UtilsSingleInstance::setApplicationName(QStringLiteral("restoringBeforeSavingLeavesTheWindow"));
    QMainWindow window;
    addDocks(window);
    window.setGeometry(40, 50, 640, 480);
    const QByteArray state = window.saveState();
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QCOMPARE(window.saveState(), state);

    QSettings settings(QStringLiteral("Orbelkan"), QStringLiteral("restoringBeforeSavingLeavesTheWindow"));
    settings.setValue(QStringLiteral("window_geometry"), QStringLiteral("no geometry"));
    settings.setValue(QStringLiteral("window_state"), 12);
    settings.sync();
    UtilsMisc::RestoreMainWindowState(&window);
    QCOMPARE(window.geometry(), QRect(40, 50, 640, 480));
    QCOMPARE(window.saveState(), state);
}

void tst_UtilsMisc_windowstate::savingMakesTheSharedObject()
{
    delete UtilsSingleInstance::getInstance(nullptr);
    QMainWindow window;
    UtilsMisc::SaveMainWindowState(&window);
    // It has no parent, and whoever asks for it later is not the first any more.
    QObject parent;
    QVERIFY(!UtilsSingleInstance::getInstance(&parent)->parent());
}

UNIPROG_TEST_MAIN(tst_UtilsMisc_windowstate)
#include "tst_utilsmisc_windowstate.moc"
