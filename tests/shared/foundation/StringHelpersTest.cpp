#include <shared/foundation/StringHelpers.h>

#include <QtTest>

using Shared::IsWildcardString;
using Shared::WildcardStringCompare;

namespace {

bool Matches(const QString &text, const QString &pattern)
{
    return WildcardStringCompare(text.constData(), pattern.constData());
}

// What the wildcards mean, without any thought of speed.
bool MatchesByDefinition(const QString &text, const QString &pattern)
{
    if (pattern.isEmpty())
        return text.isEmpty();
    if (pattern[0] == QLatin1Char('*'))
        return MatchesByDefinition(text, pattern.mid(1))
            || (!text.isEmpty() && MatchesByDefinition(text.mid(1), pattern));
    return !text.isEmpty() && (pattern[0] == QLatin1Char('?') || pattern[0] == text[0])
        && MatchesByDefinition(text.mid(1), pattern.mid(1));
}

QStringList AllWords(const QString &letters, int longest)
{
    QStringList words{QString()};
    for (int begin = 0; words[begin].size() < longest; ++begin) {
        for (const QChar letter : letters)
            words.append(words[begin] + letter);
    }
    return words;
}

} // namespace

class StringHelpersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wildcardStrings();
    void wildcards_data();
    void wildcards();
    void wildcardsOfAllShortTexts();
    void wildcardsOfLongTexts();
};

void StringHelpersTest::wildcardStrings()
{
    QVERIFY(!IsWildcardString(QString()));
    QVERIFY(!IsWildcardString(QStringLiteral("a.b[c]")));
    QVERIFY(IsWildcardString(QStringLiteral("a.*")));
    QVERIFY(IsWildcardString(QStringLiteral("?")));
}

void StringHelpersTest::wildcards_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char *text, const char *pattern, bool expected) {
        QTest::addRow("'%s' by '%s'", text, pattern)
            << QString::fromLatin1(text) << QString::fromLatin1(pattern) << expected;
    };
    row("abc", "a*c", true);
    row("abc", "a?c", true);
    row("abc", "*", true);
    row("", "*", true);
    row("", "", true);
    row("", "?", false);
    row("abc", "ab", false);
    row("ab", "abc", false);
    row("abcbc", "a*bc", true);
    row("x.b.b.b", "*.b.b", true);
    row("x.a.a.a.a", "*.a.a.a", true);
    row("Abc", "abc", false);
}

void StringHelpersTest::wildcards()
{
    QFETCH(QString, text);
    QFETCH(QString, pattern);
    QTEST(Matches(text, pattern), "expected");
    QVERIFY(!WildcardStringCompare(nullptr, pattern.constData()));
    QVERIFY(!WildcardStringCompare(text.constData(), nullptr));
}

void StringHelpersTest::wildcardsOfAllShortTexts()
{
    const QStringList texts = AllWords(QStringLiteral("ab"), 5);
    const QStringList patterns = AllWords(QStringLiteral("ab*?"), 5);
    for (const QString &text : texts) {
        for (const QString &pattern : patterns) {
            if (Matches(text, pattern) != MatchesByDefinition(text, pattern))
                QFAIL(qPrintable(QStringLiteral("'%1' by '%2'").arg(text, pattern)));
        }
    }
}

void StringHelpersTest::wildcardsOfLongTexts()
{
    const QString text(100000, QLatin1Char('a'));
    QVERIFY(Matches(text, QStringLiteral("*a*a*a*a*a*a*a*a*a*a*a*a")));
    QVERIFY(!Matches(text, QStringLiteral("*a*a*a*a*a*a*a*a*a*a*a*ab")));
}

QTEST_GUILESS_MAIN(StringHelpersTest)
#include "StringHelpersTest.moc"
