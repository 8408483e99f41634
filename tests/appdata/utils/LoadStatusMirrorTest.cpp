#include "../support/RunningDataRepository.h"

#include <appdata/DataTypeStrings.h>

#include <QtTest>

#include <thread>

using namespace Tessellum::AppData;
using Data::Entries::Entry;
using Data::Entries::EntryData;
using Tessellum::Notification::utils::MakeNode;
using TestSupport::RunningDataRepository;

class LoadStatusMirrorTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RunningDataRepository> run;

    std::shared_ptr<Entry> hangIn(const QString &uuid)
    {
        EntryData data;
        data.deserialize.uuid = uuid;
        const auto entry = MakeNode<Entry>(data);
        run->provider().getRoot()->addChild(entry);
        return entry;
    }
    /*! What the configuration shows; empty without an attribute. */
    static QString shown(const QString &path)
    {
        const auto attribute = std::dynamic_pointer_cast<Tessellum::AppConfig::Attributes::Attribute>(
            RunningRepository::provider().getRoot()->findChildByRelativePath("appdata." + path + ".loaded"));
        QVariant value;
        return attribute && attribute->getValue(value, QMetaType::QString) ? value.toString() : QString();
    }

private Q_SLOTS:
    void init() { run = std::make_unique<RunningDataRepository>(); }
    void cleanup() { run.reset(); }

    void lastStatusIsShown();
    void nothingStaysOfARemovedEntry();
};

void LoadStatusMirrorTest::lastStatusIsShown()
{
    const auto entry = hangIn("uuid");
    QCOMPARE(entry->getLoadStatus(), LoadStatus::NotLoaded);
    // Whatever the order of the tasks, what the node has at last is what is shown at last.
    for (int round = 0; round < 20; ++round) {
        std::thread other([&] { entry->setLoadStatus(LoadStatus::CurrentlyUnloading); });
        entry->setLoadStatus(LoadStatus::CurrentlyLoading);
        other.join();
        const LoadStatus last = round % 2 == 0 ? LoadStatus::Loaded : LoadStatus::NotLoaded;
        QVERIFY(entry->setLoadStatus(last));
        QTRY_COMPARE(shown("uuid"), ConvertDataEntryLoadStatusToString(last));
    }
}

void LoadStatusMirrorTest::nothingStaysOfARemovedEntry()
{
    // Removed while the attribute is on its way, and after.
    for (int round = 0; round < 20; ++round) {
        const QString uuid = QString::number(round);
        const auto entry = hangIn(uuid);
        entry->setLoadStatus(LoadStatus::Loaded);
        if (round % 2 == 1)
            QTRY_COMPARE(shown(uuid), QString("loaded"));
        QVERIFY(run->remove(entry));
    }
    QTRY_COMPARE(RunningRepository::provider().getRoot()->getChildById("appdata")->getNumberOfChildren(),
                 quint64(0));
}

QTEST_GUILESS_MAIN(LoadStatusMirrorTest)
#include "LoadStatusMirrorTest.moc"
