#pragma once

#include <orvane/EngineExtension.h>
#include <platform/dp/Table.h>

#include <QDir>

/// The files of a directory as a table: name, suffix, size in bytes and time of the last change.
class FolderTable : public orvane::dp::Table {
public:
    enum Column { Name, Suffix, Size, Changed };

    FolderTable(QString name, QDir directory);

    std::shared_ptr<const orvane::dp::TableSchema> schema() const override;
    std::unique_ptr<orvane::dp::Cursor> openCursor(const orvane::dp::ScanRequest& request) override;
    /// Changes with the directory, so that indices made of its files are not used any longer.
    std::uint64_t revision() const override;

private:
    QDir directory_;
    std::shared_ptr<const orvane::dp::TableSchema> schema_;
};

/// Shows folder tables in the engine database, through the module of the table adaptor.
class FolderExtension : public orvane::EngineExtension {
public:
    using EngineExtension::EngineExtension;

protected:
    QString virtualTableModule(const orvane::dp::DataObject* object, QList<QVariant>& arguments) override;
    void connectCatalog(orvane::dp::DataCatalog& catalog) override;
    /// The adaptor's module renames its tables.
    bool renameRealized() const override { return true; }
};
