#include "BenchmarkMain.h"

#include <UtilsStyleSheet.h>

#include <benchmark/benchmark.h>

#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QXmlStreamReader>

// A template of range(0) kilobytes with a marker in every tenth declaration, taken from range(1) markers in turn, and a
// theme that gives them values.
class Files
{
public:
    explicit Files(const benchmark::State &state)
    {
        constexpr int MarkerEvery = 10;
        const qsizetype size = state.range(0) * 1024;
        QByteArray text;
        for (qsizetype line = 0; text.size() < size; ++line) {
            const QByteArray value
                = line % MarkerEvery == 0 ? marker(line / MarkerEvery % state.range(1)) : QByteArray("#a0b1c2");
            text += "QWidget#widget" + QByteArray::number(line) + " { background-color: " + value + "; }\n";
        }
        write(styleSheet(), text);
        QByteArray xml = "<theme>\n";
        for (qint64 i = 0; i < state.range(1); ++i)
            xml += "<color name=\"" + marker(i) + "\">#102030</color>\n";
        write(theme(), xml + "</theme>\n");
    }

    QString styleSheet() const
    {
        return folder.filePath("template");
    }
    QString theme() const
    {
        return folder.filePath("theme");
    }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("Cannot read %s", qPrintable(path));
        return file.readAll();
    }

private:
    static QByteArray marker(qint64 number)
    {
        return "@role-" + QByteArray::number(number) + '@';
    }

    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("Cannot write %s", qPrintable(path));
    }

    QTemporaryDir folder;
};

static void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgNames({"kB", "markers"})
        ->ArgsProduct({{10, 100, 1024}, {20, 100, 500}})
        ->Unit(benchmark::kMicrosecond);
}

static void fill(benchmark::State &state)
{
    const Files files(state);
    const UtilsStyleSheet sheet(files.styleSheet());
    for (auto _ : state)
        benchmark::DoNotOptimize(sheet.replaceXmlMarkers(files.theme()));
    state.SetBytesProcessed(state.iterations() * state.range(0) * 1024);
}
BENCHMARK(fill)->Name("fill/UtilsStyleSheet")->Apply(sizes);

// The same steps in a plain loop.
static void plainReplaceLoop(benchmark::State &state)
{
    const Files files(state);
    for (auto _ : state) {
        QFontDatabase::removeAllApplicationFonts();
        QString text = QString::fromLatin1(Files::read(files.styleSheet()));
        QXmlStreamReader xml(QString::fromUtf8(Files::read(files.theme())));
        xml.readNextStartElement();
        while (xml.readNextStartElement()) {
            const QString marker = xml.attributes().first().value().toString();
            text.replace(marker, xml.readElementText());
        }
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * 1024);
}
BENCHMARK(plainReplaceLoop)->Name("fill/plain loop")->Apply(sizes);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
