#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace Shared::Conversion {

/*!
 * One member of a JSON object, or of an object that is a member of it, which is as deep as the messages of
 * remote peers go. A member that holds an object stands in front of that object's own members.
 */
struct FlatMember
{
    enum class Kind { Text, Flag, Object, Other };

    QString key;
    bool isInner = false; /*!< Whether it is a member of the object under \a key. */
    QString inner; /*!< Its own key then. */
    Kind kind = Kind::Other;
    QString text;
    bool flag = false;

    static FlatMember Text(const QString &key, const QString &text)
    {
        return {key, false, {}, Kind::Text, text, false};
    }
    static FlatMember Flag(const QString &key, bool flag) { return {key, false, {}, Kind::Flag, {}, flag}; }
    static FlatMember Object(const QString &key) { return {key, false, {}, Kind::Object, {}, false}; }
    /*! This member, moved into the object under \a outer. */
    FlatMember within(const QString &outer) const { return {outer, true, key, kind, text, flag}; }
};

using FlatMembers = std::vector<FlatMember>;
using FlatMemberHandler = std::function<void(const FlatMember &)>;

/*!
 * QJsonDocument is not for foreign bytes: its text parser leaks the former value of a key that stands twice,
 * and its check of binary documents runs for ever on arrays that share their items. These readers tell the
 * members in their order and go past everything deeper in time and memory linear in the document. False: no
 * document or no object; what was told until then is to be dropped. Any thread may call.
 */
bool ReadFlatJson(const QString &text, const FlatMemberHandler &handler);
/*! Of Qt's binary JSON; no bytes at all are an empty object. */
bool ReadFlatBinaryJson(const QByteArray &bytes, const FlatMemberHandler &handler);

/*! The compact text of \a members as QJsonDocument writes it: in the order of their keys. */
QString WriteFlatJson(FlatMembers members);

/*! The most bytes of a binary document. Qt's own reader takes twice as much. */
inline constexpr int MaximumBinaryJson = 64 * 1024 * 1024;

/*! Qt's binary JSON, to the byte, in linear time; empty for no member, and if it exceeds the maximum. */
QByteArray WriteFlatBinaryJson(FlatMembers members);

/*! In the order of the keys: what an object of Qt holds. Private to the two writers. */
void SortFlatMembers(FlatMembers &members);

} // namespace Shared::Conversion
