#pragma once

#include "platform/Export.h"

#include <QObject>

#include <memory>

namespace orvane::geometry {

class Geometry;

/// A plug-in's idea of what resembles a geometry (a simplification, a symbol, a neighbour of its own data).
/// Objects live as long as the engine that they are registered with, which asks them from any thread.
class ORVANE_PLATFORM_EXPORT ResemblanceExtension : public QObject {
    Q_OBJECT
public:
    /// What all extensions agree on.
    struct Setup {
        explicit Setup(double initialTolerance) : tolerance(initialTolerance) {}
        /// Distance, in units of the coordinates, up to which shapes count as alike. 0: exactly alike.
        double tolerance;
    };

    explicit ResemblanceExtension(QObject* parent = nullptr);
    ~ResemblanceExtension() override;

    /// The geometry that resembles this one; null when the extension has none.
    virtual std::shared_ptr<const Geometry> resemblance(const std::shared_ptr<const Geometry>& geometry,
                                                        const Setup& setup) = 0;
    /// Called once on registration: lets the extension change what is agreed on.
    virtual void adjustSetup(Setup& setup);
};

} // namespace orvane::geometry
