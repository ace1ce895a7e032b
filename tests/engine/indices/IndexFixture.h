#pragma once

#include "support/PlainCache.h"

#include <orvane/engine/EngineIndicesFactory.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <vector>

namespace orvane::engine {

/// A store with the options of the engine, over a table of the given attribute types.
class IndexFixture : public testing::Test {
protected:
    using Cells = std::vector<dp::Cell>;
    using Columns = std::vector<EngineIndices::Column>;
    using Constants = std::vector<EngineIndices::Constant>;
    using Operation = EngineIndices::Operation;

    static std::unique_ptr<EngineIndices> makeStore(EngineCache& cache, bool ignoresCase = true) {
        std::map<std::string, QVariant> options;
        if (ignoresCase) {
            options = {{"Collate", QStringLiteral("Locale")},
                       {"UseCaseInsensitiveGlob", true},
                       {"UseCaseInsensitiveLike", true}};
        }
        return EngineIndicesFactory::instance()->construct(EngineIndicesSetup(options), cache);
    }

    static dp::TableSchema makeSchema(std::initializer_list<int> types) {
        QVector<dp::AttributeDefinitionPointer> attributes;
        for (const int type : types) {
            const QString name = QStringLiteral("a%1").arg(attributes.size());
            attributes.append(dp::AttributeDefinitionPointer(
                new dp::SimpleAttributeDefinition(name, type, {.length = 30, .precision = 2})));
        }
        return dp::TableSchema(attributes);
    }

    /// Stores one row under the next row number, through the inserter.
    void insert(int index, const std::vector<std::vector<QVariant>>& rows) {
        auto inserter = store_->getInserter(index);
        for (const std::vector<QVariant>& values : rows) {
            auto schema = std::make_shared<dp::TableSchema>(
                QVector<dp::AttributeDefinitionPointer>(static_cast<int>(values.size())));
            dp::Feature feature(schema, dp::FeatureId(cache_.idLimit() + 100));
            cache_.assignIdToInt(feature.id());
            for (std::size_t i = 0; i < values.size(); ++i) {
                feature.setAttribute(static_cast<int>(i), values[i]);
            }
            inserter->addRow(feature);
        }
        store_->flushInserter(std::move(inserter));
    }

    /// Row numbers that satisfy the constants, ascending.
    std::vector<qint64> find(int index, const Constants& constants) {
        std::vector<qint64> rows;
        for (const dp::FeatureId& id : store_->findRows(index, constants)) {
            rows.push_back(cache_.idToInt(id, -1));
        }
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    /// Row numbers in the order in which a look-up delivers them.
    static std::vector<qint64> rowsOf(EngineIndices::RowLookup& lookup, const Cells& operands) {
        std::vector<qint64> rows;
        lookup.start(operands);
        for (qint64 row = 0; lookup.next(row);) {
            rows.push_back(row);
        }
        return rows;
    }

    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }

    tests::PlainCache cache_;
    std::unique_ptr<EngineIndices> store_ = makeStore(cache_);
};

} // namespace orvane::engine
