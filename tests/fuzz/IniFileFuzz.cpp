// Whatever an INI file holds: what is read of it can be written, and reads back as the same, as far as it has
// a place in the format.
#include <shared/foundation/IniFile.h>
#include <shared/logging/LogHandler.h>

#include <QTemporaryDir>

#include <fuzz/FuzzInput.h>

namespace {

bool IsChanged(const QString &text)
{
    return text.contains(QLatin1Char('\r')) || !text.isValidUtf16();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    // In memory: each file is written down to the disk before it takes its name.
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/ini-XXXXXX"));
    const QRegExp separator(QStringLiteral("="));
    Shared::IniContent content;
    Fuzz::Require(Shared::ParseIniFile(QByteArray(reinterpret_cast<const char *>(data), int(size)), content,
                                       separator));
    bool changes = false; // by what the format cannot hold
    for (auto section = content.cbegin(); section != content.cend(); ++section) {
        changes = changes || IsChanged(section.key());
        for (auto entry = section->cbegin(); entry != section->cend(); ++entry) {
            Fuzz::Require(!entry.key().contains(QLatin1Char('=')) && entry.key() == entry.key().simplified());
            changes = changes || IsChanged(entry.key()) || IsChanged(entry.value().toString());
        }
    }
    QFile file(folder.filePath(QStringLiteral("a.ini")));
    const bool written = Shared::WriteIniFile(file, content, true, separator);
    Fuzz::Require(written || changes);
    Shared::IniContent back;
    Fuzz::Require(Shared::ParseIniFile(file, back, separator));
    Fuzz::Require(changes || back == content);
    return 0;
}
