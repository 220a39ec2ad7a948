// Decoding of table lines in one pass, whatever mixture of forms they hold.
#include "import/jcamp_asdf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "common/text.h"

namespace zolt {

namespace {

enum class Kind : unsigned char { other, blank, number, squeezed, difference, repeat, missing };

struct Meaning {
    Kind kind = Kind::other;
    signed char digit = 0;  ///< the leading digit that a letter stands for
    bool negative = false;
};

// One entry a byte: what a token that begins with it is.
constexpr std::array<Meaning, 256> make_meanings() {
    std::array<Meaning, 256> table{};
    const auto set = [&](std::string_view letters, Kind kind, int first, bool negative) {
        for (const char letter : letters)
            table[static_cast<unsigned char>(letter)] = {kind, static_cast<signed char>(first++), negative};
    };
    for (const char c : std::string_view(" \t\r,;")) table[static_cast<unsigned char>(c)].kind = Kind::blank;
    for (const char c : std::string_view("0123456789+-.")) table[static_cast<unsigned char>(c)].kind = Kind::number;
    set("@ABCDEFGHI", Kind::squeezed, 0, false);
    set("abcdefghi", Kind::squeezed, 1, true);
    set("%JKLMNOPQR", Kind::difference, 0, false);
    set("jklmnopqr", Kind::difference, 1, true);
    set("STUVWXYZs", Kind::repeat, 1, false);
    table['?'].kind = Kind::missing;
    return table;
}
constexpr auto meanings = make_meanings();

Meaning meaning(char c) { return meanings[static_cast<unsigned char>(c)]; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The lines of a table hold letters that only squeezed forms have.
bool has_squeezed_letters(std::string_view lines) {
    for (std::string_view line; take_line(lines, line);)
        for (const char c : line.substr(0, line.find("$$"))) {
            const Kind kind = meaning(c).kind;
            if (kind > Kind::number && kind != Kind::missing && c != 'E' && c != 'e') return true;
        }
    return false;
}

class Decoder {
public:
    Decoder(bool squeezed, double factor, std::span<float> values) : squeezed_(squeezed), factor_(factor), values_(values) {}

    // False with problem() set.
    bool take(std::string_view line) {
        at_ = line.data();
        end_ = line.data() + line.size();
        skip_blanks();
        if (at_ == end_) return true;
        double abscissa = 0;
        if (meaning(*at_).kind != Kind::number || !take_number(abscissa)) return fail("begins with no number");
        first_of_line_ = true;
        for (skip_blanks(); at_ < end_; skip_blanks())
            if (!take_token()) return false;
        check_follows_ = !first_of_line_ && difference_;
        return true;
    }

    size_t count() const { return count_; }
    const std::string& problem() const { return problem_; }

private:
    bool fail(const char* problem) {
        problem_ = problem;
        return false;
    }

    void skip_blanks() {
        while (at_ < end_ && meaning(*at_).kind == Kind::blank) ++at_;
    }

    bool take_token() {
        const Meaning token = meaning(*at_);
        double value = 0;
        switch (token.kind) {
            case Kind::number:
                if (!take_number(value)) return fail("holds no readable number");
                return take_value(value, false);
            case Kind::missing:
                ++at_;
                return take_value(0, false);
            case Kind::squeezed:
                return take_value(take_digits(token), false);
            case Kind::difference:
                if (first_of_line_) return fail("begins with a difference");
                step_ = take_digits(token);
                return take_value(value_ + step_, true);
            case Kind::repeat:
                return repeat(take_digits(token));
            default:
                return fail("holds a character that belongs to no number");
        }
    }

    // The first ordinate behind a line that ended in a difference repeats the one before it.
    bool take_value(double value, bool difference) {
        difference_ = difference;
        if (first_of_line_ && check_follows_) {
            first_of_line_ = false;
            if (!(std::abs(value - value_) <= 1e-9 * largest_)) return fail("does not begin with the last value before it");
            value_ = value;
            return true;
        }
        first_of_line_ = false;
        value_ = value;
        largest_ = std::max(largest_, std::abs(value));
        return store();
    }

    bool store() {
        if (count_ == values_.size()) return fail("goes on behind the last point that the header gives");
        const double scaled = value_ * factor_;
        if (!(std::abs(scaled) <= 3.4e38)) return fail("holds a value that is too large");
        values_[count_++] = static_cast<float>(scaled);
        return true;
    }

    // A value or a difference stands for `times` of them.
    bool repeat(double times) {
        if (first_of_line_) return fail("begins with a repetition");
        if (times - 1 > static_cast<double>(values_.size() - count_))
            return fail("goes on behind the last point that the header gives");
        for (double done = 1; done < times; ++done) {
            if (difference_) value_ += step_;
            if (!store()) return false;
        }
        return true;
    }

    // A letter and the digits behind it.
    double take_digits(Meaning letter) {
        double value = letter.digit;
        for (++at_; at_ < end_ && is_digit(*at_); ++at_) value = 10 * value + (*at_ - '0');
        if (at_ < end_ && *at_ == '.') {
            double fraction = 0;
            at_ = std::from_chars(at_, end_, fraction, std::chars_format::fixed).ptr;
            if (at_ < end_ && *at_ == '.') ++at_;
            value += fraction;
        }
        return letter.negative ? -value : value;
    }

    // Where an exponent that begins here ends; `from` when it is none.
    const char* exponent_end(const char* from) const {
        if (from == end_ || (*from != 'E' && *from != 'e')) return from;
        const char* at = from + 1;
        const bool sign = at < end_ && (*at == '+' || *at == '-');
        if (sign) ++at;
        if (at == end_ || !is_digit(*at) || (squeezed_ && !sign)) return from;
        while (at < end_ && is_digit(*at)) ++at;
        return at;
    }

    bool take_number(double& value) {
        const bool negative = *at_ == '-';
        if (*at_ == '-' || *at_ == '+') ++at_;
        const char* const start = at_;
        uint64_t whole = 0;
        while (at_ < end_ && is_digit(*at_)) whole = 10 * whole + static_cast<uint64_t>(*at_++ - '0');
        const bool simple = at_ - start <= 18 && (at_ == end_ || (*at_ != '.' && *at_ != 'E' && *at_ != 'e'));
        value = static_cast<double>(whole);
        if (!simple) {
            if (at_ < end_ && *at_ == '.')
                for (++at_; at_ < end_ && is_digit(*at_);) ++at_;
            at_ = exponent_end(at_);
            if (std::from_chars(start, at_, value).ec != std::errc{}) return false;
        }
        if (negative) value = -value;
        return at_ > start;
    }

    const bool squeezed_;
    const double factor_;
    const std::span<float> values_;
    const char* at_ = nullptr;
    const char* end_ = nullptr;
    size_t count_ = 0;
    double value_ = 0, step_ = 0;
    double largest_ = 0;          ///< magnitude so far: sums of differences are exact to a fraction of it
    bool first_of_line_ = true;   ///< no ordinate of this line yet
    bool difference_ = false;     ///< the last ordinate came as a difference
    bool check_follows_ = false;  ///< the line before ended in one
    std::string problem_;
};

}  // namespace

DecodedTable decode_table(std::string_view lines, bool squeezed, double factor, std::span<float> values) {
    Decoder decoder(squeezed || has_squeezed_letters(lines), factor, values);
    size_t number = 0;
    for (std::string_view line; take_line(lines, line);) {
        ++number;
        if (!decoder.take(line.substr(0, line.find("$$"))))
            return {decoder.count(), format_text("line %zu of its table %s", number, decoder.problem().c_str())};
    }
    return {decoder.count(), {}};
}

}  // namespace zolt
