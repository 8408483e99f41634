#include <shared/foundation/RapidJsonValidator.h>
#include <shared/logging/FrameworkLog.h>

#include <QHash>
#include <QRegularExpression>
#include <QVector>

#include <deque>
#include <utility>

namespace {

/*! Why a schema is not given to RapidJSON, or where RapidJSON gave it up. */
struct UnusableSchema
{
    QString reason;
};

[[noreturn]] void refuse(const QString &reason)
{
    throw UnusableSchema{reason};
}

[[noreturn]] void refuseFault()
{
    refuse(QStringLiteral("RapidJSON cannot take it"));
}

/*! Owns the expressions of the schema that its thread validates by: RapidJSON does not destroy the parts of a
 * schema that is given up on the way. */
class SchemaExpressions
{
public:
    SchemaExpressions()
        : outer(std::exchange(current, this))
    { }
    ~SchemaExpressions() { current = outer; }
    Q_DISABLE_COPY_MOVE(SchemaExpressions)

    static const QRegularExpression &Make(const QString &pattern)
    {
        return current->expressions.emplace_back(pattern);
    }

private:
    static thread_local SchemaExpressions *current;
    std::deque<QRegularExpression> expressions; // which stay where they are
    SchemaExpressions *const outer;
};

thread_local SchemaExpressions *SchemaExpressions::current = nullptr;

} // namespace

// A schema decides which of RapidJSON's assertions hold, so they must neither end the process nor be left
// out.
#define RAPIDJSON_ASSERT(condition) (static_cast<bool>(condition) ? static_cast<void>(0) : refuseFault())
#include <rapidjson/document.h>
#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/internal/regex.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/stringbuffer.h>

namespace rapidjson::internal {

/*! RapidJSON's own expressions recurse without an end on one like "(a*)*"; those of Qt have their limits. */
template <>
class GenericRegex<UTF8<>, CrtAllocator>
{
public:
    explicit GenericRegex(const char *source)
        : expression(SchemaExpressions::Make(QString::fromUtf8(source)))
    { }
    bool IsValid() const { return expression.isValid(); }
    bool Search(const char *text) const { return expression.match(QString::fromUtf8(text)).hasMatch(); }

private:
    const QRegularExpression &expression;
};

} // namespace rapidjson::internal

#include <rapidjson/schema.h>

namespace Shared::JsonValidation {

namespace {

using rapidjson::Value;
using Pool = rapidjson::MemoryPoolAllocator<>;
using Pointer = rapidjson::GenericPointer<Value, Pool>;
using SchemaDocument = rapidjson::GenericSchemaDocument<Value, Pool>;
using SchemaValidator
    = rapidjson::GenericSchemaValidator<SchemaDocument, rapidjson::BaseReaderHandler<rapidjson::UTF8<>>>;

// RapidJSON descends by recursion into a schema, and for a document with each schema that stands beside
// another.
constexpr int deepestSchema = 256;
constexpr int longestChain = 64;
constexpr int deepestDocument = 1024;
constexpr int deepestRecursion = 8192;

const QString schemaError = QStringLiteral("Schema file is not a valid JSON ");
const QString documentError = QStringLiteral("Not a valid JSON ");

QString offsetError(qulonglong offset, const char *text)
{
    return QStringLiteral("Error(offset %1): %2\n").arg(offset).arg(QLatin1String(text));
}

/*! Where \a json is nested more deeply than \a limit; -1 if it is nowhere. */
int findTooDeep(const QByteArray &json, int limit)
{
    int depth = 0;
    bool quoted = false;
    for (int i = 0; i < json.size(); ++i) {
        const char character = json.at(i);
        if (quoted && character == '\\')
            ++i;
        else if (character == '"')
            quoted = !quoted;
        else if (!quoted && (character == '[' || character == '{') && ++depth > limit)
            return i;
        else if (!quoted && (character == ']' || character == '}'))
            --depth;
    }
    return -1;
}

QString pointerText(const SchemaValidator::PointerType &pointer)
{
    rapidjson::StringBuffer buffer;
    pointer.StringifyUriFragment(buffer);
    return QString::fromUtf8(buffer.GetString(), int(buffer.GetSize()));
}

Value *member(Value &object, const char *name)
{
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() ? nullptr : &found->value;
}

/*!
 * Looks through a schema before RapidJSON does, which runs without an end, or into memory that is not its
 * own, where references or parts of a schema are not what they should be.
 */
class SchemaCheck
{
public:
    explicit SchemaCheck(rapidjson::Document &schemaDocument)
        : document(schemaDocument)
    { }

    /*! The largest number of schemas that look at one value of a document one within the other. Throws
     * UnusableSchema. */
    int run()
    {
        if (!document.IsObject())
            refuse(QStringLiteral("it is no object"));
        collect(document, QByteArray());
        for (Value *const object : qAsConst(objects))
            followReferences(*object);
        int longest = 0;
        pending.append(&document);
        while (!pending.isEmpty())
            longest = qMax(longest, examine(*pending.takeLast(), 0));
        return longest;
    }

private:
    /*! As RapidJSON tells tokens apart: the member "0" is not the element 0. */
    static QByteArray step(const QByteArray &place, const char *name, std::size_t size, unsigned index)
    {
        return place + QByteArray(name, int(size)) + '\0' + QByteArray::number(index) + '\0';
    }

    void collect(Value &value, const QByteArray &place)
    {
        if (value.IsObject()) {
            objects.insert(place, &value);
            for (auto &entry : value.GetObject()) {
                collect(entry.value,
                        step(place, entry.name.GetString(), entry.name.GetStringLength(),
                             rapidjson::kPointerInvalidIndex));
            }
        } else if (value.IsArray()) {
            for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
                const QByteArray name = QByteArray::number(i);
                collect(value[i], step(place, name.constData(), std::size_t(name.size()), i));
            }
        }
    }

    /*! What a schema refers to in the same document; null if it does not. */
    Value *target(Value &schema)
    {
        const Value *const reference = member(schema, "$ref");
        if (!reference || !reference->IsString() || reference->GetString()[0] != '#')
            return nullptr;
        const Pointer pointer(reference->GetString(), reference->GetStringLength());
        if (!pointer.IsValid())
            return nullptr;
        QByteArray place;
        for (std::size_t i = 0; i < pointer.GetTokenCount(); ++i) {
            const auto &token = pointer.GetTokens()[i];
            place = step(place, token.name, token.length, token.index);
        }
        Value *const found = objects.value(place);
        if (!found) {
            refuse(QStringLiteral("the reference '%1' leads to no schema")
                       .arg(QString::fromUtf8(reference->GetString())));
        }
        return found;
    }

    void followReferences(Value &schema)
    {
        int length = 0;
        for (Value *next = target(schema); next; next = target(*next)) {
            if (++length > longestChain)
                refuseCircle();
        }
    }

    [[noreturn]] static void refuseCircle()
    {
        refuse(QStringLiteral("a schema leads back to itself, or through too many others, for one value"));
    }

    /*! The length of the longest chain of schemas for one value that begins with \a schema. */
    int examine(Value &schema, int depth)
    {
        const int known = lengths.value(&schema);
        if (depth + qMax(known, 1) > longestChain)
            refuseCircle();
        if (known > 0)
            return known;
        int longest = 0;
        if (Value *const referred = target(schema)) {
            longest = examine(*referred, depth + 1);
        } else {
            for (Value *const other : schemasOfSameValue(schema))
                longest = qMax(longest, examine(*other, depth + 1));
            queueSchemasOfParts(schema);
        }
        lengths.insert(&schema, longest + 1);
        return longest + 1;
    }

    static Value *requireSchema(Value &value)
    {
        if (!value.IsObject())
            refuse(QStringLiteral("something stands in the place of a schema that is none"));
        return &value;
    }

    static QVector<Value *> schemasOfSameValue(Value &schema)
    {
        QVector<Value *> found;
        for (const char *const name : {"allOf", "anyOf", "oneOf"}) {
            Value *const list = member(schema, name);
            if (list && list->IsArray()) {
                for (Value &element : list->GetArray())
                    found.append(requireSchema(element));
            }
        }
        if (Value *const negated = member(schema, "not"))
            found.append(requireSchema(*negated));
        Value *const dependencies = member(schema, "dependencies");
        if (dependencies && dependencies->IsObject()) {
            for (auto &entry : dependencies->GetObject()) {
                if (entry.value.IsObject())
                    found.append(&entry.value);
            }
        }
        return found;
    }

    void queueSchemasOfParts(Value &schema)
    {
        for (const char *const name : {"additionalProperties", "items", "additionalItems"}) {
            Value *const part = member(schema, name);
            if (part && part->IsObject())
                pending.append(part);
        }
        Value *const properties = member(schema, "properties");
        if (properties && properties->IsObject()) {
            for (auto &entry : properties->GetObject()) {
                if (entry.value.IsObject())
                    pending.append(&entry.value);
            }
        }
        Value *const items = member(schema, "items");
        if (items && items->IsArray()) {
            for (Value &element : items->GetArray())
                pending.append(requireSchema(element));
        }
        if (Value *const patterns = member(schema, "patternProperties")) {
            for (auto &entry : requireSchema(*patterns)->GetObject())
                pending.append(requireSchema(entry.value));
            forbidByASchema(member(schema, "additionalProperties"));
        }
    }

    /*! Beside patterns RapidJSON loses its place when further properties are forbidden by a plain "false". */
    void forbidByASchema(Value *additional)
    {
        if (!additional || !additional->IsFalse())
            return;
        additional->SetObject();
        additional->AddMember("not", Value(rapidjson::kObjectType), document.GetAllocator());
    }

    rapidjson::Document &document;
    QHash<QByteArray, Value *> objects; ///< by place
    QHash<Value *, int> lengths; ///< of the chains of what was examined
    QVector<Value *> pending;
};

/*! Parses \a text without recursion; false with \a errors added if it is no JSON. */
bool parse(rapidjson::Document &document, const QByteArray &text, QStringList &errors)
{
    const int tooDeep = findTooDeep(text, deepestSchema);
    if (tooDeep >= 0) {
        errors << schemaError << offsetError(qulonglong(tooDeep), "Nested too deeply.");
        return false;
    }
    document.Parse<rapidjson::kParseIterativeFlag>(text.constData(), std::size_t(text.size()));
    if (!document.HasParseError())
        return true;
    errors << schemaError
           << offsetError(document.GetErrorOffset(), rapidjson::GetParseError_En(document.GetParseError()));
    return false;
}

bool validateAgainst(const SchemaDocument &schema, const QByteArray &text, int deepest, QStringList &errors)
{
    const int tooDeep = findTooDeep(text, deepest);
    if (tooDeep >= 0) {
        errors << documentError << offsetError(qulonglong(tooDeep), "Nested too deeply.");
        return false;
    }
    SchemaValidator validator(schema);
    rapidjson::Reader reader;
    rapidjson::MemoryStream bytes(text.constData(), std::size_t(text.size()));
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
    if (reader.Parse<rapidjson::kParseIterativeFlag>(stream, validator) && validator.IsValid())
        return true;
    errors << documentError;
    if (validator.IsValid()) {
        errors << offsetError(reader.GetErrorOffset(),
                              rapidjson::GetParseError_En(reader.GetParseErrorCode()));
        return false;
    }
    errors
        << QStringLiteral("Invalid Json: %1").arg(pointerText(validator.GetInvalidSchemaPointer()))
        << QStringLiteral("Invalid keyword : %1 ").arg(QString::fromUtf8(validator.GetInvalidSchemaKeyword()))
        << QStringLiteral("Invalid document : %1 ").arg(pointerText(validator.GetInvalidDocumentPointer()));
    return false;
}

} // namespace

bool RapidJsonValidator::validate(const QByteArray &document, const QByteArray &schema)
{
    errors.clear();
    const SchemaExpressions expressions;
    Pool pool; // keeps what a schema that is given up on the way has taken
    rapidjson::Document parsed;
    if (!parse(parsed, schema, errors)) {
        Logging::FrameworkLog().warning() << errors.join(QLatin1Char('\n'));
        return false;
    }
    try {
        const int chain = SchemaCheck(parsed).run();
        const SchemaDocument schemaDocument(parsed, nullptr, &pool);
        return validateAgainst(schemaDocument, document, qMin(deepestDocument, deepestRecursion / chain),
                               errors);
    } catch (const UnusableSchema &fault) {
        Logging::FrameworkLog().warning()
            << "RapidJsonValidator::validate() does not use the schema: " << fault.reason;
        errors = QStringList(schemaError);
        return false;
    }
}

QStringList RapidJsonValidator::getErrors() const
{
    return errors;
}

} // namespace Shared::JsonValidation
