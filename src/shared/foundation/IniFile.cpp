#include <shared/foundation/IniFile.h>
#include <shared/logging/FrameworkLog.h>

namespace Shared {

namespace {

QString WithoutQuotes(const QString &text)
{
    const QLatin1Char quote('"');
    const bool quoted = text.size() > 1 && text.startsWith(quote) && text.endsWith(quote);
    return quoted ? text.mid(1, text.size() - 2) : text;
}

void StoreValue(QHash<QString, QVariant> &section, const QString &key, const QString &value)
{
    if (section.contains(key)) {
        Logging::FrameworkLog().warning() << "Shared::ParseIniFile: The key '" << key
                                          << "' already exists, ignoring the value '" << value << "'";
        return;
    }
    section.insert(key, value);
}

} // namespace

bool ParseIniFile(QTextStream &stream, IniContent &result, const QRegExp &separator)
{
    if (!stream.device() && !stream.string())
        return false;
    const QRegExp divider(separator);
    QString section;
    QString line;
    // A device whose reading fails may never say that it is at its end.
    while (!stream.atEnd() && stream.readLineInto(&line)) {
        if (line.isEmpty())
            continue;
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            section = line.mid(1, line.size() - 2);
            continue;
        }
        const int position = divider.indexIn(line);
        if (position < 0)
            continue;
        // One character is left out whatever the length of the match.
        StoreValue(result[section], line.left(position).simplified(),
                   WithoutQuotes(line.mid(position + 1).trimmed()));
    }
    return true;
}

bool ParseIniFile(QFile &file, IniContent &result, const QRegExp &separator)
{
    const bool wasOpen = file.isOpen();
    if (!wasOpen && !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    if (!file.isReadable())
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    const bool parsed = ParseIniFile(stream, result, separator) && file.error() == QFileDevice::NoError;
    if (!wasOpen)
        file.close();
    return parsed;
}

bool ParseIniFile(const QByteArray &bytes, IniContent &result, const QRegExp &separator)
{
    QTextStream stream(bytes, QIODevice::ReadOnly);
    stream.setCodec("UTF-8");
    return ParseIniFile(stream, result, separator);
}

} // namespace Shared
