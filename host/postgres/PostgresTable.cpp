#include "host/postgres/PostgresTable.h"

#include "host/postgres/conditions/ScanQuery.h"
#include "host/postgres/connection/Server.h"
#include "host/postgres/editing/EditTransaction.h"
#include "host/postgres/editing/RowEdit.h"
#include "host/postgres/reading/CountingCursor.h"
#include "host/postgres/reading/RowCursor.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <numeric>

namespace orvane::postgres {

namespace {

std::vector<int> distinct(std::vector<int> attributes) {
    std::sort(attributes.begin(), attributes.end());
    attributes.erase(std::unique(attributes.begin(), attributes.end()), attributes.end());
    return attributes;
}

bool isRange(dp::Comparison comparison) {
    return comparison == dp::Comparison::Less || comparison == dp::Comparison::LessOrEqual ||
           comparison == dp::Comparison::Greater || comparison == dp::Comparison::GreaterOrEqual;
}

} // namespace

PostgresTable::PostgresTable(QString name, std::shared_ptr<Server> server, std::shared_ptr<Edits> edits,
                             TableDescription description)
    : Table(std::move(name)), description_(std::make_shared<const TableDescription>(std::move(description))),
      server_(std::move(server)), edits_(std::move(edits)) {}

PostgresTable::~PostgresTable() = default;

std::shared_ptr<const dp::TableSchema> PostgresTable::schema() const {
    return description_->schema;
}

std::unique_ptr<dp::Cursor> PostgresTable::openCursor(const dp::ScanRequest& request) {
    const ScanQuery query(*description_);
    const auto open = [this, query](const dp::ScanRequest& wanted) {
        RowCursor::Layout layout{distinct(wanted.attributes), query.keySize()};
        layout.isLookedUp = (wanted.window && usesWindow()) ||
                            std::any_of(wanted.terms.begin(), wanted.terms.end(), [this](const auto& term) {
                                return looksUp(term.attribute, term.comparison, term.collation);
                            });
        const Command command = query.rows(wanted, layout.attributes);
        return std::make_unique<RowCursor>(description_, server_, editedConnection(), command,
                                           std::move(layout));
    };
    const bool onlyCounts = request.attributes.empty() && request.terms.empty() && !request.window &&
                            !request.ids && request.limit < 0;
    if (!onlyCounts) {
        return open(request);
    }
    const auto edited = editedConnection();
    const Result count = edited ? edited->run(query.count(), {}) : server_->ask(query.count());
    return std::make_unique<CountingCursor>(QByteArray(PQgetvalue(count.get(), 0, 0)).toLongLong(),
                                            [open] { return open({}); });
}

std::unique_ptr<dp::SampleCursor> PostgresTable::openSample(const std::vector<int>& attributes,
                                                            std::int64_t rows) {
    const auto count = featureCount();
    if (!description_->isSampled || !count) {
        return nullptr;
    }
    const ScanQuery query(*description_);
    RowCursor::Layout layout{distinct(attributes), query.keySize(), true};
    const Command command =
        query.sample(layout.attributes, static_cast<double>(rows), static_cast<double>(*count));
    return std::make_unique<RowCursor>(description_, server_, editedConnection(), command, std::move(layout));
}

std::optional<std::int64_t> PostgresTable::featureCount() const {
    const std::uint64_t current = revision();
    if (!count_ || countRevision_ != current) {
        try {
            const Result plan = server_->ask(ScanQuery(*description_).estimate());
            const auto json = QJsonDocument::fromJson(QByteArray(PQgetvalue(plan.get(), 0, 0)));
            const auto rows = json[0][QLatin1String("Plan")][QLatin1String("Plan Rows")];
            count_ =
                rows.isDouble() ? std::optional(static_cast<std::int64_t>(rows.toDouble())) : std::nullopt;
        } catch (const std::runtime_error&) {
            count_.reset(); // who reads the rows is told
        }
        countRevision_ = current;
    }
    return count_;
}

std::uint64_t PostgresTable::revision() const {
    // Of rows that lie elsewhere the server knows nothing: they count as changed every second.
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto second = static_cast<std::uint64_t>(std::chrono::floor<std::chrono::seconds>(now).count());
    return (edits_->changes << 32) + server_->revision() + (description_->isElsewhere ? second : 0);
}

bool PostgresTable::usesTerm(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    return ScanQuery(*description_).usesTerm(attribute, comparison, collation);
}

bool PostgresTable::looksUp(int attribute, dp::Comparison comparison, dp::TextCollation collation) const {
    using dp::Comparison;
    const bool isEquality =
        comparison == Comparison::Equal || comparison == Comparison::Is || comparison == Comparison::In;
    return (isEquality || isRange(comparison)) && description_->key != RowKey::Number &&
           description_->columns[static_cast<std::size_t>(attribute)].isIndexed &&
           usesTerm(attribute, comparison, collation);
}

bool PostgresTable::usesWindow() const {
    return ScanQuery(*description_).usesWindow();
}

bool PostgresTable::isReadOnly() const {
    return !description_->isWritable;
}

std::shared_ptr<Connection> PostgresTable::editedConnection() const {
    const auto current = edits_->current.lock();
    return current && !current->isEnded() ? current->connection() : nullptr;
}

EditTransaction& PostgresTable::transaction() const {
    if (!transaction_) {
        throw dp::EditError(tr("правка вне группы правок").toStdString());
    }
    return *transaction_;
}

void PostgresTable::beginEdits() {
    if (isReadOnly()) {
        Table::beginEdits(); // refuses
    }
    transaction_ = edits_->current.lock();
    if (!transaction_ || transaction_->isEnded()) {
        transaction_ = std::make_shared<EditTransaction>(server_);
        edits_->current = transaction_;
    }
}

void PostgresTable::prepareEdits() {
    ++edits_->changes;
    transaction().prepare();
}

void PostgresTable::commitEdits() noexcept {
    transaction_.reset();
}

void PostgresTable::rollbackEdits() noexcept {
    ++edits_->changes;
    if (transaction_) {
        transaction_->rollback();
        transaction_.reset();
    }
}

void PostgresTable::setSavepoint(int number) {
    transaction().setSavepoint(number);
}

void PostgresTable::releaseSavepoint(int number) {
    transaction().releaseSavepoint(number);
}

void PostgresTable::rollbackToSavepoint(int number) {
    ++edits_->changes;
    transaction().rollbackTo(number);
}

dp::FeatureId PostgresTable::insertFeature(const dp::Feature& feature) {
    ++edits_->changes;
    const Result row = transaction().run(RowEdit(*description_).insertion(feature));
    if (PQntuples(row.get()) != 1) {
        throw dp::EditError(tr("сервер не добавил запись").toStdString()); // as a trigger may decide
    }
    if (description_->key == RowKey::Integer) {
        return dp::FeatureId(QVariant(QByteArray(PQgetvalue(row.get(), 0, 0)).toLongLong()));
    }
    QStringList texts;
    for (int i = 0; i < PQnfields(row.get()); ++i) {
        texts += QString::fromUtf8(PQgetvalue(row.get(), 0, i));
    }
    return dp::FeatureId(QVariant(texts.join(QLatin1Char(keySeparator))));
}

void PostgresTable::change(const Command& command, const dp::FeatureId& id) {
    ++edits_->changes;
    const Result row = transaction().run(command);
    if (PQntuples(row.get()) != 1) {
        throw dp::EditError(tr("нет записи %0").arg(id.value().toString()).toStdString());
    }
}

void PostgresTable::updateFeature(const dp::Feature& feature) {
    std::vector<int> all(static_cast<std::size_t>(feature.numAttributes()));
    std::iota(all.begin(), all.end(), 0);
    updateAttributes(feature, all);
}

void PostgresTable::updateAttributes(const dp::Feature& changes, const std::vector<int>& positions) {
    change(RowEdit(*description_).update(changes, positions), changes.id());
}

void PostgresTable::deleteFeature(const dp::FeatureId& id) {
    change(RowEdit(*description_).removal(id), id);
}

std::int64_t PostgresTable::requests() const {
    return server_->requests();
}

} // namespace orvane::postgres
