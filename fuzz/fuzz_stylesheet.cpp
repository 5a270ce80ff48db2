// Style sheets: a template and a theme, with a NUL between them. The result is compared with a second way of replacing.

#include <UtilsStyleSheet.h>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <cstdint>
#include <cstdlib>
#include <optional>

static constexpr qsizetype LargestText = 1 << 16;

// What the theme makes of the template; nothing for a theme that makes it grow beyond all bounds, as themes may.
static std::optional<QString> filled(const QByteArray &styleSheet, const QByteArray &theme)
{
    static const QList<QString> elements{"color", "wallpaper", "dimension", "fontName", "fontSize"};
    QString text = QString::fromLatin1(styleSheet);
    QXmlStreamReader xml(QString::fromUtf8(theme));
    for (xml.readNext(); !xml.hasError() && !xml.atEnd(); xml.readNext()) {
        if (!xml.isStartElement() || !elements.contains(xml.name()) || xml.attributes().isEmpty())
            continue;
        const QString marker = xml.attributes().first().value().toString();
        const QString value = xml.readElementText();
        if (xml.hasError())
            break;
        if (marker.isEmpty())
            return std::nullopt;
        text = text.split(marker).join(value);
        if (text.size() > LargestText)
            return std::nullopt;
    }
    return text;
}

static void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(path));
}

// The first font makes Qt keep a font engine a thread; leaks are looked for before the thread ends.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libQt6Gui.so\nleak:libfreetype.so\nleak:libfontconfig.so\n";
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    static const QString styleSheetPath = folder.filePath("template");
    static const QString themePath = folder.filePath("theme");

    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto end = input.indexOf('\0');
    const QByteArray styleSheet = input.left(end);
    const QByteArray theme = end < 0 ? QByteArray() : input.mid(end + 1);
    const std::optional<QString> expected = filled(styleSheet, theme);
    if (!expected)
        return 0;
    write(styleSheetPath, styleSheet);
    write(themePath, theme);
    if (UtilsStyleSheet(styleSheetPath).replaceXmlMarkers(themePath) != *expected)
        std::abort();
    return 0;
}
