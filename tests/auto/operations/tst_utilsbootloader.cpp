#include <UtilsBootloader.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <climits>
#include <type_traits>
#include <utility>

namespace {

constexpr unsigned int AnyDevice = 1;
constexpr unsigned short AnySector = 2048;
const auto Device = UtilsBootloader::BOOTLOADER_IMAGE_DEVICE;

/// The bytes of an image file; @p lengthField is written as it stands.
QByteArray imageBytes(quint32 crc, const QByteArray &lengthField, const QByteArray &rest)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(char(crc >> shift));
    return bytes + lengthField + rest;
}

QByteArray lengthField(int length)
{
    return QByteArray(1, char(length)) + QByteArray(3, '\0');
}

} // namespace

class tst_UtilsBootloader : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsReadBeforeTheFileIsOpened();
    void theTypeSelectsTheStartAddress_data();
    void theTypeSelectsTheStartAddress();
    void theDeviceSelectsTheSectorSize_data();
    void theDeviceSelectsTheSectorSize();
    void anImageIsSplitIntoItsFields();
    void theVersionIsReadAsUtf8();
    void theCrcIsUnsigned();
    void onlyTheFirstByteOfTheLengthCounts();
    void aNegativeLengthMeansNoVersion_data();
    void aNegativeLengthMeansNoVersion();
    void shortFilesGiveWhatTheyHold_data();
    void shortFilesGiveWhatTheyHold();
    void aFileThatCannotBeOpenedIsReported_data();
    void aFileThatCannotBeOpenedIsReported();
    void openingAgainReplacesWhatWasRead();
    void aFileThatHoldsLessThanItsSizeGivesWhatThereIs();
    void aFileOfMoreThanTwoGigabytesIsNotLoaded();
    void aDataBlockIsCutAndPadded_data();
    void aDataBlockIsCutAndPadded();
    void sectorsAreCountedWithOneMore_data();
    void sectorsAreCountedWithOneMore();
    void aCopyIsIndependentAndAMoveKeepsTheContent();

private:
    QString write(const QByteArray &bytes);

    QTemporaryDir folder;
};

QString tst_UtilsBootloader::write(const QByteArray &bytes)
{
    const QString path = folder.filePath(QStringLiteral("image.bin"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("The test image could not be written.");
    return path;
}

void tst_UtilsBootloader::nothingIsReadBeforeTheFileIsOpened()
{
    const UtilsBootloader image(write(imageBytes(1, lengthField(1), "vpayload")), Device, AnyDevice, AnySector);
    QCOMPARE(image.getCrc(), 0U);
    QCOMPARE(image.getImageBufferSize(), 0);
    QCOMPARE(image.getImageBuffer(), QByteArray());
    QCOMPARE(image.getFirmwareVersion(), QString());
    QCOMPARE(image.getWriteBlockSize(), 992);
    QCOMPARE(image.getNumberOfSectorsToErase(), 1);
    QCOMPARE(image.getDataBlock(0, 4), QByteArray(4, '\xFF'));
}

void tst_UtilsBootloader::theTypeSelectsTheStartAddress_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<unsigned int>("address");
    QTest::newRow("device") << 0 << 0x8000U;
    QTest::newRow("external") << 1 << 0x10008000U;
    QTest::newRow("unknown") << 2 << 0U;
    QTest::newRow("negative") << -1 << 0U;
}

void tst_UtilsBootloader::theTypeSelectsTheStartAddress()
{
    QFETCH(int, type);
    QFETCH(unsigned int, address);
    const auto imageType = static_cast<UtilsBootloader::BootloaderImageFileType>(type);
    QCOMPARE(UtilsBootloader(QString(), imageType, AnyDevice, AnySector).getImageStartAddress(), address);
}

void tst_UtilsBootloader::theDeviceSelectsTheSectorSize_data()
{
    QTest::addColumn<unsigned int>("device");
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("size");
    QTest::newRow("as given") << 1U << 2048 << 2048;
    QTest::newRow("nothing given") << 1U << 0 << 0;
    QTest::newRow("largest") << 0x1001U << 65535 << 65535;
    QTest::newRow("known device") << 0x1002U << 2048 << 4096;
    QTest::newRow("known device, nothing given") << 4098U << 0 << 4096;
}

void tst_UtilsBootloader::theDeviceSelectsTheSectorSize()
{
    QFETCH(unsigned int, device);
    QFETCH(int, given);
    QFETCH(int, size);
    const UtilsBootloader image(QString(), Device, device, static_cast<unsigned short>(given));
    QCOMPARE(image.getEraseSectorSize(), size);
}

void tst_UtilsBootloader::anImageIsSplitIntoItsFields()
{
    const QByteArray payload("\x01\x00\xFF payload", 11);
    UtilsBootloader image(write(imageBytes(0x12345678, lengthField(5), "1.2.3" + payload)), Device, AnyDevice,
                          AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getCrc(), 0x12345678U);
    QCOMPARE(image.getFirmwareVersion(), QStringLiteral("1.2.3"));
    QCOMPARE(image.getImageBuffer(), payload);
    QCOMPARE(image.getImageBufferSize(), int(payload.size()));
}

void tst_UtilsBootloader::theVersionIsReadAsUtf8()
{
    const QByteArray version("v\xC3\xA9 \xE2\x82\xAC");
    UtilsBootloader image(write(imageBytes(0, lengthField(int(version.size())), version)), Device, AnyDevice,
                          AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getFirmwareVersion(), QString::fromUtf8(version));
    QCOMPARE(image.getImageBufferSize(), 0);
}

void tst_UtilsBootloader::theCrcIsUnsigned()
{
    UtilsBootloader image(write(imageBytes(0xFEDCBA98, lengthField(0), "x")), Device, AnyDevice, AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getCrc(), 0xFEDCBA98U);
}

void tst_UtilsBootloader::onlyTheFirstByteOfTheLengthCounts()
{
    UtilsBootloader image(write(imageBytes(0, QByteArray("\x02\xFF\xFF\x7F", 4), "v1rest")), Device, AnyDevice,
                          AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getFirmwareVersion(), QStringLiteral("v1"));
    QCOMPARE(image.getImageBuffer(), QByteArray("rest"));
}

void tst_UtilsBootloader::aNegativeLengthMeansNoVersion_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {0x80, 0x81, 0xC0, 0xF7, 0xF8, 0xFE, 0xFF})
        QTest::addRow("0x%x", length) << length;
}

void tst_UtilsBootloader::aNegativeLengthMeansNoVersion()
{
    QFETCH(int, length);
    UtilsBootloader image(write(imageBytes(7, lengthField(length), QByteArray(300, 'p'))), Device, AnyDevice,
                          AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getFirmwareVersion(), QString());
    QCOMPARE(image.getImageBuffer(), QByteArray(300, 'p'));
    QCOMPARE(image.getCrc(), 7U);
}

void tst_UtilsBootloader::shortFilesGiveWhatTheyHold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<unsigned int>("crc");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QByteArray>("payload");
    const QByteArray whole = imageBytes(0x04030201, lengthField(3), "abcXYZ");
    for (int size = 0; size <= whole.size(); ++size) {
        QTest::addRow("%d bytes", size) << whole.left(size) << (size < 4 ? 0U : 0x04030201U)
                                        << QString::fromLatin1(whole.mid(8, qMax(0, qMin(size - 8, 3))))
                                        << whole.mid(11, qMax(0, size - 11)).left(qMax(0, size - 11));
    }
    QTest::newRow("length beyond the end") << imageBytes(1, lengthField(127), "ab") << 1U << "ab" << QByteArray();
}

void tst_UtilsBootloader::shortFilesGiveWhatTheyHold()
{
    QFETCH(QByteArray, bytes);
    QFETCH(unsigned int, crc);
    QFETCH(QString, version);
    QFETCH(QByteArray, payload);
    UtilsBootloader image(write(bytes), Device, AnyDevice, AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getCrc(), crc);
    QCOMPARE(image.getFirmwareVersion(), version);
    QCOMPARE(image.getImageBuffer(), payload);
    QCOMPARE(image.getImageBufferSize(), int(payload.size()));
}

void tst_UtilsBootloader::aFileThatCannotBeOpenedIsReported_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << folder.filePath(QStringLiteral("missing.bin"));
    QTest::newRow("folder") << folder.path();
    QTest::newRow("no name") << QString();
}

void tst_UtilsBootloader::aFileThatCannotBeOpenedIsReported()
{
    QFETCH(QString, path);
    if (path.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No file name specified")));
    UtilsBootloader image(path, Device, AnyDevice, AnySector);
    QVERIFY(!image.openFile());
    QCOMPARE(image.getImageBufferSize(), 0);
    QCOMPARE(image.getFirmwareVersion(), QString());
}

void tst_UtilsBootloader::openingAgainReplacesWhatWasRead()
{
    const QString path = write(imageBytes(1, lengthField(2), "v1payload"));
    UtilsBootloader image(path, Device, AnyDevice, AnySector);
    QVERIFY(image.openFile());
    write(imageBytes(2, lengthField(1), "2x"));
    QVERIFY(image.openFile());
    QCOMPARE(image.getCrc(), 2U);
    QCOMPARE(image.getFirmwareVersion(), QStringLiteral("2"));
    QCOMPARE(image.getImageBuffer(), QByteArray("x"));
    QVERIFY(QFile::remove(path));
    QVERIFY(!image.openFile());
    QCOMPARE(image.getCrc(), 0U);
    QCOMPARE(image.getFirmwareVersion(), QString());
    QCOMPARE(image.getImageBuffer(), QByteArray());
    QCOMPARE(image.getImageBufferSize(), 0);
}

void tst_UtilsBootloader::aFileThatHoldsLessThanItsSizeGivesWhatThereIs()
{
    // As one that shrinks while it is read: the system says 4096 bytes and gives the 18 of "00:00:00:00:00:00\n".
    QFile file(QStringLiteral("/sys/class/net/lo/address"));
    if (!file.open(QIODevice::ReadOnly))
        QSKIP("The system has no such file.");
    const qint64 size = file.size();
    const QByteArray bytes = file.readAll();
    if (size <= bytes.size() || bytes.size() < 8)
        QSKIP("The system's file is a plain one.");
    UtilsBootloader image(file.fileName(), Device, AnyDevice, AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getFirmwareVersion(), QString::fromUtf8(bytes.mid(8))); // '0' announces 48 bytes
    QCOMPARE(image.getImageBufferSize(), 0);
    QCOMPARE(image.getImageBuffer(), QByteArray());
}

void tst_UtilsBootloader::aFileOfMoreThanTwoGigabytesIsNotLoaded()
{
    const QString path = write(imageBytes(1, lengthField(2), "v1"));
    for (const qint64 size : {qint64(INT_MAX) + 8 + 2 + 1, qint64(3) << 30, (qint64(1) << 32) + 100}) {
        QFile file(path);
        if (!file.resize(size)) // takes no room on a file system with sparse files
            QSKIP("The file system has no room for a file of this size.");
        UtilsBootloader image(path, Device, AnyDevice, AnySector);
        QVERIFY(image.openFile());
        QCOMPARE(image.getImageBufferSize(), 0);
        QCOMPARE(image.getImageBuffer(), QByteArray());
    }
    QFile::remove(path);
}

void tst_UtilsBootloader::aDataBlockIsCutAndPadded_data()
{
    QTest::addColumn<unsigned int>("offset");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("block");
    const QByteArray fill(8, '\xFF');
    QTest::newRow("from the start") << 0U << 4 << QByteArray("0123");
    QTest::newRow("within") << 3U << 4 << QByteArray("3456");
    QTest::newRow("to the end") << 6U << 4 << QByteArray("6789");
    QTest::newRow("over the end") << 8U << 4 << QByteArray("89") + fill.left(2);
    QTest::newRow("at the end") << 10U << 4 << fill.left(4);
    QTest::newRow("beyond the end") << 11U << 4 << fill.left(4);
    QTest::newRow("largest offset") << UINT_MAX << 4 << fill.left(4);
    QTest::newRow("offset of a negative int") << unsigned(INT_MAX) + 1 << 4 << fill.left(4);
    QTest::newRow("longer than the payload") << 0U << 12 << QByteArray("0123456789") + fill.left(2);
    QTest::newRow("no size") << 0U << 0 << QByteArray();
    QTest::newRow("negative size") << 0U << -1 << QByteArray();
    QTest::newRow("most negative size") << 5U << INT_MIN << QByteArray();
}

void tst_UtilsBootloader::aDataBlockIsCutAndPadded()
{
    QFETCH(unsigned int, offset);
    QFETCH(int, size);
    QFETCH(QByteArray, block);
    UtilsBootloader image(write(imageBytes(0, lengthField(0), "0123456789")), Device, AnyDevice, AnySector);
    QVERIFY(image.openFile());
    QCOMPARE(image.getDataBlock(offset, size), block);
    QCOMPARE(image.getImageBuffer(), QByteArray("0123456789"));
}

void tst_UtilsBootloader::sectorsAreCountedWithOneMore_data()
{
    QTest::addColumn<int>("payload");
    QTest::addColumn<int>("sector");
    QTest::addColumn<int>("count");
    QTest::newRow("empty") << 0 << 4096 << 1;
    QTest::newRow("one byte") << 1 << 4096 << 1;
    QTest::newRow("one byte less than a sector") << 4095 << 4096 << 1;
    QTest::newRow("exactly a sector") << 4096 << 4096 << 2;
    QTest::newRow("a byte more") << 4097 << 4096 << 2;
    QTest::newRow("sectors of a byte") << 5 << 1 << 6;
    QTest::newRow("sectors of nothing") << 4096 << 0 << 1;
}

void tst_UtilsBootloader::sectorsAreCountedWithOneMore()
{
    QFETCH(int, payload);
    QFETCH(int, sector);
    QFETCH(int, count);
    UtilsBootloader image(write(imageBytes(0, lengthField(0), QByteArray(payload, 'p'))), Device, AnyDevice,
                          static_cast<unsigned short>(sector));
    QVERIFY(image.openFile());
    QCOMPARE(image.getNumberOfSectorsToErase(), count);
}

void tst_UtilsBootloader::aCopyIsIndependentAndAMoveKeepsTheContent()
{
    static_assert(std::is_nothrow_move_constructible_v<UtilsBootloader>);
    UtilsBootloader image(write(imageBytes(9, lengthField(2), "v1payload")), UtilsBootloader::BOOTLOADER_IMAGE_EXTERNAL,
                          0x1002, AnySector);
    QVERIFY(image.openFile());
    UtilsBootloader copy = image;
    write(imageBytes(1, lengthField(0), ""));
    QVERIFY(image.openFile());
    QCOMPARE(copy.getCrc(), 9U);
    const UtilsBootloader moved = std::move(copy);
    QCOMPARE(moved.getCrc(), 9U);
    QCOMPARE(moved.getFirmwareVersion(), QStringLiteral("v1"));
    QCOMPARE(moved.getImageBuffer(), QByteArray("payload"));
    QCOMPARE(moved.getImageBufferSize(), 7);
    QCOMPARE(moved.getImageStartAddress(), 0x10008000U);
    QCOMPARE(moved.getEraseSectorSize(), 4096);
    QCOMPARE(moved.getWriteBlockSize(), 992);
}

UNIPROG_TEST_MAIN(tst_UtilsBootloader)
#include "tst_utilsbootloader.moc"
