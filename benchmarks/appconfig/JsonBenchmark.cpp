#include <appconfig/utils/RepositoryBackendProvider.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <notification/RepositoryHierarchyThreadProvider.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>

#include <benchmark/benchmark.h>
#include <malloc.h>

using Tessellum::AppConfig::utils::RepositoryProvider;
using Tessellum::Notification::CreatePoint;

namespace {

/// Three levels, as configuration has them, with texts and numbers in turn.
QByteArray Document(qint64 values)
{
    constexpr qint64 GroupSize = 100;
    QByteArray json = "{";
    for (qint64 i = 0; i < values; ++i) {
        if (i % GroupSize == 0)
            json += (i ? "}},\"group" : "\"group") + QByteArray::number(i / GroupSize) + "\":{\"part\":{";
        else
            json += ',';
        json += "\"value" + QByteArray::number(i)
            + "\":" + (i % 2 ? QByteArray::number(double(i) * 0.5) : "\"text " + QByteArray::number(i) + '"');
    }
    return json + "}}}";
}

const QByteArray &CachedDocument(qint64 values)
{
    static QHash<qint64, QByteArray> documents;
    QByteArray &document = documents[values];
    if (document.isEmpty())
        document = Document(values);
    return document;
}

/// Events of the library's threads need an application, as every program has one.
void EnsureApplication()
{
    static int count = 1;
    static char name[] = "JsonBenchmark";
    static char *arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
}

class Repository
{
public:
    Repository()
    {
        EnsureApplication();
        RepositoryProvider::getInstance()->setRepositoryActive(keeper, false);
    }
    ~Repository()
    {
        RepositoryProvider::getInstance()->setRepositoryActive(keeper, true);
        keeper.reset();
        Tessellum::Core::RepositoryHierarchyThreadProvider::getInstance()->barrier();
    }
    Q_DISABLE_COPY(Repository)

    bool load(const QByteArray &json)
    {
        return RepositoryProvider::getInstance()->getBackendProvider()->createBackend(
            QStringLiteral("json"), QStringLiteral("doc"), {json, QString(), 3}, CreatePoint::Done);
    }

private:
    std::shared_ptr<Shared::Hierarchy::HierarchyNode> keeper;
};

/// Loads one document in a repository of its own; only the load counts.
void Load(benchmark::State &state, qint64 values)
{
    const QByteArray json = CachedDocument(values);
    qint64 bytes = 0;
    for (auto _ : state) {
        Repository repository;
        const auto before = mallinfo2();
        QElapsedTimer timer;
        timer.start();
        if (!repository.load(json))
            state.SkipWithError("the document was refused");
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        const auto after = mallinfo2();
        bytes = qint64(after.uordblks + after.hblkhd) - qint64(before.uordblks + before.hblkhd);
    }
    state.counters["bytes"] = double(bytes) / double(values);
}

void JsonLoad(benchmark::State &state)
{
    Load(state, state.range(0));
    state.counters["items"] = double(state.range(0));
    state.counters["aim"] = 10;
    state.counters["aim_bytes"] = 1100;
}
BENCHMARK(JsonLoad)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

void JsonLoad_Floor(benchmark::State &state)
{
    const QByteArray json = CachedDocument(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(json));
    state.counters["items"] = double(state.range(0));
}
BENCHMARK(JsonLoad_Floor)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Ten times the values, compared to the load of one part.
void JsonLoadOfMillion(benchmark::State &state)
{
    Load(state, 1000000);
    state.counters["aim"] = 12;
}
BENCHMARK(JsonLoadOfMillion)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);

void JsonLoadOfMillion_Floor(benchmark::State &state)
{
    Load(state, 100000);
}
BENCHMARK(JsonLoadOfMillion_Floor)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
