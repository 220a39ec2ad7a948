// Reference: the offset of an axis from the shift of a place.
#include <algorithm>
#include <cmath>
#include <string>

#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/dataset.h"

namespace zolt {

namespace {

// The point of dimension 1 with the largest modulus.
double tallest_point() {
    const auto x = show.cvNMRdata();
    const auto tallest = std::max_element(x.begin(), x.end(), [](Complex a, Complex b) { return std::norm(a) < std::norm(b); });
    return static_cast<double>(tallest - x.begin());
}

// The point that the words behind "at" name: a number of the axis, or "point" and the number of a point. Below 0 for none.
double point_argument(Arguments& args, const Axis& axis) {
    std::string word = args.next();
    const bool counted = same_word(word, "point");
    if (counted) word = args.next();
    const auto value = leading_number(word);
    if (!value) return -1;
    return counted ? *value : axis.point_of_ppm(*value);
}

}  // namespace

int cmd_reference(Arguments& args) {
    constexpr const char* usage = "  - USAGE:  Reference   [2D / 3D / 4D]   ppm   [at   ppm / point n]";
    if (args.ask_usage()) return show_reply(usage);
    const int dimension = take_dimension(args);
    Dimension& referenced = show.dims[static_cast<size_t>(dimension - 1)];
    const auto shift_wanted = leading_number(args.next());
    const std::string at = args.next();
    if (!shift_wanted || (at.empty() && dimension > 1) || (!at.empty() && !same_word(at, "at"))) return show_reply(usage);
    const Axis axis = referenced.axis();
    if (!axis.has_ppm()) return refuse(format_text("Dimension %d has no spectrometer frequency, and so no shifts.", dimension));
    const double point = at.empty() ? tallest_point() : point_argument(args, axis);
    if (!(point >= 0 && point <= axis.points - 1)) return refuse("Reference needs a place within the spectrum.");
    // The offset O at which (Hz(point) without offset + O) / (SF - O/10^6) is the shift.
    const double bare = axis.hz(point) - axis.offset, ppm = *shift_wanted;
    const double offset = (ppm * axis.sf - bare) / (1 + ppm / 1e6);
    if (!(std::abs(offset) < 1e12)) return refuse("Reference needs a shift that an axis can have.");
    referenced.offset = static_cast<float>(offset);
    show.display_valid = false;
    platform().reply(format_text("  - Point %.1f is %.4f ppm now, the offset %.3f Hz", point, ppm, offset));
    return 1;
}

}  // namespace zolt
