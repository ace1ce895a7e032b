#pragma once

#include "platform/dp/Table.h"

#include <map>
#include <vector>

namespace orvane::testing {

/// A table that lives in memory, with edits and their roll-back: the catalogue's table in tests.
class MemoryTable : public dp::Table {
public:
    using Row = std::vector<QVariant>;

    MemoryTable(QString name, QVector<dp::AttributeDefinitionPointer> attributes, std::vector<Row> rows = {},
                qint64 firstId = 100) ///< far from the row numbers that the engine assigns
        : dp::Table(std::move(name)), schema_(std::make_shared<dp::TableSchema>(std::move(attributes))),
          nextId_(firstId) {
        for (Row& row : rows) {
            rows_.emplace(nextId_++, std::move(row));
        }
    }

    std::shared_ptr<const dp::TableSchema> schema() const override { return schema_; }
    std::optional<std::int64_t> featureCount() const override {
        return static_cast<std::int64_t>(rows_.size());
    }
    std::uint64_t revision() const override { return revision_; }
    bool isReadOnly() const override { return false; }

    std::unique_ptr<dp::Cursor> openCursor(const dp::ScanRequest& request) override {
        lastRequest = request;
        ++scans;
        return std::make_unique<RowCursor>(*this, request);
    }

    void beginEdits() override { before_ = rows_; }
    void rollbackEdits() noexcept override {
        rows_ = before_;
        savepoints_.clear();
        ++revision_;
    }
    void commitEdits() noexcept override { savepoints_.clear(); }
    void setSavepoint(int number) override { savepoints_[number] = rows_; }
    void releaseSavepoint(int number) override {
        savepoints_.erase(savepoints_.lower_bound(number), savepoints_.end());
    }
    void rollbackToSavepoint(int number) override {
        const auto found = savepoints_.find(number);
        rows_ = found == savepoints_.end() ? before_ : found->second;
        savepoints_.erase(savepoints_.upper_bound(number), savepoints_.end());
        ++revision_;
    }
    dp::FeatureId insertFeature(const dp::Feature& feature) override {
        ++revision_;
        rows_[nextId_] = values(feature);
        return dp::FeatureId(nextId_++);
    }
    void updateFeature(const dp::Feature& feature) override {
        ++revision_;
        rows_.at(feature.id().value().toLongLong()) = values(feature);
    }
    void deleteFeature(const dp::FeatureId& id) override {
        ++revision_;
        rows_.erase(id.value().toLongLong());
    }

    dp::ScanRequest lastRequest;
    int scans = 0;

private:
    class RowCursor : public dp::Cursor {
    public:
        RowCursor(const MemoryTable& table, const dp::ScanRequest& request)
            : geometry_(table.schema_->geometryIndex()), rows_(&table.rows_) {
            if (request.ids) {
                for (const dp::FeatureId& id : *request.ids) {
                    if (const auto found = rows_->find(id.value().toLongLong()); found != rows_->end()) {
                        chosen_.insert(*found);
                    }
                }
                rows_ = &chosen_;
            }
        }
        bool next() override {
            at_ = started_ ? std::next(at_) : rows_->begin();
            started_ = true;
            return at_ != rows_->end();
        }
        dp::FeatureId featureId() override { return dp::FeatureId(at_->first); }
        dp::Cell cell(int attribute) override {
            const QVariant& value = at_->second.at(static_cast<std::size_t>(attribute));
            switch (value.userType()) {
            case QMetaType::UnknownType: return {};
            case QMetaType::Int:
            case QMetaType::LongLong: return dp::Cell::ofInteger(value.toLongLong());
            case QMetaType::Double: return dp::Cell::ofReal(value.toDouble());
            case QMetaType::QByteArray:
                text_ = value.toByteArray();
                return attribute == geometry_ ? dp::Cell::ofWkb(bytes()) : dp::Cell::ofBytes(bytes());
            default: text_ = value.toString().toUtf8(); return dp::Cell::ofText(bytes());
            }
        }

    private:
        std::string_view bytes() const { return {text_.constData(), static_cast<std::size_t>(text_.size())}; }

        const int geometry_;
        const std::map<qint64, Row>* rows_;
        std::map<qint64, Row> chosen_;
        std::map<qint64, Row>::const_iterator at_;
        bool started_ = false;
        QByteArray text_;
    };

    static Row values(const dp::Feature& feature) {
        Row row;
        for (int i = 0; i < feature.numAttributes(); ++i) {
            row.push_back(feature.getAttribute(i));
        }
        return row;
    }

    std::shared_ptr<const dp::TableSchema> schema_;
    std::map<qint64, Row> rows_, before_;
    std::map<int, std::map<qint64, Row>> savepoints_;
    std::uint64_t revision_ = 1;
    qint64 nextId_;
};

inline dp::AttributeDefinitionPointer attribute(const char* name, int type,
                                                dp::SimpleAttributeDefinition::Options options = {}) {
    return dp::AttributeDefinitionPointer(
        new dp::SimpleAttributeDefinition(QString::fromUtf8(name), type, options));
}

} // namespace orvane::testing
