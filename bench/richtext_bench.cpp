// Renders of the place list's markup, as every cell and every swipe button does.
// Prints a hash of the rendered output so a faster run is also shown to be the same run.
#include "richtext/FontRegistry.h"
#include "richtext/RichString.h"

#include <benchmark/benchmark.h>

#include <QCryptographicHash>
#include <QStringList>

#include <cstdio>

namespace {
// The cell's own sheet and the cuisines line it renders for every row.
const RichString &cellSheet()
{
    static const RichString sheet({QStringLiteral("i { font-name: Velmora-Icons; font-size: 16; }"),
                                   QStringLiteral("p { font-name: OpenSans; font-size: 13; }")});
    return sheet;
}

QString cellMarkup(int row)
{
    static const QStringList cuisines = {QStringLiteral("Criolla"), QStringLiteral("Italiana"), QStringLiteral("Mariscos & Parrilla")};
    return QStringLiteral("<body><i>M</i><p> <![CDATA[") + cuisines.mid(0, 1 + row % 3).join(QStringLiteral(", "))
        + QStringLiteral("]]></p></body>");
}

// The list's five sheets and the call button's title.
const RichString &listSheet()
{
    static const RichString sheet({QStringLiteral("white { color: #ffffff; }"), QStringLiteral("darkgray { color: #888888; }"),
                                   QStringLiteral("swipe-icon { font-name: Velmora-Icons; font-size: 31; }"),
                                   QStringLiteral("del-icon { font-name: Velmora-Icons; font-size: 32; }"),
                                   QStringLiteral("swipe-text { font-name: OpenSans; font-size: 10; }")});
    return sheet;
}

const QString swipeMarkup = QStringLiteral("<body><white><swipe-icon>T</swipe-icon>\n<swipe-text>Llamar</swipe-text></white></body>");

void registerFonts()
{
    FontRegistry::shared().registerFace(QStringLiteral("OpenSans"), FontFace{QStringLiteral("Open Sans"), 400, false});
    FontRegistry::shared().registerFace(QStringLiteral("Velmora-Icons"), FontFace{QStringLiteral("Velmora-Icons"), 400, false});
}

void BM_RenderCellCuisines(benchmark::State &state)
{
    registerFonts();
    const QString markup = cellMarkup(2);
    for (auto _ : state)
        benchmark::DoNotOptimize(cellSheet().render(markup));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RenderCellCuisines);

void BM_RenderSwipeButton(benchmark::State &state)
{
    registerFonts();
    for (auto _ : state)
        benchmark::DoNotOptimize(listSheet().render(swipeMarkup));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RenderSwipeButton);

void BM_ParseListSheets(benchmark::State &state)
{
    const QStringList sheets = {QStringLiteral("white { color: #ffffff; }"), QStringLiteral("darkgray { color: #888888; }"),
                                QStringLiteral("swipe-icon { font-name: Velmora-Icons; font-size: 31; }"),
                                QStringLiteral("del-icon { font-name: Velmora-Icons; font-size: 32; }"),
                                QStringLiteral("swipe-text { font-name: OpenSans; font-size: 10; }")};
    for (auto _ : state)
        benchmark::DoNotOptimize(RichString(sheets));
}
BENCHMARK(BM_ParseListSheets);

// The output of a fixed set of renders, so two runs can be compared for sameness.
void printOutputHash()
{
    registerFonts();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (int row = 0; row < 100; ++row) {
        const AttributedString cell = cellSheet().render(cellMarkup(row));
        for (const TextRun &run : cell.runs)
            hash.addData(QStringLiteral("%1|%2|%3;").arg(run.text, run.font ? run.font->name : QString()).arg(run.font ? run.font->size : 0).toUtf8());
    }
    for (const TextRun &run : listSheet().render(swipeMarkup).runs)
        hash.addData(QStringLiteral("%1|%2;").arg(run.text).arg(run.color ? run.color->red : -1).toUtf8());
    std::printf("richtext output hash: %s\n", hash.result().toHex().left(16).constData());
}
}

int main(int argc, char **argv)
{
    printOutputHash();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
