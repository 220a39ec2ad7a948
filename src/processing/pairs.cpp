// SwitchAB and EchoAntiEcho: the two vectors of each pair put together anew.
#include "processing/pairs.h"

#include <cstddef>
#include <string>
#include <tuple>
#include <utility>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

PairExchange pair_exchange(std::string_view word) {
    static constexpr struct {
        const char* word;
        PairExchange exchange;
    } rows[] = {
        {"zero", [](Complex&, Complex& b) { b = 0; }},
        {"real", [](Complex& a, Complex& b) { a.imag(0), b.imag(0); }},
        {"imag", [](Complex& a, Complex& b) { a = a.imag(), b = b.imag(); }},
        {"ArBr",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.real(), b.real()), Complex(a.imag(), b.imag())); }},
        {"AiBi",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.imag(), b.imag()), Complex(a.real(), b.real())); }},
        {"ArBi",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.real(), b.imag()), Complex(a.imag(), b.real())); }},
        {"AiBr",
         [](Complex& a, Complex& b) { std::tie(a, b) = std::pair(Complex(a.imag(), b.real()), Complex(a.real(), b.imag())); }},
    };
    for (const auto& row : rows)
        if (same_word(word, row.word)) return row.exchange;
    return nullptr;
}

void echo_antiecho(Complex& p, Complex& n) {
    const Complex sum = p + n, difference = p - n;
    p = 0.5F * sum;
    n = {0.5F * difference.imag(), -0.5F * difference.real()};
}

namespace {

int exchange_pairs(PairExchange exchange) {
    const WaitCursor wait;
    const auto pairs = static_cast<std::ptrdiff_t>(show.store.count() / 2);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t p = 0; p < pairs; ++p) {
        const auto a = show.store.vector(2 * static_cast<size_t>(p)), b = show.store.vector(2 * static_cast<size_t>(p) + 1);
        for (size_t k = 0; k < a.size(); ++k) exchange(a[k], b[k]);
    }
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
