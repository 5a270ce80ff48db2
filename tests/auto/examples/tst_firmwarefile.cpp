#include <FirmwareFile.h>
#include <MemoryManager.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

class tst_FirmwareFile : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aBinaryFileStartsWhereItIsTold();
    void aTextFileKnowsItsAddresses_data();
    void aTextFileKnowsItsAddresses();
    void whatWasSavedIsLoadedAgain_data();
    void whatWasSavedIsLoadedAgain();
    void anOddNameIsNoOption();
    void whatCannotBeLoadedIsSaidAndChangesNothing_data();
    void whatCannotBeLoadedIsSaidAndChangesNothing();
    void whatCannotBeSavedIsSaid_data();
    void whatCannotBeSavedIsSaid();
    void withoutSrecordTextFilesAreRefused();

private:
    QString write(const QString &name, const QByteArray &content) const;

    QTemporaryDir folder;
};

namespace {

/// A line of an Intel HEX file.
QByteArray hexRecord(int type, int address, const QByteArray &data)
{
    QByteArray bytes;
    bytes.append(char(data.size())).append(char(address >> 8)).append(char(address)).append(char(type)).append(data);
    char sum = 0;
    for (const char byte : bytes)
        sum = char(sum + byte);
    bytes.append(char(-sum));
    return ':' + bytes.toHex().toUpper() + '\n';
}

/// A line of an S-record file, with a 32-bit address.
QByteArray sRecord(quint32 address, const QByteArray &data)
{
    QByteArray bytes(1, char(data.size() + 5));
    for (const int shift : {24, 16, 8, 0})
        bytes.append(char(address >> shift));
    bytes.append(data);
    char sum = 0;
    for (const char byte : bytes)
        sum = char(sum + byte);
    bytes.append(char(~sum));
    return "S3" + bytes.toHex().toUpper() + '\n';
}

const QByteArray HexEnd = ":00000001FF\n";

} // namespace

void tst_FirmwareFile::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("srec_cat")).isEmpty())
        QSKIP("srecord is not installed");
}

QString tst_FirmwareFile::write(const QString &name, const QByteArray &content) const
{
    QFile file(folder.filePath(name));
    const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return written ? file.fileName() : QString();
}

void tst_FirmwareFile::aBinaryFileStartsWhereItIsTold()
{
    const QString path = write(QStringLiteral("image.BIN"), "firmware");
    MemoryManager image;
    QString error;
    QVERIFY2(FirmwareFile::load(path, 0x08000000, &image, &error), qPrintable(error));
    QCOMPARE(image.segmentCount(), 1);
    QCOMPARE(image.firstAddress(), 0x08000000U);
    QCOMPARE(image.read(0x08000000, 8), QByteArray("firmware"));

    QVERIFY(FirmwareFile::load(path, 0xFFFFFFF8, &image, &error)); // up to the very last address
    QCOMPARE(image.lastAddress(), 0xFFFFFFFFU);
}

void tst_FirmwareFile::aTextFileKnowsItsAddresses_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    const QByteArray hex = hexRecord(0, 0x0100, "abcd") + hexRecord(0, 0x0104, "ef")
        + hexRecord(4, 0, QByteArray("\x10\x00", 2)) + hexRecord(0, 0x0020, "UICR") + HexEnd;
    QTest::newRow("Intel HEX") << QStringLiteral("a.hex") << hex;
    QTest::newRow("name in capitals") << QStringLiteral("A.HEX") << hex;
    QTest::newRow("records out of order") << QStringLiteral("b.ihex")
                                          << hexRecord(4, 0, QByteArray("\x10\x00", 2)) + hexRecord(0, 0x0020, "UICR")
            + hexRecord(4, 0, QByteArray("\0\0", 2)) + hexRecord(0, 0x0104, "ef") + hexRecord(0, 0x0100, "abcd")
            + HexEnd;
    QTest::newRow("S-record") << QStringLiteral("a.s37") << sRecord(0x100, "abcdef") + sRecord(0x10000020, "UICR");
}

void tst_FirmwareFile::aTextFileKnowsItsAddresses()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    MemoryManager image;
    QString error;
    QVERIFY2(FirmwareFile::load(write(name, content), 0x08000000, &image, &error), qPrintable(error));
    QCOMPARE(image.segmentCount(), 2);
    QCOMPARE(image.size(), 10);
    QCOMPARE(image.read(0x100, 6), QByteArray("abcdef"));
    QCOMPARE(image.read(0x10000020, 4), QByteArray("UICR"));
}

void tst_FirmwareFile::whatWasSavedIsLoadedAgain_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Intel HEX") << QStringLiteral("saved.hex");
    QTest::newRow("S-record") << QStringLiteral("saved.s19");
}

void tst_FirmwareFile::whatWasSavedIsLoadedAgain()
{
    QFETCH(QString, name);
    const QString path = folder.filePath(name);
    MemoryManager image;
    image.write(0, QByteArray(1000, '\x5A'));
    image.write(0x10001000, QByteArray("\x00\x01\x02", 3));
    image.write(0xFFFFFFFC, "last");
    QString error;
    QVERIFY2(FirmwareFile::save(path, image, &error), qPrintable(error));
    MemoryManager loaded;
    QVERIFY2(FirmwareFile::load(path, 0, &loaded, &error), qPrintable(error));
    QCOMPARE(loaded.segmentCount(), 3);
    QVERIFY(loaded == image);

    MemoryManager single;
    single.write(0x200, "content");
    const QString binary = folder.filePath(QStringLiteral("saved.bin"));
    QVERIFY2(FirmwareFile::save(binary, single, &error), qPrintable(error));
    QVERIFY(FirmwareFile::load(binary, 0x200, &loaded, &error));
    QVERIFY(loaded == single);
}

void tst_FirmwareFile::anOddNameIsNoOption()
{
    const QString path = write(QStringLiteral("-version @x 'y'.hex"), hexRecord(0, 0, "data") + HexEnd);
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    MemoryManager image;
    QString error;
    const bool loaded = FirmwareFile::load(QFileInfo(path).fileName(), 0, &image, &error);
    QDir::setCurrent(before);
    QVERIFY2(loaded, qPrintable(error));
    QCOMPARE(image.read(0, 4), QByteArray("data"));
}

void tst_FirmwareFile::whatCannotBeLoadedIsSaidAndChangesNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("problem");
    const auto row
        = [](const char *name, const QString &path, const QString &problem) { QTest::newRow(name) << path << problem; };
    QByteArray scattered;
    for (int i = 0; i <= FirmwareFile::MaximumRangeCount; ++i)
        scattered += hexRecord(0, i * 16, "x");
    QByteArray damaged = hexRecord(0, 0, "data");
    damaged[3] = '7';

    row("no file", folder.filePath(QStringLiteral("missing.hex")), QStringLiteral("There is no file"));
    row("a folder", folder.path(), QStringLiteral("is no file"));
    row("no name", QString(), QStringLiteral("There is no file"));
    row("unknown kind", write(QStringLiteral("a.elf"), "x"), QStringLiteral("is of no known kind"));
    row("empty binary", write(QStringLiteral("empty.bin"), ""), QStringLiteral("is empty"));
    row("past the last address", write(QStringLiteral("long.bin"), QByteArray(17, 'x')),
        QStringLiteral("does not fit into memory at 0xFFFFFFF0"));
    row("empty text", write(QStringLiteral("empty.hex"), ""), QStringLiteral("file contains no data"));
    row("no data", write(QStringLiteral("end.hex"), HexEnd), QStringLiteral("file contains no data"));
    row("cut off", write(QStringLiteral("cut.hex"), hexRecord(0, 0, "data").chopped(4)),
        QStringLiteral("The file is damaged"));
    row("wrong checksum", write(QStringLiteral("sum.hex"), damaged), QStringLiteral("The file is damaged"));
    row("no hexadecimal digits", write(QStringLiteral("text.s19"), "S1 what is this?\n"),
        QStringLiteral("The file is damaged"));
    row("bytes of any kind", write(QStringLiteral("noise.hex"), QByteArray(1000, '\0')),
        QStringLiteral("The file is damaged"));
    row("contradicting records",
        write(QStringLiteral("twice.hex"), hexRecord(0, 0, "a") + hexRecord(0, 0, "b") + HexEnd),
        QStringLiteral("The file is damaged"));
    row("too scattered", write(QStringLiteral("scattered.hex"), scattered + HexEnd),
        QStringLiteral("more than 256 pieces"));
}

void tst_FirmwareFile::whatCannotBeLoadedIsSaidAndChangesNothing()
{
    QFETCH(QString, path);
    QFETCH(QString, problem);
    MemoryManager image;
    image.write(4, "before");
    const MemoryManager before = image;
    QString error;
    QVERIFY(!FirmwareFile::load(path, 0xFFFFFFF0, &image, &error));
    QVERIFY2(error.contains(problem), qPrintable(error));
    QVERIFY(error.endsWith(u'.'));
    QVERIFY(image == before);
}

void tst_FirmwareFile::whatCannotBeSavedIsSaid_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("empty");
    QTest::addColumn<QString>("problem");
    QTest::newRow("nothing to save") << QStringLiteral("a.hex") << true << QStringLiteral("nothing to write");
    QTest::newRow("gaps in a binary") << QStringLiteral("a.bin") << false << QStringLiteral("2 separate pieces");
    QTest::newRow("unknown kind") << QStringLiteral("a.txt") << false << QStringLiteral("no known kind");
    QTest::newRow("no such folder") << QStringLiteral("no/such/a.hex") << false << QStringLiteral("cannot be written");
}

void tst_FirmwareFile::whatCannotBeSavedIsSaid()
{
    QFETCH(QString, name);
    QFETCH(bool, empty);
    QFETCH(QString, problem);
    MemoryManager image;
    if (!empty) {
        image.write(0, "a");
        image.write(0x100, "b");
    }
    QString error;
    QVERIFY(!FirmwareFile::save(folder.filePath(name), image, &error));
    QVERIFY2(error.contains(problem), qPrintable(error));
}

void tst_FirmwareFile::withoutSrecordTextFilesAreRefused()
{
    const QString path = write(QStringLiteral("image.hex"), hexRecord(0, 0, "data") + HexEnd);
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", folder.path().toLocal8Bit());
    MemoryManager image;
    QString error;
    const bool loaded = FirmwareFile::load(path, 0, &image, &error);
    const bool binaryLoaded = FirmwareFile::load(write(QStringLiteral("image.bin"), "x"), 0, &image, &error);
    qputenv("PATH", searchPath);
    QVERIFY(!loaded);
    QVERIFY2(error.contains(QStringLiteral("install srecord")), qPrintable(error));
    QVERIFY(binaryLoaded);
}

UNIPROG_TEST_MAIN(tst_FirmwareFile)

#include "tst_firmwarefile.moc"
