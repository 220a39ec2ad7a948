// SwitchAB and EchoAntiEcho: the two vectors of each pair put together anew.
#include "processing/pairs.h"

#include <cstddef>
#include <string>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

namespace {

// The four parts of two points: real and imaginary of A, real and imaginary of B.
struct Parts {
    float ar, ai, br, bi;
};

// One function for every exchange, so that its loop is known whole and made of vector instructions.
template <auto exchange>
void each(std::span<Complex> a, std::span<Complex> b) {
    auto *const p = reinterpret_cast<float*>(a.data()), *const q = reinterpret_cast<float*>(b.data());
    for (size_t k = 0; k < 2 * a.size(); k += 2) {
        const Parts parts = exchange({p[k], p[k + 1], q[k], q[k + 1]});
        p[k] = parts.ar;
        p[k + 1] = parts.ai;
        q[k] = parts.br;
        q[k + 1] = parts.bi;
    }
}

}  // namespace

PairExchange pair_exchange(std::string_view word) {
    static constexpr struct {
        const char* word;
        PairExchange exchange;
    } rows[] = {
        {"zero", each<[](Parts x) {
             return Parts{x.ar, x.ai, 0, 0};
         }>},
        {"real", each<[](Parts x) {
             return Parts{x.ar, 0, x.br, 0};
         }>},
        {"imag", each<[](Parts x) {
             return Parts{x.ai, 0, x.bi, 0};
         }>},
        {"ArBr", each<[](Parts x) {
             return Parts{x.ar, x.br, x.ai, x.bi};
         }>},
        {"AiBi", each<[](Parts x) {
             return Parts{x.ai, x.bi, x.ar, x.br};
         }>},
        {"ArBi", each<[](Parts x) {
             return Parts{x.ar, x.bi, x.ai, x.br};
         }>},
        {"AiBr", each<[](Parts x) {
             return Parts{x.ai, x.br, x.ar, x.bi};
         }>},
    };
    for (const auto& row : rows)
        if (same_word(word, row.word)) return row.exchange;
    return nullptr;
}

void echo_antiecho(std::span<Complex> p, std::span<Complex> n) {
    each<[](Parts x) {
        return Parts{0.5F * (x.ar + x.br), 0.5F * (x.ai + x.bi), 0.5F * (x.ai - x.bi), -0.5F * (x.ar - x.br)};
    }>(p, n);
}

namespace {

int exchange_pairs(PairExchange exchange) {
    const WaitCursor wait;
    const auto pairs = static_cast<std::ptrdiff_t>(show.store.count() / 2);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t p = 0; p < pairs; ++p)
        exchange(show.store.vector(2 * static_cast<size_t>(p)), show.store.vector(2 * static_cast<size_t>(p) + 1));
    mark_changed();
    return 1;
}

}  // namespace

int cmd_switchab(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  SwitchAB   zero / real / imag / ArBr / AiBi / ArBi / AiBr");
    if (show.level != 2) return show_reply("- SwitchAB works only in PairWise Complex Arrayed Mode");
    const PairExchange exchange = pair_exchange(args.next());
    if (exchange == nullptr) return show_reply("- Illegal argument in SwitchAB command.");
    return exchange_pairs(exchange);
}

int cmd_echoantiecho(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  EchoAntiEcho");
    if (show.level != 2) return refuse(format_text("EchoAntiEcho not supported in Arrayed mode level %d", show.level));
    if (!show.dims[0].frequency) return refuse("EchoAntiEcho works on spectra along dimension 1.\nDo FT and PC first.");
    return exchange_pairs(echo_antiecho);
}

}  // namespace zolt
