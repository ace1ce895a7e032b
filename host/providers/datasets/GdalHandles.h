#pragma once

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <memory>
#include <type_traits>

/// Owner types of GDAL's handles.
namespace orvane::files {

struct DatasetCloser {
    void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using DatasetHandle = std::unique_ptr<std::remove_pointer_t<GDALDatasetH>, DatasetCloser>;

struct FeatureDestroyer {
    void operator()(OGRFeatureH feature) const { OGR_F_Destroy(feature); }
};
using FeatureHandle = std::unique_ptr<std::remove_pointer_t<OGRFeatureH>, FeatureDestroyer>;

struct GeometryDestroyer {
    void operator()(OGRGeometryH geometry) const { OGR_G_DestroyGeometry(geometry); }
};
using GeometryHandle = std::unique_ptr<std::remove_pointer_t<OGRGeometryH>, GeometryDestroyer>;

struct ReferenceReleaser {
    void operator()(OGRSpatialReferenceH reference) const { OSRRelease(reference); }
};
using ReferenceHandle = std::unique_ptr<std::remove_pointer_t<OGRSpatialReferenceH>, ReferenceReleaser>;

struct FieldDestroyer {
    void operator()(OGRFieldDefnH field) const { OGR_Fld_Destroy(field); }
};
using FieldHandle = std::unique_ptr<std::remove_pointer_t<OGRFieldDefnH>, FieldDestroyer>;

/// A file that is read, on the disk or in an archive.
struct VsiCloser {
    void operator()(VSILFILE* file) const { VSIFCloseL(file); }
};
using VsiHandle = std::unique_ptr<VSILFILE, VsiCloser>;

struct CplFree {
    void operator()(void* memory) const { CPLFree(memory); }
};
using CplString = std::unique_ptr<char, CplFree>;

/// An option of GDAL for this thread while the object lives.
class ThreadOption {
public:
    ThreadOption(const char* name, const char* value) : name_(name) {
        CPLSetThreadLocalConfigOption(name, value);
    }
    ~ThreadOption() { CPLSetThreadLocalConfigOption(name_, nullptr); }
    ThreadOption(const ThreadOption&) = delete;
    ThreadOption& operator=(const ThreadOption&) = delete;

private:
    const char* name_;
};

} // namespace orvane::files
