// Replays stored inputs through the parsers, or makes new inputs by mutating them.
//   velmora-fuzz replay CORPUS_DIR           every file of every target's folder
//   velmora-fuzz run TARGET CORPUS_DIR [--runs N] [--seed S] [--save DIR]
// Run under the address and undefined-behaviour sanitizers, a finding is a report and a
// non-zero exit; --save keeps each input before it is tried, so the last one names the culprit.

#include "FuzzTargets.h"

#include <QGuiApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <random>

namespace {

int usage(int status)
{
    QTextStream(status == 0 ? stdout : stderr)
        << "usage: velmora-fuzz replay CORPUS_DIR\n"
           "       velmora-fuzz run TARGET CORPUS_DIR [--runs N] [--seed S] [--save DIR]\n"
           "       velmora-fuzz --help\n"
           "targets:";
    for (const FuzzTarget &target : fuzzTargets())
        QTextStream(status == 0 ? stdout : stderr) << ' ' << target.name;
    QTextStream(status == 0 ? stdout : stderr) << '\n';
    return status;
}

QList<QByteArray> readCorpus(const QString &dir)
{
    QList<QByteArray> inputs;
    for (const QFileInfo &file : QDir(dir).entryInfoList(QDir::Files, QDir::Name)) {
        QFile in(file.filePath());
        if (in.open(QIODevice::ReadOnly))
            inputs.append(in.readAll());
    }
    return inputs;
}

// One mutation of the kinds that find parser faults: flipped bits, interesting bytes, cut,
// doubled and spliced ranges.
QByteArray mutate(QByteArray input, const QList<QByteArray> &corpus, std::mt19937 &random)
{
    const auto pick = [&](int n) { return n <= 0 ? 0 : int(random() % unsigned(n)); };
    static const QByteArray interesting[] = {"\0", "\xff", "<", ">", "&", ";", "{", "}", "|", "\"", "'", "\n",
                                             "]]>", "<![CDATA[", "#", "rgb(", "1e308", "-", "\xc3", "\xed\xa0\x80"};
    const int steps = 1 + pick(4);
    for (int step = 0; step < steps; ++step) {
        switch (pick(6)) {
        case 0:
            if (!input.isEmpty())
                input[pick(int(input.size()))] ^= char(1 << pick(8));
            break;
        case 1: {
            const QByteArray &piece = interesting[pick(int(std::size(interesting)))];
            input.insert(pick(int(input.size()) + 1), piece);
            break;
        }
        case 2:
            if (!input.isEmpty()) {
                const int at = pick(int(input.size()));
                input.remove(at, 1 + pick(int(input.size()) - at));
            }
            break;
        case 3:
            if (!input.isEmpty()) {
                const int at = pick(int(input.size()));
                input.insert(at, input.mid(at, 1 + pick(64)).repeated(1 + pick(8)));
            }
            break;
        case 4: {
            const QByteArray &other = corpus.at(pick(int(corpus.size())));
            const int from = pick(int(other.size()));
            input.insert(pick(int(input.size()) + 1), other.mid(from, 1 + pick(int(other.size()) - from)));
            break;
        }
        default:
            if (!input.isEmpty())
                input[pick(int(input.size()))] = char(random());
            break;
        }
    }
    return input.left(1 << 16);
}

}

int main(int argc, char **argv)
{
    // The street map's target draws its tiles, which takes a font database: no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h")))
        return usage(0);
    if (args.size() == 2 && args.at(0) == QLatin1String("replay")) {
        int inputs = 0;
        for (const FuzzTarget &target : fuzzTargets())
            for (const QByteArray &input : readCorpus(args.at(1) + QLatin1Char('/') + target.name)) {
                target.run(input);
                ++inputs;
            }
        QTextStream(stdout) << "replayed " << inputs << " inputs\n";
        return inputs > 0 ? 0 : 1;
    }
    if (args.size() < 3 || args.at(0) != QLatin1String("run"))
        return usage(2);
    const FuzzTarget *target = fuzzTarget(args.at(1));
    if (!target)
        return usage(2);
    qint64 runs = 10000;
    unsigned seed = 1;
    QString save;
    for (qsizetype i = 3; i < args.size(); i += 2) {
        const QString value = args.value(i + 1);
        bool ok = !value.isEmpty();
        if (args.at(i) == QLatin1String("--runs"))
            runs = value.toLongLong(&ok);
        else if (args.at(i) == QLatin1String("--seed"))
            seed = value.toUInt(&ok);
        else if (args.at(i) == QLatin1String("--save"))
            save = value;
        else
            ok = false;
        if (!ok)
            return usage(2);
    }
    QList<QByteArray> corpus = readCorpus(args.at(2) + QLatin1Char('/') + target->name);
    if (corpus.isEmpty())
        corpus.append(QByteArray());
    std::mt19937 random(seed);
    for (qint64 run = 0; run < runs; ++run) {
        const QByteArray input = mutate(corpus.at(int(random() % unsigned(corpus.size()))), corpus, random);
        if (!save.isEmpty()) {
            QFile out(save + QStringLiteral("/last-input"));
            if (out.open(QIODevice::WriteOnly))
                out.write(input);
        }
        target->run(input);
    }
    QTextStream(stdout) << target->name << ": " << runs << " runs, seed " << seed << ", no finding\n";
    return 0;
}
