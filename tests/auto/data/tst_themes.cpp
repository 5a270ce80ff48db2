#include <UtilsLogger.h>
#include <UtilsLoggerLine.h>
#include <UtilsOption.h>
#include <UtilsOptionList.h>
#include <UtilsStyleSheet.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QRegularExpression>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <QXmlStreamReader>

#include <cmath>

static constexpr double TextContrast = 4.5; // WCAG 2.1, level AA
static constexpr double OutlineContrast = 3;

struct Rule
{
    QStringList selectors;
    QMap<QString, QString> declarations;
};

class tst_Themes : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void everyMarkerHasAValue_data();
    void everyMarkerHasAValue();
    void themesGiveTheSameMarkersInTheSameOrder();
    void everyRoleHasALook_data();
    void everyRoleHasALook();
    void imagesAndFontsExist_data();
    void imagesAndFontsExist();
    void everyColourIsOne_data();
    void everyColourIsOne();
    void textContrastsWithItsBackground_data();
    void textContrastsWithItsBackground();
    void focusIsSeenOnEverySurface_data();
    void focusIsSeenOnEverySurface();
    void kindsOfLogLinesDiffer_data();
    void kindsOfLogLinesDiffer();
    void logLinesHaveRoomForTheirText_data();
    void logLinesHaveRoomForTheirText();
    void rolesReachTheScreen_data();
    void rolesReachTheScreen();
    void themesAreSwitchedAtRunTime();
};

static QString fill(const QString &theme)
{
    return UtilsStyleSheet(THEMES_DIR "/uniprog.qss.in").replaceXmlMarkers(THEMES_DIR "/" + theme);
}

static QStringList themes()
{
    return QDir(THEMES_DIR).entryList({"*.xml"});
}

static void themeRows()
{
    QTest::addColumn<QString>("theme");
    for (const QString &theme : themes())
        QTest::newRow(qPrintable(theme)) << theme;
}

static QList<QPair<QString, QString>> valuesOf(const QString &theme)
{
    QFile file(THEMES_DIR "/" + theme);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qPrintable(theme));
    QList<QPair<QString, QString>> values;
    QXmlStreamReader xml(&file);
    xml.readNextStartElement();
    while (xml.readNextStartElement()) {
        const QString marker = xml.attributes().first().value().toString();
        values.append({marker, xml.readElementText()});
    }
    return values;
}

static QString valueOf(const QString &theme, const QString &marker)
{
    const auto values = valuesOf(theme);
    for (const auto &value : values) {
        if (value.first == marker)
            return value.second;
    }
    return {};
}

static QList<Rule> rulesOf(QString sheet)
{
    sheet.remove(QRegularExpression("/\\*.*?\\*/", QRegularExpression::DotMatchesEverythingOption));
    QList<Rule> rules;
    static const QRegularExpression block("([^{}]+)\\{([^{}]*)\\}");
    for (auto match = block.globalMatch(sheet); match.hasNext();) {
        const auto found = match.next();
        Rule rule;
        for (const QString &selector : found.captured(1).split(','))
            rule.selectors.append(selector.simplified());
        for (const QString &declaration : found.captured(2).split(';', Qt::SkipEmptyParts)) {
            const auto colon = declaration.indexOf(':');
            if (colon > 0)
                rule.declarations.insert(declaration.left(colon).simplified(), declaration.mid(colon + 1).simplified());
        }
        rules.append(rule);
    }
    return rules;
}

static QColor colourOf(const QString &text)
{
    static const QRegularExpression rgba("^rgba\\((\\d+), (\\d+), (\\d+), (\\d+)\\)$");
    if (const auto match = rgba.match(text); match.hasMatch())
        return QColor(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                      match.captured(4).toInt());
    return QColor(text);
}

static double luminance(const QColor &colour)
{
    const auto linear
        = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

static double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

// Parts of widgets that no text stands on.
static bool isWithoutText(const QString &selector)
{
    static const QRegularExpression parts("QScrollBar|QTableCornerButton|textVisible=\"false\"|"
                                          "::indicator|::separator|::(up|down)-button");
    return parts.match(selector).hasMatch();
}

void tst_Themes::cleanup()
{
    qApp->setStyleSheet({});
}

void tst_Themes::everyMarkerHasAValue_data()
{
    themeRows();
}

void tst_Themes::everyMarkerHasAValue()
{
    QFETCH(QString, theme);
    const QString sheet = fill(theme);
    QVERIFY(sheet.size() > 1000);
    QVERIFY2(!sheet.contains('@'), qPrintable(sheet.mid(sheet.indexOf('@'), 40)));
}

void tst_Themes::themesGiveTheSameMarkersInTheSameOrder()
{
    QCOMPARE(themes(), (QStringList{"dark.xml", "light.xml"}));
    QStringList dark;
    for (const auto &value : valuesOf("dark.xml"))
        dark.append(value.first);
    QStringList light;
    for (const auto &value : valuesOf("light.xml"))
        light.append(value.first);
    QCOMPARE(dark, light);
}

void tst_Themes::everyRoleHasALook_data()
{
    QTest::addColumn<QString>("selector");
    const QMap<QString, QStringList> roles{
        {"background-color", {"main", "semi-transparent", "transparent", "window-frame"}},
        {"frame-border-color", {"gray_level1", "gray_level2", "gray_level3", "gray_level4"}},
        {"frame-type", {"line-horizontal"}},
        {"border-radius", {"true", "false"}},
        {"font-size", {"level1", "level2", "level3", "level4"}},
        {"title", {"true", "false"}},
        {"log-type", {"default", "info", "warning", "success", "error"}},
        {"progressbar-type", {"regular", "infinite"}},
        {"sidebarItem-elementType", {"main-button", "child-button"}},
        {"sidebarItem-elementActionStatus", {"action-exist"}},
        {"button-group-left", {"true"}},
        {"button-group-middle", {"true"}},
        {"button-group-right", {"true"}},
        {"utils-ip-edit-widget-type", {"true"}},
        {"hover", {"true"}},
    };
    for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
        for (const QString &value : role.value()) {
            const QString selector = '[' + role.key() + "=\"" + value + "\"]";
            QTest::newRow(qPrintable(selector)) << selector;
        }
    }
}

void tst_Themes::everyRoleHasALook()
{
    QFETCH(QString, selector);
    for (const QString &theme : themes()) {
        const QList<Rule> rules = rulesOf(fill(theme));
        QVERIFY(std::any_of(rules.cbegin(), rules.cend(), [&selector](const Rule &rule) {
            return !rule.declarations.isEmpty() && rule.selectors.join(' ').contains(selector);
        }));
    }
}

void tst_Themes::imagesAndFontsExist_data()
{
    themeRows();
}

void tst_Themes::imagesAndFontsExist()
{
    QFETCH(QString, theme);
    const QString sheet = fill(theme);
    static const QRegularExpression url("url\\(\"([^\"]*)\"\\)");
    int images = 0;
    for (auto match = url.globalMatch(sheet); match.hasNext(); ++images) {
        const QString path = match.next().captured(1);
        QVERIFY2(QFile::exists(path), qPrintable(path));
    }
    QVERIFY(images > 0);
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList(valueOf(theme, "@font-family@")));
}

void tst_Themes::everyColourIsOne_data()
{
    themeRows();
}

void tst_Themes::everyColourIsOne()
{
    QFETCH(QString, theme);
    for (const Rule &rule : rulesOf(fill(theme))) {
        for (auto it = rule.declarations.cbegin(); it != rule.declarations.cend(); ++it) {
            if (it.key().endsWith("color"))
                QVERIFY2(colourOf(it.value()).isValid(), qPrintable(rule.selectors.join(' ') + ": " + it.value()));
        }
    }
}

void tst_Themes::textContrastsWithItsBackground_data()
{
    themeRows();
}

void tst_Themes::textContrastsWithItsBackground()
{
    QFETCH(QString, theme);
    const QList<Rule> rules = rulesOf(fill(theme));
    const QStringList surfaces{valueOf(theme, "@window@"), valueOf(theme, "@card@"), valueOf(theme, "@field@")};
    QMap<QString, QString> textColours;
    for (const Rule &rule : rules) {
        for (const QString &selector : rule.selectors) {
            if (rule.declarations.contains("color"))
                textColours.insert(selector, rule.declarations.value("color"));
        }
    }
    // A rule without a text colour shows that of the rule it adds a state, a part or a property to.
    const auto textColour = [&textColours](QString selector) {
        static const QRegularExpression state("(?<!:):[a-z]+");
        static const QRegularExpression part("::[a-z-]+");
        static const QRegularExpression property("\\[[^]]*\\]");
        for (const QRegularExpression &rest : {state, part, property}) {
            if (textColours.contains(selector))
                break;
            selector.remove(rest);
        }
        return textColours.value(selector, textColours.value("QWidget"));
    };

    int pairs = 0;
    for (const Rule &rule : rules) {
        const QString own = rule.declarations.value("background-color");
        const bool standsOnSurfaces = own.isEmpty() || colourOf(own).alpha() == 0;
        if (!rule.declarations.contains("color") && standsOnSurfaces)
            continue;
        for (const QString &selector : rule.selectors) {
            if (isWithoutText(selector) || (!standsOnSurfaces && colourOf(own).alpha() < 255))
                continue;
            const QString text = textColour(selector);
            for (const QString &background : standsOnSurfaces ? surfaces : QStringList{own}) {
                const double ratio = contrast(colourOf(text), colourOf(background));
                QVERIFY2(
                    ratio >= TextContrast,
                    qPrintable(selector + ": " + text + " on " + background + " is only " + QString::number(ratio)));
                ++pairs;
            }
        }
    }
    QVERIFY(pairs > 50);
}

void tst_Themes::focusIsSeenOnEverySurface_data()
{
    themeRows();
}

void tst_Themes::focusIsSeenOnEverySurface()
{
    QFETCH(QString, theme);
    const QColor focus = colourOf(valueOf(theme, "@focus@"));
    for (const char *const surface : {"@window@", "@card@", "@field@"}) {
        const double ratio = contrast(focus, colourOf(valueOf(theme, surface)));
        QVERIFY2(ratio >= OutlineContrast, qPrintable(surface + QString(": ") + QString::number(ratio)));
    }
}

void tst_Themes::kindsOfLogLinesDiffer_data()
{
    themeRows();
}

void tst_Themes::kindsOfLogLinesDiffer()
{
    QFETCH(QString, theme);
    qApp->setStyleSheet(fill(theme));
    QSet<QRgb> colours;
    for (const char *const kind : {"default", "info", "warning", "success", "error"}) {
        QLabel label("text");
        label.setProperty("log-type", kind);
        label.ensurePolished();
        colours.insert(label.palette().color(QPalette::WindowText).rgb());
    }
    QCOMPARE(colours.size(), 5);
}

void tst_Themes::logLinesHaveRoomForTheirText_data()
{
    themeRows();
}

void tst_Themes::logLinesHaveRoomForTheirText()
{
    QFETCH(QString, theme);
    qApp->setStyleSheet(fill(theme));
    UtilsLogger logger(nullptr, 0);
    UtilsLoggerLine *line = logger.addLine("Verify failed: yjpgq", LOGGER_MESSAGE_ERROR);
    logger.show();
    const auto *label = line->findChild<QLabel *>();
    QVERIFY(label);
    QTRY_VERIFY(label->height() >= label->fontMetrics().height() - 1); // the lowest pixel row is leading
}

static QColor colourInside(QWidget *widget)
{
    return widget->grab().toImage().pixelColor(widget->rect().center());
}

void tst_Themes::rolesReachTheScreen_data()
{
    themeRows();
}

void tst_Themes::rolesReachTheScreen()
{
    QFETCH(QString, theme);
    qApp->setStyleSheet(fill(theme));
    const auto colour = [&theme](const char *marker) { return colourOf(valueOf(theme, marker)); };

    QDialog window;
    window.resize(100, 100);
    QCOMPARE(colourInside(&window), colour("@window@"));

    QFrame card(&window);
    card.resize(40, 40);
    card.setProperty("background-color", "main");
    card.setProperty("frame-border-color", "gray_level4");
    QCOMPARE(colourInside(&card), colour("@card@"));
    QCOMPARE(card.grab().toImage().pixelColor(20, 0), colour("@gray-level4@"));

    QFrame line(&window);
    line.setFrameShape(QFrame::HLine);
    line.setProperty("frame-type", "line-horizontal");
    line.setProperty("frame-border-color", "gray_level2");
    line.resize(40, 1);
    QCOMPARE(colourInside(&line), colour("@gray-level2@"));

    QLabel label(&window);
    QList<int> sizes;
    for (const char *const level : {"level1", "level2", "level3", "level4"}) {
        label.setProperty("font-size", level);
        label.style()->unpolish(&label);
        label.style()->polish(&label);
        sizes.append(label.font().pixelSize());
    }
    QCOMPARE(sizes, (QList<int>{11, 12, 13, 15}));
    QCOMPARE(QFontInfo(label.font()).family(), QString("Open Sans"));
    QVERIFY(!label.font().bold());

    UtilsOptionList options;
    options.addOption("Speed");
    const QScopedPointer<QWidget> panel(options.createGraphicInterface(&window));
    auto *title = panel->findChild<QLabel *>();
    title->ensurePolished();
    QVERIFY(title->font().bold());

    QToolButton section(&window);
    section.setProperty("sidebarItem-elementType", "main-button");
    section.setCheckable(true);
    section.resize(60, 58);
    QCOMPARE(colourInside(&section), colour("@chrome@"));
    section.setChecked(true);
    section.setEnabled(false);
    QCOMPARE(section.grab().toImage().pixelColor(1, 29), colour("@chrome-accent@"));

    QToolButton mirroredSection(&window);
    mirroredSection.setLayoutDirection(Qt::RightToLeft);
    mirroredSection.setProperty("sidebarItem-elementType", "main-button");
    mirroredSection.setCheckable(true);
    mirroredSection.setChecked(true);
    mirroredSection.resize(60, 58);
    QCOMPARE(mirroredSection.grab().toImage().pixelColor(1, 29), colour("@chrome-hover@"));
    QCOMPARE(mirroredSection.grab().toImage().pixelColor(58, 29), colour("@chrome-accent@"));

    QProgressBar bar(&window);
    bar.setProperty("progressbar-type", "regular");
    bar.setTextVisible(false);
    bar.resize(100, 5);
    bar.setValue(50);
    QCOMPARE(bar.grab().toImage().pixelColor(20, 2), colour("@progress@"));
    QCOMPARE(bar.grab().toImage().pixelColor(80, 2), colour("@progress-track@"));
}

void tst_Themes::themesAreSwitchedAtRunTime()
{
    QDialog window;
    window.resize(100, 100);
    auto *layout = new QVBoxLayout(&window);
    auto *label = new QLabel("text");
    auto *field = new QLineEdit("text");
    layout->addWidget(label);
    layout->addWidget(field);
    window.show();
    for (const char *const theme : {"dark.xml", "light.xml", "dark.xml"}) {
        qApp->setStyleSheet(fill(theme));
        QCOMPARE(label->palette().color(QPalette::WindowText), colourOf(valueOf(theme, "@text@")));
        QCOMPARE(field->palette().color(QPalette::Base), colourOf(valueOf(theme, "@field@")));
        QCOMPARE(window.grab().toImage().pixelColor(1, 1), colourOf(valueOf(theme, "@window@")));
        // The fonts of the theme before are gone, those of this one are there: the text is still drawn in the family.
        QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Open Sans"));
        QCOMPARE(QFontDatabase::applicationFontFamilies(1), QStringList());
        QCOMPARE(QFontInfo(label->font()).family(), QString("Open Sans"));
    }
}

UNIPROG_TEST_MAIN(tst_Themes)
#include "tst_themes.moc"
