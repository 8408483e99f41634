#include <shared/foundation/IniFile.h>
#include <shared/logging/FrameworkLog.h>

#include <QFileInfo>
#include <QSaveFile>

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

bool HasLineBreak(const QString &text)
{
    return text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
}

QString InOneLine(const QString &section, const QString &key, QString value)
{
    if (HasLineBreak(value)) {
        value.replace(QLatin1String("\r\n"), QLatin1String(" "));
        value.replace(QLatin1Char('\n'), QLatin1Char(' '));
        value.replace(QLatin1Char('\r'), QLatin1Char(' '));
        Logging::FrameworkLog().warning() << "Shared::WriteIniFile: The value of key '" << key
                                          << "' in section '" << section << "' loses its line breaks";
    }
    return value;
}

bool IsWritable(const char *kind, const QString &name)
{
    if (!HasLineBreak(name))
        return true;
    Logging::FrameworkLog().warning()
        << "Shared::WriteIniFile: The " << kind << " '" << name << "' holds a line break and is not written";
    return false;
}

QStringList SortedKeys(QStringList keys)
{
    keys.sort();
    return keys;
}

/*! False if something had to be left out. */
bool Render(const IniContent &content, const QString &separator, QByteArray &text)
{
    bool complete = true;
    QTextStream stream(&text, QIODevice::WriteOnly);
    stream.setCodec("UTF-8");
    for (const QString &section : SortedKeys(content.keys())) {
        if (!IsWritable("section", section)) {
            complete = false;
            continue;
        }
        stream << '[' << section << "]\n";
        const auto values = content.value(section);
        for (const QString &key : SortedKeys(values.keys())) {
            if (IsWritable("key", key))
                stream << key << separator << '"' << InOneLine(section, key, values.value(key).toString())
                       << "\"\n";
            else
                complete = false;
        }
    }
    return complete;
}

bool OpenAndWrite(QFileDevice &file, const QByteArray &text)
{
    return file.open(QIODevice::WriteOnly | QIODevice::Text) && file.write(text) == text.size()
        && file.flush();
}

bool WriteWhole(const QString &name, const QByteArray &text)
{
    const QFileInfo present(name);
    if (present.exists() && !present.isFile()) {
        QFile device(name);
        return OpenAndWrite(device, text);
    }
    QSaveFile file(name);
    file.setDirectWriteFallback(true);
    const bool written = OpenAndWrite(file, text);
    if (!file.isOpen())
        return false;
    if (!written)
        file.cancelWriting();
    // Also after a failure: without it, a file that had to be written directly would be removed.
    return file.commit() && written;
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

bool WriteIniFile(QFile &file, const IniContent &content, bool replace, const QRegExp &separator)
{
    const QString name = file.fileName();
    IniContent merged;
    QFile present(name);
    if (!replace && QFileInfo(name).isFile() && !ParseIniFile(present, merged, separator))
        return false;
    for (auto section = content.begin(); section != content.end(); ++section) {
        auto &values = merged[section.key()];
        for (auto value = section->begin(); value != section->end(); ++value)
            values.insert(value.key(), value.value());
    }
    QByteArray text;
    const bool complete = Render(merged, separator.pattern(), text);
    return WriteWhole(name, text) && complete;
}

} // namespace Shared
