#include "host/postgres/description/DatabaseReader.h"

#include "platform/cs/CoordSystem.h"
#include "platform/dp/AttributeNames.h"
#include "platform/utils/Quoting.h"

#include <QMetaType>
#include <QStringList>

#include <algorithm>
#include <map>
#include <string_view>

namespace orvane::postgres {

namespace {

/// One row for each column that may be read, by table.
constexpr const char* columnsQuery = R"(
With Recursive domains(oid, base, modifier) As (
    Select oid, typbasetype, typtypmod From pg_catalog.pg_type Where typtype = 'd'
    Union All
    Select d.oid, t.typbasetype, Case When d.modifier >= 0 Then d.modifier Else t.typtypmod End
        From domains d Join pg_catalog.pg_type t On t.oid = d.base Where t.typtype = 'd'),
postgis As (
    Select n.oid, pg_catalog.quote_ident(n.nspname) || '.' As prefix
        From pg_catalog.pg_extension e Join pg_catalog.pg_namespace n On n.oid = e.extnamespace
        Where e.extname = 'postgis')
Select c.oid, n.nspname, c.relname, c.relkind, c.relhassubclass, a.attnum, a.attname,
    pg_catalog.format_type(a.atttypid, a.atttypmod), t.typname, t.typtype, t.typcategory,
    Case When d.modifier >= 0 Then d.modifier Else a.atttypmod End As modifier,
    t.typnamespace = 'pg_catalog'::pg_catalog.regnamespace As isbuiltin,
    Coalesce(t.typnamespace = (Select oid From postgis), false) As isspatial,
    a.attnotnull, a.attgenerated <> '' Or a.attidentity = 'a' As isgenerated,
    c.relkind In ('r', 'p') And pg_catalog.has_table_privilege(c.oid, 'Insert, Update, Delete') As iswritable,
    Coalesce((Select prefix From postgis), '') As postgis,
    c.relkind = 'f' Or (c.relkind In ('v', 'p') And Exists (Select From pg_catalog.pg_foreign_table)) As iselsewhere
From pg_catalog.pg_class c
    Join pg_catalog.pg_namespace n On n.oid = c.relnamespace
    Join pg_catalog.pg_attribute a On a.attrelid = c.oid And a.attnum > 0 And Not a.attisdropped
    Left Join domains d On d.oid = a.atttypid
        And Not Exists (Select From pg_catalog.pg_type b Where b.oid = d.base And b.typtype = 'd')
    Join pg_catalog.pg_type t On t.oid = Coalesce(d.base, a.atttypid)
Where c.relkind In ('r', 'v', 'm', 'p', 'f') And n.nspname !~ '^pg_(toast|temp)'
    And pg_catalog.has_schema_privilege(n.oid, 'Usage')
    And pg_catalog.has_column_privilege(c.oid, a.attnum, 'Select') And )";

constexpr const char* ordinaryTables = R"(
    n.nspname !~ '^pg_' And n.nspname <> 'information_schema' And Not c.relispartition
    And Not Exists (Select From pg_catalog.pg_depend Where classid = 'pg_catalog.pg_class'::pg_catalog.regclass
        And objid = c.oid And deptype = 'e'))";

constexpr const char* namedTable = R"(
    (pg_catalog.lower(c.relname) = pg_catalog.lower($1::text)
     Or pg_catalog.lower(n.nspname || '.' || c.relname) = pg_catalog.lower($1::text)))";

/// Exact names come first, then tables of the current schema.
constexpr const char* columnsOrder = R"(
Order By (c.relname = $1::text Or n.nspname || '.' || c.relname = $1::text) Desc,
    (n.nspname = pg_catalog.current_schema()) Desc, n.nspname, c.relname, a.attnum)";

constexpr const char* indicesQuery = R"(
Select i.indrelid, i.indisunique And i.indimmediate And i.indexprs Is Null As iskey, m.amname,
    i.indnkeyatts, i.indkey::text
From pg_catalog.pg_index i Join pg_catalog.pg_class c On c.oid = i.indexrelid
    Join pg_catalog.pg_am m On m.oid = c.relam
Where i.indrelid = Any($1::oid[]) And i.indisvalid And i.indpred Is Null
Order By i.indrelid, i.indisprimary Desc, i.indnkeyatts, i.indexrelid)";

/// The rows of a result, by the names of its columns.
class Rows {
public:
    explicit Rows(const Result& result) : result_(result.get()) {}
    int count() const { return PQntuples(result_); }
    const char* text(int row, const char* column) const {
        return PQgetvalue(result_, row, PQfnumber(result_, column));
    }
    int number(int row, const char* column) const { return QByteArray(text(row, column)).toInt(); }
    bool isTrue(int row, const char* column) const { return *text(row, column) == 't'; }

private:
    const PGresult* result_;
};

ValueKind kindOf(const Rows& rows, int row) {
    const std::string_view type = rows.text(row, "typname");
    const char typtype = *rows.text(row, "typtype");
    if (rows.isTrue(row, "isspatial") && (type == "geometry" || type == "geography")) {
        return type == "geometry" ? ValueKind::Geometry : ValueKind::Geography;
    }
    if (typtype == 'e' || type == "citext") {
        return ValueKind::Text;
    }
    if (*rows.text(row, "typcategory") == 'A' && type.substr(0, 1) == "_") {
        return ValueKind::List;
    }
    static const std::map<std::string_view, ValueKind> builtin{
        {"bool", ValueKind::Boolean},     {"int2", ValueKind::Integer2},
        {"int4", ValueKind::Integer4},    {"int8", ValueKind::Integer8},
        {"oid", ValueKind::Unsigned4},    {"float4", ValueKind::Real4},
        {"float8", ValueKind::Real8},     {"numeric", ValueKind::Numeric},
        {"date", ValueKind::Date},        {"time", ValueKind::Time},
        {"timestamp", ValueKind::Moment}, {"timestamptz", ValueKind::LocalMoment},
        {"text", ValueKind::Text},        {"varchar", ValueKind::Text},
        {"name", ValueKind::Text},        {"bpchar", ValueKind::PaddedText},
        {"json", ValueKind::Text},        {"jsonb", ValueKind::Json},
        {"uuid", ValueKind::Uuid},        {"bytea", ValueKind::Bytes}};
    const auto found = rows.isTrue(row, "isbuiltin") ? builtin.find(type) : builtin.end();
    return found == builtin.end() ? ValueKind::Shown : found->second;
}

int metaTypeOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::Boolean: return QMetaType::Bool;
    case ValueKind::Integer2:
    case ValueKind::Integer4: return QMetaType::Int;
    case ValueKind::Integer8:
    case ValueKind::Unsigned4:
    case ValueKind::WholeNumeric: return QMetaType::LongLong;
    case ValueKind::Real4: return QMetaType::Float;
    case ValueKind::Real8:
    case ValueKind::Numeric: return QMetaType::Double;
    case ValueKind::Date: return QMetaType::QDate;
    case ValueKind::Time: return QMetaType::QTime;
    case ValueKind::Moment:
    case ValueKind::LocalMoment: return QMetaType::QDateTime;
    case ValueKind::Bytes: return QMetaType::QByteArray;
    default: return QMetaType::QString;
    }
}

/// What the modifier of a type says beyond the type.
void readModifier(int modifier, ColumnDescription& column, dp::SimpleAttributeDefinition::Options& options) {
    constexpr int headerSize = 4;
    switch (column.kind) {
    case ValueKind::Text:
    case ValueKind::PaddedText: options.length = std::max(0, modifier - headerSize); break;
    case ValueKind::Numeric: {
        constexpr int mostDigits = 18; // of an integer
        if (modifier < headerSize) {
            break;
        }
        options.length = (modifier - headerSize) >> 16;
        options.precision = (modifier - headerSize) & 0x7FF;
        if (options.precision == 0 && options.length <= mostDigits) {
            column.kind = ValueKind::WholeNumeric;
        }
        break;
    }
    case ValueKind::Geometry:
    case ValueKind::Geography: {
        // PostGIS: two bits for Z and M, six for the type, 21 for the system.
        const int type = modifier < 0 ? 0 : (modifier & 0xFC) >> 2;
        column.isMulti = type >= 4 && type <= 6;
        column.srid = modifier < 0 ? 0 : ((modifier & 0x0FFFFF00) - (modifier & 0x10000000)) >> 8;
        if (column.kind == ValueKind::Geography && column.srid == 0) {
            column.srid = 4326;
        }
        break;
    }
    default: break;
    }
}

/// A table while it is put together.
struct Draft {
    TableDescription table;
    QStringList names;        ///< of the columns
    std::vector<int> numbers; ///< likewise, in the database
    std::vector<dp::SimpleAttributeDefinition::Options> options;
    bool hasChildren = false;

    int positionOf(int number) const {
        const auto found = std::find(numbers.begin(), numbers.end(), number);
        return found == numbers.end() ? -1 : static_cast<int>(found - numbers.begin());
    }
    int geometry() const {
        const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                        [](const auto& column) { return isGeometry(column.kind); });
        return found == table.columns.end() ? -1 : static_cast<int>(found - table.columns.begin());
    }
};

Draft newDraft(const Rows& rows, int row) {
    Draft draft;
    TableDescription& table = draft.table;
    table.oid = QByteArray(rows.text(row, "oid")).toUInt();
    table.schemaName = rows.text(row, "nspname");
    table.name = rows.text(row, "relname");
    table.kind = *rows.text(row, "relkind");
    table.postgis = rows.text(row, "postgis");
    table.isWritable = rows.isTrue(row, "iswritable");
    table.isElsewhere = rows.isTrue(row, "iselsewhere");
    draft.hasChildren = table.kind == 'r' && rows.isTrue(row, "relhassubclass");
    table.isSampled = table.kind == 'm' || table.kind == 'r' || (table.kind == 'p' && !table.isElsewhere);
    const bool hasPlaces = table.kind == 'm' || (table.kind == 'r' && !draft.hasChildren);
    table.key = hasPlaces ? RowKey::Place : RowKey::Number;
    return draft;
}

void addColumn(const Rows& rows, int row, Draft& draft) {
    ColumnDescription column;
    column.kind = kindOf(rows, row);
    if (isGeometry(column.kind) && draft.geometry() >= 0) {
        return;
    }
    column.name = rows.text(row, "attname");
    column.type = rows.text(row, "format_type");
    column.isGenerated = rows.isTrue(row, "isgenerated");
    dp::SimpleAttributeDefinition::Options options;
    options.notNull = rows.isTrue(row, "attnotnull");
    readModifier(rows.number(row, "modifier"), column, options);
    draft.names += QString::fromStdString(column.name);
    draft.numbers.push_back(rows.number(row, "attnum"));
    draft.options.push_back(options);
    draft.table.columns.push_back(std::move(column));
}

/// A table with one name wanted is the first found.
std::vector<Draft> readColumns(Server& server, const QString& wantedTable) {
    const std::string query =
        std::string(columnsQuery) + (wantedTable.isEmpty() ? ordinaryTables : namedTable) + columnsOrder;
    const Result result = server.ask({query, {wantedTable.toStdString()}});
    const Rows rows(result);
    std::vector<Draft> drafts;
    for (int row = 0; row < rows.count(); ++row) {
        const bool isNew =
            drafts.empty() || drafts.back().table.oid != QByteArray(rows.text(row, "oid")).toUInt();
        if (isNew && !wantedTable.isEmpty() && !drafts.empty()) {
            break;
        }
        if (isNew) {
            drafts.push_back(newDraft(rows, row));
        }
        addColumn(rows, row, drafts.back());
    }
    return drafts;
}

void addIndex(const Rows& rows, int row, Draft& draft) {
    const QStringList numbers = QString::fromLatin1(rows.text(row, "indkey")).split(QLatin1Char(' '));
    std::vector<int> positions;
    for (int i = 0; i < rows.number(row, "indnkeyatts"); ++i) {
        positions.push_back(draft.positionOf(numbers[i].toInt()));
    }
    TableDescription& table = draft.table;
    if (positions.empty() || positions.front() < 0) {
        return;
    }
    ColumnDescription& first = table.columns[static_cast<std::size_t>(positions.front())];
    const std::string_view method = rows.text(row, "amname");
    first.isIndexed = first.isIndexed || method == (isGeometry(first.kind) ? "gist" : "btree");
    const bool isKey = rows.isTrue(row, "iskey") && !draft.hasChildren && table.kind != 'm' &&
                       std::all_of(positions.begin(), positions.end(), [&draft](int position) {
                           return position >= 0 && draft.options[static_cast<std::size_t>(position)].notNull;
                       });
    if (!isKey) {
        return;
    }
    if (positions.size() == 1) {
        draft.options[static_cast<std::size_t>(positions.front())].unique = true;
    }
    if (table.keyColumns.empty()) {
        const bool isInteger =
            positions.size() == 1 && (first.kind == ValueKind::Integer2 ||
                                      first.kind == ValueKind::Integer4 || first.kind == ValueKind::Integer8);
        table.key = isInteger ? RowKey::Integer : RowKey::Values;
        table.keyColumns = std::move(positions);
    }
}

void readIndices(Server& server, std::vector<Draft>& drafts) {
    std::string oids;
    for (const Draft& draft : drafts) {
        oids += (oids.empty() ? "{" : ",") + std::to_string(draft.table.oid);
    }
    const Result result = server.ask({indicesQuery, {oids + "}"}});
    const Rows rows(result);
    for (int row = 0; row < rows.count(); ++row) {
        const unsigned oid = QByteArray(rows.text(row, "indrelid")).toUInt();
        const auto draft = std::find_if(drafts.begin(), drafts.end(),
                                        [oid](const Draft& each) { return each.table.oid == oid; });
        if (draft != drafts.end()) {
            addIndex(rows, row, *draft);
        }
    }
}

/// The system of the first geometry stands for all in a column that does not name one.
void findUnnamedSystem(Server& server, Draft& draft) {
    const int position = draft.geometry();
    if (position < 0 || draft.table.columns[static_cast<std::size_t>(position)].srid > 0) {
        return;
    }
    ColumnDescription& column = draft.table.columns[static_cast<std::size_t>(position)];
    const std::string name = utils::sqlIdentifier(column.name);
    try {
        const Result result = server.ask({"Select " + draft.table.postgis + "ST_SRID(" + name + ") From " +
                                          draft.table.sqlName() + " Where " + name + " Is Not Null Limit 1"});
        column.srid = PQntuples(result.get()) == 1 ? QByteArray(PQgetvalue(result.get(), 0, 0)).toInt() : 0;
        column.hasMixedSystems = column.srid > 0;
    } catch (const ServerError& error) {
        if (error.isLost()) {
            throw;
        } // a view that cannot be read says so when it is
    }
}

using Systems = std::map<int, std::shared_ptr<cs::CoordSystem>>;

std::shared_ptr<cs::CoordSystem> systemOfCode(int code) {
    try {
        return cs::CoordSysFactory::defaultCoordSysFactory()->createFromEpsg(code);
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

Systems readSystems(Server& server, const std::vector<Draft>& drafts) {
    Systems systems;
    std::string postgis;
    for (const Draft& draft : drafts) {
        postgis = draft.table.postgis;
        const int position = draft.geometry();
        if (position >= 0 && draft.table.columns[static_cast<std::size_t>(position)].srid > 0) {
            systems.emplace(draft.table.columns[static_cast<std::size_t>(position)].srid, nullptr);
        }
    }
    if (systems.empty()) {
        return systems;
    }
    std::string srids;
    for (const auto& [srid, system] : systems) {
        srids += (srids.empty() ? "{" : ",") + std::to_string(srid);
    }
    const Result result =
        server.ask({"Select srid, Coalesce(auth_name, '') As authority, Coalesce(auth_srid, 0) As code, "
                    "Coalesce(srtext, '') As definition From " +
                        postgis + "spatial_ref_sys Where srid = Any($1::int[])",
                    {srids + "}"}});
    const Rows rows(result);
    for (int row = 0; row < rows.count(); ++row) {
        const bool isEpsg = QByteArray(rows.text(row, "authority")).toUpper() == "EPSG";
        auto system = isEpsg ? systemOfCode(rows.number(row, "code")) : nullptr;
        if (!system) {
            system = cs::CoordSysFactory::defaultCoordSysFactory()->createFromWkt(
                QString::fromUtf8(rows.text(row, "definition")));
        }
        systems[rows.number(row, "srid")] = std::move(system);
    }
    return systems;
}

TableDescription finish(Draft draft, const Systems& systems) {
    TableDescription& table = draft.table;
    const QStringList names = dp::distinctNames(draft.names);
    QVector<dp::AttributeDefinitionPointer> attributes;
    for (int i = 0; i < names.size(); ++i) {
        const ColumnDescription& column = table.columns[static_cast<std::size_t>(i)];
        dp::AttributeDefinition* attribute = nullptr;
        if (isGeometry(column.kind)) {
            const auto system = systems.find(column.srid);
            attribute = new dp::GeometryAttributeDefinition(
                names[i], system == systems.end() ? nullptr : system->second);
        } else {
            attribute = new dp::SimpleAttributeDefinition(names[i], metaTypeOf(column.kind),
                                                          draft.options[static_cast<std::size_t>(i)]);
        }
        attributes.append(dp::AttributeDefinitionPointer(attribute));
    }
    table.schema = std::make_shared<const dp::TableSchema>(std::move(attributes));
    table.isWritable = table.isWritable && (table.key == RowKey::Integer || table.key == RowKey::Values);
    return std::move(table);
}

} // namespace

std::vector<TableDescription> readDatabase(Server& server, const QString& wantedTable) {
    std::vector<Draft> drafts = readColumns(server, wantedTable);
    std::vector<TableDescription> tables;
    if (drafts.empty()) {
        return tables;
    }
    readIndices(server, drafts);
    for (Draft& draft : drafts) {
        findUnnamedSystem(server, draft);
    }
    const Systems systems = readSystems(server, drafts);
    for (Draft& draft : drafts) {
        tables.push_back(finish(std::move(draft), systems));
    }
    return tables;
}

} // namespace orvane::postgres
