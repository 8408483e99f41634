#include "WildcardIndex.h"

#include <shared/foundation/StringHelpers.h>

#include <algorithm>

namespace Tessellum::Notification::utils {

namespace {

int LiteralLength(const QString &pattern)
{
    const auto isWildcard
        = [](QChar character) { return character == QLatin1Char('*') || character == QLatin1Char('?'); };
    return int(std::find_if(pattern.cbegin(), pattern.cend(), isWildcard) - pattern.cbegin());
}

} // namespace

void WildcardIndex::add(const QString &pattern)
{
    const int length = LiteralLength(pattern);
    QStringList &patterns = patternsByPrefix[pattern.left(length)];
    patterns.insert(std::lower_bound(patterns.begin(), patterns.end(), pattern), pattern);
    ++prefixLengths[length];
}

void WildcardIndex::remove(const QString &pattern)
{
    const int length = LiteralLength(pattern);
    const auto group = patternsByPrefix.find(pattern.left(length));
    group->erase(std::lower_bound(group->begin(), group->end(), pattern));
    if (group->isEmpty())
        patternsByPrefix.erase(group);
    const auto count = prefixLengths.find(length);
    if (--*count == 0)
        prefixLengths.erase(count);
}

QStringList WildcardIndex::findMatching(const QString &path) const
{
    QStringList found;
    for (auto length = prefixLengths.keyBegin(); length != prefixLengths.keyEnd() && *length <= path.size();
         ++length) {
        const auto group = patternsByPrefix.constFind(QString::fromRawData(path.constData(), *length));
        if (group == patternsByPrefix.cend())
            continue;
        for (const QString &pattern : *group) {
            if (Shared::WildcardStringCompare(path.constData() + *length, pattern.constData() + *length))
                found.append(pattern);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

} // namespace Tessellum::Notification::utils
