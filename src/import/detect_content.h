// The tests of formats that are recognised by what a file holds. Each reads the head of an opened candidate, some also
// look for the files that belong to it; true when the file is of the format.
#pragma once

#include "import/format.h"

namespace zolt {

// Instruments and their programs.
bool ANALOGIC_test(Candidate& file);
bool ATI_test(Candidate& file);
bool HITACHI_test(Candidate& file);
bool OMEGA_ONE_test(Candidate& file);
bool LYBRICS_test(Candidate& file);
bool MACFID1_test(Candidate& file);
bool MACFID2_test(Candidate& file);
bool MACNMR1_test(Candidate& file);
bool MACNMR2_test(Candidate& file);
bool NTNMR_test(Candidate& file);
bool NMRI_test(Candidate& file);
bool FLX_AII_test(Candidate& file);
bool IRIS_FELIX_test(Candidate& file);
bool AZARA_test(Candidate& file);

// JEOL.
bool FXQ_test(Candidate& file);
bool JEOL_LAMBDA_test(Candidate& file);
bool JEOL_ALS_test(Candidate& file);
bool JEOL_ALPHA_test(Candidate& file);
bool JEOL_DELTA_Test(Candidate& file);

// Medical scanners.
bool GEMS_test(Candidate& file);
bool GE_MEDI_test(Candidate& file);
bool ARC_NEMA_test(Candidate& file);
bool PHIL_test(Candidate& file);
bool PHILIPS2_test(Candidate& file);
bool DDF_test(Candidate& file);
bool SIEMENS_test(Candidate& file);
bool SIEMENS_RDA_test(Candidate& file);
bool ELCINT_test(Candidate& file);

// Exchange formats.
bool JCAMP_file_test(Candidate& file);
bool GAML_test(Candidate& file);
bool GALACTIC_test(Candidate& file);

}  // namespace zolt
