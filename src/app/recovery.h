// The data set of a run that did not end properly.
#pragma once

namespace zolt {

/// Asks whether to take over the newest snapshot that a killed process left, and clears what it left away. For front
/// ends with a user before them.
void offer_recovery();

}  // namespace zolt
