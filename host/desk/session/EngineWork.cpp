#include "host/desk/session/EngineWork.h"

#include "host/desk/session/EngineThread.h"

#include <host/adaptor/FeatureExpression.h>
#include <orvane/Engine.h>
#include <orvane/engine/EngineCache.h>
#include <platform/dp/CellConversion.h>
#include <platform/work/Cancellation.h>

#include <QCoreApplication>

#include <algorithm>
#include <numeric>

namespace orvane::desk {

namespace {

/// The features with these identifiers, whole, as expressions want them.
std::vector<dp::FeaturePtr> featuresOf(dp::Table& table, const QVector<qint64>& ids) {
    const auto schema = table.schema();
    dp::ScanRequest request;
    request.attributes.resize(static_cast<std::size_t>(schema->numAttributes()));
    std::iota(request.attributes.begin(), request.attributes.end(), 0);
    request.ids.emplace();
    for (const qint64 id : ids) {
        request.ids->emplace_back(QVariant(id));
    }
    std::vector<dp::FeaturePtr> features;
    for (const auto cursor = table.openCursor(request); cursor->next();) {
        const auto feature = std::make_shared<dp::Feature>(schema, cursor->featureId());
        for (int i = 0; i < schema->numAttributes(); ++i) {
            feature->setAttribute(i, dp::toVariant(cursor->cell(i), *schema->at(i)));
        }
        features.push_back(feature);
    }
    return features;
}

} // namespace

EngineWork::EngineWork(EngineThread& thread, EngineEvents events)
    : thread_(thread), events_(std::move(events)),
      host_([this](const QString& failure) { events_.reported(failure); }),
      runner_(host_, {events_.resultBegun, [this] { return goesOn(); }}) {
    connect(&host_.catalog(), &dp::DataCatalogWithSelection::selectionChanged, this,
            [this] { tellSelection(); });
    tellTables();
}

EngineWork::~EngineWork() = default;

void EngineWork::open(const QString& source) {
    try {
        const QVector<quint64> tables = host_.open(source);
        tellTables();
        events_.opened(tables);
    } catch (const std::exception& failure) {
        events_.reported(reasonOf(failure));
    }
}

void EngineWork::close(quint64 table) {
    labels_.erase(table);
    readings_.erase(table);
    host_.close(table);
    tellTables();
}

void EngineWork::rename(quint64 table, const QString& name) {
    try {
        host_.rename(table, name);
    } catch (const std::exception& failure) {
        events_.reported(reasonOf(failure));
    }
    toldTables_.clear(); // whoever has shown the new name already is to know the true one
    tellTables();
}

void EngineWork::run(quint64 query, const QString& text) {
    query_ = query;
    thread_.setQuery(query);
    sinceOthers_.start();
    QueryOutcome outcome{QueryOutcome::Kind::Cancelled, {}, std::nullopt};
    if (!thread_.isCancelled(query)) {
        outcome = runner_.run(text.toStdString());
    }
    tellTables();
    events_.queryEnded(outcome);
}

void EngineWork::exportResult(quint64 query, const QString& path) {
    query_ = query;
    thread_.setQuery(query);
    sinceOthers_.start();
    QueryOutcome outcome{QueryOutcome::Kind::Cancelled, {}, std::nullopt};
    if (!thread_.isCancelled(query)) {
        outcome = runner_.exportResult(path);
    }
    events_.exported(path, outcome);
}

bool EngineWork::goesOn() {
    constexpr int portionMs = 20; // of the query, between other tasks
    if (thread_.isCancelled(query_)) {
        return false;
    }
    if (sinceOthers_.hasExpired(portionMs)) {
        thread_.runBetweenRows(*this);
        sinceOthers_.restart();
        return !thread_.isEnding();
    }
    return true;
}

void EngineWork::select(quint64 table, const QVector<qint64>& ids) {
    std::vector<dp::FeatureId> features;
    features.reserve(static_cast<std::size_t>(ids.size()));
    for (const qint64 id : ids) {
        features.emplace_back(QVariant(id));
    }
    const auto object = host_.table(table);
    host_.catalog().setSelection(object ? dp::Selection(object, std::move(features)) : dp::Selection());
}

void EngineWork::selectRows(quint64 table, const QVector<qint64>& rowNumbers) {
    std::vector<dp::FeatureId> features;
    for (const qint64 number : rowNumbers) {
        if (dp::FeatureId id = host_.engine().cache()->intToId(number); id.isValid()) {
            features.push_back(std::move(id));
        }
    }
    const auto object = host_.table(table);
    host_.catalog().setSelection(object ? dp::Selection(object, std::move(features)) : dp::Selection());
}

void EngineWork::readLayer(quint64 table) {
    const auto object = host_.table(table);
    if (!object || object->schema()->geometryIndex() < 0) {
        return;
    }
    try {
        const auto reading = std::make_shared<LayerReading>(*object);
        readings_[table] = reading;
        readPortion(table, reading);
    } catch (const std::exception& failure) {
        events_.reported(QStringLiteral("%0: %1").arg(object->name(), reasonOf(failure)));
    }
}

/// Reads on until the table is closed or read anew; between portions the queries have their turn.
void EngineWork::readPortion(quint64 table, const std::shared_ptr<LayerReading>& reading) {
    const auto current = readings_.find(table);
    if (current == readings_.end() || current->second != reading) {
        return;
    }
    try {
        const bool isWhole = !reading->readOn();
        events_.layerRead(table, reading->features(), isWhole);
        if (isWhole) {
            readings_.erase(table);
            return;
        }
        thread_.post(EngineThread::When::Anytime,
                     [table, reading](EngineWork& work) { work.readPortion(table, reading); });
    } catch (const work::Cancelled&) { // along with a query
        readings_.erase(table);
        thread_.post(EngineThread::When::BetweenQueries,
                     [table](EngineWork& work) { work.readLayer(table); });
    } catch (const std::exception& failure) {
        readings_.erase(table);
        events_.reported(reasonOf(failure));
    }
}

void EngineWork::label(quint64 table, const QString& expression, const QVector<qint64>& ids) {
    const auto object = host_.table(table);
    if (!object) {
        return;
    }
    Label& label = labels_[table];
    try {
        if (!label.expression || label.text != expression) {
            label = {expression,
                     std::make_unique<adaptor::FeatureExpression>(host_.engine(), *object->schema())};
            if (!label.expression->setText(expression)) {
                const QString reason = label.expression->lastError();
                labels_.erase(table);
                return events_.labellingFailed(table, expression, reason);
            }
        }
        const auto features = featuresOf(*object, ids);
        const QVector<QVariant> values = label.expression->values(features);
        LabelTexts texts;
        for (int i = 0; i < values.size(); ++i) {
            texts.insert(features[static_cast<std::size_t>(i)]->id().value().toLongLong(),
                         values[i].toString());
        }
        events_.labelled(table, expression, texts);
    } catch (const work::Cancelled&) {
        thread_.post(EngineThread::When::BetweenQueries,
                     [=](EngineWork& work) { work.label(table, expression, ids); });
    } catch (const std::exception& failure) {
        events_.labellingFailed(table, expression, reasonOf(failure));
    }
}

void EngineWork::tellTables() {
    const TableInfos tables = host_.tables();
    QString told;
    for (const TableInfo& table : tables) {
        told += QStringLiteral("%0\t%1\t%2\n").arg(table.key).arg(table.revision).arg(table.name);
    }
    if (told != toldTables_ || tables.isEmpty()) {
        toldTables_ = told;
        events_.tablesChanged(tables, host_.functions());
    }
}

void EngineWork::tellSelection() {
    const dp::Selection& selection = host_.catalog().selection();
    SelectedFeatures features;
    if (!selection.isEmpty()) {
        features.table = reinterpret_cast<quintptr>(selection.dataObject().get());
        for (const dp::FeatureId& id : selection.ids()) {
            features.ids.append(id.value().toLongLong());
        }
        std::sort(features.ids.begin(), features.ids.end());
    }
    events_.selected(features);
}

} // namespace orvane::desk
