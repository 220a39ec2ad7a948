// Slices of File A: the current vector of a larger data set.
#pragma once

#include <cstdint>

#include "common/file.h"
#include "state/dataset.h"

namespace zolt {

/// Reads slice k (from 0, within the selected plane and cube) of an open native file of `size` bytes into the record,
/// and with it what the file says of dimension 1: points, domain, sense and group delay. The record is changed only on
/// success; a failure is reported.
bool get_slice(File& file, uint64_t size, int64_t k, DataSet& data);

/// The parameters of the data set with the counts and the state (domain, sense, delay) of the slices in its file: what a
/// header written for those slices says.
DataRecord with_state_of_slices(DataRecord data, const DataRecord& file);

/// Makes slice k (from 0) of the selected plane and cube the current data: read from File A, or selected among the
/// vectors in memory. False, after its message, when there is no such slice.
bool set_sliceA(int64_t k);

/// Makes slice k the current vector of an Arrayed level (the last one when there are fewer).
void select_in_memory(int64_t k);

/// Goes to a plane and a cube (from 0), keeping the slice number. False, after its message.
bool set_planeA(int64_t plane, int64_t cube);

}  // namespace zolt
