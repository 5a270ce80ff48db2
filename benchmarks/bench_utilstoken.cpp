#include "BenchmarkMain.h"

#include <UtilsToken.h>

#include <benchmark/benchmark.h>

// A token whose four groups hold range(0) items each.
static QByteArray binaryToken(qsizetype items)
{
    QByteArray data(4, '\0');
    for (char group = HwTokenGroup1; group <= HwTokenGroup4; ++group) {
        data.append(group);
        data.append(char(items));
        for (qsizetype i = 0; i < items; ++i)
            data.append(char(i));
    }
    data[0] = char(data.size());
    data[1] = char(data.size() >> 8);
    return data;
}

static QString textToken(qsizetype items)
{
    QStringList pieces;
    for (int group = HwTokenGroup1; group <= HwTokenGroup4; ++group) {
        pieces.append(QString::number(group));
        pieces.append(QString::number(items));
        for (qsizetype i = 0; i < items; ++i)
            pieces.append(QString::number(i, 16));
    }
    return pieces.join(u'-');
}

static void tokenFromBytes(benchmark::State &state)
{
    const QByteArray data = binaryToken(state.range(0));
    for (auto _ : state) {
        UtilsToken token(data);
        benchmark::DoNotOptimize(token);
    }
    state.SetBytesProcessed(state.iterations() * data.size());
}
BENCHMARK(tokenFromBytes)->Name("binary form/UtilsToken")->Arg(4)->Arg(16)->Arg(127);

// The steps that a token of the binary form costs at least: one text a byte, a list a group, a map.
static void qtTextsOfBytes(benchmark::State &state)
{
    const QByteArray data = binaryToken(state.range(0));
    for (auto _ : state) {
        QMap<int, QList<QString>> groups;
        for (qsizetype at = 4; at < data.size(); at += state.range(0) + 2) {
            QList<QString> items;
            for (qsizetype i = 0; i < state.range(0); ++i)
                items.append(QString::number(qint8(data.at(at + 2 + i)), 16));
            groups.insert(data.at(at), items);
        }
        benchmark::DoNotOptimize(groups);
    }
    state.SetBytesProcessed(state.iterations() * data.size());
}
BENCHMARK(qtTextsOfBytes)->Name("binary form/Qt")->Arg(4)->Arg(16)->Arg(127);

static void tokenFromText(benchmark::State &state)
{
    const QString text = textToken(state.range(0));
    for (auto _ : state) {
        UtilsToken token(text);
        benchmark::DoNotOptimize(token);
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(tokenFromText)->Name("text form/UtilsToken")->Arg(4)->Arg(16)->Arg(127);

static void qtSplitOfText(benchmark::State &state)
{
    const QString text = textToken(state.range(0));
    for (auto _ : state) {
        const QList<QString> pieces = text.split(u'-');
        QMap<int, QList<QString>> groups;
        for (qsizetype at = 0; at < pieces.size(); at += state.range(0) + 2)
            groups.insert(pieces.at(at).toInt(), pieces.mid(at + 2, pieces.at(at + 1).toInt()));
        benchmark::DoNotOptimize(groups);
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(qtSplitOfText)->Name("text form/Qt")->Arg(4)->Arg(16)->Arg(127);

static void bytesOfAGroup(benchmark::State &state)
{
    UtilsToken token(binaryToken(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(token.getTokenGroupVector(HwTokenGroup1));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(bytesOfAGroup)->Name("bytes of a group/UtilsToken")->Arg(4)->Arg(16)->Arg(127);

static void qtNumbersOfTexts(benchmark::State &state)
{
    const QList<QString> texts = UtilsToken(binaryToken(state.range(0))).getTokenGroup(HwTokenGroup1);
    for (auto _ : state) {
        QList<unsigned char> bytes;
        bytes.reserve(texts.size());
        for (const QString &text : texts)
            bytes.append(static_cast<unsigned char>(text.toUInt(nullptr, 16)));
        benchmark::DoNotOptimize(bytes);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(qtNumbersOfTexts)->Name("bytes of a group/Qt")->Arg(4)->Arg(16)->Arg(127);

int main(int argc, char **argv)
{
    return runBenchmarks(argc, argv);
}
