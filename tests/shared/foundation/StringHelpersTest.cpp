#include <shared/foundation/StringHelpers.h>

#include <QtTest>

#include <support/Literals.h>

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
    void wildcardsOfAllShortTexts()
    {
        const QStringList texts = AllWords("ab"_s, 5);
        const QStringList patterns = AllWords("ab*?"_s, 5);
        for (const QString &text : texts) {
            for (const QString &pattern : patterns) {
                if (Matches(text, pattern) != MatchesByDefinition(text, pattern))
                    QFAIL(qPrintable("'%1' by '%2'"_s.arg(text, pattern)));
            }
        }
        QVERIFY(Matches("x.a.a.a.a", "*.a.a.a"));
        QVERIFY(!Matches("Abc", "abc"));
        const QChar *const nothing = nullptr;
        QVERIFY(Shared::IsWildcardString("a?") && !Shared::IsWildcardString("a.b[c]"));
        QVERIFY(!WildcardStringCompare(nothing, QStringView(u"*").data()));
        QVERIFY(!WildcardStringCompare(QStringView(u"a").data(), nothing));
    }

    void wildcardsOfLongTexts()
    {
        const QString text(100000, QLatin1Char('a'));
        QVERIFY(Matches(text, "*a*a*a*a*a*a*a*a*a*a*a*a"_s));
        QVERIFY(!Matches(text, "*a*a*a*a*a*a*a*a*a*a*a*ab"_s));
    }
};

QTEST_GUILESS_MAIN(StringHelpersTest)
#include "StringHelpersTest.moc"
