#include <EventMonitor.h>
#include <GalleryPage.h>
#include <GalleryWindow.h>
#include <PageRegistry.h>

#include <UtilsDialog.h>
#include <UtilsIpEdit.h>
#include <UtilsLogger.h>
#include <UtilsToggleSwitch.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>

class tst_Gallery : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyPageShowsItselfAndEverySampleDisabledToo();
    void theMonitorShowsSignalsWithTheirArguments();
    void aButtonOpensItsDialog();
    void themeAndDirectionAreSwitchedWhileItRuns();
    void anotherScaleWantsARestart();
    void wrongArgumentsAreSaid_data();
    void wrongArgumentsAreSaid();
    void thePicturesAreTheBaselines_data();
    void thePicturesAreTheBaselines();
    void theFontsOfTheSystemDoNotMatter();
};

namespace {

constexpr int LongWait = 120'000; // milliseconds
constexpr int VisibleDifference = 40; // of 255, in one of the colours of a pixel
#ifdef Q_OS_WIN
// Of the pixels: Qt brings a FreeType of its own there, whose bold letters are wider, and may come without SVG icons.
constexpr double ToleratedFraction = 0.02;
#else
constexpr double ToleratedFraction = 0.0002; // of the pixels
#endif

GalleryOptions darkOptions()
{
    GalleryOptions options;
    options.theme = QStringLiteral("dark");
    return options;
}

struct Outcome
{
    int exitCode;
    QString text;
};

Outcome runGallery(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(GALLERY_PATH), arguments);
    if (!process.waitForFinished(LongWait))
        return {-1, process.errorString()};
    return {process.exitCode(), QString::fromLocal8Bit(process.readAll())};
}

QStringList picturesIn(const QString &folder)
{
    return QDir(folder).entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
}

bool differ(QRgb one, QRgb other)
{
    return qAbs(qRed(one) - qRed(other)) > VisibleDifference || qAbs(qGreen(one) - qGreen(other)) > VisibleDifference
        || qAbs(qBlue(one) - qBlue(other)) > VisibleDifference;
}

/// The fraction of the pixels that visibly differ; 1 for pictures of different sizes.
double difference(const QString &path, const QString &otherPath)
{
    const QImage picture = QImage(path).convertToFormat(QImage::Format_RGB32);
    const QImage other = QImage(otherPath).convertToFormat(QImage::Format_RGB32);
    if (picture.isNull() || picture.size() != other.size())
        return 1;
    qint64 count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            count += differ(picture.pixel(x, y), other.pixel(x, y)) ? 1 : 0;
    return double(count) / double(qint64(picture.width()) * picture.height());
}

} // namespace

void tst_Gallery::everyPageShowsItselfAndEverySampleDisabledToo()
{
    GalleryWindow window(darkOptions());
    window.show();
    for (const QString &name : PageRegistry::names()) {
        GalleryPage *page = window.showPage(name);
        QVERIFY(page);
        QVERIFY2(page->isVisible(), qPrintable(name));
        bool hasDisabled = false;
        for (const QWidget *widget : page->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
            hasDisabled = hasDisabled || widget->testAttribute(Qt::WA_ForceDisabled);
        QVERIFY2(hasDisabled || !page->popups().isEmpty(), qPrintable(name));
    }
    QVERIFY(!window.showPage(QStringLiteral("nothing")));
}

void tst_Gallery::theMonitorShowsSignalsWithTheirArguments()
{
    GalleryWindow window(darkOptions());
    window.show();
    GalleryPage *page = window.showPage(QStringLiteral("inputs"));
    auto *edit = page->findChild<UtilsIpEdit *>();
    auto *log = window.findChild<UtilsLogger *>(QStringLiteral("eventMonitor"));
    QVERIFY(edit && log);
    QVERIFY(log->isEmpty());

    QLineEdit *field = edit->getLineEditWidgets(0);
    QTest::keyClick(field, Qt::Key_7);
    QTRY_COMPARE(log->getLoggerData().trimmed(), QStringLiteral("signalTextChanged(%1)").arg(field->objectName()));
    window.monitor()->clear();
    QVERIFY(log->isEmpty());
}

void tst_Gallery::aButtonOpensItsDialog()
{
    GalleryWindow window(darkOptions());
    window.show();
    GalleryPage *page = window.showPage(QStringLiteral("dialogs"));
    const GalleryPage::Popup popup = page->popups().constFirst();
    for (QPushButton *button : page->findChildren<QPushButton *>())
        if (button->text() == popup.caption)
            button->click();
    QPointer<UtilsDialog> dialog = page->findChild<UtilsDialog *>();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    dialog->accept();
    QTRY_VERIFY(!dialog);
}

void tst_Gallery::themeAndDirectionAreSwitchedWhileItRuns()
{
    GalleryWindow window(darkOptions());
    window.show();
    auto *themes = window.findChild<QComboBox *>(QStringLiteral("theme"));
    themes->setCurrentText(QStringLiteral("light"));
    const QString light = qApp->styleSheet();
    themes->setCurrentText(QStringLiteral("dark"));
    QVERIFY(!light.isEmpty());
    QVERIFY(qApp->styleSheet() != light);
    qApp->setStyleSheet(QString());

    auto *direction = window.findChild<UtilsToggleSwitch *>(QStringLiteral("rightToLeft"));
    direction->setChecked(true);
    QCOMPARE(window.layoutDirection(), Qt::RightToLeft);
    direction->setChecked(false);
    QCOMPARE(window.layoutDirection(), Qt::LeftToRight);
}

void tst_Gallery::anotherScaleWantsARestart()
{
    GalleryWindow window(darkOptions());
    window.showPage(QStringLiteral("cover"));
    GalleryOptions wanted;
    int restarts = 0;
    connect(&window, &GalleryWindow::restartRequested, this, [&](const GalleryOptions &options) {
        wanted = options;
        ++restarts;
    });
    auto *scales = window.findChild<QComboBox *>(QStringLiteral("scale"));
    const auto choose = [scales](int scale) {
        scales->setCurrentIndex(scales->findData(scale));
        Q_EMIT scales->activated(scales->currentIndex());
    };
    choose(100);
    QCOMPARE(restarts, 0);
    choose(200);
    QCOMPARE(restarts, 1);
    QCOMPARE(wanted.toArguments().join(QLatin1Char(' ')), QStringLiteral("--theme dark --scale 200 --page cover"));

    GalleryOptions read;
    QString error;
    QVERIFY(read.read(QStringList{QStringLiteral("gallery")} + wanted.toArguments(), &error));
    QCOMPARE(read.scale, 200);
    QCOMPARE(read.pages, QStringList{QStringLiteral("cover")});
}

void tst_Gallery::wrongArgumentsAreSaid_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("theme") << QStringList{"--theme", "blue"} << "There is no theme named blue.";
    QTest::newRow("page") << QStringList{"--page", "none"} << "There is no page named none.";
    QTest::newRow("scale, no number") << QStringList{"--scale", "big"}
                                      << "The scale is a number of percent, 50 to 400.";
    QTest::newRow("scale, too large") << QStringList{"--scale", "401"}
                                      << "The scale is a number of percent, 50 to 400.";
    QTest::newRow("folder") << QStringList{"--screenshots", ""} << "The folder for the pictures is missing.";
    QTest::newRow("a word") << QStringList{"word"} << "word is no option.";
    QTest::newRow("an option") << QStringList{"--sound"} << "Unknown option 'sound'.";
}

void tst_Gallery::wrongArgumentsAreSaid()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, error);
    GalleryOptions options;
    QString said;
    QVERIFY(!options.read(QStringList{QStringLiteral("gallery")} + arguments, &said));
    QCOMPARE(said, error);
}

void tst_Gallery::thePicturesAreTheBaselines_data()
{
    QTest::addColumn<QString>("variant");
    QTest::addColumn<QStringList>("arguments");
    QFile file(QStringLiteral(BASELINES "/variants.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    while (!file.atEnd()) {
        QStringList words = QString::fromLatin1(file.readLine()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (words.isEmpty() || words.constFirst().startsWith(QLatin1Char('#')))
            continue;
        for (QString &word : words)
            word = word.trimmed();
        const QString variant = words.takeFirst();
        QTest::newRow(qPrintable(variant)) << variant << words;
    }
}

void tst_Gallery::thePicturesAreTheBaselines()
{
    QFETCH(const QString, variant);
    QFETCH(const QStringList, arguments);
    const QString taken = QStringLiteral(PICTURES "/") + variant; // kept, to be looked at
    QDir(taken).removeRecursively();
    const Outcome outcome = runGallery(QStringList{QStringLiteral("--screenshots"), taken} + arguments,
                                       QProcessEnvironment::systemEnvironment());
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.text));

    const QString baselines = QStringLiteral(BASELINES "/") + variant;
    QCOMPARE(picturesIn(taken), picturesIn(baselines));
    QStringList different;
    for (const QString &name : picturesIn(taken)) {
        const double fraction = difference(taken + QLatin1Char('/') + name, baselines + QLatin1Char('/') + name);
        if (fraction > ToleratedFraction)
            different.append(QStringLiteral("%1: %2 %").arg(name).arg(100 * fraction));
    }
    QVERIFY2(different.isEmpty(),
             qPrintable(QStringLiteral("In %1 differ %2").arg(taken, different.join(QLatin1String(", ")))));
}

void tst_Gallery::theFontsOfTheSystemDoNotMatter()
{
#ifdef Q_OS_WIN
    QSKIP("There is no fontconfig.");
#endif
    const QTemporaryDir folder;
    QFile configuration(folder.filePath(QStringLiteral("fonts.conf")));
    QVERIFY(configuration.open(QIODevice::WriteOnly));
    configuration.write("<?xml version=\"1.0\"?><fontconfig><cachedir>" + folder.path().toLocal8Bit()
                        + "</cachedir><match target=\"font\"><edit name=\"hinting\" mode=\"assign\"><bool>true</bool>"
                          "</edit><edit name=\"hintstyle\" mode=\"assign\"><const>hintfull</const></edit>"
                          "<edit name=\"rgba\" mode=\"assign\"><const>rgb</const></edit></match></fontconfig>");
    configuration.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FONTCONFIG_FILE"), configuration.fileName());

    const QString page = QStringLiteral("labels");
    const Outcome outcome
        = runGallery({QStringLiteral("--screenshots"), folder.path(), QStringLiteral("--page"), page}, environment);
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.text));
    const QString name = QStringLiteral("/%1.png").arg(page);
    QVERIFY(difference(folder.path() + name, QStringLiteral(BASELINES "/dark") + name) <= ToleratedFraction);
}

UNIPROG_TEST_MAIN(tst_Gallery)

#include "tst_gallery.moc"
