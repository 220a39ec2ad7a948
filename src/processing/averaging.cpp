// Y0 to Y9: blocks of points averaged into one point each.
#include <algorithm>
#include <complex>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/arithmetic.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

void average_blocks(std::span<const Complex> x, std::span<Complex> means) {
    const size_t block = means.empty() ? 0 : x.size() / means.size();
    for (size_t k = 0; k < means.size(); ++k) {
        std::complex<double> sum = 0;
        for (const Complex point : x.subspan(k * block, block)) sum += std::complex<double>(point);
        means[k] = Complex(sum / static_cast<double>(block));
    }
}

namespace {

// Width and centre of the axis such that the middle of each block keeps its frequency. `rest` points at the end belong
// to no block.
void keep_axis(Dimension& dimension, double points, double blocks, double block) {
    if (!dimension.frequency) {
        dimension.sw = static_cast<float>(dimension.sw / block);
        return;
    }
    if (points < 2) return;
    const double step = dimension.sw / (points - 1), rest = points - blocks * block;
    dimension.sw = static_cast<float>(step * block * (blocks - 1));
    dimension.offset = static_cast<float>(dimension.offset + step * rest / 2);
}

}  // namespace

int average_data(int digit) {
    if (show.level != 0) return refuse(format_text("Block averaging not supported Arrayed mode level %d", show.level));
    const size_t block = digit == 0 ? 10 : static_cast<size_t>(digit), points = show.store.points(), blocks = points / block;
    if (blocks < 1) return refuse(format_text("%d points hold no block of %d.", static_cast<int>(points), static_cast<int>(block)));
    VectorStore averaged;
    if (!averaged.allocate(1, blocks)) return refuse("Not enough memory to average blocks of points.");
    // A rest that fills no block is left out.
    average_blocks(show.cvNMRdata().first(blocks * block), averaged.vector(0));
    keep_axis(show.dims[0], static_cast<double>(points), static_cast<double>(blocks), static_cast<double>(block));
    show.group_delay /= static_cast<double>(block);
    show.store = std::move(averaged);
    show.dims[0].points = static_cast<int32_t>(blocks);
    mark_changed();
    return 1;
}

}  // namespace zolt
