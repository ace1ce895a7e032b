#include "FolderTable.h"

#include <host/adaptor/Adaptor.h>
#include <platform/dp/DataCatalog.h>

#include <QDateTime>
#include <QFileInfo>

namespace dp = orvane::dp;

namespace {

/// One scan. It owns its list of files, so that it goes on when the table is closed.
class FolderCursor : public dp::Cursor {
public:
    FolderCursor(QFileInfoList files, std::int64_t limit) : files_(std::move(files)), left_(limit) {}

    bool next() override { return (left_ < 0 || left_-- > 0) && ++row_ < files_.size(); }
    dp::FeatureId featureId() override { return dp::FeatureId(files_[row_].fileName()); }

    /// Texts point into the cursor and are good until it moves: the engine copies what it keeps.
    dp::Cell cell(int attribute) override {
        const QFileInfo& file = files_[row_];
        switch (attribute) {
        case FolderTable::Name: return text(Name, file.fileName());
        case FolderTable::Suffix: return file.suffix().isEmpty() ? dp::Cell() : text(Suffix, file.suffix());
        case FolderTable::Size: return dp::Cell::ofInteger(file.size());
        case FolderTable::Changed:
            return text(Changed, file.lastModified().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")));
        default: return {};
        }
    }

private:
    enum Kept { Name, Suffix, Changed };

    dp::Cell text(Kept kept, const QString& value) {
        texts_[kept] = value.toUtf8();
        return dp::Cell::ofText({texts_[kept].constData(), static_cast<std::size_t>(texts_[kept].size())});
    }

    QFileInfoList files_;
    QByteArray texts_[3];
    std::int64_t left_;
    int row_ = -1;
};

dp::AttributeDefinitionPointer column(const char* name, int type) {
    return dp::AttributeDefinitionPointer(new dp::SimpleAttributeDefinition(QString::fromLatin1(name), type));
}

} // namespace

FolderTable::FolderTable(QString name, QDir directory)
    : Table(std::move(name)), directory_(std::move(directory)),
      schema_(std::make_shared<dp::TableSchema>(QVector<dp::AttributeDefinitionPointer>{
          column("name", QMetaType::QString), column("suffix", QMetaType::QString),
          column("size", QMetaType::LongLong), column("changed", QMetaType::QDateTime)})) {}

std::shared_ptr<const dp::TableSchema> FolderTable::schema() const {
    return schema_;
}

std::unique_ptr<dp::Cursor> FolderTable::openCursor(const dp::ScanRequest& request) {
    if (!directory_.exists())
        throw std::runtime_error("there is no directory " + directory_.path().toStdString());
    QFileInfoList files;
    if (request.ids) {
        for (const dp::FeatureId& id : *request.ids) {
            if (const QFileInfo file(directory_, id.value().toString()); file.isFile())
                files += file;
        }
    } else {
        files = directory_.entryInfoList(QDir::Files, QDir::Name);
    }
    // The terms of the request may be left to the engine; its limit counts rows that satisfy them.
    return std::make_unique<FolderCursor>(std::move(files), request.terms.empty() ? request.limit : -1);
}

std::uint64_t FolderTable::revision() const {
    return static_cast<std::uint64_t>(QFileInfo(directory_.path()).lastModified().toMSecsSinceEpoch());
}

QString FolderExtension::virtualTableModule(const dp::DataObject* object, QList<QVariant>& arguments) {
    if (!dynamic_cast<const FolderTable*>(object))
        return {};
    arguments << object->name();
    return QString::fromLatin1(orvane::adaptor::moduleName());
}

void FolderExtension::connectCatalog(dp::DataCatalog& catalog) {
    EngineExtension::connectCatalog(catalog);
    connect(&catalog, &dp::DataCatalog::dataObjectRenamed, this, &FolderExtension::rename,
            Qt::QueuedConnection);
}
