// The current data set: the record `show`, its parameters and its vectors in memory.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <string>
#include <vector>

#include "common/axis.h"
#include "state/annotations.h"
#include "state/vectors.h"

namespace zolt {

/// Acquisition domain code of a dimension. Files may hold other values; they are kept and refused by the transforms.
enum DomainCode { domain_real = 0, domain_complex = 1, domain_sequential = 2 };

/// Axis unit codes, as headers store them.
enum AxisUnit { unit_none = 0, unit_points = 1, unit_hz = 2, unit_ppm = 3 };

/// The window that a data set's own files ask for.
enum class Apodization { unknown, none, exponential, sine, sine_squared };

/// How the files of a data set would have a dimension processed; what they do not say is 0.
struct ProcessingAdvice {
    int32_t points = 0;  ///< of the spectrum
    Apodization window = Apodization::unknown;
    double lb = 0;                 ///< Hz, of an exponential window
    double bell_offset = 0;        ///< start of a sine bell, as a share of half a period
    bool phased = false;           ///< the operator's phases are known:
    std::array<float, 2> phase{};  ///< zero and first order, degrees
    bool operator==(const ProcessingAdvice&) const = default;
};

struct Dimension {
    int32_t points = 0;  ///< complex points; for dimension 2 the number of slices, and so on
    float sf = 0;        ///< spectrometer frequency, MHz
    float sw = 0;        ///< sweep width, Hz
    float offset = 0;    ///< frequency of the spectrum's centre relative to 0 ppm, Hz
    int domain_code = domain_complex;
    bool frequency = false;  ///< false: time domain, true: frequency domain
    int axis_unit = unit_ppm;
    std::array<float, 3> phase_totals{};  ///< accumulated zero, first and second order, degrees
    std::string nucleus;
    int order = 0;                   ///< entry of the dimension-order table, 1 to 4
    int sense = 1;                   ///< -1: a line above the carrier turns as e^(+iwt), the first transform conjugates
    std::array<float, 5> carried{};  ///< parameters P2 to P6 of the header, carried unchanged (P6 of dimension 1: LB)
    ProcessingAdvice advice{};       ///< for Process; no file of ours keeps it

    Axis axis() const { return {static_cast<double>(points), sw, sf, offset}; }
    bool operator==(const Dimension&) const = default;
};

/// Words of the native header that have no meaning here and are carried back unchanged.
struct CarriedWords {
    int32_t a = 0, b = 0, c = 0, d = 0, e = 0;
    int32_t write_stamp = 0;
    float acquisition_value = 0;
    std::array<uint32_t, 64> parameter_block{};
    bool operator==(const CarriedWords&) const = default;
};

/// Everything that is known of a data set but its points.
struct DataRecord {
    DataRecord();

    std::array<Dimension, 4> dims;  ///< dimension 1 first
    int level = 0;                  ///< Arrayed-mode level
    size_t selected = 0;            ///< index in the vector store of the current vector

    std::string file_a, file_b;                   ///< absolute paths, "" for none
    int32_t slice = 0, slice_3 = 0, slice_4 = 0;  ///< selected slice, plane and cube, from 0
    bool loaded = false;
    bool changed = false;        ///< the data differ from the file; cleared by a save
    std::string annotations_in_file;  ///< texts, peaks, integrals and notes as the file has them
    bool display_valid = false;       ///< second mark: what the display holds is that of the data

    std::string user, date, comment, experiment, owner, solvent, formula, path, title, source;
    std::array<std::string, 3> names;
    std::string process_type = "1D";

    int32_t scans = 0;
    double d1 = 0, p1 = 0;         ///< relaxation delay in s, pulse in us
    double o1 = 0, o2 = 0;         ///< carrier offsets of the spectrometer, Hz
    std::array<float, 3> phase{};  ///< stored phase values A, B, C, degrees
    float pivot = 0;               ///< pivot of interactive phasing, points
    double group_delay = 0;        ///< pending digital-filter delay of dimension 1, complex points
    int32_t rotation = 0;          ///< pending amount of RD, points

    /// Of a series: what was stepped from slice to slice (delays in s, gradients, counts).
    std::vector<double> array_values;
    /// Width of dimension 2 in Hz by a second statement of the imported file that contradicts SW2; 0 without one.
    double other_sw2 = 0;

    float rel_value = 1;                  ///< every integral is shown and written times this
    std::vector<Integral> integrals;      ///< in order of their start points
    std::vector<Integral> sub_integrals;  ///< a second list, for the clipboard
    Dimension integral_grid;              ///< dimension 1 as the limits know it; without points: as it is
    bool integrals_stale = false;         ///< the data have changed since the values were computed
    std::vector<Peak> peaks;  ///< in order of their points
    PeakOrigin peak_origin;
    PeaksStale peaks_stale = PeaksStale::no;
    std::vector<MetaObject> meta_objects;
    std::vector<Note> notes;
    std::vector<DataBuffer> buffers;  ///< in order of their numbers
    History command_log;
    CarriedWords words;

    int32_t pts1d() const { return dims[0].points; }
    /// The values of the integrals no longer are those of the data.
    void mark_integrals_stale() { integrals_stale = !integrals.empty() || !sub_integrals.empty(); }
    /// The peaks no longer are those of the current vector.
    void mark_peaks_stale(PeaksStale what) {
        if (!peaks.empty() && peaks_stale != PeaksStale::points) peaks_stale = what;
    }
    /// Slices of all planes and cubes; the largest number where a header promises more than can be counted.
    uint64_t all_slices() const;
    /// The dimension that was recorded directly, which a pending group delay belongs to: dimension 1 until a transposition
    /// puts it elsewhere.
    const Dimension& direct() const;
    /// Whether a group delay can be one of these data: positive, and no longer than their longest dimension.
    bool possible_delay(double delay) const;
    /// The stored line broadening in Hz is parameter P6 of dimension 1.
    float& lb() { return dims[0].carried[4]; }
    float lb() const { return dims[0].carried[4]; }
    bool operator==(const DataRecord&) const = default;
};

struct DataSet : DataRecord {
    VectorStore store;  ///< every vector of the current Arrayed level, in walking order

    /// The current vector: the selected one of the store, `pts1d` complex points (empty without data).
    std::span<Complex> cvNMRdata() { return store.vector(selected); }
    std::span<const Complex> cvNMRdata() const { return store.vector(selected); }
};

/// The one current data set; alive for the whole run.
extern DataSet show;
/// File B: the secondary data set, for overlay and comparison. `show` holds its name.
extern DataSet show_b;

int CurrentArrayedLevel();

/// Sets the two marks that every command which alters the data sets: changed, and the display no longer valid.
void mark_changed();

/// True for the process types whose slices stand in pairs, A and B of one complex point along dimension 2.
bool has_pairs(std::string_view process_type);

/// True for the process-type keys of multi-dimensional data sets and "1D".
bool is_process_type(std::string_view key);

}  // namespace zolt
