#include <UniProgInterface.h>
#include <UtilsToken.h>
#ifdef WITH_TESTKIT
#include <SimulatedProgrammer.h>
#include <UtilsUniProgThread.h>
#endif

#include <QCoreApplication>
#include <QDebug>

#ifdef WITH_TESTKIT
static int statusOfWriting(MemoryManager *image)
{
    SimulatedProgrammer driver;
    driver.setTimeScale(0);
    UtilsUniProgThread programmer(&driver, nullptr);
    QObject::connect(&programmer, &UtilsUniProgThread::SignalProcedureCompleted, qApp, &QCoreApplication::exit);
    programmer.WriteTarget(image);
    return QCoreApplication::exec();
}
#else
static int statusOfWriting(MemoryManager *)
{
    return 0;
}
#endif

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    MemoryManager image;
    image.write(0, "firmware");
    const int status = statusOfWriting(&image);
    const QList<QString> group = UtilsToken(QStringLiteral("1-1-ff")).getTokenGroup(HwTokenGroup(1));
    qInfo() << image.size() << status << group;
    return status == 0 && image.size() == 8 && group == QList<QString>{QStringLiteral("ff")} ? 0 : 1;
}
