#pragma once

#include "platform/cs/CoordSystem.h"
#include "platform/cs/ProjContext.h"

#include <mutex>
#include <string>

namespace orvane::cs {

/// A coordinate system by the text from which PROJ makes it. What only PROJ's database can tell is asked for
/// on first use, so that a system with a known code costs nothing while only its code is needed.
class ProjCoordSystem final : public CoordSystem {
public:
    /// `definition` is what PROJ reads; `epsg` 0 for none.
    ProjCoordSystem(int epsg, QString taggedString, std::string definition);
    ~ProjCoordSystem() override;

    int epsg() const override { return epsg_; }
    QString taggedString() const override { return taggedString_; }
    QString name() const override { return facts().name; }
    bool isGeographic() const override { return facts().isGeographic; }
    double unitFactor() const override { return facts().unitFactor; }
    double semiMajorAxis() const override { return facts().semiMajorAxis; }
    double inverseFlattening() const override { return facts().inverseFlattening; }
    bool equals(const CoordSystem& other) const override;

    /// A number that no other system of the process has or had: the key of caches.
    std::uint64_t identity() const { return identity_; }
    const std::string& definition() const { return definition_; }
    /// The PROJ object in the context; null when PROJ cannot make it.
    ProjPtr projObject(PJ_CONTEXT* context) const;

private:
    struct Facts {
        QString name;
        bool isGeographic = false;
        double unitFactor = 1.0;
        double semiMajorAxis = 6378137.0;
        double inverseFlattening = 298.257223563;
    };

    const Facts& facts() const;

    int epsg_;
    QString taggedString_;
    std::string definition_;
    std::uint64_t identity_;
    mutable std::once_flag factsOnce_;
    mutable Facts facts_;
};

} // namespace orvane::cs
