#include <UtilsStyleSheet.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QRandomGenerator>
#include <QResource>
#include <QTemporaryDir>

#include <type_traits>

static_assert(std::is_nothrow_move_constructible_v<UtilsStyleSheet>);
static_assert(std::is_nothrow_move_assignable_v<UtilsStyleSheet>);
static_assert(std::is_copy_constructible_v<UtilsStyleSheet> && std::is_copy_assignable_v<UtilsStyleSheet>);

class tst_UtilsStyleSheet : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void markersAreReplaced_data();
    void markersAreReplaced();
    void replacementsFollowTheOrderOfTheTheme_data();
    void replacementsFollowTheOrderOfTheTheme();
    void anErrorEndsTheReplacements_data();
    void anErrorEndsTheReplacements();
    void aResultThatGrowsTooLargeEndsTheReplacements_data();
    void aResultThatGrowsTooLargeEndsTheReplacements();
    void theTemplateIsReadByteForByte_data();
    void theTemplateIsReadByteForByte();
    void theThemeIsReadAsUtf8_data();
    void theThemeIsReadAsUtf8();
    void aTemplateThatCannotBeReadGivesNothing();
    void aThemeThatCannotBeReadLeavesTheTemplate();
    void theFilesAreReadAnewByEachCall();
    void applicationFontsAreRemovedInEveryCase_data();
    void applicationFontsAreRemovedInEveryCase();
    void aFontIsLoadedAndWritten();
    void aFontIsLoadedEvenWithoutATemplate();
    void aFontAfterAnErrorIsNotLoaded();
    void aMissingFontIsSkipped();
    void styleSheetsAreValues();
    void theFillAgreesWithAModel();

private:
    QString fill(const QByteArray &styleSheet, const QByteArray &theme);
    QString write(const QString &name, const QByteArray &content);
    QString missing() const;

    QTemporaryDir folder;
};

// An application font that no theme has asked for.
static int loadSomeFont()
{
    UtilsStyleSheet("").replaceXmlMarkers(""); // makes the library's fonts known where it is linked statically
    return QFontDatabase::addApplicationFont(":/misc/fonts/Open Sans.ttf");
}

QString tst_UtilsStyleSheet::write(const QString &name, const QByteArray &content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

QString tst_UtilsStyleSheet::missing() const
{
    return folder.filePath("missing");
}

QString tst_UtilsStyleSheet::fill(const QByteArray &styleSheet, const QByteArray &theme)
{
    return UtilsStyleSheet(write("template", styleSheet)).replaceXmlMarkers(write("theme", theme));
}

void tst_UtilsStyleSheet::markersAreReplaced_data()
{
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *styleSheet, const char *elements, const char *expected) {
        QTest::newRow(name) << QByteArray(styleSheet) << QByteArray(elements) << QString::fromUtf8(expected);
    };

    row("color", "c: $c;", "<color name='$c'>#123456</color>", "c: #123456;");
    row("wallpaper", "i: $i;", "<wallpaper name='$i'>url(:/a.png)</wallpaper>", "i: url(:/a.png);");
    row("dimension", "w: $w;", "<dimension name='$w'>4px</dimension>", "w: 4px;");
    row("fontName", "f: $f;", "<fontName name='$f'>Open Sans</fontName>", "f: Open Sans;");
    row("fontSize", "s: $s;", "<fontSize name='$s'>13px</fontSize>", "s: 13px;");
    row("every occurrence", "$a $a$a", "<color name='$a'>x</color>", "x xx");
    row("occurrences do not overlap", "aaa", "<color name='aa'>b</color>", "ba");
    row("a value is not searched for its own marker", "a", "<color name='a'>aa</color>", "aa");
    row("case-sensitive", "$a $A", "<color name='$a'>x</color>", "x $A");
    row("not as a pattern", "a+ aa [a]", "<color name='a+'>x</color><color name='[a]'>y</color>", "x aa y");
    row("an empty value", "a$b", "<color name='$b'/>", "a");
    row("an empty marker stands before and behind every character", "ab", "<color name=''>-</color>", "-a-b-");
    row("the text is not trimmed", "[$a]", "<color name='$a'> \n x\t</color>", "[ \n x\t]");
    row("the marker is not trimmed", "[ $a ]", "<color name=' $a '>x</color>", "[x]");
    row("entities", "[$a&<]", "<color name='$a&amp;&lt;'>&lt;&#65;&gt;</color>", "[<A>]");
    row("CDATA and comments", "[$a]", "<color name='$a'>1<!-- no -->2<![CDATA[<3>]]>4</color>", "[12<3>4]");
    row("the attribute's name does not matter", "$a", "<color whatever='$a'>x</color>", "x");
    row("only the first attribute", "$a $b", "<color z='$b' a='$a'>x</color>", "$a x");
    row("an element without an attribute is skipped", "$a $b", "<color>x</color><color n='$b'>y</color>", "$a y");
    row("inside an element without an attribute", "$b", "<color><size><color n='$b'>y</color></size></color>", "y");
    row("other elements are passed over", "$a $b", "<colour n='$a'>x</colour><color n='$b'>y</color>", "$a y");
    row("names are case-sensitive", "$a", "<Color n='$a'>x</Color><fontname n='$a'>y</fontname>", "$a");
    row("inside other elements", "$a", "<group n='$b'><deep><color n='$a'>x</color></deep></group>", "x");
    row("a marker without an element stays", "$a $b", "<color n='$a'>x</color>", "x $b");
    row("no elements", "$a", "", "$a");
    row("an empty template", "", "<color n='$a'>x</color>", "");
}

void tst_UtilsStyleSheet::markersAreReplaced()
{
    QFETCH(QByteArray, styleSheet);
    QFETCH(QByteArray, elements);
    QFETCH(QString, expected);
    QCOMPARE(fill(styleSheet, "<?xml version='1.0'?>\n<theme n='$theme'>" + elements + "</theme>\n"), expected);
}

void tst_UtilsStyleSheet::replacementsFollowTheOrderOfTheTheme_data()
{
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the first of two elements with one marker")
        << QByteArray("$a $a") << QByteArray("<color n='$a'>x</color><color n='$a'>y</color>") << "x x";
    QTest::newRow("a value that contains a later marker")
        << QByteArray("$a") << QByteArray("<color n='$a'>1 $b 2</color><color n='$b'>x</color>") << "1 x 2";
    QTest::newRow("a value that contains an earlier marker")
        << QByteArray("$a") << QByteArray("<color n='$b'>x</color><color n='$a'>1 $b 2</color>") << "1 $b 2";
    QTest::newRow("a marker made of a value and what stands around it")
        << QByteArray("$$a$") << QByteArray("<color n='$a'>b</color><color n='$b$'>x</color>") << "x";
    QTest::newRow("the part before the whole")
        << QByteArray("$a $ab") << QByteArray("<color n='$a'>x</color><color n='$ab'>y</color>") << "x xb";
    QTest::newRow("the whole before the part")
        << QByteArray("$a $ab") << QByteArray("<color n='$ab'>y</color><color n='$a'>x</color>") << "x y";
    QTest::newRow("across the kinds of elements")
        << QByteArray("$a")
        << QByteArray("<dimension n='$a'>$b</dimension><fontSize n='$b'>$c</fontSize>"
                      "<wallpaper n='$c'>x</wallpaper>")
        << "x";
    QTest::newRow("exchange is not possible")
        << QByteArray("a b") << QByteArray("<color n='a'>b</color><color n='b'>a</color>") << "a a";
}

void tst_UtilsStyleSheet::replacementsFollowTheOrderOfTheTheme()
{
    QFETCH(QByteArray, styleSheet);
    QFETCH(QByteArray, elements);
    QFETCH(QString, expected);
    QCOMPARE(fill(styleSheet, "<theme>" + elements + "</theme>"), expected);
}

void tst_UtilsStyleSheet::anErrorEndsTheReplacements_data()
{
    QTest::addColumn<QByteArray>("theme");
    QTest::addColumn<QString>("expected");

    const QByteArray three = "<theme><color n='$a'>1</color><color n='$b'>2</color><color n='$c'>3</color>";
    QTest::newRow("a wrong end tag") << three + "</wrong><color n='$d'>4</color></theme>"
                                     << "1 2 3 $d";
    QTest::newRow("the end is missing") << three << "1 2 3 $d";
    QTest::newRow("the text is cut off") << three + "<color n='$d'>4"
                                         << "1 2 3 $d";
    QTest::newRow("an attribute is cut off") << three + "<color n='$d"
                                             << "1 2 3 $d";
    QTest::newRow("an undeclared entity") << three + "<color n='$d'>4&nope;</color></theme>"
                                          << "1 2 3 $d";
    QTest::newRow("a nested element") << three + "<color n='$d'>4<b/></color></theme>"
                                      << "1 2 3 $d";
    QTest::newRow("a nested element before others")
        << QByteArray("<theme><color n='$a'>1</color><color n='$b'><color n='$c'>3</color></color>"
                      "<color n='$d'>4</color></theme>")
        << "1 $b $c $d";
    QTest::newRow("from the start") << QByteArray("no theme") << "$a $b $c $d";
    QTest::newRow("after the root") << three + "<color n='$d'>4</color></theme><more/>"
                                    << "1 2 3 4";
    QTest::newRow("two attributes of one name") << three + "<color n='$d' n='$e'>4</color></theme>"
                                                << "1 2 3 $d";
}

void tst_UtilsStyleSheet::anErrorEndsTheReplacements()
{
    QFETCH(QByteArray, theme);
    QFETCH(QString, expected);
    QCOMPARE(fill("$a $b $c $d", theme), expected);
}

void tst_UtilsStyleSheet::aResultThatGrowsTooLargeEndsTheReplacements_data()
{
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::addColumn<QByteArray>("elements");
    QTest::addColumn<bool>("complete");
    QTest::addColumn<qsizetype>("size");

    const auto element = [](const QByteArray &marker, const QByteArray &value) {
        return "<color n='" + marker + "'>" + value + "</color>";
    };
    constexpr qsizetype Limit = UtilsStyleSheet::LargestResult;
    constexpr qsizetype Mega = 1024 * 1024;
    // Every row has one character more, a marker that shows whether the theme was followed to its end.
    QTest::newRow("as large as may be") << QByteArray(31, 'a') + QByteArray(Mega - 1, '-')
                                        << element("a", QByteArray(Mega, 'b')) << true << Limit - 1;
    QTest::newRow("a character more") << QByteArray(31, 'a') + QByteArray(Mega, '-')
                                      << element("a", QByteArray(Mega, 'b')) << false << 31 + Mega;
    QTest::newRow("occurrences that overlap")
        << QByteArray(62, 'a') + QByteArray(Mega - 1, '-') << element("aa", QByteArray(Mega, 'b')) << true << Limit - 1;
    QTest::newRow("a long template with few markers")
        << QByteArray(Mega, 'b') + 'a' << element("a", QByteArray(Mega, 'c')) << true << 2 * Mega;
    QTest::newRow("a value full of its own marker")
        << QByteArray("a") << element("a", QByteArray(1000, 'a')).repeated(4) << false << qsizetype(1000 * 1000);
    // With values of v characters, n characters become (n + 1) * v + n.
    QTest::newRow("markers that are empty") << QByteArray("12345678") << element("", QByteArray(1000, 'b')).repeated(4)
                                            << false << qsizetype(9 + 10 * 1000) + (9 + 10 * 1000 + 1) * 1000 - 1;
    QTest::newRow("a larger template without growth")
        << QByteArray(Limit, 'b') + 'a' << element("a", "c") + element("none", "longer than before") << true
        << Limit + 1;
    QTest::newRow("a larger template that grows")
        << QByteArray(Limit, 'b') + 'a' << element("a", "cc") << false << Limit + 1;
}

void tst_UtilsStyleSheet::aResultThatGrowsTooLargeEndsTheReplacements()
{
    QFETCH(QByteArray, styleSheet);
    QFETCH(QByteArray, elements);
    QFETCH(bool, complete);
    QFETCH(qsizetype, size);
    const QString result
        = fill("$" + styleSheet, "<t>" + elements + "<color n='$'/><fontName n='f'>Open Sans</fontName></t>");
    // As after an error: neither later markers nor later fonts.
    QCOMPARE(result.contains('$'), !complete);
    QCOMPARE(result.size(), complete ? size : size + 1);
    QCOMPARE(QFontDatabase::applicationFontFamilies(0).isEmpty(), !complete);
}

void tst_UtilsStyleSheet::theTemplateIsReadByteForByte_data()
{
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::addColumn<QString>("expected");

    QTest::newRow("UTF-8 becomes its bytes")
        << QByteArray("/* \xE2\x80\x93 */ $a") << QString::fromLatin1("/* \xE2\x80\x93 */ x");
    QTest::newRow("Latin-1") << QByteArray("\xE9 $a \xFF") << QString::fromLatin1("\xE9 x \xFF");
    QTest::newRow("a byte order mark") << QByteArray("\xEF\xBB\xBF$a") << QString::fromLatin1("\xEF\xBB\xBFx");
    QTest::newRow("line ends") << QByteArray("$a\r\n$a\n$a\r") << "x\r\nx\nx\r";
    QTest::newRow("NUL") << QByteArray("a\0$a\0", 5) << QString::fromLatin1("a\0x\0", 4);
    QTest::newRow("the end-of-file character") << QByteArray("\x1A$a") << "\x1Ax";
}

void tst_UtilsStyleSheet::theTemplateIsReadByteForByte()
{
    QFETCH(QByteArray, styleSheet);
    QFETCH(QString, expected);
    QCOMPARE(fill(styleSheet, "<theme><color n='$a'>x</color></theme>"), expected);
}

void tst_UtilsStyleSheet::theThemeIsReadAsUtf8_data()
{
    QTest::addColumn<QByteArray>("theme");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain") << QByteArray("<t><color n='$a'>Ж–😀</color></t>") << QString::fromUtf8("Ж–😀 é");
    QTest::newRow("a marker of Latin-1") << QByteArray("<t><color n='é'>x</color></t>") << "$a x";
    QTest::newRow("a byte order mark") << QByteArray("\xEF\xBB\xBF<t><color n='$a'>Ж</color></t>")
                                       << QString::fromUtf8("Ж é");
    QTest::newRow("a declared encoding is not followed")
        << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><t><color n='$a'>Ж</color></t>")
        << QString::fromUtf8("Ж é");
    QTest::newRow("an invalid byte") << QByteArray("<t><color n='$a'>a\xFFz</color></t>")
                                     << QString::fromUtf8("a\uFFFDz é");
}

void tst_UtilsStyleSheet::theThemeIsReadAsUtf8()
{
    QFETCH(QByteArray, theme);
    QFETCH(QString, expected);
    QCOMPARE(fill("$a \xE9", theme), expected);
}

void tst_UtilsStyleSheet::aTemplateThatCannotBeReadGivesNothing()
{
    const QString theme = write("theme", "<theme><color n='$a'>x</color></theme>");
    QCOMPARE(UtilsStyleSheet(missing()).replaceXmlMarkers(theme), QString());
    QCOMPARE(UtilsStyleSheet(folder.path()).replaceXmlMarkers(theme), QString());
    QCOMPARE(UtilsStyleSheet("").replaceXmlMarkers(theme), QString());
    QCOMPARE(UtilsStyleSheet("").replaceXmlMarkers(""), QString());
}

void tst_UtilsStyleSheet::aThemeThatCannotBeReadLeavesTheTemplate()
{
    const UtilsStyleSheet sheet(write("template", "$a"));
    QCOMPARE(sheet.replaceXmlMarkers(missing()), QString("$a"));
    QCOMPARE(sheet.replaceXmlMarkers(folder.path()), QString("$a"));
    QCOMPARE(sheet.replaceXmlMarkers(""), QString("$a"));
    QCOMPARE(sheet.replaceXmlMarkers(write("empty", "")), QString("$a"));
}

void tst_UtilsStyleSheet::theFilesAreReadAnewByEachCall()
{
    const UtilsStyleSheet sheet(missing());
    const QString theme = folder.filePath("theme");
    QFile::remove(theme);
    QCOMPARE(sheet.replaceXmlMarkers(theme), QString());
    write("missing", "$a");
    QCOMPARE(sheet.replaceXmlMarkers(theme), QString("$a"));
    write("theme", "<theme><color n='$a'>x</color></theme>");
    QCOMPARE(sheet.replaceXmlMarkers(theme), QString("x"));
    QVERIFY(QFile::remove(missing()));
}

void tst_UtilsStyleSheet::applicationFontsAreRemovedInEveryCase_data()
{
    QTest::addColumn<QByteArray>("theme");
    QTest::addColumn<bool>("templateExists");

    QTest::newRow("a good theme") << QByteArray("<theme><color n='$a'>x</color></theme>") << true;
    QTest::newRow("no element of a known name") << QByteArray("<theme><colour n='$a'>x</colour></theme>") << true;
    QTest::newRow("an unreadable theme") << QByteArray("<<") << true;
    QTest::newRow("no template") << QByteArray("<theme/>") << false;
}

void tst_UtilsStyleSheet::applicationFontsAreRemovedInEveryCase()
{
    QFETCH(QByteArray, theme);
    QFETCH(bool, templateExists);
    const int font = loadSomeFont();
    QCOMPARE(QFontDatabase::applicationFontFamilies(font), QStringList("Open Sans"));
    const UtilsStyleSheet sheet(templateExists ? write("template", "$a") : missing());
    sheet.replaceXmlMarkers(write("theme", theme));
    QCOMPARE(QFontDatabase::applicationFontFamilies(font), QStringList());
}

void tst_UtilsStyleSheet::aFontIsLoadedAndWritten()
{
    QCOMPARE(fill("font-family: \"$f\";", "<t><fontName n='$f'>Open Sans</fontName></t>"),
             QString("font-family: \"Open Sans\";"));
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Open Sans"));
    // A font is loaded whether the template has its marker or not.
    fill("", "<t><fontName n='$f'>Open Sans</fontName></t>");
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Open Sans"));
    // Only fontName loads one.
    fill("", "<t><color n='$f'>Open Sans</color></t>");
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList());
}

void tst_UtilsStyleSheet::aFontIsLoadedEvenWithoutATemplate()
{
    const QString theme = write("theme", "<t><fontName n='$f'>Open Sans</fontName></t>");
    QCOMPARE(UtilsStyleSheet(missing()).replaceXmlMarkers(theme), QString());
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Open Sans"));
}

void tst_UtilsStyleSheet::aFontAfterAnErrorIsNotLoaded()
{
    fill("$f", "<t><color n='$a'><b/></color><fontName n='$f'>Open Sans</fontName></t>");
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList());
    fill("$f", "<t><fontName n='$f'>Open Sans<b/></fontName></t>");
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList());
}

void tst_UtilsStyleSheet::aMissingFontIsSkipped()
{
    QCOMPARE(fill("$f $g", "<t><fontName n='$f'>No Such Font</fontName><fontName n='$g'>Open Sans</fontName></t>"),
             QString("No Such Font Open Sans"));
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Open Sans"));
}

void tst_UtilsStyleSheet::styleSheetsAreValues()
{
    const QString theme = write("theme", "<t><color n='$a'>x</color></t>");
    const UtilsStyleSheet one(write("one", "1 $a"));
    UtilsStyleSheet copy(one);
    UtilsStyleSheet other(write("two", "2 $a"));
    QCOMPARE(copy.replaceXmlMarkers(theme), QString("1 x"));
    QCOMPARE(other.replaceXmlMarkers(theme), QString("2 x"));
    copy = other;
    QCOMPARE(copy.replaceXmlMarkers(theme), QString("2 x"));
    QCOMPARE(one.replaceXmlMarkers(theme), QString("1 x"));
    const UtilsStyleSheet moved(std::move(copy));
    QCOMPARE(moved.replaceXmlMarkers(theme), QString("2 x"));
    other = UtilsStyleSheet(one);
    QCOMPARE(other.replaceXmlMarkers(theme), QString("1 x"));
}

// A template and a theme made at random, with the text that they must give: kept as plain characters, replaced one by
// one.
class RandomTheme
{
public:
    explicit RandomTheme(QRandomGenerator &generator)
        : random(generator)
    {
        for (int i = 0; i < StyleSheetSize; ++i)
            expected.push_back(u"abc$\r\n\u00E9\0"[random.bounded(8)]);
        for (const char16_t c : expected)
            styleSheet.append(char(c));
        theme = "<t>";
        for (int i = random.bounded(6); i > 0; --i)
            addElement();
        theme += "</t>";
    }

    static constexpr int StyleSheetSize = 16;

    QByteArray styleSheet;
    QByteArray theme;
    std::u16string expected;

private:
    std::u16string text(const char16_t *alphabet, int letters, int size)
    {
        std::u16string result;
        for (; size > 0; --size)
            result.push_back(alphabet[random.bounded(letters)]);
        return result;
    }

    static QByteArray escaped(const std::u16string &text)
    {
        QByteArray result;
        for (const char16_t c : text)
            result += c == u'<' ? QByteArray("&lt;") : c == u'\u00E9' ? QByteArray("\xC3\xA9") : QByteArray(1, char(c));
        return result;
    }

    void addElement()
    {
        static const QByteArray names[] = {"color", "wallpaper", "dimension", "fontName", "fontSize", "colour"};
        const int name = random.bounded(6);
        const bool known = name < 5;
        const bool withAttribute = random.bounded(12) != 0;
        const bool nested = known && withAttribute && random.bounded(24) == 0;
        const std::u16string marker = text(u"abc$\u00E9", 5, random.bounded(24) == 0 ? 0 : random.bounded(1, 4));
        const std::u16string value = text(u"abc$\u00E9<", 6, random.bounded(4));
        theme += '<' + names[name];
        if (withAttribute)
            theme += " n='" + escaped(marker) + '\'';
        if (random.bounded(6) == 0 && withAttribute)
            theme += " a='b'";
        theme += '>' + escaped(value) + (nested ? "<b/>" : "") + "</" + names[name] + '>';
        stopped = stopped || nested;
        if (known && withAttribute && !stopped)
            replace(marker, value);
    }

    void replace(const std::u16string &marker, const std::u16string &value)
    {
        std::u16string result;
        std::size_t at = 0;
        while (at < expected.size()) {
            const bool found = expected.compare(at, marker.size(), marker) == 0;
            if (found)
                result += value;
            if (!found || marker.empty())
                result += expected[at];
            at += found && !marker.empty() ? marker.size() : 1;
        }
        if (marker.empty())
            result += value;
        expected = result;
    }

    QRandomGenerator &random;
    bool stopped = false;
};

void tst_UtilsStyleSheet::theFillAgreesWithAModel()
{
    constexpr int ThemeSize = 512; // a shorter theme is followed by blanks
    QFile file(QStringLiteral(RANDOM_RESOURCE));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray resource = file.readAll();
    char *const data = resource.data();
    const auto styleSheetAt = resource.indexOf(QByteArray(RandomTheme::StyleSheetSize, 's'));
    const auto themeAt = resource.indexOf(QByteArray(ThemeSize, 't'));
    QVERIFY(styleSheetAt > 0 && themeAt > 0);
    QVERIFY(QResource::registerResource(reinterpret_cast<const uchar *>(data)));

    QRandomGenerator random(20'260'203);
    const UtilsStyleSheet sheet(":/random/styleSheet");
    for (int input = 0; input < RANDOM_INPUTS; ++input) {
        const RandomTheme expected(random);
        QVERIFY(expected.theme.size() <= ThemeSize);
        std::copy(expected.styleSheet.cbegin(), expected.styleSheet.cend(), data + styleSheetAt);
        std::fill_n(std::copy(expected.theme.cbegin(), expected.theme.cend(), data + themeAt),
                    ThemeSize - expected.theme.size(), ' ');
        if (sheet.replaceXmlMarkers(":/random/theme") != QStringView(expected.expected))
            QFAIL(qPrintable("input " + QString::number(input) + ": " + QString::fromUtf8(expected.theme)));
    }
    QVERIFY(QResource::unregisterResource(reinterpret_cast<const uchar *>(data)));
}

UNIPROG_TEST_MAIN(tst_UtilsStyleSheet)
#include "tst_utilsstylesheet.moc"
