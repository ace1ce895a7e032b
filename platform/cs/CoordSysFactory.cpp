#include "platform/cs/CoordSystem.h"

#include "platform/cs/CoordSystemImpl.h"

#include <QHash>
#include <QReadWriteLock>

#include <cstdlib>
#include <stdexcept>

namespace orvane::cs {

CoordSysFactory::~CoordSysFactory() = default;

namespace {

using SystemPtr = std::shared_ptr<CoordSystem>;

/// Codes that every edition of the EPSG registry holds: they need no look at PROJ's database, whose first
/// access costs milliseconds. WGS 84, web Mercator, ETRS89, NAD83, Pulkovo 1942, GSK-2011, and the UTM zones
/// of WGS 84.
bool isWellKnown(int code) {
    switch (code) {
    case 4326:
    case 3857:
    case 4258:
    case 4269:
    case 4284:
    case 7683: return true;
    default: return (code >= 32601 && code <= 32660) || (code >= 32701 && code <= 32760);
    }
}

bool isCoordinateSystem(const PJ* object) {
    switch (proj_get_type(object)) {
    case PJ_TYPE_GEOCENTRIC_CRS:
    case PJ_TYPE_TEMPORAL_CRS:
    case PJ_TYPE_VERTICAL_CRS: return false;
    default: return proj_is_crs(object);
    }
}

ProjPtr createSystem(PJ_CONTEXT* context, const char* definition) {
    ProjPtr object(proj_create(context, definition));
    if (object && !isCoordinateSystem(object.get())) {
        object.reset();
    }
    return object;
}

/// The EPSG code that a definition names itself or that it is provably equal to; 0 for none.
int epsgOf(PJ_CONTEXT* context, const PJ* system) {
    const char* authority = proj_get_id_auth_name(system, 0);
    const char* code = proj_get_id_code(system, 0);
    if (authority && code && qstricmp(authority, "EPSG") == 0) {
        return std::atoi(code);
    }
    struct ListDeleter {
        void operator()(PJ_OBJ_LIST* list) const { proj_list_destroy(list); }
    };
    int* confidence = nullptr;
    const std::unique_ptr<PJ_OBJ_LIST, ListDeleter> found(
        proj_identify(context, system, "EPSG", nullptr, &confidence));
    const std::unique_ptr<int, void (*)(int*)> confidenceOwner(confidence, proj_int_list_destroy);
    const int count = found ? proj_list_get_count(found.get()) : 0;
    for (int i = 0; i < count && confidence[i] >= 70; ++i) {
        const ProjPtr candidate(proj_list_get(context, found.get(), i));
        if (candidate && proj_is_equivalent_to_with_ctx(context, candidate.get(), system,
                                                        PJ_COMP_EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS)) {
            return std::atoi(proj_get_id_code(candidate.get(), 0));
        }
    }
    return 0;
}

/// Keeps what it has made, so that equal texts give one object; strange texts in great number are not kept.
class ProjCoordSysFactory final : public CoordSysFactory {
public:
    SystemPtr createFromEpsg(int code) const override {
        if (code <= 0) {
            throwUnknown(code);
        }
        const QString key = QStringLiteral("epsg:%1").arg(code);
        if (SystemPtr known; find(key, known)) {
            if (!known) {
                throwUnknown(code);
            }
            return known;
        }
        const std::string definition = "EPSG:" + std::to_string(code);
        if (!isWellKnown(code) && !createSystem(projContext().get(), definition.c_str())) {
            insert(key, nullptr);
            throwUnknown(code);
        }
        return insert(key, std::make_shared<ProjCoordSystem>(code, key, definition));
    }

    SystemPtr createFromTaggedString(const QString& text) const override {
        if (SystemPtr known; find(text, known)) {
            return known;
        }
        const QString trimmed = text.trimmed();
        SystemPtr made;
        if (trimmed.startsWith(QLatin1String("epsg:"), Qt::CaseInsensitive)) {
            made = fromCodeText(trimmed.mid(5));
        } else if (trimmed.startsWith(QLatin1String("proj:"), Qt::CaseInsensitive)) {
            made = fromProjText(trimmed.mid(5).trimmed());
        } else if (trimmed.startsWith(QLatin1String("wkt:"), Qt::CaseInsensitive)) {
            made = fromWktText(trimmed.mid(4).trimmed());
        }
        return insert(text, made);
    }

    SystemPtr createFromWkt(const QString& wkt) const override {
        return createFromTaggedString(QLatin1String("wkt:") + wkt);
    }

private:
    [[noreturn]] static void throwUnknown(int code) {
        throw std::runtime_error("unknown EPSG code of a coordinate system: " + std::to_string(code));
    }

    SystemPtr fromCodeText(const QString& digits) const {
        bool isNumber = false;
        const int code = digits.trimmed().toInt(&isNumber);
        if (!isNumber || code <= 0) {
            return nullptr;
        }
        try {
            return createFromEpsg(code);
        } catch (const std::runtime_error&) {
            return nullptr;
        }
    }

    static SystemPtr fromProjText(const QString& text) {
        QString parameters = text;
        if (!parameters.contains(QLatin1String("+type=crs"))) {
            parameters += QLatin1String(" +type=crs");
        }
        if (!text.startsWith(QLatin1Char('+'))) {
            return nullptr;
        }
        std::string definition = parameters.toStdString();
        if (!createSystem(projContext().get(), definition.c_str())) {
            return nullptr;
        }
        return std::make_shared<ProjCoordSystem>(0, QLatin1String("proj:") + text, std::move(definition));
    }

    SystemPtr fromWktText(const QString& text) const {
        const auto context = projContext();
        std::string definition = text.toStdString();
        if (proj_context_guess_wkt_dialect(context.get(), definition.c_str()) == PJ_GUESSED_NOT_WKT) {
            return nullptr;
        }
        const ProjPtr system = createSystem(context.get(), definition.c_str());
        if (!system) {
            return nullptr;
        }
        if (const int code = epsgOf(context.get(), system.get()); code > 0) {
            if (const SystemPtr known = fromCodeText(QString::number(code))) {
                return known;
            }
        }
        return std::make_shared<ProjCoordSystem>(0, QLatin1String("wkt:") + text, std::move(definition));
    }

    bool find(const QString& key, SystemPtr& found) const {
        const QReadLocker lock(&lock_);
        const auto position = systems_.constFind(key);
        if (position == systems_.constEnd()) {
            return false;
        }
        found = *position;
        return true;
    }

    /// What is stored under the key afterwards: the first one wins.
    SystemPtr insert(const QString& key, const SystemPtr& made) const {
        constexpr int limit = 4096;
        const QWriteLocker lock(&lock_);
        if (const auto position = systems_.constFind(key); position != systems_.constEnd()) {
            return *position;
        }
        if (systems_.size() < limit) {
            systems_.insert(key, made);
        }
        return made;
    }

    mutable QReadWriteLock lock_;
    mutable QHash<QString, SystemPtr> systems_;
};

} // namespace

const CoordSysFactory* CoordSysFactory::defaultCoordSysFactory() {
    static const ProjCoordSysFactory factory;
    return &factory;
}

} // namespace orvane::cs
