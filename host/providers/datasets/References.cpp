#include "host/providers/datasets/References.h"

#include "host/providers/datasets/Archive.h"
#include "host/providers/datasets/FileChecks.h"
#include "host/providers/datasets/FileOpening.h"
#include "host/providers/datasets/GdalErrors.h"
#include "host/providers/datasets/SqliteConfinement.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cpl_minixml.h>
#include <cpl_vsi.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace orvane::files {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(orvane::files::References)
};

struct XmlDestroyer {
    void operator()(CPLXMLNode* node) const { CPLDestroyXMLNode(node); }
};
using XmlTree = std::unique_ptr<CPLXMLNode, XmlDestroyer>;

constexpr qint64 mostBytes = 10 << 20;
constexpr int mostNested = 8;

[[noreturn]] void refuse(const QString& file, const QString& reference) {
    throw std::runtime_error(Texts::tr("«%1» ссылается на «%2», а это не файл из его папки; такие ссылки "
                                       "открывает --trust-references")
                                 .arg(file, reference)
                                 .toStdString());
}

[[noreturn]] void raise(const QString& file, const QString& reason) {
    throw std::runtime_error(Texts::tr("Не удалось открыть «%1»: %2").arg(file, reason).toStdString());
}

/// The beginning of a file, or nothing.
QByteArray beginningOf(const QString& path, qint64 most) {
    QByteArray bytes;
    const VsiHandle file(VSIFOpenL(path.toUtf8().constData(), "rb"));
    if (file) {
        bytes.resize(static_cast<int>(most));
        bytes.resize(
            static_cast<int>(VSIFReadL(bytes.data(), 1, static_cast<std::size_t>(most), file.get())));
    }
    return bytes;
}

/// A whole file of bounded size.
QByteArray contentOf(const QString& path) {
    QByteArray bytes = beginningOf(path, mostBytes + 1);
    if (bytes.size() > mostBytes) {
        raise(path, Texts::tr("он слишком велик для файла со ссылками"));
    }
    return bytes;
}

bool isOnDisk(const QString& path) {
    return !path.startsWith(QLatin1String("/vsi"));
}

QString folderOf(const QString& file) {
    if (isOnDisk(file)) {
        return QFileInfo(file).absolutePath();
    }
    // An archive with a single file is the file.
    return isArchive(pathOnDisk(file)) && pathForGdal(pathOnDisk(file)) == file
               ? file
               : file.left(file.lastIndexOf(QLatin1Char('/')));
}

/// The full path of what a file refers to by a path from `base`.
QString referenced(const QString& file, const QString& base, const QString& reference) {
    if (!isOnDisk(file)) {
        const QStringList parts = reference.split(QLatin1Char('/'));
        if (reference.startsWith(QLatin1Char('/')) || reference.contains(QLatin1Char(':')) ||
            parts.contains(QLatin1String(".."))) {
            refuse(file, reference);
        }
        return base + QLatin1Char('/') + reference;
    }
    const QString folder = QFileInfo(folderOf(file)).canonicalFilePath() + QLatin1Char('/');
    const QFileInfo target(QDir(base).absoluteFilePath(reference));
    const QString canonical = target.canonicalFilePath(); // empty where nothing is there
    if (canonical.isEmpty() && QDir::cleanPath(target.absoluteFilePath()).startsWith(folderOf(file))) {
        raise(file, Texts::tr("нет файла «%1», на который он ссылается").arg(reference));
    }
    if (!canonical.startsWith(folder) || !(target.isFile() || target.isDir())) {
        refuse(file, reference);
    }
    return canonical;
}

/// Makes a virtual dataset one that GDAL may open.
class VirtualDataset {
public:
    VirtualDataset(QString file, int depth) : file_(std::move(file)), depth_(depth) {}

    QByteArray confined() {
        const XmlTree tree(CPLParseXMLString(contentOf(file_).constData()));
        CPLXMLNode* const root = tree ? CPLGetXMLNode(tree.get(), "=OGRVRTDataSource") : nullptr;
        if (!root) {
            raise(file_, Texts::tr("в нём нет таблиц в известном формате"));
        }
        if (depth_ > mostNested) {
            raise(file_, Texts::tr("ссылки в нём ведут по кругу"));
        }
        while (root->psChild && root->psChild->eType == CXT_Attribute) { // GDAL knows it by a bare name
            const XmlTree attribute(root->psChild);
            CPLRemoveXMLChild(root, root->psChild);
        }
        confine(root);
        CPLXMLNode* const next = std::exchange(root->psNext, nullptr);
        const CplString text(CPLSerializeXMLTree(root));
        root->psNext = next;
        return text.get();
    }

private:
    void confine(CPLXMLNode* node) {
        for (CPLXMLNode* child = node->psChild; child; child = child->psNext) {
            if (child->eType == CXT_Element) {
                confine(child);
            }
        }
        if (EQUAL(node->pszValue, "OGRVRTLayer")) {
            confineLayer(node);
        }
    }

    void confineLayer(CPLXMLNode* layer) {
        if (const char* const query = CPLGetXMLValue(layer, "SrcSQL", nullptr)) {
            refuse(file_, QString::fromUtf8(query));
        }
        const QString source = QString::fromUtf8(CPLGetXMLValue(layer, "SrcDataSource", ""));
        const bool isRelative = CPLTestBool(CPLGetXMLValue(layer, "SrcDataSource.relativetoVRT", "0"));
        removeAll(layer, "SrcDataSource");
        CPLXMLNode* const element = CPLCreateXMLElementAndValue(
            layer, "SrcDataSource",
            confinedSource(source, isRelative ? folderOf(file_) : QDir::currentPath()).constData());
        CPLAddXMLAttributeAndValue(element, "relativeToVRT", "0");
        confineOptions(layer);
    }

    QByteArray confinedSource(const QString& source, const QString& base) const {
        const QString path = referenced(file_, base, source);
        if (isVirtualDataset(path)) {
            return VirtualDataset(path, depth_ + 1).confined();
        }
        // GDAL will open it with any of its drivers: only one of those that are allowed may know it.
        if (!referringFormatOf(path.toUtf8()).isEmpty()) {
            refuse(file_, source);
        }
        requireOrdinaryFile(path.toUtf8());
        QString reason;
        if (!openFileWithin(Reach::OwnFolder, path.toUtf8(), GDAL_OF_READONLY, {}, reason)) {
            raise(file_, Texts::tr("источник «%1» не открывается: %2").arg(source, reason));
        }
        return path.toUtf8();
    }

    /// Leaves those that say how a text is read, and lets a database be confined.
    void confineOptions(CPLXMLNode* layer) const {
        static const char* const known[] = {"ENCODING",
                                            "SEPARATOR",
                                            "HEADERS",
                                            "AUTODETECT_TYPE",
                                            "KEEP_SOURCE_COLUMNS",
                                            "KEEP_GEOM_COLUMNS",
                                            "X_POSSIBLE_NAMES",
                                            "Y_POSSIBLE_NAMES",
                                            "Z_POSSIBLE_NAMES",
                                            "GEOM_POSSIBLE_NAMES",
                                            "EMPTY_STRING_AS_NULL",
                                            nullptr};
        std::vector<std::pair<QByteArray, QByteArray>> kept{{sqlitePrelude, confiningStatement}};
        const CPLXMLNode* const list = CPLGetXMLNode(layer, "OpenOptions");
        for (CPLXMLNode* item = list ? list->psChild : nullptr; item; item = item->psNext) {
            const QByteArray key(CPLGetXMLValue(item, "key", ""));
            if (item->eType == CXT_Element && CSLFindString(known, key.constData()) < 0) {
                refuse(file_, QString::fromUtf8(key));
            }
            kept.emplace_back(key, CPLGetXMLValue(item, "", ""));
        }
        removeAll(layer, "OpenOptions");
        CPLXMLNode* const options = CPLCreateXMLNode(layer, CXT_Element, "OpenOptions");
        for (const auto& [key, value] : kept) {
            CPLXMLNode* const option = CPLCreateXMLElementAndValue(options, "OOI", value.constData());
            CPLAddXMLAttributeAndValue(option, "key", key.constData());
        }
    }

    static void removeAll(CPLXMLNode* parent, const char* name) {
        while (CPLXMLNode* const node = CPLGetXMLNode(parent, name)) {
            CPLRemoveXMLChild(parent, node);
            const XmlTree removed(node);
        }
    }

    const QString file_;
    const int depth_;
};

/// Where the first element or declaration of an XML text begins; its end where it lies further on.
int endOfProlog(const QByteArray& text) {
    int position = text.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    const auto skip = [&](const char* end) {
        const int found = text.indexOf(end, position);
        position = found < 0 ? text.size() : found + static_cast<int>(std::strlen(end));
    };
    for (;;) {
        while (position < text.size() && std::strchr(" \t\r\n", text[position])) {
            ++position;
        }
        if (text.indexOf("<?", position) == position) {
            skip("?>");
        } else if (text.indexOf("<!--", position) == position) {
            skip("-->");
        } else {
            return position;
        }
    }
}

/// Refuses a document type: for the entities that it declares, some parsers read other files.
void requireNoDocumentType(const QString& path) {
    constexpr qint64 usual = 4096;
    QByteArray text = beginningOf(path, usual);
    int start = endOfProlog(text);
    if (text.size() == usual && start >= usual - 1) {
        text = contentOf(path);
        start = endOfProlog(text);
    }
    if (text.mid(start, 2) == "<!") {
        static const QRegularExpression address(QStringLiteral("(SYSTEM|PUBLIC)\\s*([\"'])(.*?)\\2"));
        const QString type = QString::fromUtf8(text.mid(start, usual));
        const auto match = address.match(type);
        refuse(path, match.hasMatch() ? match.captured(3) : type.section(QLatin1Char('\n'), 0, 0));
    }
}

/// Refuses a link in the place of the notes on a schema, which GDAL writes when there are none.
void requireOwnNotes(const QString& path) {
    const QFileInfo notes(QString::fromUtf8(CPLResetExtension(path.toUtf8().constData(), "gfs")));
    if (isOnDisk(path) && notes.isSymLink()) {
        refuse(path, notes.fileName());
    }
}

/// Refuses a schema that includes files from elsewhere: their names would become those of columns.
void requireNearSchemas(const QString& schema, int depth = 0) {
    const GdalErrorScope errors;
    const XmlTree tree(CPLParseXMLString(beginningOf(schema, mostBytes).constData()));
    CPLStripXMLNamespace(tree.get(), nullptr, TRUE);
    const CPLXMLNode* const root = tree ? CPLGetXMLNode(tree.get(), "=schema") : nullptr;
    for (CPLXMLNode* child = root ? root->psChild : nullptr; child; child = child->psNext) {
        const QString location = QString::fromUtf8(CPLGetXMLValue(child, "schemaLocation", ""));
        if (EQUAL(child->pszValue, "include") && !location.startsWith(QLatin1String("http")) &&
            !location.isEmpty() && QFileInfo::exists(QDir(folderOf(schema)).absoluteFilePath(location))) {
            const QString included = referenced(schema, folderOf(schema), location);
            if (depth < mostNested) {
                requireNearSchemas(included, depth + 1);
            }
        }
    }
}

/// Refuses a view of tables elsewhere, and a table of tables, whose names stand among its values.
void requireNearTables(const QString& table) {
    static const QRegularExpression seamless(QStringLiteral("IsSeamless\"\\s*=\\s*\"TRUE"),
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression view(QStringLiteral("create\\W+view"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression upwards(QStringLiteral("\\S*\\.\\.\\S*"));
    QString text = QString::fromLatin1(contentOf(table));
    if (seamless.match(text).hasMatch()) {
        refuse(table, QStringLiteral("IsSeamless"));
    }
    const bool isView = view.match(text).hasMatch();
    const auto match = upwards.match(text.remove(QLatin1Char('"'))); // which may stand within a name, too
    if (isView && match.hasMatch()) {
        refuse(table, match.captured());
    }
}

} // namespace

bool isVirtualDataset(const QString& path) {
    constexpr int bytesThatGdalLooksAt = 1024;
    return beginningOf(path, bytesThatGdalLooksAt).contains("<OGRVRTDataSource");
}

QByteArray confinedVirtualDataset(const QString& path) {
    return VirtualDataset(path, 0).confined();
}

void requireNearReferences(const QString& path) {
    requireNoDocumentType(path);
    requireOwnNotes(path);
    requireNearSchemas(QString::fromUtf8(CPLResetExtension(path.toUtf8().constData(), "xsd")));
    const bool isFolder = isOnDisk(path) && QFileInfo(path).isDir();
    for (const QString& file : isFolder ? filesIn(path) : QStringList{path}) {
        if (file.endsWith(QLatin1String(".tab"), Qt::CaseInsensitive)) {
            requireNearTables(file);
        }
    }
}

} // namespace orvane::files
