#include "platform/cs/SystemDescription.h"

#include "platform/cs/CoordSystemImpl.h"

namespace orvane::cs {

namespace {

QString textOf(const char* text) {
    return text ? QString::fromUtf8(text) : QString();
}

QString nameOf(const ProjPtr& object) {
    return object ? textOf(proj_get_name(object.get())) : QString();
}

struct Made {
    std::shared_ptr<PJ_CONTEXT> context;
    ProjPtr object;
};

/// Null for a system that is none of PROJ's.
Made projObjectOf(const CoordSystem& system) {
    Made made{projContext(), nullptr};
    if (const auto* known = dynamic_cast<const ProjCoordSystem*>(&system)) {
        made.object = known->projObject(made.context.get());
    }
    return made;
}

SystemDescription::Axis axisOf(PJ_CONTEXT* context, const PJ* axes, int index, QString* unit) {
    const char* name = nullptr;
    const char* direction = nullptr;
    const char* unitName = nullptr;
    if (!proj_cs_get_axis_info(context, axes, index, &name, nullptr, &direction, nullptr, &unitName, nullptr,
                               nullptr)) {
        return {};
    }
    if (unit) {
        *unit = textOf(unitName);
    }
    return {textOf(name), textOf(direction)};
}

} // namespace

SystemDescription describe(const CoordSystem& system) {
    SystemDescription description;
    const Made made = projObjectOf(system);
    PJ_CONTEXT* const context = made.context.get();
    if (!made.object) {
        return description;
    }
    description.isGeographic = system.isGeographic();
    ProjPtr horizontal(proj_clone(context, made.object.get()));
    if (proj_get_type(horizontal.get()) == PJ_TYPE_COMPOUND_CRS) {
        horizontal.reset(proj_crs_get_sub_crs(context, horizontal.get(), 0));
    } else if (proj_get_type(horizontal.get()) == PJ_TYPE_BOUND_CRS) {
        horizontal.reset(proj_get_source_crs(context, horizontal.get()));
    }
    if (!horizontal) {
        return description;
    }
    if (const ProjPtr axes{proj_crs_get_coordinate_system(context, horizontal.get())}) {
        description.first = axisOf(context, axes.get(), 0, &description.unit);
        description.second = axisOf(context, axes.get(), 1, nullptr);
    }
    const QString& direction = description.first.orientation;
    description.hasFlippedAxes = direction == QLatin1String("north") || direction == QLatin1String("south");
    description.datum = nameOf(ProjPtr(proj_crs_get_datum_forced(context, horizontal.get())));
    description.ellipsoid = nameOf(ProjPtr(proj_get_ellipsoid(context, horizontal.get())));
    description.primeMeridian = nameOf(ProjPtr(proj_get_prime_meridian(context, horizontal.get())));
    if (const ProjPtr conversion{proj_crs_get_coordoperation(context, horizontal.get())};
        conversion && proj_get_type(horizontal.get()) == PJ_TYPE_PROJECTED_CRS) {
        const char* method = nullptr;
        if (proj_coordoperation_get_method_info(context, conversion.get(), &method, nullptr, nullptr)) {
            description.projection = textOf(method);
        }
    }
    return description;
}

QString wktOf(const CoordSystem& system, WktForm form, bool isIndented, int blanks) {
    constexpr PJ_WKT_TYPE forms[] = {PJ_WKT2_2019, PJ_WKT2_2015, PJ_WKT1_GDAL, PJ_WKT1_ESRI};
    const std::string width = "INDENTATION_WIDTH=" + std::to_string(blanks);
    const char* const options[] = {isIndented ? "MULTILINE=YES" : "MULTILINE=NO", width.c_str(), nullptr};
    const Made made = projObjectOf(system);
    return made.object ? textOf(proj_as_wkt(made.context.get(), made.object.get(),
                                            forms[static_cast<std::size_t>(form)], options))
                       : QString();
}

QString projTextOf(const CoordSystem& system) {
    const Made made = projObjectOf(system);
    return made.object
               ? textOf(proj_as_proj_string(made.context.get(), made.object.get(), PJ_PROJ_5, nullptr))
               : QString();
}

std::shared_ptr<CoordSystem> systemOfAuthority(const QString& authority, const QString& code) {
    const auto context = projContext();
    const ProjPtr object(proj_create_from_database(context.get(), authority.toUpper().toUtf8().constData(),
                                                   code.toUtf8().constData(), PJ_CATEGORY_CRS, 0, nullptr));
    if (!object) {
        return nullptr;
    }
    const auto* factory = CoordSysFactory::defaultCoordSysFactory();
    return authority.compare(QLatin1String("EPSG"), Qt::CaseInsensitive) == 0
               ? factory->createFromEpsg(code.toInt())
               : factory->createFromWkt(
                     textOf(proj_as_wkt(context.get(), object.get(), PJ_WKT2_2019, nullptr)));
}

} // namespace orvane::cs
