// Multiplications by tables: along dimension 1 each vector by the table, along another each vector by its own entry.
#include "processing/along.h"

#include <algorithm>

#include "common/text.h"
#include "common/vectorised.h"
#include "platform/platform.h"
#include "processing/values.h"

namespace zolt {

bool Weights::table(Buffer<float>& weights, size_t n) const {
    const size_t blocks = (n + block - 1) / block;
    if (!weights.allocate(blocks * block)) return false;
    std::array<float, block> part;
    for (size_t b = 0; b < blocks; ++b) {
        fill(b * block, part);
        std::copy(part.begin(), part.end(), weights.data() + b * block);
    }
    return true;
}

namespace {

// The parts of points, which a plain loop over floats reaches better than one over complex numbers.
float* parts(std::span<Complex> x) { return reinterpret_cast<float*>(x.data()); }

ZOLT_VECTORISED void weigh_parts(float* __restrict x, const float* __restrict weights, size_t n) {
    for (size_t k = 0; k < n; ++k) {
        x[2 * k] *= weights[k];
        x[2 * k + 1] *= weights[k];
    }
}

ZOLT_VECTORISED void scale_parts(float* x, float factor, size_t count) {
    for (size_t k = 0; k < count; ++k) x[k] *= factor;
}

}  // namespace

void weigh(std::span<Complex> x, const Weights& weights) {
    std::array<float, Weights::block> part;
    for (size_t at = 0; at < x.size(); at += Weights::block) {
        weights.fill(at, part);
        const auto some = x.subspan(at, std::min(Weights::block, x.size() - at));
        weigh_parts(parts(some), part.data(), some.size());
    }
}

void weigh(std::span<Complex> x, std::span<const float> weights) {
    weigh_parts(parts(x), weights.data(), std::min(x.size(), weights.size()));
}

void scale(std::span<Complex> x, float factor) { scale_parts(parts(x), factor, 2 * x.size()); }

std::optional<Along> along_or_refuse(int dimension, const char* name) {
    const auto along = along_dimension(show, dimension);
    if (!along)
        refuse(format_text("%s in %s dimension not supported in Arrayed mode level %d", name, ordinal(dimension), show.level));
    return along;
}

std::optional<size_t> points_along(int dimension, const char* name) {
    if (dimension == 1) return show.store.points();
    const auto along = along_or_refuse(dimension, name);
    return along ? std::optional(along->length) : std::nullopt;
}

int weigh_dimension(int dimension, const Weights& weights, const char* name, const std::string& memory) {
    Buffer<float> table;
    bool done = false;
    if (dimension == 1) {
        if (show.level > 4) return refuse(format_text("%s not supported in Arrayed mode level %d", name, show.level));
        const bool one = show.store.count() == 1;
        if (!one && !weights.table(table, show.store.points())) return refuse(memory);
        done = for_each_vector(show.store, [&](std::span<Complex> x) { one ? weigh(x, weights) : weigh(x, table.span()); });
    } else {
        const auto along = along_or_refuse(dimension, name);
        if (!along) return 0;
        if (!weights.table(table, along->length)) return refuse(memory);
        done = for_each_vector(show.store, [&](std::span<Complex> x, size_t i) { scale(x, table[along->place(i)]); });
    }
    if (!done) return cancelled(name);
    mark_changed();
    return 1;
}

int cancelled(const char* name) { return refuse(format_text("%s was cancelled.\nThe data are as they were.", name)); }

}  // namespace zolt
