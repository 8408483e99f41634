// StorageWriter PLUGIN TYPE LOCATION MODE ENTRY [COUNT]
// Writes one element after the other, the n-th with the stamp n, until it is killed or has written COUNT;
// then it leaves the storage connected. It says n when it has been written, and "refused" where the storage
// does not open.
#include <QCoreApplication>
#include <QUrl>

#include <cstdio>
#include <plugins/support/LoadedStorages.h>
#include <plugins/support/StorageRecords.h>

namespace {

// Older than what the plug-in brings with it, as a storage is that a library keeps.
std::shared_ptr<TestSupport::StorageImplementation> storage;

} // namespace

int main(int argc, char **argv)
{
    using namespace TestSupport;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 6 && arguments.size() != 7)
        return 2;
    const QString location = arguments.at(3);
    storage = MakeStorage(arguments.at(1), arguments.at(2),
                          location.contains(QLatin1String("://")) ? QVariant(QUrl(location)) : location,
                          arguments.at(4).toInt());
    if (!storage || !storage->connectStorage()) {
        std::puts("refused");
        return 1;
    }
    const QString entry = arguments.at(5);
    if (!storage->serializeEntry(entry, Record()))
        return 3;
    const quint64 count = arguments.size() == 7 ? arguments.at(6).toULongLong() : quint64(-1);
    for (quint64 number = 0; number < count; ++number) {
        if (!storage->serializeElement(entry, Uuid(), Values(number, QByteArray::number(number))))
            return 4;
        std::printf("%llu\n", static_cast<unsigned long long>(number));
        std::fflush(stdout);
    }
    return 0;
}
