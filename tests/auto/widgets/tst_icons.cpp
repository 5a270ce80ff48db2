#include <UtilsDialogTitlebar.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QImageReader>

// The images of title bar and sidebar as applications reach them, by their resource paths.
class tst_Icons : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void everyImageIsADrawing_data();
    void everyImageIsADrawing();
    void everyImageHasItsColour_data();
    void everyImageHasItsColour();
    void imagesAreSharpAtEverySize_data();
    void imagesAreSharpAtEverySize();
    void edgesFallOnWholePixels_data();
    void edgesFallOnWholePixels();
};

static constexpr int RoundingError = 3; // of pixels that an edge covers almost
static const QRgb Light = QColor("#e8eaed").rgb();
static const QRgb Yellow = QColor("#ffc53d").rgb();

static void imageRows()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QRgb>("colour");
    for (const char *const name : {"target_mcu", "bramlock_device", "power", "options", "info"}) {
        QTest::newRow(qPrintable(QString(name) + "_light")) << QString(":/images/%1_light.svg").arg(name) << Light;
        QTest::newRow(qPrintable(QString(name) + "_yellow")) << QString(":/images/%1_yellow.svg").arg(name) << Yellow;
    }
    for (const char *const name : {"close", "maximize", "restore", "minimize"}) {
        QTest::newRow(name) << QString(":/%1").arg(name) << Light;
        QTest::newRow(qPrintable(QString(name) + "_yellow")) << QString(":/%1_yellow").arg(name) << Yellow;
    }
}

static QImage drawn(const QString &path, int size)
{
    return QIcon(path).pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
}

void tst_Icons::initTestCase()
{
    const UtilsDialogTitlebar bar(nullptr); // a static build has the images as soon as a class uses them
}

void tst_Icons::everyImageIsADrawing_data()
{
    imageRows();
    QTest::newRow("logo") << ":/logo" << Light;
}

void tst_Icons::everyImageIsADrawing()
{
    QFETCH(QString, path);
    QVERIFY(QFile::exists(path));
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    QCOMPARE(QImageReader(path).format(), QByteArray("svg"));
    QVERIFY(QImageReader(path).size().height() >= 14);
}

void tst_Icons::everyImageHasItsColour_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    imageRows();
}

void tst_Icons::everyImageHasItsColour()
{
    QFETCH(QString, path);
    QFETCH(QRgb, colour);
    const QImage image = drawn(path, 64);
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 255) {
                const QRgb pixel = image.pixel(x, y);
                const int distance = qAbs(qRed(pixel) - qRed(colour)) + qAbs(qGreen(pixel) - qGreen(colour))
                    + qAbs(qBlue(pixel) - qBlue(colour));
                QVERIFY2(distance <= RoundingError, qPrintable(QColor(pixel).name()));
                ++opaque;
            }
        }
    }
    QVERIFY(opaque > 100);
}

void tst_Icons::imagesAreSharpAtEverySize_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    imageRows();
}

// A picture that was scaled up from a smaller one has hardly a pixel that is not a mixture.
void tst_Icons::imagesAreSharpAtEverySize()
{
    QFETCH(QString, path);
    for (const int size : {16, 20, 21, 24, 32, 42, 48, 63, 64}) {
        for (const int scale : {1, 2, 3}) {
            const QPixmap pixmap = QIcon(path).pixmap(QSize(size, size), scale);
            QCOMPARE(pixmap.size(), QSize(size, size) * scale);
            const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
            int inked = 0;
            int whole = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const int alpha = qAlpha(image.pixel(x, y));
                    inked += alpha > 0;
                    whole += alpha == 255;
                }
            }
            QVERIFY2(inked > 0, qPrintable(QString::number(size)));
            if (image.width() >= 60)
                QVERIFY2(whole * 2 > inked, qPrintable(QStringLiteral("%1 x %2").arg(size).arg(scale)));
        }
    }
}

void tst_Icons::edgesFallOnWholePixels_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("size");
    for (const int scale : {1, 2, 3}) {
        const auto row = [scale](const char *path, int size) {
            QTest::newRow(qPrintable(QStringLiteral("%1 at %2 %").arg(path).arg(scale * 100))) << path << size * scale;
        };
        row(":/images/options_light.svg", 21);
        row(":/maximize", 14);
        row(":/restore", 14);
        row(":/minimize", 14);
    }
}

// Those that are drawn of upright and level lines only have no pixel that is half covered.
void tst_Icons::edgesFallOnWholePixels()
{
    QFETCH(QString, path);
    QFETCH(int, size);
    const QImage image = drawn(path, size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            QVERIFY2(alpha == 0 || alpha == 255, qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(alpha)));
        }
    }
}

UNIPROG_TEST_MAIN(tst_Icons)
#include "tst_icons.moc"
