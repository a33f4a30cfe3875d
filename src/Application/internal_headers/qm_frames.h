// The transforms of the last current tool and work frames read, on any connection.
#ifndef QM_FRAMES_H
#define QM_FRAMES_H

#include "qm_define.h"

qm_matrix_t qm_tool_matrix();   // Tool_Matrix
qm_matrix_t qm_frame_matrix();  // Frame_Matrix

#endif
