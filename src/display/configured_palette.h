// The colours of the configuration over those of an appearance.
#pragma once

#include "display/palette.h"

namespace zolt {

/// The palette with the colours that ZOLT.INI and the commands of overlays set in place of its own. Keys that are not set leave it as it is, so that
/// the two appearances keep their own colours.
Palette configured_palette(const Palette& appearance);

}  // namespace zolt
