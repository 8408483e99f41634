// StorageWriter PLUGIN TYPE LOCATION MODE ENTRY
// Writes one element after the other, the n-th with the stamp n, until it is killed. It says n when it has
// been written, and "refused" where the storage does not open.
#include <QCoreApplication>
#include <QUrl>

#include <cstdio>
#include <plugins/support/LoadedStorages.h>
#include <plugins/support/StorageRecords.h>

int main(int argc, char **argv)
{
    using namespace TestSupport;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 6)
        return 2;
    const QString location = arguments.at(3);
    const auto storage
        = MakeStorage(arguments.at(1), arguments.at(2),
                      location.contains(QLatin1String("://")) ? QVariant(QUrl(location)) : location,
                      arguments.at(4).toInt());
    if (!storage || !storage->connectStorage()) {
        std::puts("refused");
        return 1;
    }
    const QString entry = arguments.at(5);
    if (!storage->serializeEntry(entry, Record()))
        return 3;
    for (quint64 number = 0;; ++number) {
        if (!storage->serializeElement(entry, Uuid(), Values(number, QByteArray::number(number))))
            return 4;
        std::printf("%llu\n", static_cast<unsigned long long>(number));
        std::fflush(stdout);
    }
}
