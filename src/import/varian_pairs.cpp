// ni, phase, array and f1coef say what the rows of a file are.
#include "import/varian_pairs.h"

#include <algorithm>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

// The parameters of an evolution time.
struct EvolutionNames {
    const char *increments, *phase, *coefficients, *width;
};
constexpr EvolutionNames evolutions[] = {{"ni", "phase", "f1coef", "sw1"}, {"ni2", "phase2", "f2coef", "sw2"}};

uint64_t increments(const Procpar& p, const EvolutionNames& names) {
    const double count = p.number_or_zero(names.increments);
    return count >= 1 && count <= 2147483647.0 ? static_cast<uint64_t>(count) : 1;
}

// f1coef: two rows give the real part of the interferogram, RR1 Re S1 + IR1 Im S1 + RR2 Re S2 + IR2 Im S2, then likewise
// its imaginary part. As the real parts of complex rows these are A = (RR1 - i IR1) S1 + (RR2 - i IR2) S2, and B.
std::optional<Combination> coefficients(const std::string& text) {
    const auto fields = split_fields(text, " ,\t");
    if (fields.size() != 8) return {};
    Combination c;
    for (size_t k = 0; k < 4; ++k) {
        const std::complex<double> value(number_or_zero(fields[2 * k]), 0 - number_or_zero(fields[2 * k + 1]));
        if (!(std::abs(value) < 1e6)) return {};
        c[k] = std::complex<float>(value);
    }
    return c;
}

bool same(std::complex<float> a, std::complex<float> b) { return std::abs(a - b) <= 1e-4F * std::abs(b); }

// Rows that a process type describes stay as they are in the file; their signs go into the sense. What the coefficients
// turn by, the same for every point of dimension 2, is left to the phase correction.
void describe_pairs(const Combination& c, RowPlan& plan) {
    constexpr std::complex<float> zero = 0, i(0, 1);
    const auto& [a1, a2, b1, b2] = c;
    plan.process_type = "2D_HYPERCOMPLEX";
    if (a2 == zero && b1 == zero && a1 != zero && (same(b2, a1) || same(b2, -a1))) {
        plan.sense = same(b2, a1) ? -1 : 1;
    } else if (a1 != zero && same(std::abs(a1), std::abs(a2)) &&
               ((same(b1, i * a1) && same(b2, -i * a2)) || (same(b1, -i * a1) && same(b2, i * a2)))) {
        plan.process_type = "2D_ECHOANTIECHO";
        // Echo and anti-echo are put together to (P + N)/2 and (P - N)/2i, the negative of i (S1 - S2)/2.
        plan.sense = same(b1, i * a1) ? 1 : -1;
    } else {
        plan.sense = -1;
        plan.combination = c;
    }
}

void plan_2d(const Procpar& p, const EvolutionNames& names, uint64_t rows, RowPlan& plan) {
    const auto& phases = p.numbers(names.phase);
    const bool paired = rows % 2 == 0 && (phases.size() == 2 || (phases.empty() && rows == 2 * increments(p, names)));
    const auto combination = coefficients(p.text(names.coefficients));
    if (paired && combination)
        describe_pairs(*combination, plan);
    else if (paired)
        plan.process_type = "2D_HYPERCOMPLEX";
    else if (phases.size() == 1 && phases[0] == 3)
        plan.process_type = "2D_TPPI";
    else
        plan.process_type = "2D_MAGNITUDE";
}

// The loops of the experiment that are no phase cycles of its evolution times.
std::vector<std::vector<std::string>> other_loops(const Procpar& p) {
    auto loops = array_loops(p.text("array"));
    std::erase_if(loops, [](const auto& names) { return names[0] == "phase" || names[0] == "phase2"; });
    return loops;
}

// A single loop has one value a row; of nested ones no row has a value of its own.
void plan_series(const Procpar& p, const std::vector<std::vector<std::string>>& loops, uint64_t rows, RowPlan& plan) {
    plan.series = true;
    if (loops.size() != 1) return;
    for (const std::string& name : loops[0]) {
        if (p.numbers(name).size() != rows) continue;
        plan.values = p.numbers(name);
        return;
    }
}

}  // namespace

RowPlan plan_rows(const Procpar& p, uint64_t rows) {
    RowPlan plan;
    plan.points[1] = static_cast<int32_t>(rows);
    if (rows < 2) return plan;
    const uint64_t ni = increments(p, evolutions[0]), ni2 = increments(p, evolutions[1]);
    const auto loops = other_loops(p);
    // Without a word on increments the rows are those of an evolution time that has a width.
    const bool evolves = ni > 1 || ni2 > 1 || (p.numbers("ni").empty() && p.number_or_zero("sw1") > 0);
    if (!loops.empty() || !evolves) {
        plan_series(p, loops, rows, plan);
    } else if (ni > 1 && ni2 > 1 && rows % ni2 == 0) {
        plan.process_type = "3D_GENERIC";
        plan.points = {1, static_cast<int32_t>(rows / ni2), static_cast<int32_t>(ni2)};
    } else {
        const size_t which = ni2 > 1 && ni <= 1 ? 1 : 0;
        plan.axis[1] = which + 1;
        plan_2d(p, evolutions[which], rows, plan);
    }
    return plan;
}

void combine_rows(const Combination& c, std::span<Complex> first, std::span<Complex> second) {
    for (size_t k = 0; k < first.size(); ++k) {
        const Complex s1 = first[k], s2 = second[k];
        first[k] = c[0] * s1 + c[1] * s2;
        second[k] = c[2] * s1 + c[3] * s2;
    }
}

}  // namespace zolt
