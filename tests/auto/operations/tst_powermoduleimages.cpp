#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QResource>
#include <QTemporaryDir>

using Operation = ScriptedDriver::Operation;

/// This program is built from the sources of the update without the library's resource, so that each row compiles in,
/// as it were, an image of its own. The library registers its resource through this function, as a static one does.
int qInitResources_uniprogutils_firmware()
{
    return 1;
}

namespace {

QByteArray imageBytes(quint32 length, const QByteArray &rest)
{
    QByteArray bytes("\x98\xBA\xDC\xFE", 4);
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(char(length >> shift));
    return bytes + rest;
}

QByteArray payload(int size)
{
    return QByteArray(size, 'p');
}

/// Serves @p image as "://bin/pm_enc" as long as it lives.
class PowerModuleResource
{
public:
    explicit PowerModuleResource(const QByteArray &image)
    {
        write("pm_enc", image);
        write("image.qrc", R"(<RCC><qresource prefix="/bin"><file>pm_enc</file></qresource></RCC>)");
        const int exit
            = QProcess::execute(QStringLiteral(UNIPROG_RCC),
                                {"--binary", folder.filePath("image.qrc"), "-o", folder.filePath("image.rcc")});
        if (exit != 0 || !QResource::registerResource(folder.filePath("image.rcc")))
            qFatal("The resource could not be made.");
    }
    ~PowerModuleResource()
    {
        QResource::unregisterResource(folder.filePath("image.rcc"));
    }

private:
    Q_DISABLE_COPY_MOVE(PowerModuleResource)

    void write(const char *name, const QByteArray &bytes)
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("A file could not be written.");
    }

    QTemporaryDir folder;
};

} // namespace

/// Power module updates with other images than the one that comes with the library.
class tst_PowerModuleImages : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void anImageThatIsNotValidIsRefused_data();
    void anImageThatIsNotValidIsRefused();
    void aMissingImageIsRefused();
    void aValidImageIsWritten_data();
    void aValidImageIsWritten();
};

void tst_PowerModuleImages::anImageThatIsNotValidIsRefused_data()
{
    QTest::addColumn<QByteArray>("image");
    const QByteArray whole = imageBytes(3, "1.0" + payload(992));
    QTest::newRow("empty") << QByteArray();
    for (const int size : {1, 3, 4, 7})
        QTest::addRow("%d bytes", size) << whole.left(size);
    QTest::newRow("no whole version") << whole.left(10);
    QTest::newRow("a byte too few") << whole.left(whole.size() - 1);
    QTest::newRow("993 bytes") << imageBytes(0, payload(993));
    QTest::newRow("a sector, which is no number of blocks") << imageBytes(0, payload(4096));
    QTest::newRow("length beyond the end") << imageBytes(993, payload(992));
    QTest::newRow("length of the second byte counts") << imageBytes(0x0100, payload(992));
    QTest::newRow("largest length") << imageBytes(0xFFFFFFFF, payload(992));
    QTest::newRow("length that is negative as an int") << imageBytes(0x80000000, payload(992));
    // 8 + L comes to a whole number of blocks before the end, were it computed in 32 bits.
    QTest::newRow("length that wraps around") << imageBytes(0xFFFFFFF8, payload(992 - 8));
}

void tst_PowerModuleImages::anImageThatIsNotValidIsRefused()
{
    QFETCH(QByteArray, image);
    const PowerModuleResource resource(image);
    ProcedureRig rig;
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.events,
             ProcedureLog::controlRun({ProcedureLog::line("Loading firmware..."), ProcedureLog::progress(-1),
                                       ProcedureLog::line("Firmware image not valid!", LOGGER_MESSAGE_ERROR)},
                                      1, "Operation failed."));
    QCOMPARE(rig.driver.transcript(), (QStringList{"Connect(0)", "Disconnect()"}));
}

void tst_PowerModuleImages::aMissingImageIsRefused()
{
    QVERIFY(!QFile::exists(QStringLiteral("://bin/pm_enc")));
    ProcedureRig rig;
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QVERIFY(rig.log.events.contains(ProcedureLog::line("Firmware image not valid!", LOGGER_MESSAGE_ERROR)));
    QCOMPARE(rig.log.lastStatus, 1);
}

void tst_PowerModuleImages::aValidImageIsWritten_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("erase");
    QTest::addColumn<int>("blocks");
    QTest::addColumn<QList<int>>("progress");
    QTest::newRow("no payload") << imageBytes(0, "") << "PowerBootloaderErase(0x0)" << 0 << QList<int>{-1};
    QTest::newRow("no payload behind a version")
        << imageBytes(2, "v1") << "PowerBootloaderErase(0x0)" << 0 << QList<int>{-1};
    QTest::newRow("one block") << imageBytes(2, "v1" + payload(992)) << "PowerBootloaderErase(0x1)" << 1
                               << QList<int>{-1, 100};
    QTest::newRow("a version longer than a signed byte tells")
        << imageBytes(300, QByteArray(300, 'v') + payload(992)) << "PowerBootloaderErase(0x1)" << 1
        << QList<int>{-1, 100};
    QTest::newRow("4960 bytes") << imageBytes(0, payload(4960)) << "PowerBootloaderErase(0x2)" << 5
                                << QList<int>{-1, 20, 40, 60, 80, 100};
    // Truncated: the sixth of seven blocks, 85.71 %, is reported as 85.
    QTest::newRow("seven blocks") << imageBytes(0, payload(7 * 992)) << "PowerBootloaderErase(0x2)" << 7
                                  << QList<int>{-1, 14, 28, 42, 57, 71, 85, 100};
    QList<int> hundred{-1};
    for (int percent = 1; percent <= 100; ++percent)
        hundred.append(percent == 53 || percent == 59 ? percent - 1 : percent); // just below in single precision
    QTest::newRow("a hundred blocks") << imageBytes(0, payload(100 * 992)) << "PowerBootloaderErase(0x19)" << 100
                                      << hundred;
}

void tst_PowerModuleImages::aValidImageIsWritten()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, erase);
    QFETCH(int, blocks);
    QFETCH(QList<int>, progress);
    const PowerModuleResource resource(image);
    ProcedureRig rig;
    rig.thread.PowerBootloaderWrite();
    QVERIFY(rig.settle());
    QCOMPARE(rig.log.lastStatus, 0);
    QStringList expected;
    for (const int value : progress)
        expected.append(ProcedureLog::progress(value));
    QCOMPARE(rig.log.events.filter(QStringLiteral("progress")), expected);
    const QStringList transcript = rig.driver.transcript();
    QCOMPARE(transcript.at(1), erase);
    QCOMPARE(rig.driver.callCount(Operation::PowerBootloaderWrite), blocks);
    QCOMPARE(transcript.mid(2 + blocks),
             (QStringList{QStringLiteral("PowerBootloaderVerify(0xfedcba98, %1, pointer)").arg(blocks * 992),
                          "PowerBootloaderReset()", "Disconnect()"}));
    for (const ScriptedDriver::Call &call : rig.driver.calls()) {
        if (call.operation == Operation::PowerBootloaderWrite)
            QCOMPARE(call.arguments.last().toByteArray(), payload(992));
    }
}

UNIPROG_TEST_MAIN(tst_PowerModuleImages)
#include "tst_powermoduleimages.moc"
