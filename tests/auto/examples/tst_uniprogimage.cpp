#include <UtilsBootloader.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <climits>

namespace {

/// CRC-32 of "123456789", as everybody's.
constexpr quint32 CheckValue = 0xCBF43926;

QByteArray littleEndian(quint32 number)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(char(number >> shift));
    return bytes;
}

QByteArray imageBytes(quint32 crc, quint32 length, const QByteArray &rest)
{
    return littleEndian(crc) + littleEndian(length) + rest;
}

/// An image whose payload is "123456789".
QByteArray checkImage(quint32 length, const QByteArray &version)
{
    return imageBytes(CheckValue, length, version + "123456789");
}

int run(const QStringList &arguments, QString *out, QString *err)
{
    return UniProgTest::runProgram(QStringLiteral(COMMAND), arguments, out, err);
}

} // namespace

class tst_UniProgImage : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aSoundImageIsDescribed();
    void sectorsAreTheDevices_data();
    void sectorsAreTheDevices();
    void thePowerModuleReadsTheWholeLength();
    void thePowerModulesVerdictIsTold_data();
    void thePowerModulesVerdictIsTold();
    void faultsHaveTheirStatus_data();
    void faultsHaveTheirStatus();
    void aDisagreementIsAWarning_data();
    void aDisagreementIsAWarning();
    void allFaultsAreTold();
    void aVersionCannotSpeakToTheTerminal();
    void filesThatCannotBeReadAreNamed_data();
    void filesThatCannotBeReadAreNamed();
    void aFileOfMoreThanTwoGigabytesIsNotLoaded();
    void aMadeImageIsWhatTheLibraryReads_data();
    void aMadeImageIsWhatTheLibraryReads();
    void aVersionMustFit_data();
    void aVersionMustFit();
    void nothingIsMadeOfNothing_data();
    void nothingIsMadeOfNothing();
    void anImageThatCannotBeWrittenIsNamed();
    void mistakesOnTheCommandLineAreNamed_data();
    void mistakesOnTheCommandLineAreNamed();
    void helpIsGiven();

private:
    QString write(const QString &name, const QByteArray &bytes);

    std::unique_ptr<QTemporaryDir> folder;
    QString out;
    QString err;
};

void tst_UniProgImage::init()
{
    UniProgTest::init();
    folder = std::make_unique<QTemporaryDir>();
    out.clear();
    err.clear();
}

QString tst_UniProgImage::write(const QString &name, const QByteArray &bytes)
{
    const QString path = folder->filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("The test file could not be written.");
    return path;
}

void tst_UniProgImage::aSoundImageIsDescribed()
{
    QCOMPARE(run({"info", write("image.bin", checkImage(5, "1.2.3"))}, &out, &err), 0);
    QCOMPARE(out,
             QString("file: 22 bytes\n"
                     "read as: firmware of the device\n"
                     "stored CRC: 0xcbf43926\n"
                     "computed CRC: 0xcbf43926\n"
                     "length field: 0x00000005 (version of 5 bytes)\n"
                     "version: 1.2.3\n"
                     "payload: 9 bytes from offset 13\n"
                     "start address: 0x00008000\n"
                     "blocks: 1 of 992 bytes\n"
                     "padding of the last block: 983 bytes\n"
                     "sectors to erase: 1 of 4096 bytes\n"
                     "power module: refuses it, its payload of 9 bytes is no multiple of 992 bytes\n"));
    QCOMPARE(err, QString());
}

void tst_UniProgImage::sectorsAreTheDevices_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("line");
    QTest::newRow("by itself") << QStringList{} << "sectors to erase: 2 of 4096 bytes";
    QTest::newRow("given") << QStringList{"--sector-size", "1024"} << "sectors to erase: 5 of 1024 bytes";
    QTest::newRow("unknown") << QStringList{"--sector-size", "0"} << "sectors to erase: 1 of 0 bytes";
    QTest::newRow("largest") << QStringList{"--sector-size", "65535"} << "sectors to erase: 1 of 65535 bytes";
    QTest::newRow("of a known device") << QStringList{"--device-id", "0x1002", "--sector-size", "1024"}
                                       << "sectors to erase: 2 of 4096 bytes";
    QTest::newRow("of another device") << QStringList{"--device-id", "4294967295", "--sector-size", "2048"}
                                       << "sectors to erase: 3 of 2048 bytes";
    QTest::newRow("of the power module") << QStringList{"--power", "--sector-size", "1024"}
                                         << "sectors to erase: 1 of 4096 bytes";
}

void tst_UniProgImage::sectorsAreTheDevices()
{
    QFETCH(QStringList, options);
    QFETCH(QString, line);
    const QString path = write("image.bin", imageBytes(0xC71C0011, 0, QByteArray(4096, '\0')));
    run(QStringList{"info"} + options + QStringList{path}, &out, &err);
    QVERIFY2(out.contains(line + '\n'), qPrintable(out));
}

void tst_UniProgImage::thePowerModuleReadsTheWholeLength()
{
    const QByteArray payload = QByteArray(992, '\0');
    const quint32 crc = 0x2F2091FA;
    const QString path = write("image.bin", imageBytes(crc, 0x0100, QByteArray(256, 'v') + payload));
    QCOMPARE(run({"info", "--power", path}, &out, &err), 0);
    QCOMPARE(out,
             QString("file: 1256 bytes\n"
                     "read as: firmware of the power module\n"
                     "stored CRC: 0x2f2091fa\n"
                     "computed CRC: 0x2f2091fa\n"
                     "length field: 0x00000100 (version of 256 bytes)\n"
                     "version: %1\n"
                     "payload: 992 bytes from offset 264\n"
                     "start address: 0x10008000\n"
                     "blocks: 1 of 992 bytes\n"
                     "padding of the last block: 0 bytes\n"
                     "sectors to erase: 1 of 4096 bytes\n"
                     "power module: accepts it\n")
                 .arg(QString(256, 'v')));
    QVERIFY2(err.contains("warning: ") && err.contains("is 0 for the device") && err.contains("256 for the power"),
             qPrintable(err));

    // To the device the version is part of the payload.
    QCOMPARE(run({"info", path}, &out, &err), 9);
    QVERIFY(out.contains("payload: 1248 bytes from offset 8\n"));
}

void tst_UniProgImage::thePowerModulesVerdictIsTold_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("line");
    QTest::newRow("empty payload") << imageBytes(0, 3, "1.0") << "accepts it";
    QTest::newRow("two blocks") << imageBytes(0, 0, QByteArray(1984, 'p')) << "accepts it";
    QTest::newRow("a byte more") << imageBytes(0, 0, QByteArray(993, 'p'))
                                 << "refuses it, its payload of 993 bytes is no multiple of 992 bytes";
    QTest::newRow("length beyond the end") << imageBytes(0, 0x0100, QByteArray(100, 'p'))
                                           << "refuses it, the length field goes beyond the end of the file";
    QTest::newRow("largest length") << imageBytes(0, UINT_MAX, QByteArray(992, 'p'))
                                    << "refuses it, the length field goes beyond the end of the file";
}

void tst_UniProgImage::thePowerModulesVerdictIsTold()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, line);
    const QString path = write("image.bin", image);
    for (const QStringList &options : {QStringList{"info"}, QStringList{"info", "--power"}}) {
        run(options + QStringList{path}, &out, &err);
        QVERIFY2(out.endsWith("power module: " + line + '\n'), qPrintable(out));
    }
}

void tst_UniProgImage::faultsHaveTheirStatus_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");

    const QStringList device;
    const QStringList power{"--power"};
    const QByteArray sound = imageBytes(0, 1, "v");
    for (int size = 0; size < 8; ++size) {
        for (const QStringList &options : {device, power})
            QTest::addRow("%d bytes%s", size, options.isEmpty() ? "" : ", power")
                << sound.left(size) << options << 4 << QString("the header is incomplete: %1 of 8 bytes").arg(size);
    }
    QTest::newRow("8 bytes, the version is missing")
        << sound.left(8) << device << 6 << "the version text of 1 byte goes beyond the end of the file";
    QTest::newRow("8 bytes, no version") << imageBytes(0, 0, "") << device << 0 << "";
    QTest::newRow("9 bytes") << sound << device << 0 << "";
    QTest::newRow("9 bytes, power") << sound << power << 0 << "";
#ifdef Q_OS_WIN
    constexpr int Step = 0x7F; // the two ends: each row starts a program, which takes its time there
#else
    constexpr int Step = 1;
#endif
    for (int length = 0x80; length <= 0xFF; length += Step)
        QTest::addRow("length byte 0x%x", length)
            << checkImage(length, QByteArray()) << device << 5
            << QString("the length of the version text is negative: %1").arg(length - 256);
    QTest::newRow("length byte 0x7F, beyond the end")
        << checkImage(127, "") << device << 6 << "the version text of 127 bytes goes beyond the end of the file";
    QTest::newRow("length byte 0x7F, to the end") << imageBytes(0, 127, QByteArray(127, 'v')) << device << 0 << "";
    QTest::newRow("whole length beyond the end, power")
        << checkImage(UINT_MAX, "") << power << 6
        << "the version text of 4294967295 bytes goes beyond the end of the file";
    QTest::newRow("part of a block, power")
        << checkImage(0, "") << power << 8 << "the payload of 9 bytes is no multiple of 992 bytes";
    QTest::newRow("part of a block") << checkImage(0, "") << device << 0 << "";
    QTest::newRow("wrong CRC") << imageBytes(0xFFFFFFFF, 1, "v123456789") << device << 9
                               << "the CRC of the payload is 0xcbf43926, not 0xffffffff as stored";
    QTest::newRow("wrong CRC, power") << imageBytes(1, 0, "") << power << 9
                                      << "the CRC of the payload is 0x00000000, not 0x00000001 as stored";
}

void tst_UniProgImage::faultsHaveTheirStatus()
{
    QFETCH(QByteArray, image);
    QFETCH(QStringList, options);
    QFETCH(int, status);
    QFETCH(QString, message);
    const QString path = write("image.bin", image);
    QCOMPARE(run(QStringList{"info"} + options + QStringList{path}, &out, &err), status);
    QCOMPARE(out.isEmpty(), status == 4); // whatever has a header is described
    if (status == 0)
        QCOMPARE(err, QString());
    else
        QVERIFY2(err.startsWith("uniprog-image: " + path + ": error: " + message + '\n'), qPrintable(err));
}

void tst_UniProgImage::aDisagreementIsAWarning_data()
{
    QTest::addColumn<quint32>("length");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::newRow("higher bytes") << 0x7FFFFF01U << QStringList{} << 0;
    QTest::newRow("higher bytes, strict") << 0x7FFFFF01U << QStringList{"--strict"} << 10;
    QTest::newRow("none, strict") << 1U << QStringList{"--strict"} << 0;
}

void tst_UniProgImage::aDisagreementIsAWarning()
{
    QFETCH(quint32, length);
    QFETCH(QStringList, options);
    QFETCH(int, status);
    const QString path = write("image.bin", checkImage(length, "v"));
    QCOMPARE(run(QStringList{"info"} + options + QStringList{path}, &out, &err), status);
    QVERIFY(out.contains("version: v\n"));
    QCOMPARE(err.contains("the length of the version text is 1 for the device (first byte) and 2147483393 for the "
                          "power module (whole field)"),
             length != 1);
    QCOMPARE(err.contains(": warning: "), length != 1 && status == 0);
    QCOMPARE(err.contains(": error: "), status != 0);
}

void tst_UniProgImage::allFaultsAreTold()
{
    const QString path = write("image.bin", imageBytes(7, 0x0180, QByteArray(400, 'p')));
    QCOMPARE(run({"info", path}, &out, &err), 5);
    QCOMPARE(err.count('\n'), 3); // negative length, CRC, disagreement
    QCOMPARE(run({"info", "--power", path}, &out, &err), 8);
    QCOMPARE(err.count('\n'), 3); // part of a block, CRC, disagreement
}

void tst_UniProgImage::aVersionCannotSpeakToTheTerminal()
{
    const QByteArray version("\x1b[31m\n\xC3\xA9\x00\xFF\xF0\x9F\x98\x80", 14);
    const QString path = write("image.bin", checkImage(quint32(version.size()), version));
    const QString expected
        = QString::fromUtf8("version: \\u001b[31m\\u000a\xC3\xA9\\u0000\xEF\xBF\xBD\xF0\x9F\x98\x80\n");
    for (const QStringList &options : {QStringList{"info"}, QStringList{"info", "--power"}}) {
        run(options + QStringList{path}, &out, &err);
        QVERIFY2(out.contains(expected), qPrintable(out));
    }
}

void tst_UniProgImage::filesThatCannotBeReadAreNamed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
#ifdef Q_OS_WIN
    const QString missing = "not found";
#else
    const QString missing = "No such file";
#endif
    QTest::newRow("missing") << "no such image.bin" << missing;
    QTest::newRow("folder") << "."
                            << "is a directory";
    QTest::newRow("no name") << ""
                             << "no file name";
    QTest::newRow("locked") << "locked.bin"
                            << "Permission denied";
#ifdef Q_OS_UNIX
    QTest::newRow("a link to itself") << "loop.bin"
                                      << "symbolic links";
    QTest::newRow("a device without an end") << "/dev/zero"
                                             << "is no regular file";
#endif
}

void tst_UniProgImage::filesThatCannotBeReadAreNamed()
{
    QFETCH(QString, path);
    QFETCH(QString, message);
    if (path == "locked.bin") {
        write(path, checkImage(0, ""));
        QFile file(folder->filePath(path));
        file.setPermissions({});
        if (file.open(QIODevice::ReadOnly))
            QSKIP("This user may read everything.");
    }
    if (path == "loop.bin")
        QVERIFY(QFile::link(path, folder->filePath(path)));
    const QString where = path.isEmpty() ? path : QDir(folder->path()).absoluteFilePath(path);
    QCOMPARE(run({"info", where}, &out, &err), 3);
    QCOMPARE(out, QString());
    QVERIFY2(err.startsWith("uniprog-image: " + where + ": error: ") && err.contains(message), qPrintable(err));
    QCOMPARE(err.count('\n'), 1);

    const QString made = folder->filePath("made.bin");
    QCOMPARE(run({"make", "--payload", where, "--version", "1", "--output", made}, &out, &err), 3);
    QVERIFY2(err.contains(where), qPrintable(err));
    QVERIFY(!QFile::exists(made));
}

void tst_UniProgImage::aFileOfMoreThanTwoGigabytesIsNotLoaded()
{
    const QString path = write("%1 %2 image.bin", imageBytes(1, 2, "v1"));
    if (!QFile::resize(path, qint64(INT_MAX) + 8 + 2 + 1)) // takes no room on a file system with sparse files
        QSKIP("The file system has no room for a file of this size.");
    for (const QStringList &options : {QStringList{"info"}, QStringList{"info", "--power"}}) {
        QCOMPARE(run(options + QStringList{path}, &out, &err), 7);
        QCOMPARE(out, QString());
        QVERIFY2(err.contains("the payload of 2147483648 bytes is larger than 2147483647 bytes"), qPrintable(err));
    }
    const QString made = folder->filePath("made.bin");
    QCOMPARE(run({"make", "--payload", path, "--version", "1", "--output", made}, &out, &err), 7);
    QCOMPARE(err, "uniprog-image: error: " + path + ": larger than 2147483647 bytes\n");
    QVERIFY(!QFile::exists(made));
}

void tst_UniProgImage::aMadeImageIsWhatTheLibraryReads_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("version");
    const QByteArray bytes = QByteArray::fromHex("00ff0d0a1a80") + QByteArray(990, 'p');
    QTest::newRow("some bytes") << bytes << "1.2.3";
    QTest::newRow("whole blocks") << QByteArray(1984, '\xFF') << "1.2.3";
    QTest::newRow("no payload") << QByteArray() << "1.2.3";
    QTest::newRow("no version") << bytes << "";
    QTest::newRow("blanks around the version") << bytes << " 1\n";
    QTest::newRow("other letters") << bytes << QString::fromUtf8("v\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
    QTest::newRow("longest version") << bytes << QString(127, 'v');
    QTest::newRow("longest version of other letters") << bytes << QString(63, QChar(0xE9)) + 'v';
    QTest::newRow("like an option") << bytes << "--payload";
}

void tst_UniProgImage::aMadeImageIsWhatTheLibraryReads()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, version);
    const QString source = write("payload.bin", payload);
    const QString path = write("image.bin", "what was there before");
    QCOMPARE(run({"make", "--payload", source, "--version=" + version, "--output", path}, &out, &err), 0);
    QCOMPARE(out + err, QString());

    UtilsBootloader image(path, UtilsBootloader::BOOTLOADER_IMAGE_DEVICE, 0, 4096);
    QVERIFY(image.openFile());
    QCOMPARE(image.getFirmwareVersion(), version);
    QCOMPARE(image.getImageBuffer(), payload);
    QCOMPARE(QFileInfo(path).size(), 8 + version.toUtf8().size() + payload.size());
    QCOMPARE(run({"info", "--strict", path}, &out, &err), 0);
    QCOMPARE(err, QString());
}

void tst_UniProgImage::aVersionMustFit_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("message");
    QTest::newRow("128 bytes") << QString(128, 'v') << "the version takes 128 bytes as UTF-8, more than 127";
    QTest::newRow("64 letters of two bytes")
        << QString(64, QChar(0xE9)) << "the version takes 128 bytes as UTF-8, more than 127";
}

void tst_UniProgImage::aVersionMustFit()
{
    QFETCH(QString, version);
    QFETCH(QString, message);
    const QString path = write("image.bin", "what was there before");
    QCOMPARE(run({"make", "--payload", write("payload.bin", "p"), "--version", version, "--output", path}, &out, &err),
             11);
    QCOMPARE(err, "uniprog-image: error: " + message + '\n');
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("what was there before"));
}

void tst_UniProgImage::nothingIsMadeOfNothing_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("nothing") << QStringList{};
    QTest::newRow("no payload") << QStringList{"--version", "1", "--output", "made.bin"};
    QTest::newRow("no version") << QStringList{"--payload", "p", "--output", "made.bin"};
    QTest::newRow("no output") << QStringList{"--payload", "p", "--version", "1"};
    QTest::newRow("one file more") << QStringList{"--payload", "p", "--version", "1", "--output", "made.bin", "x"};
}

void tst_UniProgImage::nothingIsMadeOfNothing()
{
    QFETCH(QStringList, options);
    QCOMPARE(run(QStringList{"make"} + options, &out, &err), 2);
    QCOMPARE(err, QString("uniprog-image: make needs --payload, --version and --output; see --help\n"));
}

void tst_UniProgImage::anImageThatCannotBeWrittenIsNamed()
{
    const QString payload = write("payload.bin", "p");
    for (const QString &path : {folder->path(), folder->filePath("no/such/folder/image.bin"), QString()}) {
        QCOMPARE(run({"make", "--payload", payload, "--version", "1", "--output", path}, &out, &err), 12);
        QVERIFY2(err.startsWith("uniprog-image: error: ") && err.contains(path), qPrintable(err));
    }
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files), QStringList{"payload.bin"});
}

void tst_UniProgImage::mistakesOnTheCommandLineAreNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing") << QStringList{} << "a command is needed, info or make";
    QTest::newRow("another command") << QStringList{"show", "x"} << "a command is needed, info or make";
    QTest::newRow("no file") << QStringList{"info"} << "info needs one file";
    QTest::newRow("two files") << QStringList{"info", "x", "y"} << "info needs one file";
    QTest::newRow("an unknown option") << QStringList{"info", "--crc", "x"} << "crc";
    QTest::newRow("another command's option") << QStringList{"info", "--output", "y", "x"} << "info takes no --output";
    QTest::newRow("options of info") << QStringList{"make", "--power"} << "make takes no --power";
    QTest::newRow("device id") << QStringList{"info", "--device-id", "board", "x"} << "board is no device id";
    QTest::newRow("device id of 33 bits")
        << QStringList{"info", "--device-id", "4294967296", "x"} << "4294967296 is no device id";
    QTest::newRow("sector size") << QStringList{"info", "--sector-size", "65536", "x"} << "65536 is no sector size";
    QTest::newRow("negative sector size") << QStringList{"info", "--sector-size", "-1", "x"} << "-1 is no sector size";
}

void tst_UniProgImage::mistakesOnTheCommandLineAreNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    QCOMPARE(run(arguments, &out, &err), 2);
    QCOMPARE(out, QString());
    QVERIFY2(err.startsWith("uniprog-image: ") && err.contains(expected), qPrintable(err));
}

void tst_UniProgImage::helpIsGiven()
{
    QCOMPARE(run({"--help"}, &out, &err), 0);
    QVERIFY(out.contains("uniprog-image info FILE"));
    QVERIFY(out.contains("--sector-size <bytes>"));
}

UNIPROG_TEST_MAIN(tst_UniProgImage)
#include "tst_uniprogimage.moc"
