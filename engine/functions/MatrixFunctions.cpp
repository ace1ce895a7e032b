#include <orvane/engine/functions/GeometryEditing.h>

#include "GeometryCall.h"
#include "platform/geometry/editing/Editing.h"
#include "platform/geometry/forms/TextFormats.h"

#include <algorithm>

namespace orvane::engine {

namespace {

using geometry::AffineMap;
using Axis = AffineMap::Axis;

AffineMap matrixOf(const GeometryCall& call, int position) {
    const auto map = sqlite3_value_type(call.value(position)) == SQLITE_BLOB
                         ? AffineMap::fromBlob(call.blob(position))
                         : std::nullopt;
    if (!map) {
        call.reject(position, QT_TRANSLATE_NOOP("orvane::geometry", "нужна матрица"));
    }
    return *map;
}

QByteArray blobOf(const AffineMap& map) {
    const std::string blob = map.toBlob();
    return {blob.data(), static_cast<int>(blob.size())};
}

/// x, y [, z] from an argument on.
AffineMap translationOf(const GeometryCall& call, int first) {
    return AffineMap::translation(call.number(first), call.number(first + 1), call.number(first + 2, 0.0));
}

AffineMap scalingOf(const GeometryCall& call, int first) {
    return AffineMap::scaling(call.number(first), call.number(first + 1), call.number(first + 2, 1.0));
}

} // namespace

void matrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Create", count, context, count, values, [](const GeometryCall& call) {
        AffineMap::Rows rows = AffineMap().rows();
        // The factors row by row, of the plane or of space, then what is added.
        const std::size_t size = call.count() == 0 ? 0 : call.count() == 6 ? 2 : 3;
        int argument = 0;
        for (std::size_t row = 0; row < size; ++row) {
            for (std::size_t column = 0; column < size; ++column) {
                rows[row][column] = call.number(argument++);
            }
        }
        for (std::size_t row = 0; row < size; ++row) {
            rows[row][3] = call.number(argument++);
        }
        return blobOf(AffineMap(rows));
    });
}

void translationMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_CreateTranslate", 2, context, count, values,
             [](const GeometryCall& call) { return blobOf(translationOf(call, 0)); });
}

void scalingMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_CreateScale", 2, context, count, values,
             [](const GeometryCall& call) { return blobOf(scalingOf(call, 0)); });
}

void xRollMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_CreateXRoll", 1, context, count, values,
             [](const GeometryCall& call) { return blobOf(AffineMap::rotation(Axis::X, call.number(0))); });
}

void yRollMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_CreateYRoll", 1, context, count, values,
             [](const GeometryCall& call) { return blobOf(AffineMap::rotation(Axis::Y, call.number(0))); });
}

void zRollMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_CreateZRoll", 1, context, count, values,
             [](const GeometryCall& call) { return blobOf(AffineMap::rotation(Axis::Z, call.number(0))); });
}

void matrixTranslated(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Translate", 3, context, count, values,
             [](const GeometryCall& call) { return blobOf(matrixOf(call, 0).then(translationOf(call, 1))); });
}

void matrixScaled(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Scale", 3, context, count, values,
             [](const GeometryCall& call) { return blobOf(matrixOf(call, 0).then(scalingOf(call, 1))); });
}

void matrixXRolled(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_XRoll", 2, context, count, values, [](const GeometryCall& call) {
        return blobOf(matrixOf(call, 0).then(AffineMap::rotation(Axis::X, call.number(1))));
    });
}

void matrixYRolled(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_YRoll", 2, context, count, values, [](const GeometryCall& call) {
        return blobOf(matrixOf(call, 0).then(AffineMap::rotation(Axis::Y, call.number(1))));
    });
}

void matrixZRolled(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_ZRoll", 2, context, count, values, [](const GeometryCall& call) {
        return blobOf(matrixOf(call, 0).then(AffineMap::rotation(Axis::Z, call.number(1))));
    });
}

void matrixProduct(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Multiply", 2, context, count, values,
             [](const GeometryCall& call) { return blobOf(matrixOf(call, 1).then(matrixOf(call, 0))); });
}

void matrixInverse(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Invert", 1, context, count, values, [](const GeometryCall& call) {
        const auto inverse = matrixOf(call, 0).inverse();
        return inverse ? blobOf(*inverse) : QByteArray();
    });
}

void matrixDeterminant(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Determinant", 1, context, count, values,
             [](const GeometryCall& call) { return matrixOf(call, 0).determinant(); });
}

void isInvertibleMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_IsInvertible", 1, context, count, values,
             [](const GeometryCall& call) { return matrixOf(call, 0).inverse().has_value(); });
}

void isMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_IsValid", 1, context, count, values, [](const GeometryCall& call) {
        return sqlite3_value_type(call.value(0)) == SQLITE_BLOB &&
               AffineMap::fromBlob(call.blob(0)).has_value();
    });
}

void matrixAsText(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_AsText", 1, context, count, values, [](const GeometryCall& call) {
        std::string text;
        const AffineMap::Rows rows = matrixOf(call, 0).rows();
        for (const auto& row : rows) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                geometry::appendNumber(row[i], 10, text);
                text += i + 1 < row.size() ? ' ' : '\n';
            }
        }
        return text + "0 0 0 1";
    });
}

void transformedByMatrix(sqlite3_context* context, int count, sqlite3_value** values) {
    evaluate("ATM_Transform", 2, context, count, values, [](const GeometryCall& call) {
        const GeometryPtr moved = geometry::moved(call.geometry(0), matrixOf(call, 1));
        return call.isGiven(2) ? withCoordSystem(moved, call.coordSystem(2)) : moved;
    });
}

} // namespace orvane::engine
