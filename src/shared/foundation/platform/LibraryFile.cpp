#include <shared/foundation/platform/LibraryFile.h>

#include <QFile>

#include <cstring>
#include <link.h>

namespace Shared::Foundation::Platform {

namespace {

template <class Record>
bool ReadRecord(QFile &file, quint64 position, Record &record)
{
    constexpr auto size = qint64(sizeof(Record));
    return position <= quint64(file.size()) && file.seek(qint64(position))
        && file.read(reinterpret_cast<char *>(&record), size) == size;
}

} // namespace

bool IsCutLibrary(const QString &fileName)
{
    QFile file(fileName);
    ElfW(Ehdr) header{};
    if (!file.open(QIODevice::ReadOnly) || !ReadRecord(file, 0, header)
        || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        return false;
    }
    const auto size = quint64(file.size());
    for (quint64 i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        if (!ReadRecord(file, header.e_phoff + i * header.e_phentsize, segment))
            return true;
        if (segment.p_type == PT_LOAD
            && (segment.p_offset > size || segment.p_filesz > size - segment.p_offset)) {
            return true;
        }
    }
    return false;
}

} // namespace Shared::Foundation::Platform
