// The table of phase and operation that tells what an edit callback does, as code.
//
// The first rule that matches acts; where none does there is nothing to do. A rule that an earlier one
// covers does not compile: noneHidden() goes into a static_assert beside each table.
#pragma once

#include "frame/call.h"

#include <cstddef>
#include <type_traits>

namespace frame {

// A set of small numbers: of phases or of operations.
template <class Element>
struct SetOf {
    unsigned bits = 0;

    constexpr SetOf() = default;
    constexpr SetOf(Element element)
        : bits(1u << element)
    {
    }
    constexpr bool has(Element element) const { return bits >> element & 1u; }
    constexpr bool covers(SetOf other) const { return (other.bits & ~bits) == 0; }
    friend constexpr SetOf operator|(SetOf a, SetOf b)
    {
        SetOf both;
        both.bits = a.bits | b.bits;
        return both;
    }
};

using Phases = SetOf<EditPhase>;
using EditOps = SetOf<EditOp>;

inline constexpr Phases inValidate = validate, inApply = apply, inCommit = commit, inRollback = rollback;
inline constexpr Phases anyPhase = inValidate | inApply | inCommit | inRollback;
inline constexpr EditOps onMerge = merge, onReplace = replace, onCreate = create, onDelete = del,
                         onLoad = load;
inline constexpr EditOps onWrite = onMerge | onReplace | onCreate;
inline constexpr EditOps anyOp = onWrite | onDelete | onLoad;

template <class... Keys>
struct Rule {
    Phases when;
    EditOps on;
    Status (*act)(const EditCall &, Keys...);
};

// True when no rule stands behind one that always matches first.
template <class... Keys, std::size_t N>
constexpr bool noneHidden(const Rule<Keys...> (&rules)[N])
{
    for (std::size_t later = 1; later < N; ++later)
        for (std::size_t earlier = 0; earlier < later; ++earlier)
            if (rules[earlier].when.covers(rules[later].when) && rules[earlier].on.covers(rules[later].on))
                return false;
    return true;
}

constexpr bool isKnown(EditPhase phase)
{
    return phase >= validate && phase <= rollback;
}
constexpr bool isKnown(EditOp op)
{
    return op >= merge && op <= load;
}

template <class... Keys, std::size_t N>
Status run(const Rule<Keys...> (&rules)[N], const EditCall &call, std::type_identity_t<Keys>... keys)
{
    if (!isKnown(call.phase) || !isKnown(call.op))
        return INTERNAL_ERROR();
    for (const auto &rule : rules)
        if (rule.when.has(call.phase) && rule.on.has(call.op))
            return rule.act(call, keys...);
    return kOk;
}

} // namespace frame
