#pragma once

#include "platform/Export.h"
#include "platform/sql/tree/OperationCode.h"

#include <QBitArray>
#include <QFlags>

#include <cstdint>
#include <span>

namespace orvane::sql {

/// The number of a function that the dialect knows, 1 to 700. Hosts store the numbers: they never change, and
/// 48, 56 and 57 stay free. The functions themselves are SQLite's, SpatiaLite's and the engine's.
enum class FunctionName : std::uint16_t {};

constexpr int functionNameLimit = 701;

/// What the dialect knows of a function.
struct FunctionInfo {
    enum TypeMask { Scalar = 1, Aggregate = 2, Window = 8 };
    Q_DECLARE_FLAGS(TypeMasks, TypeMask)

    FunctionName code;
    const char* name; ///< as this dialect spells it; letter case makes no difference in a call
    TypeMask types;   ///< one or more of the bits
};
Q_DECLARE_OPERATORS_FOR_FLAGS(FunctionInfo::TypeMasks)

/// Every function, by ascending code.
ORVANE_PLATFORM_EXPORT std::span<const FunctionInfo> functionInfos();

struct FunctionNameInfo {
    /// The name in UTF-8; null for a number that no function has.
    ORVANE_PLATFORM_EXPORT static const char* name(FunctionName code);
};

/// A set of functions. Any thread, one at a time.
class ORVANE_PLATFORM_EXPORT FunctionSet {
public:
    /// Makes room for codes below `limit`; fillByMask does so by itself, once for each growth.
    void reserve(int limit);
    /// Adds (or takes out, when `contained` is false) every function that is of one of the kinds.
    void fillByMask(FunctionInfo::TypeMasks mask, bool contained);

    bool contains(FunctionName code) const;
    int count() const { return codes_.count(true); }

private:
    QBitArray codes_;
};

/// A set of operators.
class ORVANE_PLATFORM_EXPORT OperatorSet {
public:
    OperatorSet() = default;
    /// Bit n stands for the operator of code n.
    explicit OperatorSet(QBitArray codes) : codes_(std::move(codes)) {}

    bool contains(OperationCode code) const;
    int count() const { return codes_.count(true); }

private:
    QBitArray codes_;
};

} // namespace orvane::sql
