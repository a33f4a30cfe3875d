#ifndef FLANGE_FRAMES_H
#define FLANGE_FRAMES_H

// The frames forward kinematics puts around the flange (work frame W, installation rotation I,
// tool frame T), composed when one of them is set rather than at every call, with a note of
// which are the identity so that a call skips them. Not part of the library's interface.

#include "robot_define.h"

namespace algo {

struct FlangeFrames {
    Matrix world;  // W * I: from the base's flange to work-frame coordinates
    bool world_identity;
    bool install_identity;
    bool tool_identity;
};

// Read inline: every pose call asks.
extern FlangeFrames g_flange_frames;
inline const FlangeFrames& flange_frames() { return g_flange_frames; }
// The setters of the installation angles, the tool and work frames and the model call this.
void flange_frames_changed();

}  // namespace algo

#endif
