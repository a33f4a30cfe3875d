/** @file
 * Version texts of the library and of its kinematics library. */
#ifndef QM_VERSION_H
#define QM_VERSION_H

/** The library's version, as qm_api_version() returns it. */
#define SDK_VERSION "1.1.0"
/** The kinematics library's version, as qm_algo_version() returns it. */
#define LIBALGO_VERSION_TEXT "1.5.3-f0364d3b"

#endif
