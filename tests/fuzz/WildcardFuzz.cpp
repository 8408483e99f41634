#include <shared/foundation/StringHelpers.h>

#include <fuzz/FuzzInput.h>
#include <vector>

namespace {

/*! The plain table of all prefixes: slow, but hard to get wrong. */
bool MatchesByTable(const QString &text, const QString &pattern)
{
    std::vector<bool> row(std::size_t(text.size()) + 1, false);
    row[0] = true;
    for (const QChar wanted : pattern) {
        const bool any = wanted == QLatin1Char('*');
        bool diagonal = row[0];
        row[0] = row[0] && any;
        for (std::size_t end = 1; end < row.size(); ++end) {
            const bool above = row[end];
            const QChar found = text.at(int(end) - 1);
            row[end]
                = any ? above || row[end - 1] : diagonal && (wanted == QLatin1Char('?') || wanted == found);
            diagonal = above;
        }
    }
    return row.back();
}

} // namespace

// Input: a text and a pattern, one line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Fuzz::Lines lines(data, qMin<std::size_t>(size, 2000));
    // Both end at a null character.
    const QString text = lines.next().section(QChar(0), 0, 0);
    const QString pattern = lines.next().section(QChar(0), 0, 0);

    const bool matches = Shared::WildcardStringCompare(text.constData(), pattern.constData());
    Fuzz::Require(matches == MatchesByTable(text, pattern));
    const bool wildcard = pattern.contains(QLatin1Char('*')) || pattern.contains(QLatin1Char('?'));
    Fuzz::Require(Shared::IsWildcardString(pattern) == wildcard);
    return 0;
}
