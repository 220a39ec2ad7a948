// Handlers of the processing commands.
#pragma once

#include "common/arguments.h"

namespace zolt {

int cmd_ft(Arguments& args);
int cmd_realft(Arguments& args);
int cmd_zf(Arguments& args);
int cmd_lb(Arguments& args);
int cmd_em(Arguments& args);
int cmd_gm(Arguments& args);
int cmd_pa(Arguments& args);
int cmd_pb(Arguments& args);
int cmd_pc(Arguments& args);
int cmd_zp(Arguments& args);
int cmd_pi(Arguments& args);
int cmd_tp(Arguments& args);
int cmd_ap(Arguments& args);
int cmd_bc(Arguments& args);
int cmd_fb(Arguments& args);
int cmd_br(Arguments& args);
int cmd_zi(Arguments& args);
int cmd_zr(Arguments& args);
int cmd_zn(Arguments& args);
int cmd_21(Arguments& args);
int cmd_sinebell(Arguments& args);
int cmd_cosine(Arguments& args);
int cmd_phasedim(Arguments& args);
int cmd_zerofill(Arguments& args);
int cmd_sr(Arguments& args);
int cmd_mc(Arguments& args);
int cmd_m2(Arguments& args);
int cmd_ls(Arguments& args);
int cmd_rs(Arguments& args);
int cmd_rd(Arguments& args);
int cmd_switchab(Arguments& args);
int cmd_alternatesign(Arguments& args);
int cmd_echoantiecho(Arguments& args);
int cmd_reference(Arguments& args);

/// Averages blocks of `digit` points, of ten for 0.
int average_data(int digit);

template <int digit>
int cmd_y(Arguments& /*args*/) {
    return average_data(digit);
}

}  // namespace zolt
