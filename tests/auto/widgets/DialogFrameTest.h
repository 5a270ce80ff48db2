#ifndef DIALOGFRAMETEST_H
#define DIALOGFRAMETEST_H

#include <UtilsDialogFrame.h>
#include <UtilsSingleInstance.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QToolButton>

/// What the tests of UtilsDialogFrame share. None of them leaves a window behind.
class DialogFrameTest : public UniProgTest
{
    Q_OBJECT

protected Q_SLOTS:
    void cleanup()
    {
        turnTheEventLoop();
        UtilsSingleInstance::setAppMainWidget(nullptr);
        QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
    }

protected:
    static constexpr int Patience = 10'000; // milliseconds, a cap and no measure

    /// Deletes what deleteLater() scheduled, as the next turn of the event loop does.
    static void turnTheEventLoop()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static void clickAccept(UtilsDialogFrame *frame)
    {
        QTest::mouseClick(frame->getAcceptButton(), Qt::LeftButton);
    }

    static void clickCancel(UtilsDialogFrame *frame)
    {
        QTest::mouseClick(frame->getCancelButton(), Qt::LeftButton);
    }
};

#endif // DIALOGFRAMETEST_H
