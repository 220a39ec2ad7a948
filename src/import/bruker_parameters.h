// The text files of a Bruker data set: where they stand, and what they say in the words of the translators.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "import/bruker_delay.h"
#include "import/format.h"
#include "import/labelled.h"
#include "import/quantities.h"

namespace zolt {

/// What acqus says beside the parameters of the data set.
struct Acquisition {
    std::string path;              ///< of the file, "" before it was found
    std::optional<int64_t> words;  ///< TD
    double sfo1 = 0, sw = 0;       ///< MHz and Hz in the full precision of their texts
    RawWords raw;
    DigitalFilter filter;
    std::optional<int64_t> sampling;  ///< FnTYPE: 2 by a sampling list
    bool inner_is_third = false;      ///< AQSEQ 1: dimension 3 was stepped through within dimension 2
};

/// How the rows of an indirect dimension were recorded: values of FnMODE.
enum class IndirectMode { unknown, qf, qseq, tppi, states, states_tppi, echo_antiecho };

/// What acqu2s or acqu3s says.
struct Indirect {
    std::string path;
    int64_t rows = 0;       ///< TD
    int64_t full_rows = 0;  ///< NusTD, or TD as set up: the grid that a sparse list samples
    double sfo1 = 0, o1 = 0;
    double sw = 0;         ///< SW_h
    double sw_of_ppm = 0;  ///< SW x SFO1
    IndirectMode mode = IndirectMode::unknown;
    std::string nucleus;
};

/// What procs, proc2s or proc3s says; 0 for what it does not.
struct Processing {
    double sf = 0, sw = 0, lb = 0;
    std::optional<double> zero_order, first_order;  ///< PHC0, PHC1
    std::optional<int64_t> window;                  ///< WDW
    double bell_shift = 0;                          ///< SSB
    std::optional<double> left_edge;                ///< OFFSET, ppm
    int64_t points = 0, strip = 0, tile = 0;        ///< SI, STSI, XDIM
    std::optional<bool> big_endian;
    bool doubles = false, transformed = true;
    std::optional<int64_t> scale;  ///< NC_proc: stored values are to be multiplied by two to this power
    IndirectMode mode = IndirectMode::unknown;
    std::string title;
};

/// The file `name` (acqus, acqu2s, acqu3s) of the data in a folder: beside them, then in the experiment above pdata, else
/// (where asked for) in subfolders 1 to 9; its twin without the "s" where it is missing. "" without one.
std::string experiment_file(const std::string& folder, const std::string& name, bool in_subfolders);

/// Reads the records of acqus into the parameters. False with the message.
bool read_acqus(Translation& t, const std::string& path, Acquisition& acquisition);
/// Finds acqus and reads it.
bool find_acqus(Translation& t, Acquisition& acquisition);
/// Finds and reads acqu2s or acqu3s into dimension `d` (1 or 2) of the parameters, but for its count.
bool find_indirect(Translation& t, size_t d, Indirect& indirect);

/// procs, proc2s or proc3s of a folder; nothing without a readable one.
std::optional<Processing> read_processing(const std::string& path);
/// The first line of a title file, "" without one.
std::string read_title(const std::string& path);

/// The offset of a dimension in Hz: from the reference frequency of its processing parameters, else the carrier's.
double referenced_offset(double sfo1, double carrier_offset, const std::optional<Processing>& processing);

/// What it asks for, in the words of the data set.
ProcessingAdvice advice_of(const Processing& procs);

/// Phases, line broadening, reference and title that the operator chose for the stored spectrum, for data yet to be transformed.
void take_processing_of_fid(const std::optional<Processing>& procs, const Acquisition& acquisition, DataSet& data);

/// Values of the list that stands beside the data (vdlist and its like): delays in s, counts, gradients; empty without.
std::vector<double> read_array_list(const std::string& folder);

/// The points of a sparse grid, one a line, `columns` indices from 0 each. False with the message for anything else.
bool read_sampling_list(Translation& t, const std::string& path, size_t columns, std::vector<int64_t>& indices);

}  // namespace zolt
