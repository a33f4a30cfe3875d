#ifndef QM_VERSION_H
#define QM_VERSION_H

#define SDK_VERSION "1.1.0"
#define LIBALGO_VERSION_TEXT "1.5.3-f0364d3b"

#endif
