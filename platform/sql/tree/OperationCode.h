#pragma once

namespace orvane::sql {

/// The operators of the dialect. The numbers are part of the contract with hosts (operator catalogues store
/// them as bits) and never change. Case, Cast and Collate are constructs rather than operators and stand in
/// no catalogue.
enum class OperationCode : int {
    None = 0,
    Or = 1,
    Xor = 2,
    And = 3,
    Not = 4,
    Equal = 5,
    NotEqual = 6,
    Less = 7,
    Greater = 8,
    IsNull = 9,
    Case = 10,
    IsNotNull = 11,
    Exists = 12,
    Like = 13,
    NotLike = 14,
    LessOrEqual = 15,
    GreaterOrEqual = 16,
    IsDistinctFrom = 17,
    Glob = 18,
    In = 19,
    NotIn = 20,
    Between = 21,
    NotBetween = 22,
    Is = 23,
    IsNot = 24,
    Join = 25, ///< `&`, joins two texts
    Negate = 26,
    UnaryPlus = 27,
    NotGlob = 28,
    Cast = 29,
    Add = 30,
    Subtract = 31,
    Multiply = 32,
    Divide = 33,
    Quotient = 34, ///< `\`, integer quotient
    Mod = 35,
    Power = 36,
    Contains = 37,
    ContainsPart = 38,
    ContainsEntire = 39,
    Intersects = 40,
    Within = 41,
    PartlyWithin = 42,
    EntirelyWithin = 43,
    Collate = 44,
    RegExp = 45,
    NotRegExp = 46
};

constexpr int operationCodeCount = 47;

/// How tightly operators bind, loosest first. `Primary` is what needs no parentheses anywhere.
enum class Precedence : int {
    Lowest = 0,
    Or,
    Xor,
    And,
    Not,
    Comparison,
    Join,
    Sum,
    Product,
    Sign,
    Power,
    Collate,
    Primary
};

/// The precedence of an operator; Case and Cast bracket themselves and are `Primary`.
constexpr Precedence precedenceOf(OperationCode code) {
    switch (code) {
    case OperationCode::Or: return Precedence::Or;
    case OperationCode::Xor: return Precedence::Xor;
    case OperationCode::And: return Precedence::And;
    case OperationCode::Not: return Precedence::Not;
    case OperationCode::Join: return Precedence::Join;
    case OperationCode::Add:
    case OperationCode::Subtract: return Precedence::Sum;
    case OperationCode::Multiply:
    case OperationCode::Divide:
    case OperationCode::Quotient:
    case OperationCode::Mod: return Precedence::Product;
    case OperationCode::Negate:
    case OperationCode::UnaryPlus: return Precedence::Sign;
    case OperationCode::Power: return Precedence::Power;
    case OperationCode::Collate: return Precedence::Collate;
    case OperationCode::None:
    case OperationCode::Case:
    case OperationCode::Cast:
    case OperationCode::Exists: return Precedence::Primary;
    default: return Precedence::Comparison;
    }
}

/// Three-valued logic.
struct TernaryLogic {
    enum Value : int { False = 0, Unknown = 1, True = 2 };
};

} // namespace orvane::sql
